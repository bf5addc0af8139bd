#ifndef FEATURELIST_H
#define FEATURELIST_H

#include <OrvCPP/OrvCPP.h>

#include <QSharedPointer>
#include <QVector>

// The host's list of camera feature handles, shared with every tab built for the camera.
typedef QSharedPointer<QVector<OrvCPP::shared_ptr<OrvCPP::Feature>>> FeatureList;

#endif
