#ifndef ORVCPP_ORVCPP_H
#define ORVCPP_ORVCPP_H

// The camera API in one include: error codes, data types, features and observers.
#include <OrvC/OrvCTypes.h>
#include <OrvCPP/SharedPointer.h>
#include <OrvCPP/IFeatureObserver.h>
#include <OrvCPP/Feature.h>

#endif
