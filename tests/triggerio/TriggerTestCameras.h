#ifndef TRIGGERTESTCAMERAS_H
#define TRIGGERTESTCAMERAS_H

#include "TestCamera.h"

#include <QMetaType>
#include <QStringList>

// Test cameras of the families the trigger input section tells apart:
//   Routing      "ExposureMode" offers "Timed", input lines routed to the trigger
//                ("LineRouting"); lines Line0..Line3, Line1 and Line3 outputs
//   ExposureAuto "ExposureAuto" offers "other" (sync output family; also has an
//                "ExposureMode" with "Timed", which the tab must ignore)
//   ExposureMode "ExposureMode" offers "Timed", no "LineRouting"; lines
//                Line0..Line2, Line0 an output
//   Neither      trigger and acquisition features, no exposure control
// All start with the trigger off, acquisition "SingleFrame", frame count 1 of
// 1..255 and a trigger source other than the presets choose.
namespace TriggerCams
{

enum class Family
{
    Routing,
    ExposureAuto,
    ExposureMode,
    Neither
};

struct Options
{
    // Extra entries offered by "TriggerActivation" (e.g. "FallinEdge").
    QStringList extraActivations;
    // Initial "ExposureMode" where the camera has one.
    QString exposureMode = "Timed";
    // Initial "TriggerMode" of the first trigger selector entry.
    QString firstTriggerMode = "Off";
    long long frameCountMaximum = 255;
};

void build(TestCam::TestCamera& cam, Family family, const Options& options = Options());

QString familyName(Family family);

} // namespace TriggerCams

Q_DECLARE_METATYPE(TriggerCams::Family)
Q_DECLARE_METATYPE(TriggerCams::Options)

#endif
