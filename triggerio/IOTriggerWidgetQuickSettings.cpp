#include "IOTriggerWidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QSpinBox>

// The presets never write to the camera themselves: they set the tab's controls
// with their signals live, and the edit slots write. Each camera family has its
// own variant with its own value names; a value a camera does not offer is
// simply not selected.
//
// While a preset waits, the host may delete the tab (its camera window closed):
// every wait tells whether the tab is still there, and the preset returns at
// once, without touching a member, when it is not.

namespace
{

// Lets queued notifications, timer ticks and repaints run between two writes;
// false when the tab was deleted meanwhile.
bool processEvents(const QPointer<IOTriggerWidget>& tab)
{
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    return !tab.isNull();
}

// Gives the camera time between dependent writes while the interface stays
// alive; false when the tab was deleted meanwhile.
bool wait200ms(const QPointer<IOTriggerWidget>& tab)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() <= 199)
    {
        if (!processEvents(tab))
            return false;
    }
    return true;
}

// Switches the trigger off for every trigger selector the camera offers; the
// item count is read anew on every pass. False when the tab was deleted.
bool switchAllTriggersOff(const QPointer<IOTriggerWidget>& tab, QComboBox* selector, QComboBox* mode)
{
    for (int i = 0; i < selector->count(); ++i)
    {
        tab->SetComboBoxValue(selector->itemText(i), selector);
        if (!processEvents(tab))
            return false;
        tab->SetComboBoxValue("Off", mode);
    }
    return true;
}

} // namespace

void IOTriggerWidget::OnEdgeMode()
{
    const QPointer<IOTriggerWidget> alive(this);
    SetQuickButtonsDisabled(true);
    UnRegisterFeatureObserver(false);

    if (m_pComboExposureMode && m_pComboInputLineSelector)
    {
        SetComboBoxValue("Timed", m_pComboExposureMode);
        updateTriggerSelector();
        SetComboBoxValue("ExposureStart", m_pComboTriggerSelector);
        if (!wait200ms(alive))
            return;
        SetComboBoxValue("Off", m_pComboTriggerMode);
        SetComboBoxValue("ExposureStart", m_pComboTriggerSelector);
        SetComboBoxValue("InputLines", m_pComboTriggerSource);
        SetComboBoxValue("FallingEdge", m_pComboTriggerActivation);
        SetComboBoxValue("Line0", m_pComboInputLineSelector);
        m_pCBLineRouting->setCheckState(Qt::Checked);
        SetComboBoxValue("Continuous", m_pComboAcquisitionMode);
        SetComboBoxValue("On", m_pComboTriggerMode);
    }
    if (m_pComboExposureAuto)
    {
        if (!switchAllTriggersOff(alive, m_pComboTriggerSelector, m_pComboTriggerMode))
            return;
        SetComboBoxValue("FrameStart", m_pComboTriggerSelector);
        SetComboBoxValue("FallingEdge", m_pComboTriggerActivation);
        SetComboBoxValue("Line1", m_pComboTriggerSource);
        SetComboBoxValue("Continuous", m_pComboAcquisitionMode);
        SetComboBoxValue("Off", m_pComboExposureAuto);
        if (!processEvents(alive))
            return;
        SetComboBoxValue("Line1", m_pComboTriggerSource);
        SetComboBoxValue("On", m_pComboTriggerMode);
    }
    if (m_pComboExposureMode && !m_pComboInputLineSelector)
    {
        SetComboBoxValue("Timed", m_pComboExposureMode);
        SetComboBoxValue("AcquisitionStart", m_pComboTriggerSelector);
        if (!processEvents(alive))
            return;
        SetComboBoxValue("Off", m_pComboTriggerMode);
        SetComboBoxValue("FrameStart", m_pComboTriggerSelector);
        if (!processEvents(alive))
            return;
        SetComboBoxValue("Off", m_pComboTriggerMode);
        SetComboBoxValue(GetFirstInput(), m_pComboTriggerSource);
        SetComboBoxValue("FallingEdge", m_pComboTriggerActivation);
        SetComboBoxValue("Continuous", m_pComboAcquisitionMode);
        SetComboBoxValue("On", m_pComboTriggerMode);
    }

    SetQuickButtonsDisabled(!m_pComboAcquisitionMode->isEnabled());
    RegisterFeatureObserver(false);
}

