#ifndef FEATUREMANAGER_H
#define FEATUREMANAGER_H

#include "FeatureList.h"

#include <QString>
#include <QStringList>

#include <string>

// The tab's one door to the camera. Every operation names its feature by up to
// three alternative names, tried in order (an empty one is skipped). Reads give
// neutral values on failure (-1.0, false, empty text, empty list); nothing
// throws. Selectors are the caller's business: write the selector first, then
// the dependent feature.
class FeatureManager
{
public:
    typedef OrvCPP::shared_ptr<OrvCPP::Feature> FeaturePtr;

    explicit FeatureManager(const FeatureList& features);

    // Lookup
    FeaturePtr GetFeatureByName(const std::string& name) const;
    FeaturePtr GetFeatureByName(const QString& name) const;
    FeaturePtr GetFeatureByName(const QString& name, const QString& alt1) const;
    FeaturePtr GetFeatureByName(const QString& name, const QString& alt1, const QString& alt2) const;

    bool GetIsFeatureAvailable(const QString& name) const;
    bool GetIsFeatureAvailable(const QString& name, const QString& alt1) const;
    bool GetIsFeatureAvailable(const QString& name, const QString& alt1, const QString& alt2) const;

    bool GetIsFeatureWritable(const QString& name) const;
    bool GetIsFeatureWritable(const QString& name, const QString& alt1) const;
    bool GetIsFeatureWritable(const QString& name, const QString& alt1, const QString& alt2) const;

    bool GetIsFeatureValueAvailable(const QString& name, const QString& value) const;
    QString GetCategory(const QString& name) const;

    // Helpers on a handle the caller has checked to be non-empty
    static OrvFeatureDataType GetDataType(FeaturePtr feature);
    static bool GetIsWritable(FeaturePtr feature);
    static bool GetIsValueAvailable(FeaturePtr feature, QString value);
    static QStringList GetEnumEntries(FeaturePtr feature);
    static QString GetStringValue(FeaturePtr feature);

    template <typename T> static void GetValue(FeaturePtr feature, T* out);
    template <typename T> static void GetIncrement(FeaturePtr feature, T* out);
    template <typename T> static void GetRange(FeaturePtr feature, T* minimum, T* maximum);

    // Largest value on the grid minimum + k * increment that does not exceed maximum.
    static double GetMaxValuefromIncrement(double minimum, double maximum, double increment);

    // Reads
    double GetValue(const QString& name) const;
    double GetValue(const QString& name, const QString& alt1) const;
    double GetValue(const QString& name, const QString& alt1, const QString& alt2) const;

    QString GetStringValue(const QString& name) const;
    QString GetStringValue(const QString& name, const QString& alt1) const;

    bool GetIsWritable(const QString& name) const;
    bool GetIsWritable(const QString& name, const QString& alt1) const;
    bool GetIsWritable(const QString& name, const QString& alt1, const QString& alt2) const;

    double GetIncrement(const QString& name) const;
    double GetIncrement(const QString& name, const QString& alt1) const;

    QString GetDisplayName(const QString& name) const;
    QString GetDisplayName(const QString& name, const QString& alt1) const;
    QString GetDisplayName(const QString& name, const QString& alt1, const QString& alt2) const;
    QString GetDisplayName(const QStringList& names) const;
    QString GetFeatureName(const QStringList& names) const;

    double GetValueIsWritableRangeIncrement(const QString& name, bool* writable, double* minimum, double* maximum,
                                            double* increment) const;
    double GetValueIsWritableRangeIncrement(const QString& name, const QString& alt1, bool* writable, double* minimum,
                                            double* maximum, double* increment) const;
    double GetValueIsWritableRangeIncrement(const QString& name, const QString& alt1, const QString& alt2,
                                            bool* writable, double* minimum, double* maximum, double* increment) const;

    double GetValueRangeIncrement(const QString& name, double* minimum, double* maximum, double* increment) const;
    double GetValueRangeIncrement(const QString& name, const QString& alt1, double* minimum, double* maximum,
                                  double* increment) const;
    double GetValueRangeIncrement(const QString& name, const QString& alt1, const QString& alt2, double* minimum,
                                  double* maximum, double* increment) const;

    double GetValueRange(const QString& name, double* minimum, double* maximum) const;
    double GetValueRange(const QString& name, const QString& alt1, double* minimum, double* maximum) const;
    double GetValueRange(const QString& name, const QString& alt1, const QString& alt2, double* minimum,
                         double* maximum) const;

    QString GetWritableEnumValue(const QString& name) const;

    QStringList GetAvailableEnumEntries(const QString& name) const;
    QStringList GetAvailableEnumEntries(const QString& name, const QString& alt1) const;

    bool GetIsFloatFeature(const QString& name) const;
    bool GetIsFloatFeature(const QString& name, const QString& alt1) const;
    bool GetIsFloatFeature(const QString& name, const QString& alt1, const QString& alt2) const;

    // Writes: numbers are fitted to range and increment and read back; texts are
    // written as they are and returned unchanged.
    double SetValue(const QString& name, double value) const;
    double SetValue(const QString& name, const QString& alt1, double value) const;
    double SetValue(const QString& name, const QString& alt1, const QString& alt2, double value) const;

    QString SetValue(const QString& name, const QString& value) const;
    QString SetValue(const QString& name, const QString& alt1, const QString& value) const;
    QString SetValue(const QString& name, const QString& alt1, const QString& alt2, const QString& value) const;

    // True when the camera reported an error (the opposite sense of the other flags).
    bool RunCommand(const QString& name) const;

private:
    // Reads value, range and increment of a found integer or float feature and
    // returns its type; OrvFeatureDataUnknown for a type without a numeric value.
    static OrvFeatureDataType ReadNumeric(FeaturePtr feature, double* value, double* minimum, double* maximum,
                                          double* increment);
    // ReadNumeric with the maximum snapped to the grid and a missing increment
    // replaced; all four -1 and false for a type without a numeric value.
    static bool ReadFittedRange(FeaturePtr feature, double* value, double* minimum, double* maximum, double* increment);

    FeatureList m_pFeatures;
};

// A failed boolean read gives false rather than -1.
template <> void FeatureManager::GetValue<bool>(FeaturePtr feature, bool* out);

#endif
