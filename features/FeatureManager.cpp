#include "FeatureManager.h"

#include <QDebug>

#include <cmath>

FeatureManager::FeatureManager(const FeatureList& features)
    : m_pFeatures(features)
{
}

// ---------------------------------------------------------------- lookup

FeatureManager::FeaturePtr FeatureManager::GetFeatureByName(const std::string& name) const
{
    // No index on purpose: the list is walked and every name asked afresh, so the
    // first of two equally named handles wins.
    for (const FeaturePtr& feature : *m_pFeatures)
    {
        std::string featureName;
        if (!feature || feature->GetName(featureName) != OrvErrorSuccess)
            continue;
        if (featureName == name)
            return feature;
    }
    return FeaturePtr();
}

FeatureManager::FeaturePtr FeatureManager::GetFeatureByName(const QString& name) const
{
    return GetFeatureByName(name.toStdString());
}

FeatureManager::FeaturePtr FeatureManager::GetFeatureByName(const QString& name, const QString& alt1) const
{
    FeaturePtr feature = GetFeatureByName(name);
    if (!feature && !alt1.isEmpty())
        feature = GetFeatureByName(alt1);
    return feature;
}

FeatureManager::FeaturePtr FeatureManager::GetFeatureByName(const QString& name, const QString& alt1,
                                                            const QString& alt2) const
{
    FeaturePtr feature = GetFeatureByName(name, alt1);
    // When the first two names are missing, the second one is looked up a second
    // time before the third; the repeat finds nothing new.
    if (!feature && !alt1.isEmpty())
        feature = GetFeatureByName(alt1);
    if (!feature && !alt2.isEmpty())
        feature = GetFeatureByName(alt2);
    return feature;
}

bool FeatureManager::GetIsFeatureAvailable(const QString& name) const
{
    return GetIsFeatureAvailable(name, QString(), QString());
}

bool FeatureManager::GetIsFeatureAvailable(const QString& name, const QString& alt1) const
{
    return GetIsFeatureAvailable(name, alt1, QString());
}

bool FeatureManager::GetIsFeatureAvailable(const QString& name, const QString& alt1, const QString& alt2) const
{
    return static_cast<bool>(GetFeatureByName(name, alt1, alt2));
}

bool FeatureManager::GetIsFeatureWritable(const QString& name) const
{
    return GetIsFeatureWritable(name, QString(), QString());
}

bool FeatureManager::GetIsFeatureWritable(const QString& name, const QString& alt1) const
{
    return GetIsFeatureWritable(name, alt1, QString());
}

bool FeatureManager::GetIsFeatureWritable(const QString& name, const QString& alt1, const QString& alt2) const
{
    FeaturePtr feature = GetFeatureByName(name, alt1, alt2);
    return feature ? GetIsWritable(feature) : false;
}

bool FeatureManager::GetIsFeatureValueAvailable(const QString& name, const QString& value) const
{
    FeaturePtr feature = GetFeatureByName(name);
    return feature ? GetIsValueAvailable(feature, value) : false;
}

QString FeatureManager::GetCategory(const QString& name) const
{
    FeaturePtr feature = GetFeatureByName(name);
    std::string category;
    if (!feature || feature->GetCategory(category) != OrvErrorSuccess)
        return QString();
    return QString::fromStdString(category);
}

// ---------------------------------------------------------------- helpers on a handle

OrvFeatureDataType FeatureManager::GetDataType(FeaturePtr feature)
{
    OrvFeatureDataType type = OrvFeatureDataUnknown;
    if (feature->GetDataType(type) != OrvErrorSuccess)
        return OrvFeatureDataUnknown;
    return type;
}

bool FeatureManager::GetIsWritable(FeaturePtr feature)
{
    bool writable = false;
    if (feature->IsWritable(writable) != OrvErrorSuccess)
        return false;
    return writable;
}

bool FeatureManager::GetIsValueAvailable(FeaturePtr feature, QString value)
{
    bool available = false;
    if (feature->IsValueAvailable(value.toStdString().c_str(), available) != OrvErrorSuccess)
        return false;
    return available;
}

