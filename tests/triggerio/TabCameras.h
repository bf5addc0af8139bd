#ifndef TABCAMERAS_H
#define TABCAMERAS_H

#include "TestCamera.h"

#include <QStringList>

// In-memory cameras of every family the Trigger IO tab serves, with the write
// journal the tab tests compare:
//   routing   "ExposureMode" with an input line routed to the trigger
//             ("LineRouting"), output lines through "LineSelector" with user
//             outputs, Line2 switchable between input and output
//   expmode   "ExposureMode" without routing; Line0 an output, no user outputs
//   syncout   "ExposureAuto" offering "other"; sync outputs "SyncOut1..3" with
//             a level mask "SyncOutLevels"
//   lineout   no exposure control, "FallinEdge" offered; "LineOut..." outputs
//             with "LineOutLevels"
//   mixed     output lines through "LineSelector", Line2 and Line3 switchable,
//             and sync outputs "SyncOut..." beside them
//   both      the sync outputs under both names, "SyncOut..." read-only and
//             differing from "LineOut..." in selector, source, polarity, levels
// All start with the trigger off, acquisition "SingleFrame", frame count 1.
namespace TabCameras
{

const QStringList Names{"routing", "expmode", "syncout", "lineout", "mixed", "both"};

void build(TestCam::TestCamera& cam, const QString& name);

} // namespace TabCameras

#endif
