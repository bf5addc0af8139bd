#include "TriggerTestCameras.h"

namespace TriggerCams
{

namespace
{

using TestCam::TestCamera;

void addTrigger(TestCamera& cam, const QStringList& selectors, const QStringList& sources, QStringList activations,
                const Options& options)
{
    cam.addEnum("TriggerSelector", selectors, selectors.first());
    cam.addEnum("TriggerMode", {"Off", "On"}, "Off")
        .selectedBy("TriggerSelector")
        .setAt(selectors.first(), options.firstTriggerMode);
    cam.addEnum("TriggerSource", sources, sources.first());
    activations << options.extraActivations;
    cam.addEnum("TriggerActivation", activations, activations.first());
    cam.addEnum("AcquisitionMode", {"Continuous", "SingleFrame", "MultiFrame"}, "SingleFrame");
    cam.addInt("AcquisitionFrameCount", 1, 1, options.frameCountMaximum, 1);
    cam.addCommand("TriggerSoftware");
}

void addLines(TestCamera& cam, const QStringList& lines, const QStringList& outputs)
{
    cam.addEnum("LineSelector", lines, lines.first());
    TestCam::FeatureSetup mode = cam.addEnum("LineMode", {"Input", "Output"}, "Input").selectedBy("LineSelector");
    for (const QString& line : outputs)
        mode.setAt(line, "Output");
}

} // namespace

void build(TestCamera& cam, Family family, const Options& options)
{
    switch (family)
    {
    case Family::Routing:
        addTrigger(cam, {"AcquisitionStart", "ExposureStart", "ExposureActive"}, {"Software", "InputLines"},
                   {"RisingEdge", "FallingEdge", "LowLevel", "HighLevel"}, options);
        cam.addEnum("ExposureMode", {"Timed", "TriggerWidth"}, options.exposureMode);
        addLines(cam, {"Line0", "Line1", "Line2", "Line3"}, {"Line1", "Line3"});
        cam.addEnum("LineRouting", {"Off", "Trigger"}, "Off").selectedBy("LineSelector");
        break;
    case Family::ExposureAuto:
        cam.addInt("SyncOutLevels", 0, 0, 15);
        addTrigger(cam, {"FrameStart", "AcquisitionStart", "AcquisitionEnd"}, {"Freerun", "Line1", "Line2", "Software"},
                   {"RisingEdge", "FallingEdge", "AnyEdge", "LevelHigh", "LevelLow"}, options);
        cam.addEnum("ExposureAuto", {"Off", "Once", "Continuous", "other"}, "Continuous");
        cam.addEnum("ExposureMode", {"Timed", "TriggerWidth"}, options.exposureMode);
        break;
    case Family::ExposureMode:
        addTrigger(cam, {"FrameStart", "AcquisitionStart"}, {"Software", "Line0", "Line1", "Line2"},
                   {"RisingEdge", "FallingEdge"}, options);
        cam.addEnum("ExposureMode", {"Timed", "TriggerWidth"}, options.exposureMode);
        addLines(cam, {"Line0", "Line1", "Line2"}, {"Line0"});
        break;
    case Family::Neither:
        addTrigger(cam, {"FrameStart", "AcquisitionStart"}, {"Software", "Line0", "Line1", "InputLines"},
                   {"RisingEdge", "FallingEdge", "FallinEdge", "LowLevel", "LevelLow"}, options);
        cam.addEnum("ExposureAuto", {"Off", "Continuous"}, "Off");
        addLines(cam, {"Line0", "Line1"}, {"Line1"});
        break;
    }
}

QString familyName(Family family)
{
    switch (family)
    {
    case Family::Routing:
        return "routing";
    case Family::ExposureAuto:
        return "exposure-auto";
    case Family::ExposureMode:
        return "exposure-mode";
    case Family::Neither:
        return "neither";
    }
    return QString();
}

} // namespace TriggerCams