QStringList FeatureManager::GetEnumEntries(FeaturePtr feature)
{
    std::vector<std::string> values;
    QStringList entries;
    if (feature->GetValues(values) != OrvErrorSuccess)
        return entries;
    for (const std::string& value : values)
        entries.append(QString::fromStdString(value));
    return entries;
}

QString FeatureManager::GetStringValue(FeaturePtr feature)
{
    if (!feature)
        return QString();
    std::string value;
    if (feature->GetValue(value) != OrvErrorSuccess)
        return QString();
    return QString::fromStdString(value);
}

template <typename T> void FeatureManager::GetValue(FeaturePtr feature, T* out)
{
    if (feature->GetValue(*out) != OrvErrorSuccess)
        *out = static_cast<T>(-1);
}

template <> void FeatureManager::GetValue<bool>(FeaturePtr feature, bool* out)
{
    if (feature->GetValue(*out) != OrvErrorSuccess)
        *out = false;
}

template <typename T> void FeatureManager::GetIncrement(FeaturePtr feature, T* out)
{
    if (feature->GetIncrement(*out) != OrvErrorSuccess)
        *out = static_cast<T>(-1);
}

template <typename T> void FeatureManager::GetRange(FeaturePtr feature, T* minimum, T* maximum)
{
    if (feature->GetRange(*minimum, *maximum) != OrvErrorSuccess)
    {
        *minimum = static_cast<T>(-1);
        *maximum = static_cast<T>(-1);
    }
}

template void FeatureManager::GetValue<double>(FeaturePtr, double*);
template void FeatureManager::GetValue<long long>(FeaturePtr, long long*);
template void FeatureManager::GetIncrement<double>(FeaturePtr, double*);
template void FeatureManager::GetIncrement<long long>(FeaturePtr, long long*);
template void FeatureManager::GetRange<double>(FeaturePtr, double*, double*);
template void FeatureManager::GetRange<long long>(FeaturePtr, long long*, long long*);

double FeatureManager::GetMaxValuefromIncrement(double minimum, double maximum, double increment)
{
    // The factor lifts a quotient that lands a rounding error below a whole number
    // onto it, so a maximum on the grid (0.3 with increment 0.1) is kept.
    const double steps = std::floor((maximum - minimum) / increment * 1.000000000001);
    const double candidate = minimum + steps * increment;
    // Written this way round so that a not-a-number (zero increment) yields maximum.
    return candidate < maximum ? candidate : maximum;
}

OrvFeatureDataType FeatureManager::ReadNumeric(FeaturePtr feature, double* value, double* minimum, double* maximum,
                                               double* increment)
{
    const OrvFeatureDataType type = GetDataType(feature);
    switch (type)
    {
    case OrvFeatureDataInt:
    {
        long long v = -1, lo = -1, hi = -1, inc = -1;
        GetValue(feature, &v);
        GetRange(feature, &lo, &hi);
        GetIncrement(feature, &inc);
        *value = static_cast<double>(v);
        *minimum = static_cast<double>(lo);
        *maximum = static_cast<double>(hi);
        *increment = static_cast<double>(inc);
        return type;
    }
    case OrvFeatureDataFloat:
        GetValue(feature, value);
        GetRange(feature, minimum, maximum);
        GetIncrement(feature, increment);
        return type;
    default:
        return OrvFeatureDataUnknown;
    }
}

bool FeatureManager::ReadFittedRange(FeaturePtr feature, double* value, double* minimum, double* maximum,
                                     double* increment)
{
    const OrvFeatureDataType type = ReadNumeric(feature, value, minimum, maximum, increment);
    if (type == OrvFeatureDataUnknown)
    {
        *value = *minimum = *maximum = *increment = -1.0;
        return false;
    }
    // A maximum off the grid drops onto it; without a usable increment editors
    // step by one (integers) or by a hundredth (floats).
    if (*increment > 0)
        *maximum = GetMaxValuefromIncrement(*minimum, *maximum, *increment);
    else
        *increment = type == OrvFeatureDataInt ? 1.0 : 0.01;
    return true;
}

