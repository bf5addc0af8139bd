#ifndef TRIGGERMONITOR_H
#define TRIGGERMONITOR_H

#include "FeatureManager.h"

#include <QCoreApplication>
#include <QStringList>
#include <QVector>

// What decides when the camera takes a picture, as the I/O monitor shows it:
// the trigger that "TriggerSelector" points at, told as one sentence ("Frame
// start waits for a rising edge on Line0", "Free running"), and the states the
// camera reports through "AcquisitionStatusSelector"/"AcquisitionStatus"
// (waiting for a frame trigger, acquiring, exposing).
//
// The trigger selector is only read, never moved; reading the states walks
// "AcquisitionStatusSelector" over its entries and puts it back.
class TriggerMonitor
{
    Q_DECLARE_TR_FUNCTIONS(TriggerMonitor)

public:
    static constexpr int Unknown = -1;

    explicit TriggerMonitor(const FeatureList& features);

    QString sentence() const;

    // The entries of "AcquisitionStatusSelector"; empty without the feature.
    const QStringList& states() const;
    // One level per state, in the order of states(): 0, 1 or Unknown.
    QVector<int> sample();

    // "FrameStart" as words ("Frame start").
    static QString triggerInWords(const QString& selector);

private:
    FeatureManager m_features;
    QStringList m_states;
    FeatureManager::FeaturePtr m_stateSelector;
    FeatureManager::FeaturePtr m_state;
};

#endif
