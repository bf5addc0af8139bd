#ifndef OUTPUTTESTCAMERAS_H
#define OUTPUTTESTCAMERAS_H

#include "TestCamera.h"

#include <QStringList>
#include <QtGlobal>

// Cameras of both output families for the tests of the Output and Selectable
// Output groups. Every selector-dependent feature holds one value per line.
namespace OutputCams
{

const QStringList LineSources{"Off", "Direct", "UserOutput0", "UserOutput1", "UserOutput2", "ExposureActive"};
const QStringList SyncSources{"GPO", "Exposing", "Readout", "Imaging"};

// Line family: lines "Line0", "Line1", ... with the given "LineMode" values, selected
// "Line0". "LineMode" is read-only on every line (no selectable outputs), sources start
// at "Off", inverters and states at false. With user outputs, "UserOutputSelector"
// offers UserOutput0..2 (selected "UserOutput0"), each with its own "UserOutputValue".
// The inverter's display name is its feature name unless one is given. Returns the
// set-up of "LineMode", for making lines switchable.
TestCam::FeatureSetup lineFamily(TestCam::TestCamera& cam, const QStringList& modes, bool userOutputs = true,
                                 const QString& inverterDisplayName = QString());

// Sync-out family with `outputs` entries "SyncOut1", "SyncOut2", ... (selected the
// first), sources starting at "Exposing", polarity "Normal", levels 0. Features named
// "SyncOut..." or, with lineOutNames, "LineOut...".
void syncOutFamily(TestCam::TestCamera& cam, int outputs, bool lineOutNames = false);

// Collects the debug lines written while it lives (the tab's own handler drops them).
class MessageLog
{
public:
    MessageLog();
    ~MessageLog();
    static QStringList lines;

private:
    QtMessageHandler m_previous;
};

} // namespace OutputCams

#endif
