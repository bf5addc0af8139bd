#ifndef TABCAMERAS_H
#define TABCAMERAS_H

#include "TestCamera.h"

#include <QStringList>

// In-memory cameras of every family the Trigger IO tab serves (build() tells
// what each has); all start with the trigger off, acquisition "SingleFrame",
// frame count 1. "mixed" has sync outputs beside its output lines; "both" is
// "lineout" with the sync outputs under their other names too, differing in
// every value, in writability and in the polarity's display name.
namespace TabCameras
{

const QStringList Names{"routing", "expmode", "syncout", "lineout", "mixed", "both"};

void build(TestCam::TestCamera& cam, const QString& name);

} // namespace TabCameras

#endif
