#ifndef ORVCPP_IFEATUREOBSERVER_H
#define ORVCPP_IFEATUREOBSERVER_H

#include <OrvCPP/SharedPointer.h>

namespace OrvCPP
{

class Feature;

// Receives value changes of the features it is registered on.
//
// FeatureChanged is called on one of the camera API's own threads, never on
// the thread that registered the observer, and never while the API holds an
// internal lock: an implementation may call back into the feature (read its
// name, type and value). Calls for different features may run concurrently.
class IFeatureObserver
{
public:
    virtual ~IFeatureObserver() = default;
    virtual void FeatureChanged(const shared_ptr<Feature>& feature) = 0;
};

} // namespace OrvCPP

#endif
