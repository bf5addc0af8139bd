#ifndef ORVCPP_FEATURE_H
#define ORVCPP_FEATURE_H

#include <OrvC/OrvCTypes.h>
#include <OrvCPP/IFeatureObserver.h>
#include <OrvCPP/SharedPointer.h>

#include <string>
#include <vector>

namespace OrvCPP
{

// One named, typed camera feature (GenICam naming).
//
// What callers can count on, whichever backend implements the feature:
// - Every call returns an OrvErrorType, 0 on success; on failure the output
//   arguments are left as they were.
// - A feature may be called from the GUI thread and, at the same time, from
//   inside IFeatureObserver::FeatureChanged on one of the API's threads.
// - FeatureChanged is never called on the thread that registered the
//   observer and never with an internal lock held.
// - Registering the same observer twice on one feature, or unregistering one
//   that is not registered, returns OrvErrorInvalidCall (-5).
// - A write to a feature that is not writable now returns
//   OrvErrorInvalidAccess and changes nothing; a value outside the range, or an
//   enumeration entry that does not exist or is not available, returns
//   OrvErrorInvalidValue.
class Feature
{
public:
    virtual ~Feature() = default;

    virtual OrvErrorType GetName(std::string& name) = 0;
    virtual OrvErrorType GetDisplayName(std::string& displayName) = 0;
    virtual OrvErrorType GetCategory(std::string& category) = 0;
    virtual OrvErrorType GetDataType(OrvFeatureDataType& dataType) = 0;
    virtual OrvErrorType IsWritable(bool& writable) = 0;

    // Whether an enumeration entry may be chosen right now.
    virtual OrvErrorType IsValueAvailable(const char* value, bool& available) = 0;
    // All entry names of an enumeration, available or not, in the device's order.
    virtual OrvErrorType GetValues(std::vector<std::string>& values) = 0;

    virtual OrvErrorType GetValue(std::string& value) = 0;
    virtual OrvErrorType GetValue(double& value) = 0;
    virtual OrvErrorType GetValue(long long& value) = 0;
    virtual OrvErrorType GetValue(bool& value) = 0;

    virtual OrvErrorType GetRange(double& minimum, double& maximum) = 0;
    virtual OrvErrorType GetRange(long long& minimum, long long& maximum) = 0;
    virtual OrvErrorType GetIncrement(double& increment) = 0;
    virtual OrvErrorType GetIncrement(long long& increment) = 0;

    virtual OrvErrorType SetValue(double value) = 0;
    virtual OrvErrorType SetValue(long long value) = 0;
    virtual OrvErrorType SetValue(bool value) = 0;
    virtual OrvErrorType SetValue(const char* value) = 0;

    virtual OrvErrorType RunCommand() = 0;

    virtual OrvErrorType RegisterObserver(const shared_ptr<IFeatureObserver>& observer) = 0;
    virtual OrvErrorType UnregisterObserver(const shared_ptr<IFeatureObserver>& observer) = 0;
};

} // namespace OrvCPP

#endif
