#include "IOTriggerWidget.h"
#include "ui_IOTriggerWidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDebug>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

QString IOTriggerWidget::numericResultText(double value)
{
    return QString(QChar(static_cast<ushort>(static_cast<int>(value) & 0xFF)));
}

int IOTriggerWidget::GetOutputs(QStringList* outputs)
{
    int count = 0;
    const QStringList lines = m_pFeatureManager->GetAvailableEnumEntries("LineSelector");
    if (lines.size() < 1)
    {
        // Sync outputs: every selector entry is an output.
        const QStringList syncOuts = m_pFeatureManager->GetAvailableEnumEntries("LineOutSelector", "SyncOutSelector");
        for (const QString& line : syncOuts)
        {
            outputs->append(line);
            ++count;
        }
        return count;
    }

    const Selector selector = lineSelector();
    walkSelector(
        selector, lines,
        {Restore::AfterEachLine, Restore::OnFailure, "GetOutputs", "Error: SetValue(LineSelector) retValue == ''"},
        [&](int i, bool selected)
        {
            if (!selected)
                return true;
            const QString mode = m_pFeatureManager->GetStringValue("LineMode");
            if (!mode.isEmpty() && mode == "Output")
            {
                outputs->append(lines.at(i));
                ++count;
            }
            return true;
        });
    return count;
}

QList<int> IOTriggerWidget::DetermineOutsIndex()
{
    QList<int> outsIndex;
    SetConnectionsDisabled(true);
    const QString current = m_pComboInputLineSelector ? m_pComboInputLineSelector->currentText() : QString();
    const Selector selector = lineSelector();

    const int count = m_pComboInputLineSelector ? m_pComboInputLineSelector->count() : 0;
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines << QString::fromLatin1(m_pComboInputLineSelector->itemText(i).toLatin1());
    walkSelector(selector, lines, {Restore::AtEnd, Restore::Never, "DetermineOutsIndex", nullptr},
                 [&](int i, bool selected)
                 {
                     if (selected && m_pFeatureManager->GetStringValue("LineMode") == "Output")
                         outsIndex.append(i);
                     return true;
                 });

    if (m_pComboInputLineSelector)
    {
        int index = -1;
        for (int i = 0; i < count && index < 0; ++i)
        {
            if (m_pComboInputLineSelector->itemText(i) == current)
                index = i;
        }
        m_pComboInputLineSelector->setCurrentIndex(index);
    }
    SetConnectionsDisabled(false);
    return outsIndex;
}

void IOTriggerWidget::createOutputLabels()
{
    QGridLayout* grid = ui->grid_Output;

    // The caption is the camera's own name of the source feature.
    const QString sourceName = m_pFeatureManager->GetFeatureName(QStringList() << "LineOutSource"
                                                                               << "SyncOutSource"
                                                                               << "LineSource");
    m_pLabelOutSource = new QLabel(sourceName + ":");
    grid->addWidget(m_pLabelOutSource, 0, 1, Qt::AlignLeft);

    const QString invertName = m_pFeatureManager->GetDisplayName(QStringList() << "SyncOutPolarity"
                                                                               << "LineOutPolarity"
                                                                               << "LineInverter");
    m_pLabelOutInvert = new QLabel(invertName.contains("Polarity") ? tr("Polarity:") : tr("Invert:"));
    grid->addWidget(m_pLabelOutInvert, 0, 2, Qt::AlignCenter);

    m_pLabelOutStatus = new QLabel(tr("Status:"));
    grid->addWidget(m_pLabelOutStatus, 0, 3, Qt::AlignCenter);

    if (m_bUserOutputSelector)
    {
        m_pLabelUserOutSelector = new QLabel(tr("UserOutSel.:"));
        grid->addWidget(m_pLabelUserOutSelector, 0, 4, Qt::AlignLeft);
        m_pLabelUserValue = new QLabel(tr("User Value:"));
        grid->addWidget(m_pLabelUserValue, 0, 5, Qt::AlignCenter);
    }
}

void IOTriggerWidget::createOutput()
{
    QGridLayout* grid = ui->grid_Output;

    m_Outputs.clear();
    const int count = GetOutputs(&m_Outputs);

    const int height =
        (m_pFeatureManager->GetIsFeatureAvailable("SyncOutLevels", "LineOutLevels") ? 85 : 60) + 35 * count;
    ui->gb_Output->setMinimumHeight(height);
    ui->gb_Output->setMaximumHeight(height);

    for (int i = 0; i < count; ++i)
        createOutputRow(i);

    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 3);
    for (int column = 2; column <= 5; ++column)
        grid->setColumnStretch(column, 1);

    createSyncLevelsRow(count + 1);

    SetConnectionsDisabled(true);
    updateOutSource();
    updateOutInvert();
    updateOutStatus();
    updateSyncLevels();
    if (m_bUserOutputSelector)
    {
        updateUserOutSelector();
        updateUserOutValue();
    }
    SetConnectionsDisabled(false);
}

