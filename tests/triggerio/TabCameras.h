#ifndef TABCAMERAS_H
#define TABCAMERAS_H

#include "TestCamera.h"

#include <QStringList>

// In-memory cameras of every family the tab serves (build() tells what each has),
// all with the trigger off, acquisition "SingleFrame", frame count 1. "mixed": sync
// outputs beside output lines; "both": "lineout" with the sync outputs also under
// their other names, which differ in values, writability and polarity caption,
// and with the exposure-auto presets.
namespace TabCameras
{

const QStringList Names{"routing", "expmode", "syncout", "lineout", "mixed", "both"};

void build(TestCam::TestCamera& cam, const QString& name);

} // namespace TabCameras

#endif
