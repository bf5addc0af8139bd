#ifndef FEATUREPOLLER_H
#define FEATUREPOLLER_H

#include <OrvCPP/OrvCPP.h>

#include <memory>

class GenICamFeature;

// The notification thread of one device.
//
// Keeps the observers registered per feature, reads the observed features
// every period (and at once after a write, see requestPoll) and calls
// FeatureChanged for every feature whose value, writability or availability
// differs from the last reading. Only features with observers are read.
// FeatureChanged runs on the poller's thread with no lock of the backend held.
// The thread starts with the first registration.
class FeaturePoller
{
public:
    static constexpr int DefaultPeriodMs = 250;

    FeaturePoller();
    ~FeaturePoller();

    FeaturePoller(const FeaturePoller&) = delete;
    FeaturePoller& operator=(const FeaturePoller&) = delete;

    void setPeriod(int milliseconds);
    int period() const;

    // OrvErrorInvalidCall when the observer is already registered on the
    // feature, OrvErrorBadParameter for a null observer.
    OrvErrorType registerObserver(const std::shared_ptr<GenICamFeature>& feature,
                                  const std::shared_ptr<OrvCPP::IFeatureObserver>& observer);
    // OrvErrorInvalidCall when the observer is not registered on the feature.
    // Once it returns, the observer is not called again for this feature (when
    // called from another thread than the poller's, it waits for a call in
    // progress to end).
    OrvErrorType unregisterObserver(const GenICamFeature* feature,
                                    const std::shared_ptr<OrvCPP::IFeatureObserver>& observer);

    // Reads the observed features as soon as possible, without waiting for the period.
    void requestPoll();

    struct State;

private:
    std::shared_ptr<State> m_state;
};

#endif
