#include "IOTriggerWidget.h"
#include "ui_IOTriggerWidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QSpinBox>

namespace
{

void block(QObject* object, bool disabled)
{
    if (object)
        object->blockSignals(disabled);
}

void enable(QWidget* widget, bool enabled)
{
    if (widget)
        widget->setEnabled(enabled);
}

} // namespace

void IOTriggerWidget::camIsStreaming(bool streaming)
{
    // Only cameras with a sync levels feature are locked; a camera with output
    // lines alone keeps every control usable while it streams.
    if (!m_pFeatureManager->GetIsFeatureAvailable("SyncOutLevels", "LineOutLevels"))
        return;

    SetQuickButtonsDisabled(streaming);
    enable(m_pComboTriggerSelector, !streaming);
    enable(m_pComboTriggerSource, !streaming);
    enable(m_pComboExposureAuto, !streaming);
    enable(m_pComboTriggerActivation, !streaming);
    enable(m_pComboTriggerMode, !streaming);
    enable(m_pComboAcquisitionMode, !streaming);
    enable(m_pSpinAcquisitionFrameCount, !streaming);
    ui->l_notAcquireHint->setVisible(streaming);
}

void IOTriggerWidget::SetQuickButtonsDisabled(bool disabled)
{
    enable(m_pButtonEdge, !disabled);

    // The Level preset needs the exposure mode "TriggerWidth".
    bool triggerWidth = true;
    if (m_pComboExposureMode)
    {
        triggerWidth = false;
        for (int i = 0; i < m_pComboExposureMode->count() && !triggerWidth; ++i)
            triggerWidth = m_pComboExposureMode->itemText(i) == "TriggerWidth";
    }
    enable(m_pButtonLevel, !disabled && triggerWidth);

    enable(m_pButtonBulk, !disabled);
}

void IOTriggerWidget::SetConnectionsDisabled(bool disabled)
{
    block(m_pComboTriggerSource, disabled);
    block(m_pComboTriggerActivation, disabled);
    block(m_pComboTriggerSelector, disabled);
    block(m_pComboTriggerMode, disabled);
    block(m_pComboAcquisitionMode, disabled);
    block(m_pSpinAcquisitionFrameCount, disabled);
    block(m_pComboInputLineSelector, disabled);
    block(m_pCBLineRouting, disabled);
    block(m_pComboExposureAuto, disabled);
    block(m_pComboExposureMode, disabled);
    for (const QSharedPointer<OutputRow>& row : qAsConst(m_OutputRows))
    {
        block(row->m_pComboSource.data(), disabled);
        block(row->m_pCBStatus.data(), disabled);
        block(row->m_pCBInvert.data(), disabled);
        if (row->m_pComboUserOutSelector)
        {
            block(row->m_pCBUserValue.data(), disabled);
            block(row->m_pComboUserOutSelector.data(), disabled);
        }
    }
}
