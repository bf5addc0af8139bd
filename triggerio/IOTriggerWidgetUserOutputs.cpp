#include "IOTriggerWidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDebug>
#include <QLineEdit>

#include <string>

void IOTriggerWidget::updateSyncLevels()
{
    // Bit i of the level mask is the state of output row i; a negative value
    // means the levels cannot be read.
    const qint64 levels = static_cast<qint64>(m_pFeatureManager->GetValue("LineOutLevels", "SyncOutLevels"));
    if (levels < 0)
        return;

    for (int i = 0; i < m_OutputRows.size(); ++i)
    {
        const QSharedPointer<OutputRow>& row = m_OutputRows.at(i);
        row->m_pCBStatus->setChecked(((levels >> (i % 64)) & 1) != 0);
        // Here the writability is asked for every row, before the source.
        row->m_pCBStatus->setEnabled(statusWritable(false) && carriesPlainState(*row, false));
    }
    if (m_pEditSyncLevels)
        m_pEditSyncLevels->setText(QString::number(levels));
}

void IOTriggerWidget::updateUserOutSelector()
{
    const QStringList entries = m_pFeatureManager->GetAvailableEnumEntries("UserOutputSelector");
    for (const QSharedPointer<OutputRow>& row : qAsConst(m_OutputRows))
    {
        if (!row->m_pComboUserOutSelector)
            continue;
        row->m_pComboUserOutSelector->clear();
        row->m_pComboUserOutSelector->addItems(entries);
    }

    // The selector only shows which user output drives the line; it is never edited.
    for (const QSharedPointer<OutputRow>& row : qAsConst(m_OutputRows))
    {
        QComboBox* userOut = row->m_pComboUserOutSelector.data();
        if (!userOut)
            continue;
        const QString source = row->m_pComboSource->currentText();
        if (source.contains("UserOutput"))
        {
            for (int k = 0; k < userOut->count(); ++k)
            {
                if (userOut->itemText(k) == source)
                {
                    userOut->setCurrentIndex(k);
                    userOut->setEnabled(false);
                }
            }
        }
        else
        {
            userOut->setCurrentIndex(-1);
            userOut->setEnabled(false);
        }
    }
}

void IOTriggerWidget::updateUserOutValue()
{
    const Selector selector = userOutputSelector();
    // Only the rows driven by a user output are visited.
    QVector<QCheckBox*> valueBoxes;
    QStringList userOuts;
    for (const QSharedPointer<OutputRow>& row : qAsConst(m_OutputRows))
    {
        const QString userOut = row->m_pComboUserOutSelector ? row->m_pComboUserOutSelector->currentText() : QString();
        if (!userOut.contains("UserOutput"))
            continue;
        valueBoxes << row->m_pCBUserValue.data();
        userOuts << userOut;
    }
    walkSelector(selector, userOuts,
                 {Restore::AtEnd, Restore::OnFailure, "updateUserOutValue",
                  "Error: SetValue(UserOutputSelector) retValue == ''"},
                 [&](int i, bool selected)
                 {
                     if (selected)
                         valueBoxes.at(i)->setChecked(m_pFeatureManager->GetValue("UserOutputValue") != 0.0);
                     return true;
                 });

    for (const QSharedPointer<OutputRow>& row : qAsConst(m_OutputRows))
        enableUserValueBox(*row);
}

void IOTriggerWidget::SetOnCBOutUserValueChanged(int row, int state)
{
    if (row < 0 || row >= m_OutputRows.size())
        return;
    QComboBox* userOut = m_OutputRows.at(row)->m_pComboUserOutSelector.data();
    if (!userOut)
        return;

    const Selector selector = userOutputSelector();
    const std::string bound = userOut->currentText().toStdString();
    bool failed = false;
    // The restore's own result is not looked at: the log line below tells about
    // the selector write (or the value write) instead.
    walkSelector(selector, {QString::fromStdString(bound)},
                 {Restore::AtEnd, Restore::Never, "SetOnCBOutUserValueChanged", nullptr},
                 [&](int, bool selected)
                 {
                     failed = !selected;
                     if (selected)
                     {
                         // The check box state goes out as it is: 2 for checked, 0 for unchecked.
                         const double written =
                             m_pFeatureManager->SetValue("UserOutputValue", static_cast<double>(state));
                         failed = numericResultText(written).isEmpty();
                         if (failed)
                             qDebug() << "SetOnCBOutUserValueChanged"
                                      << "Error: SetValue(UserOutputValue) retValue == ''";
                     }
                     return true;
                 });
    if (failed)
        qDebug() << "SetOnCBOutUserValueChanged"
                 << "Error: SetValue(UserOutputSelector) retValue == ''";
}

void IOTriggerWidget::OnCBOutUserValueChanged(int row, int state)
{
    SetConnectionsDisabled(true);
    UnRegisterFeatureObserver(false);

    SetOnCBOutUserValueChanged(row, state);

    // Lines bound to the same user output always show the same value.
    QComboBox* userOut =
        row >= 0 && row < m_OutputRows.size() ? m_OutputRows.at(row)->m_pComboUserOutSelector.data() : nullptr;
    if (userOut)
    {
        for (int j = 0; j < m_OutputRows.size(); ++j)
        {
            const QSharedPointer<OutputRow>& other = m_OutputRows.at(j);
            if (j == row || !other->m_pComboUserOutSelector ||
                other->m_pComboUserOutSelector->currentText() != userOut->currentText())
                continue;
            SetOnCBOutUserValueChanged(j, state);
            other->m_pCBUserValue->setChecked(state != 0);
        }
    }

    updateOutStatus();
    RegisterFeatureObserver(false);
    SetConnectionsDisabled(false);
}

void IOTriggerWidget::OnCBOutUserValueChanged1(int state)
{
    OnCBOutUserValueChanged(0, state);
}

void IOTriggerWidget::OnCBOutUserValueChanged2(int state)
{
    OnCBOutUserValueChanged(1, state);
}

void IOTriggerWidget::OnCBOutUserValueChanged3(int state)
{
    OnCBOutUserValueChanged(2, state);
}

void IOTriggerWidget::OnCBOutUserValueChanged4(int state)
{
    OnCBOutUserValueChanged(3, state);
}

void IOTriggerWidget::OnCBOutUserValueChanged5(int state)
{
    OnCBOutUserValueChanged(4, state);
}