void IOTriggerWidget::createOutputRow(int i)
{
    QGridLayout* grid = ui->grid_Output;
    const int gridRow = i + 1;

    QLabel* label = new QLabel(m_Outputs.at(i) + ": ");
    m_OutLineLabels.insert(i, label);
    grid->addWidget(label, gridRow, 0, Qt::AlignLeft);

    QSharedPointer<OutputRow> row(new OutputRow);
    m_OutputRows.append(row);

    row->m_pComboSource.reset(new QComboBox);
    row->m_pComboSource->setSizeAdjustPolicy(QComboBox::AdjustToContentsOnFirstShow);
    row->m_pComboSource->setMaximumWidth(95);
    connect(row->m_pComboSource.data(), SIGNAL(currentIndexChanged(QString)), this,
            SLOT(OnComboOutSourceChanged(QString)));
    grid->addWidget(row->m_pComboSource.data(), gridRow, 1, Qt::Alignment());

    row->m_pCBInvert.reset(new QCheckBox);
    connect(row->m_pCBInvert.data(), SIGNAL(stateChanged(int)), this, SLOT(OnCBOutInvertChanged(int)));
    grid->addWidget(row->m_pCBInvert.data(), gridRow, 2, Qt::AlignCenter);

    row->m_pCBStatus.reset(new QCheckBox);
    connect(row->m_pCBStatus.data(), SIGNAL(stateChanged(int)), this, SLOT(OnCBOutStatusChanged(int)));
    grid->addWidget(row->m_pCBStatus.data(), gridRow, 3, Qt::AlignCenter);

    if (!m_bUserOutputSelector)
        return;

    // Only shows the binding of the line; never edited, so not connected.
    row->m_pComboUserOutSelector.reset(new QComboBox);
    row->m_pComboUserOutSelector->setSizeAdjustPolicy(QComboBox::AdjustToContentsOnFirstShow);
    row->m_pComboUserOutSelector->setLayoutDirection(Qt::RightToLeft);
    grid->addWidget(row->m_pComboUserOutSelector.data(), gridRow, 4, Qt::Alignment());

    // There are five user value slots; the boxes of later rows stay unconnected.
    row->m_pCBUserValue.reset(new QCheckBox);
    static const char* const userValueSlots[] = {
        SLOT(OnCBOutUserValueChanged1(int)), SLOT(OnCBOutUserValueChanged2(int)), SLOT(OnCBOutUserValueChanged3(int)),
        SLOT(OnCBOutUserValueChanged4(int)), SLOT(OnCBOutUserValueChanged5(int))};
    if (i < 5)
        connect(row->m_pCBUserValue.data(), SIGNAL(stateChanged(int)), this, userValueSlots[i]);
    grid->addWidget(row->m_pCBUserValue.data(), gridRow, 5, Qt::AlignCenter);
}

void IOTriggerWidget::createSyncLevelsRow(int gridRow)
{
    // Every build makes a new label and field below its last output row. On a
    // rebuild the previous pair stays in the grid where it was, no longer updated.
    if (!m_pFeatureManager->GetIsFeatureAvailable("SyncOutLevels", "LineOutLevels"))
        return;

    m_pLabelSyncLevels =
        new QLabel(m_pFeatureManager->GetIsFeatureAvailable("LineOutLevels") ? tr("LineOutLevels") : tr("SyncLevels:"));
    ui->grid_Output->addWidget(m_pLabelSyncLevels, gridRow, 0, Qt::Alignment());

    m_pEditSyncLevels = new QLineEdit;
    m_pEditSyncLevels->setReadOnly(true);
    m_pEditSyncLevels->setMaximumWidth(65);
    m_pEditSyncLevels->setStyleSheet("QLineEdit {background-color: gray;}");
    m_pEditSyncLevels->setAlignment(Qt::AlignCenter);
    ui->grid_Output->addWidget(m_pEditSyncLevels, gridRow, 3, Qt::AlignCenter);
}

// ---------------------------------------------------------------- which boxes can be edited

bool IOTriggerWidget::carriesPlainState(const OutputRow& row, bool lineFamily) const
{
    return row.m_pComboSource->currentText() == (lineFamily ? "Direct" : "GPO");
}

bool IOTriggerWidget::statusWritable(bool lineFamily) const
{
    if (lineFamily)
        return m_pFeatureManager->GetIsWritable("LineStatus");
    return m_pFeatureManager->GetIsWritable("LineOutLevels", "SyncOutLevels");
}

