#ifndef FEATURELIST_H
#define FEATURELIST_H

#include <OrvCPP/OrvCPP.h>

#include <QSharedPointer>
#include <QVector>

// What a host hands each tab: one handle per camera feature. The host owns the
// vector; tabs keep a reference and leave it as it is. It sits beside the
// camera API so that hosts, backends and tabs can all name it.
typedef QSharedPointer<QVector<OrvCPP::shared_ptr<OrvCPP::Feature>>> FeatureList;

#endif
