#include "IOTriggerWidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QSpinBox>

#include <vector>

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

// What a preset step does.
enum Action
{
    Select,                 // select the step's value (or the preset's own) in the step's combo box
    SelectFirstInput,       // select the first input line in the step's combo box
    CheckRouting,           // check the line routing box
    FrameCount10,           // set the frame count spin box to 10
    RefreshTriggerSelector, // updateTriggerSelector()
    ProcessEvents,          // one pass of the event loop
    Wait200ms,              // 200 ms of event processing
    AllTriggersOff,         // trigger mode "Off" for every trigger selector
    EdgeFirstFromLevel      // the whole Edge preset first, when the exposure mode shows "TriggerWidth"
};

// The combo boxes a step can work on.
enum Combo
{
    NoCombo,
    ExposureMode,
    ExposureAuto,
    TriggerSelector,
    TriggerMode,
    TriggerSource,
    Activation,
    AcquisitionMode,
    InputLine
};

} // namespace

// One step of a preset variant.
struct PresetStep
{
    Action action;
    Combo combo;
    const char* value; // null: the value the preset passes in
};

namespace
{

using Steps = std::vector<PresetStep>;

PresetStep pick(Combo combo, const char* value)
{
    return {Select, combo, value};
}

PresetStep step(Action action, Combo combo = NoCombo)
{
    return {action, combo, nullptr};
}

// Where a step takes the preset's own value.
const char* const presetValue = nullptr;

// Exposure mode and line routing.
const Steps edgeRouting{
    pick(ExposureMode, "Timed"),
    step(RefreshTriggerSelector),
    pick(TriggerSelector, "ExposureStart"),
    step(Wait200ms),
    pick(TriggerMode, "Off"),
    pick(TriggerSelector, "ExposureStart"),
    pick(TriggerSource, "InputLines"),
    pick(Activation, "FallingEdge"),
    pick(InputLine, "Line0"),
    step(CheckRouting),
    pick(AcquisitionMode, "Continuous"),
    pick(TriggerMode, "On"),
};

// The trigger is switched on early and not again at the end.
const Steps levelRouting{
    pick(TriggerSource, "InputLines"),
    pick(TriggerMode, "On"),
    pick(ExposureMode, "TriggerWidth"),
    step(RefreshTriggerSelector),
    pick(TriggerSelector, "ExposureActive"),
    pick(TriggerSource, "InputLines"),
    pick(Activation, "LowLevel"),
    step(CheckRouting),
    pick(InputLine, "Line0"),
    pick(AcquisitionMode, "Continuous"),
};

// "FallinEdge" is this family's name of the edge activation for bulk triggering.
const Steps bulkRouting{
    step(EdgeFirstFromLevel),
    pick(ExposureMode, "Timed"),
    step(RefreshTriggerSelector),
    pick(TriggerSelector, "ExposureStart"),
    step(Wait200ms),
    pick(TriggerMode, "Off"),
    pick(TriggerSource, "InputLines"),
    pick(Activation, "FallinEdge"),
    pick(TriggerSelector, "AcquisitionStart"),
    step(CheckRouting),
    pick(InputLine, "Line0"),
    step(FrameCount10),
    pick(AcquisitionMode, "MultiFrame"),
    step(CheckRouting),
    pick(TriggerMode, "On"),
};

// Exposure auto.
const Steps edgeExposureAuto{
    step(AllTriggersOff),         pick(TriggerSelector, "FrameStart"), pick(Activation, "FallingEdge"),
    pick(TriggerSource, "Line1"), pick(AcquisitionMode, "Continuous"), pick(ExposureAuto, "Off"),
    step(ProcessEvents),          pick(TriggerSource, "Line1"),        pick(TriggerMode, "On"),
};

const Steps levelExposureAuto{
    step(AllTriggersOff),         pick(TriggerSelector, "FrameStart"),
    pick(TriggerSource, "Line1"), pick(AcquisitionMode, "Continuous"),
    pick(ExposureAuto, "other"),  step(ProcessEvents),
    pick(TriggerSource, "Line1"), pick(Activation, "LevelLow"),
    pick(TriggerMode, "On"),
};

const Steps bulkExposureAuto{
    step(AllTriggersOff),
    pick(TriggerSelector, "AcquisitionStart"),
    pick(TriggerSource, "Line1"),
    pick(AcquisitionMode, "MultiFrame"),
    pick(ExposureAuto, "Off"),
    step(FrameCount10),
    step(ProcessEvents),
    pick(TriggerSource, "Line1"),
    pick(Activation, "FallinEdge"),
    pick(TriggerMode, "On"),
};

// Exposure mode without line routing. Edge and Level differ only in the
// exposure mode; this family takes an edge activation for level triggering too.
const Steps edgeOrLevelExposureMode{
    pick(ExposureMode, presetValue),
    pick(TriggerSelector, "AcquisitionStart"),
    step(ProcessEvents),
    pick(TriggerMode, "Off"),
    pick(TriggerSelector, "FrameStart"),
    step(ProcessEvents),
    pick(TriggerMode, "Off"),
    step(SelectFirstInput, TriggerSource),
    pick(Activation, "FallingEdge"),
    pick(AcquisitionMode, "Continuous"),
    pick(TriggerMode, "On"),
};

const Steps bulkExposureMode{
    pick(ExposureMode, "Timed"),
    pick(TriggerSelector, "FrameStart"),
    step(ProcessEvents),
    pick(TriggerMode, "Off"),
    pick(TriggerSelector, "AcquisitionStart"),
    step(Wait200ms),
    pick(TriggerMode, "Off"),
    step(SelectFirstInput, TriggerSource),
    pick(Activation, "FallingEdge"),
    pick(AcquisitionMode, "MultiFrame"),
    step(FrameCount10),
    pick(TriggerMode, "On"),
};

} // namespace

