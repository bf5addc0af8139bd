#include "IOTriggerWidget.h"
#include "ui_IOTriggerWidget.h"

#include <QColor>
#include <QComboBox>
#include <QDebug>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPalette>

int IOTriggerWidget::GetOptionalOutputs(QStringList* outputs)
{
    int count = 0;
    const QStringList lines = m_pFeatureManager->GetAvailableEnumEntries("LineSelector");
    const Selector selector = lineSelector();

    // A line is selectable when its "LineMode" is writable and offers "Output".
    walkSelector(selector, lines,
                 {Restore::AfterEachLine, Restore::OnFailure, "GetOptionalOutputs",
                  "Error: SetValue(LineSelector) retValue == ''"},
                 [&](int i, bool selected)
                 {
                     if (!selected)
                         return true;
                     const QStringList modes = m_pFeatureManager->GetAvailableEnumEntries("LineMode");
                     for (const QString& mode : modes)
                     {
                         if (m_pFeatureManager->GetIsWritable("LineMode") && mode == "Output")
                         {
                             ++count;
                             outputs->append(lines.at(i));
                         }
                     }
                     return true;
                 });
    return count;
}

void IOTriggerWidget::createOptionalOutputs()
{
    QGridLayout* grid = ui->grid_SelectableOut;

    // An invisible, flat copy of the Output group's header, so that the columns
    // of both groups take the same widths.
    QString sourceText;
    if (m_pFeatureManager->GetIsFeatureAvailable("SynOutSource", "LineOutSource"))
        sourceText =
            m_pFeatureManager->GetIsFeatureAvailable("LineOutSource") ? tr("LineOutSource:") : tr("SyncOutSource:");
    else
        sourceText = tr("LineSource:");
    QLabel* source = new QLabel(sourceText);
    QLabel* invert =
        new QLabel(m_pFeatureManager->GetIsFeatureAvailable("SynOutPolarity", "LineOutPolarity") ? tr("Polarity:")
                                                                                                 : tr("Invert:"));
    QLabel* status = new QLabel(tr("Status:"));
    QLabel* userOutSelector = new QLabel(tr("UserOutSel.:"));
    QLabel* userValue = new QLabel(tr("User Value:"));

    const QColor background = source->palette().color(QPalette::Window);
    const QString style = QString("QLabel { color : rgb( ") + QString::number(background.red()) + ", " +
                          QString::number(background.green()) + ", " + QString::number(background.blue()) + "); }";
    for (QLabel* label : {source, invert, status, userOutSelector, userValue})
    {
        label->setStyleSheet(style);
        label->setMaximumHeight(2);
    }
    grid->addWidget(source, 0, 1, Qt::AlignLeft);
    grid->addWidget(invert, 0, 2, Qt::AlignCenter);
    grid->addWidget(status, 0, 3, Qt::AlignCenter);
    grid->addWidget(userOutSelector, 0, 4, Qt::AlignLeft);
    grid->addWidget(userValue, 0, 5, Qt::AlignCenter);

    ui->gb_SelectOutput->setMinimumHeight(m_nOptionalOutputs * 55);
    ui->gb_SelectOutput->setMaximumHeight(m_nOptionalOutputs * 55);

    for (int i = 0; i < m_nOptionalOutputs; ++i)
    {
        grid->addWidget(new QLabel(m_OptionalOutputs.value(i) + ": "), i + 1, 0, Qt::AlignLeft);

        QComboBox* combo = new QComboBox;
        connect(combo, SIGNAL(currentIndexChanged(QString)), this, SLOT(OnComboOptionalOutChanged(QString)));
        m_OptionalOutCombos.insert(i, combo);
        grid->addWidget(combo, i + 1, 1, Qt::AlignLeft);
    }

    updateOptionalOut();
}

void IOTriggerWidget::updateOptionalOut()
{
    if (m_nOptionalOutputs <= 0)
        return;

    // These combos are not blocked: filling one reaches OnComboOptionalOutChanged,
    // which saves and restores the selector around its own writes.
    const Selector selector = lineSelector();
    QStringList lines;
    for (int i = 0; i < m_OptionalOutCombos.size(); ++i)
        lines << m_OptionalOutputs.value(i);
    walkSelector(selector, lines, {Restore::AtEnd, Restore::Always, "RetValue updateOpt. Out", nullptr},
                 [&](int i, bool selected)
                 {
                     if (selected)
                         updateComboBox("LineMode", m_OptionalOutCombos.at(i), false);
                     return true;
                 });

    updateUserOutSelector();
}

void IOTriggerWidget::OnComboOptionalOutChanged(QString text)
{
    if (m_nOptionalOutputs < 1)
        return;

    // The sending combo is not known: every line whose combo shows the text is written.
    const Selector selector = lineSelector();
    walkSelector(selector, m_OptionalOutputs,
                 {Restore::AtEnd, Restore::OnFailure, "OnComboOptionalOutChanged",
                  "Error: SetValue(LineSelector) retValue == ''"},
                 [&](int i, bool selected)
                 {
                     QComboBox* combo = m_OptionalOutCombos.value(i);
                     if (selected && combo && combo->currentText() == text)
                         OnComboChanged("LineMode", QString::fromLatin1(combo->currentText().toLatin1()));
                     return true;
                 });
}
