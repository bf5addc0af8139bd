#ifndef TABCAMERAS_H
#define TABCAMERAS_H

#include "TestCamera.h"

#include <QStringList>

// In-memory cameras of every family the Trigger IO tab serves, with the write
// journal the tab tests compare (build() tells what each has). All start with
// the trigger off, acquisition "SingleFrame", frame count 1. "mixed" has sync
// outputs beside its output lines; "both" has the sync outputs under both
// names, which differ in selector, source, polarity, levels and writability.
namespace TabCameras
{

const QStringList Names{"routing", "expmode", "syncout", "lineout", "mixed", "both"};

void build(TestCam::TestCamera& cam, const QString& name);

} // namespace TabCameras

#endif
