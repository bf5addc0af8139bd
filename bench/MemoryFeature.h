#ifndef MEMORYFEATURE_H
#define MEMORYFEATURE_H

#include "MemoryCamera.h"

#include <OrvCPP/OrvCPP.h>

#include <string>
#include <vector>

// One feature of a MemoryCamera: a value held in memory, every call counted.
class MemoryFeature : public OrvCPP::Feature
{
public:
    MemoryFeature(MemoryCamera* camera, const std::string& name, OrvFeatureDataType type,
                  const std::vector<std::string>& entries = {}, const std::string& value = {});

    OrvErrorType GetName(std::string& name) override;
    OrvErrorType GetDisplayName(std::string& displayName) override;
    OrvErrorType GetCategory(std::string& category) override;
    OrvErrorType GetDataType(OrvFeatureDataType& dataType) override;
    OrvErrorType IsWritable(bool& writable) override;
    OrvErrorType IsValueAvailable(const char* value, bool& available) override;
    OrvErrorType GetValues(std::vector<std::string>& values) override;
    OrvErrorType GetValue(std::string& value) override;
    OrvErrorType GetValue(double& value) override;
    OrvErrorType GetValue(long long& value) override;
    OrvErrorType GetValue(bool& value) override;
    OrvErrorType GetRange(double& minimum, double& maximum) override;
    OrvErrorType GetRange(long long& minimum, long long& maximum) override;
    OrvErrorType GetIncrement(double& increment) override;
    OrvErrorType GetIncrement(long long& increment) override;
    OrvErrorType SetValue(double value) override;
    OrvErrorType SetValue(long long value) override;
    OrvErrorType SetValue(bool value) override;
    OrvErrorType SetValue(const char* value) override;
    OrvErrorType RunCommand() override;
    OrvErrorType RegisterObserver(const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer) override;
    OrvErrorType UnregisterObserver(const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer) override;

private:
    bool isNumber() const
    {
        return m_type == OrvFeatureDataInt || m_type == OrvFeatureDataFloat || m_type == OrvFeatureDataBool;
    }

    MemoryCamera* m_camera;
    std::string m_name;
    OrvFeatureDataType m_type;
    std::vector<std::string> m_entries;
    std::string m_text;
    double m_number = 1.0;
    // At most one observer (the tab's): registration costs the same at any size.
    OrvCPP::shared_ptr<OrvCPP::IFeatureObserver> m_observer;
};

#endif
