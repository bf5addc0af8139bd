#ifndef FEATUREPOLLER_H
#define FEATUREPOLLER_H

#include <OrvCPP/OrvCPP.h>

#include <memory>
#include <vector>

class GenICamFeature;

// The notification thread of one device.
//
// Keeps the observers registered per feature and calls FeatureChanged for
// every observed feature whose value, writability or availability differs
// from what it last saw. Every reading it takes and every call to an observer
// happen on its own thread (a BackgroundJobs thread), never on a thread that
// called the camera API. It spends the camera's link sparingly:
// - registering and unregistering reach no register: what a feature looked
//   like is kept for as long as the feature lives, observed or not, and a
//   feature observed for the first time is read once by this thread (a
//   writer that comes first asks for that reading and waits for it, see
//   beforeWrite);
// - once a period it reads only what can have changed since its last look:
//   the observed features that are volatile (GenICam IsVolatile or Cachable
//   NoCache anywhere below them) and, after writes, the observed ones that
//   share a register node with what was written (pInvalidator links count);
// - writes only mark the features for the next look, and that look waits
//   until writes have paused, so a burst of writes (a preset, a tab that
//   points a selector at each line and back) causes one look, which sees the
//   settled state; writes that go on without a long pause (a page sampling
//   lines through a selector ten times a second) hold the look off for one
//   period at most, after which a short pause is enough;
// - a feature written through its own handle under a selector is reported
//   at the next look, whatever that look reads at the selector's setting of
//   then (the write may have gone to another line);
// - each feature's state is remembered per setting of the selector registers
//   it is indexed by, and compared with the state last seen under the same
//   setting (or, for a setting not seen before, with the last state);
// - a change found while one of a feature's observers was unregistered (a
//   page refreshing itself, while another page stays registered) is reported
//   again at the next look after that observer registers.
// FeatureChanged runs with no lock of the backend held. The thread starts with
// the first registration and ends with the poller.
class FeaturePoller
{
public:
    // The tab consumes changes once a second.
    static constexpr int DefaultPeriodMs = 1000;

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
    // Once it returns, no new call to the observer starts for this feature; a
    // call already running on the poller's thread is not waited for (it holds
    // its own reference to the observer until it returns).
    OrvErrorType unregisterObserver(const GenICamFeature* feature,
                                    const std::shared_ptr<OrvCPP::IFeatureObserver>& observer);

    // Called before anything may change the device (without the device lock):
    // features registered for the first time and not read yet are read first,
    // so that the change is compared with the state before it. The poller's
    // thread reads them; the caller waits for that, two seconds at most.
    void beforeWrite();
    // Called after something may have changed the device: the features that
    // depend on one of the registers (sorted; all features when null) are
    // read at the next look, once writes have paused. The writer, when given
    // and selector-indexed, is reported at that look.
    void afterWrite(const std::vector<const void*>* registers = nullptr, const GenICamFeature* writer = nullptr);

    struct State;

private:
    std::shared_ptr<State> m_state;
};

#endif
