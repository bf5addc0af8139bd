#include "MemoryFeature.h"

#include <algorithm>

MemoryFeature::MemoryFeature(MemoryCamera* camera, const std::string& name, OrvFeatureDataType type,
                             const std::vector<std::string>& entries, const std::string& value)
    : m_camera(camera)
    , m_name(name)
    , m_type(type)
    , m_entries(entries)
    , m_text(value.empty() && !entries.empty() ? entries.front() : value)
{
}

OrvErrorType MemoryFeature::GetName(std::string& name)
{
    m_camera->count(MemoryCamera::GetName);
    name = m_name;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::GetDisplayName(std::string& displayName)
{
    m_camera->count(MemoryCamera::Other);
    displayName = m_name;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::GetCategory(std::string& category)
{
    m_camera->count(MemoryCamera::Other);
    category = "Root";
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::GetDataType(OrvFeatureDataType& dataType)
{
    m_camera->count(MemoryCamera::GetDataType);
    dataType = m_type;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::IsWritable(bool& writable)
{
    m_camera->count(MemoryCamera::IsWritable);
    writable = true;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::IsValueAvailable(const char* value, bool& available)
{
    m_camera->count(MemoryCamera::IsValueAvailable);
    if (!value || m_type != OrvFeatureDataEnum)
        return OrvErrorWrongType;
    available = true;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::GetValues(std::vector<std::string>& values)
{
    m_camera->count(MemoryCamera::GetValues);
    if (m_type != OrvFeatureDataEnum)
        return OrvErrorWrongType;
    values = m_entries;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::GetValue(std::string& value)
{
    m_camera->count(MemoryCamera::GetValue);
    if (m_type == OrvFeatureDataCommand)
        return OrvErrorWrongType;
    value = isNumber() ? std::to_string(static_cast<long long>(m_number)) : m_text;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::GetValue(double& value)
{
    m_camera->count(MemoryCamera::GetValue);
    if (!isNumber())
        return OrvErrorWrongType;
    value = m_number;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::GetValue(long long& value)
{
    m_camera->count(MemoryCamera::GetValue);
    if (!isNumber())
        return OrvErrorWrongType;
    value = static_cast<long long>(m_number);
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::GetValue(bool& value)
{
    m_camera->count(MemoryCamera::GetValue);
    if (m_type != OrvFeatureDataBool)
        return OrvErrorWrongType;
    value = m_number != 0.0;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::GetRange(double& minimum, double& maximum)
{
    m_camera->count(MemoryCamera::GetRange);
    if (m_type != OrvFeatureDataInt && m_type != OrvFeatureDataFloat)
        return OrvErrorWrongType;
    minimum = 1.0;
    maximum = 255.0;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::GetRange(long long& minimum, long long& maximum)
{
    m_camera->count(MemoryCamera::GetRange);
    if (m_type != OrvFeatureDataInt)
        return OrvErrorWrongType;
    minimum = 1;
    maximum = 255;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::GetIncrement(double& increment)
{
    m_camera->count(MemoryCamera::GetRange);
    increment = 1.0;
    return m_type == OrvFeatureDataInt ? OrvErrorSuccess : OrvErrorWrongType;
}

OrvErrorType MemoryFeature::GetIncrement(long long& increment)
{
    m_camera->count(MemoryCamera::GetRange);
    increment = 1;
    return m_type == OrvFeatureDataInt ? OrvErrorSuccess : OrvErrorWrongType;
}

OrvErrorType MemoryFeature::SetValue(double value)
{
    m_camera->count(MemoryCamera::SetValue);
    if (!isNumber())
        return OrvErrorWrongType;
    m_number = value;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::SetValue(long long value)
{
    return SetValue(static_cast<double>(value));
}

OrvErrorType MemoryFeature::SetValue(bool value)
{
    return SetValue(value ? 1.0 : 0.0);
}

OrvErrorType MemoryFeature::SetValue(const char* value)
{
    m_camera->count(MemoryCamera::SetValue);
    if (!value || m_type != OrvFeatureDataEnum)
        return OrvErrorWrongType;
    if (std::find(m_entries.begin(), m_entries.end(), value) == m_entries.end())
        return OrvErrorInvalidValue;
    m_text = value;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::RunCommand()
{
    m_camera->count(MemoryCamera::RunCommand);
    return m_type == OrvFeatureDataCommand ? OrvErrorSuccess : OrvErrorWrongType;
}

OrvErrorType MemoryFeature::RegisterObserver(const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer)
{
    m_camera->count(MemoryCamera::RegisterObserver);
    if (!observer)
        return OrvErrorBadParameter;
    if (m_observer)
        return OrvErrorInvalidCall;
    m_observer = observer;
    return OrvErrorSuccess;
}

OrvErrorType MemoryFeature::UnregisterObserver(const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer)
{
    m_camera->count(MemoryCamera::UnregisterObserver);
    if (!observer || m_observer != observer)
        return OrvErrorInvalidCall;
    m_observer.reset();
    return OrvErrorSuccess;
}