void IOTriggerWidget::enableStatusBox(const OutputRow& row, bool lineFamily) const
{
    row.m_pCBStatus->setEnabled(carriesPlainState(row, lineFamily) && statusWritable(lineFamily));
}

void IOTriggerWidget::enableUserValueBox(const OutputRow& row) const
{
    if (row.m_pCBUserValue)
        row.m_pCBUserValue->setEnabled(row.m_pComboSource->currentText().contains("UserOutput"));
}

// ---------------------------------------------------------------- refresh and edits

void IOTriggerWidget::updateOutSource()
{
    const Selector selector = outputSelector();
    if (selector.found() && selector.isLineSelector())
    {
        walkSelector(selector, outputLines(),
                     {Restore::AtEnd, Restore::Always, "updateOutSource", "SetValue('LineSelector') = "},
                     [&](int i, bool selected)
                     {
                         const QSharedPointer<OutputRow>& row = m_OutputRows.at(i);
                         if (selected)
                             updateComboBox("LineSource", row->m_pComboSource.data(), true);
                         enableStatusBox(*row, true);
                         enableUserValueBox(*row);
                         return true;
                     });
    }
    else if (selector.found())
    {
        const QString sourceFeature =
            m_pFeatureManager->GetIsFeatureAvailable("LineOutSource") ? "LineOutSource" : "SyncOutSource";
        walkSelector(
            selector, outputLines(),
            {Restore::AtEnd, Restore::Always, "updateOutSource", "SetValue('LineOutSelector', 'SyncOutSelector') = "},
            [&](int i, bool selected)
            {
                const QSharedPointer<OutputRow>& row = m_OutputRows.at(i);
                if (selected)
                    updateComboBox(sourceFeature, row->m_pComboSource.data(), true);
                enableStatusBox(*row, false);
                return true;
            });
    }

    if (m_bUserOutputSelector)
        updateUserOutSelector();
}

void IOTriggerWidget::updateOutInvert()
{
    const Selector selector = outputSelector();
    if (!selector.found())
        return;

    if (selector.isLineSelector())
    {
        walkSelector(selector, outputLines(),
                     {Restore::AtEnd, Restore::Always, "updateOutInvert", "SetValue('LineSelector') = "},
                     [&](int i, bool selected)
                     {
                         if (!selected)
                             return true;
                         const QSharedPointer<OutputRow>& row = m_OutputRows.at(i);
                         row->m_pCBInvert->setChecked(m_pFeatureManager->GetValue("LineInverter") != 0.0);
                         row->m_pCBInvert->setEnabled(m_pFeatureManager->GetIsWritable("LineInverter"));
                         return true;
                     });
        return;
    }

    // The sync-out family puts its selector back after every row.
    walkSelector(selector, outputLines(),
                 {Restore::AfterEachLine, Restore::Always, "updateOutInvert",
                  "SetValue('LineOutSelector', 'SyncOutSelector') = "},
                 [&](int i, bool selected)
                 {
                     const QString polarity =
                         selected ? m_pFeatureManager->GetStringValue("LineOutPolarity", "SyncOutPolarity") : QString();
                     if (!polarity.isEmpty())
                     {
                         const QSharedPointer<OutputRow>& row = m_OutputRows.at(i);
                         row->m_pCBInvert->setChecked(polarity == "Invert");
                         row->m_pCBInvert->setEnabled(
                             m_pFeatureManager->GetIsWritable("LineOutPolarity", "SyncOutPolarity"));
                     }
                     return true;
                 });
}

void IOTriggerWidget::updateOutStatus()
{
    // The sync-out family shows its line states through the level mask instead.
    const Selector selector = lineSelector();
    if (!selector.found())
        return;

    walkSelector(selector, outputLines(),
                 {Restore::AtEnd, Restore::Always, "updateOutStatus", "SetValue('LineSelector') = "},
                 [&](int i, bool selected)
                 {
                     if (!selected)
                         return true;
                     const QSharedPointer<OutputRow>& row = m_OutputRows.at(i);
                     row->m_pCBStatus->setChecked(m_pFeatureManager->GetValue("LineStatus") != 0.0);
                     enableStatusBox(*row, true);
                     return true;
                 });
}