void IOTriggerWidget::OnLevelMode()
{
    const QPointer<IOTriggerWidget> alive(this);
    // The observer stays registered: the preset's own writes come back as
    // changes and refresh the tab on the next tick.
    SetQuickButtonsDisabled(true);

    if (m_pComboExposureMode && m_pComboInputLineSelector)
    {
        // The trigger is switched on early and not again at the end.
        SetComboBoxValue("InputLines", m_pComboTriggerSource);
        SetComboBoxValue("On", m_pComboTriggerMode);
        SetComboBoxValue("TriggerWidth", m_pComboExposureMode);
        updateTriggerSelector();
        SetComboBoxValue("ExposureActive", m_pComboTriggerSelector);
        SetComboBoxValue("InputLines", m_pComboTriggerSource);
        SetComboBoxValue("LowLevel", m_pComboTriggerActivation);
        m_pCBLineRouting->setCheckState(Qt::Checked);
        SetComboBoxValue("Line0", m_pComboInputLineSelector);
        SetComboBoxValue("Continuous", m_pComboAcquisitionMode);
    }
    if (m_pComboExposureAuto)
    {
        if (!switchAllTriggersOff(alive, m_pComboTriggerSelector, m_pComboTriggerMode))
            return;
        SetComboBoxValue("FrameStart", m_pComboTriggerSelector);
        SetComboBoxValue("Line1", m_pComboTriggerSource);
        SetComboBoxValue("Continuous", m_pComboAcquisitionMode);
        SetComboBoxValue("other", m_pComboExposureAuto);
        if (!processEvents(alive))
            return;
        SetComboBoxValue("Line1", m_pComboTriggerSource);
        SetComboBoxValue("LevelLow", m_pComboTriggerActivation);
        SetComboBoxValue("On", m_pComboTriggerMode);
    }
    if (m_pComboExposureMode && !m_pComboInputLineSelector)
    {
        SetComboBoxValue("TriggerWidth", m_pComboExposureMode);
        SetComboBoxValue("AcquisitionStart", m_pComboTriggerSelector);
        if (!processEvents(alive))
            return;
        SetComboBoxValue("Off", m_pComboTriggerMode);
        SetComboBoxValue("FrameStart", m_pComboTriggerSelector);
        if (!processEvents(alive))
            return;
        SetComboBoxValue("Off", m_pComboTriggerMode);
        SetComboBoxValue(GetFirstInput(), m_pComboTriggerSource);
        // This family takes an edge activation for the level preset too.
        SetComboBoxValue("FallingEdge", m_pComboTriggerActivation);
        SetComboBoxValue("Continuous", m_pComboAcquisitionMode);
        SetComboBoxValue("On", m_pComboTriggerMode);
    }

    SetQuickButtonsDisabled(!m_pComboAcquisitionMode->isEnabled());
}

void IOTriggerWidget::OnBulkMode()
{
    const QPointer<IOTriggerWidget> alive(this);
    UnRegisterFeatureObserver(false);
    SetQuickButtonsDisabled(true);

    if (m_pComboExposureMode && m_pComboInputLineSelector)
    {
        // Coming from level triggering, the edge configuration is set up first.
        if (m_pComboExposureMode->currentText().contains("TriggerWidth"))
        {
            OnEdgeMode();
            if (!alive)
                return;
        }
        SetComboBoxValue("Timed", m_pComboExposureMode);
        updateTriggerSelector();
        SetComboBoxValue("ExposureStart", m_pComboTriggerSelector);
        if (!wait200ms(alive))
            return;
        SetComboBoxValue("Off", m_pComboTriggerMode);
        SetComboBoxValue("InputLines", m_pComboTriggerSource);
        SetComboBoxValue("FallinEdge", m_pComboTriggerActivation);
        SetComboBoxValue("AcquisitionStart", m_pComboTriggerSelector);
        m_pCBLineRouting->setCheckState(Qt::Checked);
        SetComboBoxValue("Line0", m_pComboInputLineSelector);
        m_pSpinAcquisitionFrameCount->setValue(10);
        SetComboBoxValue("MultiFrame", m_pComboAcquisitionMode);
        m_pCBLineRouting->setCheckState(Qt::Checked);
        SetComboBoxValue("On", m_pComboTriggerMode);
    }
    if (m_pComboExposureAuto)
    {
        if (!switchAllTriggersOff(alive, m_pComboTriggerSelector, m_pComboTriggerMode))
            return;
        SetComboBoxValue("AcquisitionStart", m_pComboTriggerSelector);
        SetComboBoxValue("Line1", m_pComboTriggerSource);
        SetComboBoxValue("MultiFrame", m_pComboAcquisitionMode);
        SetComboBoxValue("Off", m_pComboExposureAuto);
        m_pSpinAcquisitionFrameCount->setValue(10);
        if (!processEvents(alive))
            return;
        SetComboBoxValue("Line1", m_pComboTriggerSource);
        SetComboBoxValue("FallinEdge", m_pComboTriggerActivation);
        SetComboBoxValue("On", m_pComboTriggerMode);
    }
    if (m_pComboExposureMode && !m_pComboInputLineSelector)
    {
        SetComboBoxValue("Timed", m_pComboExposureMode);
        SetComboBoxValue("FrameStart", m_pComboTriggerSelector);
        if (!processEvents(alive))
            return;
        SetComboBoxValue("Off", m_pComboTriggerMode);
        SetComboBoxValue("AcquisitionStart", m_pComboTriggerSelector);
        if (!wait200ms(alive))
            return;
        SetComboBoxValue("Off", m_pComboTriggerMode);
        SetComboBoxValue(GetFirstInput(), m_pComboTriggerSource);
        SetComboBoxValue("FallingEdge", m_pComboTriggerActivation);
        SetComboBoxValue("MultiFrame", m_pComboAcquisitionMode);
        m_pSpinAcquisitionFrameCount->setValue(10);
        SetComboBoxValue("On", m_pComboTriggerMode);
    }

    SetQuickButtonsDisabled(!m_pComboAcquisitionMode->isEnabled());
    RegisterFeatureObserver(false);
}