// The variants of one preset, one per camera family; the optional controls the
// camera got pick at most one of them.
struct QuickSetting
{
    const Steps& routing;      // exposure mode and line routing
    const Steps& exposureAuto; // exposure auto
    const Steps& exposureMode; // exposure mode without line routing
    const char* value;         // the preset's own value, for the steps that leave it open
};

namespace
{

const QuickSetting edge{edgeRouting, edgeExposureAuto, edgeOrLevelExposureMode, "Timed"};
const QuickSetting level{levelRouting, levelExposureAuto, edgeOrLevelExposureMode, "TriggerWidth"};
const QuickSetting bulk{bulkRouting, bulkExposureAuto, bulkExposureMode, nullptr};

} // namespace

bool IOTriggerWidget::runQuickSetting(const QuickSetting& setting)
{
    auto run = [&](const Steps& steps)
    {
        for (const PresetStep& presetStep : steps)
        {
            if (!runPresetStep(presetStep, setting.value))
                return false;
        }
        return true;
    };
    if (m_pComboExposureMode && m_pComboInputLineSelector && !run(setting.routing))
        return false;
    if (m_pComboExposureAuto && !run(setting.exposureAuto))
        return false;
    if (m_pComboExposureMode && !m_pComboInputLineSelector && !run(setting.exposureMode))
        return false;
    return true;
}

bool IOTriggerWidget::runPresetStep(const PresetStep& presetStep, const char* value)
{
    // In the order of Combo.
    static QComboBox* IOTriggerWidget::*const combos[] = {
        nullptr,
        &IOTriggerWidget::m_pComboExposureMode,
        &IOTriggerWidget::m_pComboExposureAuto,
        &IOTriggerWidget::m_pComboTriggerSelector,
        &IOTriggerWidget::m_pComboTriggerMode,
        &IOTriggerWidget::m_pComboTriggerSource,
        &IOTriggerWidget::m_pComboTriggerActivation,
        &IOTriggerWidget::m_pComboAcquisitionMode,
        &IOTriggerWidget::m_pComboInputLineSelector,
    };
    const QPointer<IOTriggerWidget> alive(this);
    switch (presetStep.action)
    {
    case Select:
        SetComboBoxValue(presetStep.value ? presetStep.value : value, this->*combos[presetStep.combo]);
        return true;
    case SelectFirstInput:
        SetComboBoxValue(GetFirstInput(), this->*combos[presetStep.combo]);
        return true;
    case CheckRouting:
        m_pCBLineRouting->setCheckState(Qt::Checked);
        return true;
    case FrameCount10:
        m_pSpinAcquisitionFrameCount->setValue(10);
        return true;
    case RefreshTriggerSelector:
        updateTriggerSelector();
        return true;
    case ProcessEvents:
        return processEvents(alive);
    case Wait200ms:
        return wait200ms(alive);
    case AllTriggersOff:
        return switchAllTriggersOff(alive, m_pComboTriggerSelector, m_pComboTriggerMode);
    case EdgeFirstFromLevel:
        // Coming from level triggering, the edge configuration is set up first.
        if (m_pComboExposureMode->currentText().contains("TriggerWidth"))
            OnEdgeMode();
        return !alive.isNull();
    }
    return true;
}

void IOTriggerWidget::OnEdgeMode()
{
    SetQuickButtonsDisabled(true);
    UnRegisterFeatureObserver(false);
    if (!runQuickSetting(edge))
        return;
    SetQuickButtonsDisabled(!m_pComboAcquisitionMode->isEnabled());
    RegisterFeatureObserver(false);
}

void IOTriggerWidget::OnLevelMode()
{
    // The observer stays registered: the preset's own writes come back as
    // changes and refresh the tab on the next tick.
    SetQuickButtonsDisabled(true);
    if (!runQuickSetting(level))
        return;
    SetQuickButtonsDisabled(!m_pComboAcquisitionMode->isEnabled());
}

void IOTriggerWidget::OnBulkMode()
{
    UnRegisterFeatureObserver(false);
    SetQuickButtonsDisabled(true);
    if (!runQuickSetting(bulk))
        return;
    SetQuickButtonsDisabled(!m_pComboAcquisitionMode->isEnabled());
    RegisterFeatureObserver(false);
}