void IOTriggerWidget::OnComboOutSourceChanged(QString text)
{
    SetConnectionsDisabled(true);
    const Selector selector = outputSelector();

    // The sending row is not known: every row showing the chosen text is written.
    if (selector.found() && selector.isLineSelector())
    {
        walkSelector(selector, outputLines(),
                     {Restore::AtEnd, Restore::OnFailure, "OnComboOutSourceChanged",
                      "Error: setValue(LineSelector) returned ''"},
                     [&](int i, bool selected)
                     {
                         const QSharedPointer<OutputRow>& row = m_OutputRows.at(i);
                         const QString source = row->m_pComboSource->currentText();
                         if (selected && source == text)
                             OnComboChanged("LineSource", QString::fromLatin1(source.toLatin1()));
                         enableStatusBox(*row, true);
                         enableUserValueBox(*row);
                         return true;
                     });
    }
    else if (selector.found())
    {
        // Here a failed selector write does not skip the row.
        walkSelector(selector, outputLines(),
                     {Restore::AtEnd, Restore::OnFailure, "OnComboOutSourceChanged",
                      "Error: setValue(LineOutSelector) returned ''"},
                     [&](int i, bool)
                     {
                         const QSharedPointer<OutputRow>& row = m_OutputRows.at(i);
                         const QString source = row->m_pComboSource->currentText();
                         if (source == text)
                             m_pFeatureManager->SetValue("LineOutSource", "SyncOutSource", source);
                         enableStatusBox(*row, false);
                         return true;
                     });
    }

    if (m_bUserOutputSelector)
    {
        updateUserOutSelector();
        updateUserOutValue();
    }
    SetConnectionsDisabled(false);
}

void IOTriggerWidget::OnCBOutInvertChanged(int)
{
    SetConnectionsDisabled(true);
    UnRegisterFeatureObserver(false);
    const Selector selector = outputSelector();

    // Every row's box is written, not only the one that changed.
    if (selector.found() && selector.isLineSelector())
    {
        walkSelector(selector, outputLines(),
                     {Restore::AtEnd, Restore::OnFailure, "OnCBOutInvertChanged", "LineSelector retValue == ''"},
                     [&](int i, bool selected)
                     {
                         if (!selected)
                             return true;
                         const double written = m_pFeatureManager->SetValue(
                             "LineInverter", m_OutputRows.at(i)->m_pCBInvert->isChecked() ? 1.0 : 0.0);
                         if (numericResultText(written).isEmpty())
                             qDebug() << "OnCBOutInvertChanged"
                                      << "LineInverter retValue == ''";
                         return true;
                     });
        updateOutStatus();
    }
    else if (selector.found())
    {
        walkSelector(selector, outputLines(),
                     {Restore::AtEnd, Restore::OnFailure, "OnCBOutInvertChanged", "LineOutSelector retValue == ''"},
                     [&](int i, bool selected)
                     {
                         if (!selected)
                             return true;
                         const QString polarity = m_OutputRows.at(i)->m_pCBInvert->isChecked() ? "Invert" : "Normal";
                         if (m_pFeatureManager->SetValue("LineOutPolarity", "SyncOutPolarity", polarity).isEmpty())
                             qDebug() << "OnCBOutInvertChanged"
                                      << "LineOutPolarity retValue == ''";
                         return true;
                     });
    }

    RegisterFeatureObserver(false);
    SetConnectionsDisabled(false);
}

void IOTriggerWidget::OnCBOutStatusChanged(int)
{
    SetConnectionsDisabled(true);
    UnRegisterFeatureObserver(false);

    // Only "LineSelector" decides the family here.
    const Selector selector = lineSelector();
    if (selector.found())
    {
        walkSelector(selector, outputLines(),
                     {Restore::AtEnd, Restore::OnFailure, "OnCBOutStatusChanged", "Error: LineSelector retValue == ''"},
                     [&](int i, bool selected)
                     {
                         if (!selected)
                             return true;
                         const double written = m_pFeatureManager->SetValue(
                             "LineStatus", m_OutputRows.at(i)->m_pCBStatus->isChecked() ? 1.0 : 0.0);
                         if (numericResultText(written).isEmpty())
                             qDebug() << "OnCBOutStatusChanged"
                                      << "Error: SetValue(LineStatus) returned '' ";
                         return true;
                     });
    }
    else if (m_pFeatureManager->GetIsFeatureAvailable("LineOutLevels", "SyncOutLevels"))
    {
        // One bit per row; the mask has 32 bits, so row 32 shares bit 0 with row 0.
        quint32 mask = 0;
        for (int i = 0; i < m_OutputRows.size(); ++i)
        {
            if (m_OutputRows.at(i)->m_pCBStatus->isChecked())
                mask |= quint32(1) << (i % 32);
        }
        if (m_pFeatureManager->SetValue("LineOutLevels", "SyncOutLevels", static_cast<double>(mask)) < 0)
            qDebug() << "OnCBOutStatusChanged"
                     << "Error: SetValue(LineOutLevels) retValue == ''";
        if (m_pEditSyncLevels)
            m_pEditSyncLevels->setText(QString::number(mask));
    }

    RegisterFeatureObserver(false);
    SetConnectionsDisabled(false);
}