// ---------------------------------------------------------------- reads

double FeatureManager::GetValue(const QString& name) const
{
    return GetValue(name, QString(), QString());
}

double FeatureManager::GetValue(const QString& name, const QString& alt1) const
{
    return GetValue(name, alt1, QString());
}

double FeatureManager::GetValue(const QString& name, const QString& alt1, const QString& alt2) const
{
    FeaturePtr feature = GetFeatureByName(name, alt1, alt2);
    if (!feature)
        return -1.0;
    switch (GetDataType(feature))
    {
    case OrvFeatureDataFloat:
    {
        double value = -1.0;
        GetValue(feature, &value);
        return value;
    }
    case OrvFeatureDataBool:
    {
        bool flag = false;
        GetValue(feature, &flag);
        return flag ? 1.0 : 0.0;
    }
    case OrvFeatureDataInt:
    {
        long long value = -1;
        GetValue(feature, &value);
        return static_cast<double>(value);
    }
    default:
        return -1.0;
    }
}

QString FeatureManager::GetStringValue(const QString& name) const
{
    return GetStringValue(name, QString());
}

QString FeatureManager::GetStringValue(const QString& name, const QString& alt1) const
{
    FeaturePtr feature = GetFeatureByName(name, alt1);
    return feature ? GetStringValue(feature) : QString();
}

bool FeatureManager::GetIsWritable(const QString& name) const
{
    return GetIsWritable(name, QString(), QString());
}

bool FeatureManager::GetIsWritable(const QString& name, const QString& alt1) const
{
    return GetIsWritable(name, alt1, QString());
}

bool FeatureManager::GetIsWritable(const QString& name, const QString& alt1, const QString& alt2) const
{
    return GetIsFeatureWritable(name, alt1, alt2);
}

double FeatureManager::GetIncrement(const QString& name) const
{
    return GetIncrement(name, QString());
}

double FeatureManager::GetIncrement(const QString& name, const QString& alt1) const
{
    FeaturePtr feature = GetFeatureByName(name, alt1);
    if (!feature)
        return -1.0;
    switch (GetDataType(feature))
    {
    case OrvFeatureDataInt:
    {
        long long increment = -1;
        GetIncrement(feature, &increment);
        return static_cast<double>(increment);
    }
    case OrvFeatureDataFloat:
    {
        double increment = -1.0;
        GetIncrement(feature, &increment);
        return increment;
    }
    default:
        return -1.0;
    }
}

QString FeatureManager::GetDisplayName(const QString& name) const
{
    return GetDisplayName(name, QString(), QString());
}

QString FeatureManager::GetDisplayName(const QString& name, const QString& alt1) const
{
    return GetDisplayName(name, alt1, QString());
}

QString FeatureManager::GetDisplayName(const QString& name, const QString& alt1, const QString& alt2) const
{
    FeaturePtr feature = GetFeatureByName(name, alt1, alt2);
    std::string displayName;
    if (!feature || feature->GetDisplayName(displayName) != OrvErrorSuccess)
        return QString();
    return QString::fromStdString(displayName);
}

QString FeatureManager::GetDisplayName(const QStringList& names) const
{
    for (const QString& name : names)
    {
        FeaturePtr feature = GetFeatureByName(name);
        if (!feature)
            continue;
        std::string displayName;
        if (feature->GetDisplayName(displayName) != OrvErrorSuccess)
            return QString();
        return QString::fromStdString(displayName);
    }
    return QString();
}

QString FeatureManager::GetFeatureName(const QStringList& names) const
{
    for (const QString& name : names)
    {
        FeaturePtr feature = GetFeatureByName(name);
        if (!feature)
            continue;
        std::string featureName;
        if (feature->GetName(featureName) != OrvErrorSuccess)
            return QString();
        return QString::fromStdString(featureName);
    }
    return QString();
}

double FeatureManager::GetValueIsWritableRangeIncrement(const QString& name, bool* writable, double* minimum,
                                                        double* maximum, double* increment) const
{
    return GetValueIsWritableRangeIncrement(name, QString(), QString(), writable, minimum, maximum, increment);
}

