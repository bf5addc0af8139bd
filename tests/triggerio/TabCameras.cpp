#include "TabCameras.h"

namespace TabCameras
{

namespace
{

using TestCam::TestCamera;

void addTrigger(TestCamera& cam, const QStringList& selectors, const QStringList& sources,
                const QStringList& activations)
{
    cam.addEnum("TriggerSelector", selectors, selectors.first());
    cam.addEnum("TriggerMode", {"Off", "On"}, "Off").selectedBy("TriggerSelector");
    cam.addEnum("TriggerSource", sources, sources.first());
    cam.addEnum("TriggerActivation", activations, activations.first());
    cam.addEnum("AcquisitionMode", {"Continuous", "SingleFrame", "MultiFrame"}, "SingleFrame");
    cam.add("AcquisitionFrameCount", OrvFeatureDataInt, 1, 1, 255, 1);
    cam.add("TriggerSoftware", OrvFeatureDataCommand);
}

// Lines "Line0"... with their modes ("Output", "Input", or "Switch" for an input
// that can be made an output), each with source, inverter and status.
void addLines(TestCamera& cam, const QStringList& modes, bool userOutputs)
{
    QStringList lines;
    for (int i = 0; i < modes.size(); ++i)
        lines << QString("Line%1").arg(i);
    cam.addEnum("LineSelector", lines, lines.first());
    TestCam::FeatureSetup mode = cam.addEnum("LineMode", {"Input", "Output"}, "Input").writable(false);
    mode.selectedBy("LineSelector");
    for (int i = 0; i < modes.size(); ++i)
    {
        cam.set("LineMode", modes.at(i) == "Output" ? "Output" : "Input", lines.at(i));
        mode.writable(modes.at(i) == "Switch", lines.at(i));
    }
    cam.addEnum("LineSource", {"Off", "Direct", "UserOutput0", "UserOutput1", "ExposureActive"}, "Off")
        .selectedBy("LineSelector");
    cam.add("LineInverter", OrvFeatureDataBool, false).selectedBy("LineSelector");
    cam.add("LineStatus", OrvFeatureDataBool, false).selectedBy("LineSelector");
    if (userOutputs)
    {
        cam.addEnum("UserOutputSelector", {"UserOutput0", "UserOutput1", "UserOutput2"}, "UserOutput0");
        cam.add("UserOutputValue", OrvFeatureDataBool, false).selectedBy("UserOutputSelector");
    }
}

void addSyncOuts(TestCamera& cam, const QString& prefix, int outputs, const QString& source = "Exposing",
                 const QString& polarity = "Normal", bool writable = true)
{
    QStringList entries;
    for (int i = 1; i <= outputs; ++i)
        entries << QString("SyncOut%1").arg(i);
    cam.addEnum(prefix + "Selector", entries, entries.first());
    cam.addEnum(prefix + "Source", {"GPO", "Exposing", "Readout"}, source).selectedBy(prefix + "Selector");
    cam.addEnum(prefix + "Polarity", {"Normal", "Invert"}, polarity)
        .selectedBy(prefix + "Selector")
        .writable(writable)
        .displayName(writable ? prefix + "Polarity" : "Output inverter"); // read-only ones named otherwise too
    cam.add(prefix + "Levels", OrvFeatureDataInt, 0, 0, 1LL << 40).writable(writable);
}

} // namespace

void build(TestCamera& cam, const QString& name)
{
    if (name == "routing")
    {
        addTrigger(cam, {"AcquisitionStart", "ExposureStart", "ExposureActive"}, {"Software", "InputLines"},
                   {"RisingEdge", "FallingEdge", "FallinEdge", "LowLevel", "HighLevel"});
        cam.addEnum("ExposureMode", {"Timed", "TriggerWidth", "TriggerControlled"}, "Timed");
        addLines(cam, {"Input", "Output", "Switch", "Output"}, true);
        cam.addEnum("LineRouting", {"Off", "Trigger"}, "Off").selectedBy("LineSelector");
    }
    else if (name == "expmode")
    {
        addTrigger(cam, {"FrameStart", "AcquisitionStart"}, {"Software", "Line0", "Line1", "Line2"},
                   {"RisingEdge", "FallingEdge"});
        cam.addEnum("ExposureMode", {"Timed", "TriggerWidth"}, "Timed");
        addLines(cam, {"Output", "Input", "Input"}, false);
    }
    else if (name == "syncout")
    {
        addSyncOuts(cam, "SyncOut", 3);
        addTrigger(cam, {"FrameStart", "AcquisitionStart", "AcquisitionEnd"}, {"Freerun", "Line1", "Line2", "Software"},
                   {"RisingEdge", "FallingEdge", "AnyEdge", "LevelHigh", "LevelLow"});
        cam.addEnum("ExposureAuto", {"Off", "Once", "Continuous", "other"}, "Continuous");
        cam.addEnum("ExposureMode", {"Timed", "TriggerWidth"}, "Timed");
    }
    else if (name == "lineout" || name == "both")
    {
        addTrigger(cam, {"FrameStart", "AcquisitionStart"}, {"Software", "Line0", "Line1", "InputLines"},
                   {"RisingEdge", "FallingEdge", "FallinEdge", "LowLevel", "LevelLow"});
        // "both" runs the exposure-auto presets, with the misspelt activation on offer.
        cam.addEnum("ExposureAuto", name == "both" ? QStringList{"Off", "Continuous", "other"}
                                                   : QStringList{"Off", "Continuous"}, "Off");
        addSyncOuts(cam, "LineOut", 2);
        if (name == "both")
        {
            addSyncOuts(cam, "SyncOut", 3, "Readout", "Invert", false);
            cam.set("LineOutSelector", "SyncOut2");
            cam.set("SyncOutLevels", 5);
        }
    }
    else if (name == "mixed")
    {
        addTrigger(cam, {"FrameStart", "AcquisitionStart"}, {"Software", "Line0"}, {"RisingEdge", "FallingEdge"});
        addLines(cam, {"Input", "Output", "Switch", "Switch"}, true);
        addSyncOuts(cam, "SyncOut", 2);
    }
}

} // namespace TabCameras
