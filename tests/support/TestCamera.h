#ifndef TESTCAMERA_H
#define TESTCAMERA_H

#include "FeatureList.h"

#include <QStringList>
#include <QVariant>

#include <memory>

// An in-memory camera for what a GenICam engine cannot give tests: an ordered
// journal of every write and command, faults injected on any operation, and
// change notifications delivered on a thread of its own (as a camera API does).
// tests/triggerio/TabCameras.cpp shows its use.
namespace TestCam
{

struct Core;
struct FeatureData;

// Set-up of one feature, returned by the TestCamera::add calls; done before the
// features are in use. A feature selected by another holds one value and
// writability per entry of the selector, each a copy of the set-up ones until
// changed.
struct FeatureSetup
{
    FeatureData& feature;

    FeatureSetup& displayName(const QString& text);
    FeatureSetup& writable(bool on, const QString& selectorEntry = QString());
    FeatureSetup& unavailable(const QStringList& entries);
    FeatureSetup& selectedBy(const QString& selectorName);
};

class TestCamera
{
public:
    TestCamera();
    ~TestCamera();
    Q_DISABLE_COPY(TestCamera)

    // A feature of any type; an increment of 0 means it reports none (its read fails).
    FeatureSetup add(const QString& name, OrvFeatureDataType type, const QVariant& value = {}, double minimum = 0,
                     double maximum = 1000, double increment = 1, const QStringList& entries = {});
    FeatureSetup addEnum(const QString& name, const QStringList& entries, const QString& value);

    // The host's view: a shared list of all features in the order they were added.
    FeatureList features() const;
    OrvCPP::shared_ptr<OrvCPP::Feature> feature(const QString& name) const;

    // Value as text at the selector's current entry; set there or at the given
    // entry without a journal entry or a notification (a missing name is ignored).
    QString value(const QString& name) const;
    void set(const QString& name, const QVariant& value, const QString& selectorEntry = QString());

    // Every write and command that reached the camera since the last call, in
    // order: "Name=Value", "Name()" for a command; a refused one gets " refused"
    // and its code appended.
    QStringList takeJournal();

    // Make an operation of a feature return the code: `times` calls, or always
    // (-1). The operation is the camera API call, with the type for the
    // overloaded ones: "GetName", "GetString", "GetRangeInt", "SetBool" and so on
    // (all are listed in TestCamera.cpp).
    void fail(const QString& name, const QString& op, OrvErrorType code, int times = -1);
    void clearFaults();

    // Report a change of the feature to its observers, on the notification thread.
    void notify(const QString& name);
    // Blocks until every queued notification has been delivered.
    void waitForNotifications() const;
    // Observers of the feature, or of all features for an empty name.
    int observerCount(const QString& name = QString()) const;

private:
    std::shared_ptr<Core> m_core;
};

} // namespace TestCam

#endif