double FeatureManager::GetValueIsWritableRangeIncrement(const QString& name, const QString& alt1, bool* writable,
                                                        double* minimum, double* maximum, double* increment) const
{
    return GetValueIsWritableRangeIncrement(name, alt1, QString(), writable, minimum, maximum, increment);
}

double FeatureManager::GetValueIsWritableRangeIncrement(const QString& name, const QString& alt1, const QString& alt2,
                                                        bool* writable, double* minimum, double* maximum,
                                                        double* increment) const
{
    FeaturePtr feature = GetFeatureByName(name, alt1, alt2);
    if (!feature)
        return -1.0;
    *writable = GetIsWritable(feature);
    double value = -1.0;
    if (!ReadFittedRange(feature, &value, minimum, maximum, increment))
        *writable = false;
    return value;
}

double FeatureManager::GetValueRangeIncrement(const QString& name, double* minimum, double* maximum,
                                              double* increment) const
{
    return GetValueRangeIncrement(name, QString(), QString(), minimum, maximum, increment);
}

double FeatureManager::GetValueRangeIncrement(const QString& name, const QString& alt1, double* minimum,
                                              double* maximum, double* increment) const
{
    return GetValueRangeIncrement(name, alt1, QString(), minimum, maximum, increment);
}

double FeatureManager::GetValueRangeIncrement(const QString& name, const QString& alt1, const QString& alt2,
                                              double* minimum, double* maximum, double* increment) const
{
    FeaturePtr feature = GetFeatureByName(name, alt1, alt2);
    if (!feature)
        return -1.0;
    double value = -1.0;
    ReadFittedRange(feature, &value, minimum, maximum, increment);
    return value;
}

double FeatureManager::GetValueRange(const QString& name, double* minimum, double* maximum) const
{
    return GetValueRange(name, QString(), QString(), minimum, maximum);
}

double FeatureManager::GetValueRange(const QString& name, const QString& alt1, double* minimum, double* maximum) const
{
    return GetValueRange(name, alt1, QString(), minimum, maximum);
}

double FeatureManager::GetValueRange(const QString& name, const QString& alt1, const QString& alt2, double* minimum,
                                     double* maximum) const
{
    FeaturePtr feature = GetFeatureByName(name, alt1, alt2);
    if (!feature)
        return -1.0;
    double value = -1.0, increment = -1.0;
    if (ReadNumeric(feature, &value, minimum, maximum, &increment) == OrvFeatureDataUnknown)
    {
        *minimum = *maximum = -1.0;
        return -1.0;
    }
    if (increment > 0)
        *maximum = GetMaxValuefromIncrement(*minimum, *maximum, increment);
    return value;
}

QString FeatureManager::GetWritableEnumValue(const QString& name) const
{
    FeaturePtr feature = GetFeatureByName(name);
    if (!feature || !GetIsWritable(feature))
        return QString();
    return GetStringValue(feature);
}

QStringList FeatureManager::GetAvailableEnumEntries(const QString& name) const
{
    return GetAvailableEnumEntries(name, QString());
}

QStringList FeatureManager::GetAvailableEnumEntries(const QString& name, const QString& alt1) const
{
    QStringList available;
    FeaturePtr feature = GetFeatureByName(name, alt1);
    if (!feature)
        return available;
    const QStringList entries = GetEnumEntries(feature);
    for (const QString& entry : entries)
    {
        if (GetIsValueAvailable(feature, entry))
            available.append(entry);
    }
    return available;
}

bool FeatureManager::GetIsFloatFeature(const QString& name) const
{
    return GetIsFloatFeature(name, QString(), QString());
}

bool FeatureManager::GetIsFloatFeature(const QString& name, const QString& alt1) const
{
    return GetIsFloatFeature(name, alt1, QString());
}

bool FeatureManager::GetIsFloatFeature(const QString& name, const QString& alt1, const QString& alt2) const
{
    FeaturePtr feature = GetFeatureByName(name, alt1, alt2);
    return feature && GetDataType(feature) == OrvFeatureDataFloat;
}

// ---------------------------------------------------------------- writes

double FeatureManager::SetValue(const QString& name, double value) const
{
    return SetValue(name, QString(), QString(), value);
}

double FeatureManager::SetValue(const QString& name, const QString& alt1, double value) const
{
    return SetValue(name, alt1, QString(), value);
}

double FeatureManager::SetValue(const QString& name, const QString& alt1, const QString& alt2, double value) const
{
    FeaturePtr feature = GetFeatureByName(name, alt1, alt2);
    if (!feature)
        return value;

    switch (GetDataType(feature))
    {
    case OrvFeatureDataFloat:
    {
        double minimum = -1.0, maximum = -1.0, increment = 0.0;
        GetRange(feature, &minimum, &maximum);
        GetIncrement(feature, &increment);
        maximum = GetMaxValuefromIncrement(minimum, maximum, increment);
        // Snap downward onto the grid; without a usable increment the value stays as it is.
        value = GetMaxValuefromIncrement(minimum, value, increment);
        if (value < minimum)
            value = minimum;
        else if (value > maximum)
            value = maximum;
        if (GetIsWritable(feature))
        {
            const OrvErrorType error = feature->SetValue(value);
            if (error != OrvErrorSuccess)
                qDebug() << "Error: FeatureManager::SetValue:Double: " << name << " : " << error;
        }
        double readBack = -1.0;
        GetValue(feature, &readBack);
        return readBack;
    }
    case OrvFeatureDataInt:
    {
        long long minimum = -1, maximum = -1, increment = 0;
        GetRange(feature, &minimum, &maximum);
        GetIncrement(feature, &increment);
        const double inc = static_cast<double>(increment);
        const double lo = static_cast<double>(minimum);
        maximum = static_cast<long long>(GetMaxValuefromIncrement(lo, static_cast<double>(maximum), inc));
        value = GetMaxValuefromIncrement(lo, value, inc);
        if (lo > value)
            value = lo;
        else if (static_cast<double>(maximum) < value)
            value = static_cast<double>(maximum);
        const long long whole = static_cast<long long>(value);
        if (GetIsWritable(feature))
        {
            const OrvErrorType error = feature->SetValue(whole);
            if (error != OrvErrorSuccess)
                qDebug() << "Error: FeatureManager::SetValue:Int: " << name << " : " << error;
        }
        long long readBack = -1;
        GetValue(feature, &readBack);
        return static_cast<double>(readBack);
    }
    case OrvFeatureDataBool:
    {
        const bool flag = value > 0.0;
        if (GetIsWritable(feature))
        {
            const OrvErrorType error = feature->SetValue(flag);
            if (error != OrvErrorSuccess)
                qDebug() << "Error: FeatureManager::SetValue:Bool: " << name << " : " << error;
        }
        bool readBack = false;
        GetValue(feature, &readBack);
        return readBack ? 1.0 : 0.0;
    }
    default:
        // Enumerations are written with the text form only.
        return value;
    }
}

QString FeatureManager::SetValue(const QString& name, const QString& value) const
{
    return SetValue(name, QString(), QString(), value);
}

QString FeatureManager::SetValue(const QString& name, const QString& alt1, const QString& value) const
{
    return SetValue(name, alt1, QString(), value);
}

QString FeatureManager::SetValue(const QString& name, const QString& alt1, const QString& alt2,
                                 const QString& value) const
{
    FeaturePtr feature = GetFeatureByName(name, alt1, alt2);
    if (feature)
    {
        // The camera decides whether the text fits; its answer is not looked at.
        feature->SetValue(value.toStdString().c_str());
        // Every text write is followed by a string read of the feature named like
        // the written text (usually there is none); the result is not used.
        GetStringValue(value);
    }
    return value;
}

bool FeatureManager::RunCommand(const QString& name) const
{
    FeaturePtr feature = GetFeatureByName(name);
    if (!feature)
        return false;
    return feature->RunCommand() != OrvErrorSuccess;
}
