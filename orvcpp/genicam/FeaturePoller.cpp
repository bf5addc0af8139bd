#include "FeaturePoller.h"

#include "GenICamFeature.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

using ObserverPtr = std::shared_ptr<OrvCPP::IFeatureObserver>;

struct FeaturePoller::State
{
    struct Entry
    {
        std::weak_ptr<GenICamFeature> feature;
        std::vector<ObserverPtr> observers;
        std::string last;
    };

    std::mutex mutex;
    std::condition_variable wake;      // period over, poll requested or stop
    std::condition_variable delivered; // a FeatureChanged call has returned
    std::map<const GenICamFeature*, Entry> entries;
    int periodMs = FeaturePoller::DefaultPeriodMs;
    bool pollRequested = false;
    std::atomic<bool> stop{false};
    std::thread thread;
    std::thread::id threadId;
    // The call in progress on the poller thread, if any.
    const GenICamFeature* deliveringFeature = nullptr;
    const OrvCPP::IFeatureObserver* deliveringObserver = nullptr;

    static void run(std::shared_ptr<State> self);
    void pollOnce();
};

void FeaturePoller::State::run(std::shared_ptr<State> self)
{
    // The thread keeps the state alive on its own: the device (and with it the
    // FeaturePoller) may be destroyed on this very thread when it drops the
    // last reference to a feature.
    std::unique_lock<std::mutex> lock(self->mutex);
    while (!self->stop)
    {
        self->wake.wait_for(lock, std::chrono::milliseconds(self->periodMs),
                            [&] { return self->stop || self->pollRequested; });
        if (self->stop)
            break;
        self->pollRequested = false;
        lock.unlock();
        self->pollOnce();
        lock.lock();
    }
}

void FeaturePoller::State::pollOnce()
{
    std::vector<std::pair<const GenICamFeature*, std::shared_ptr<GenICamFeature>>> observed;
    {
        std::lock_guard<std::mutex> lock(mutex);
        for (auto it = entries.begin(); it != entries.end();)
        {
            auto feature = it->second.feature.lock();
            if (!feature)
            {
                it = entries.erase(it);
                continue;
            }
            observed.emplace_back(it->first, std::move(feature));
            ++it;
        }
    }

    struct Change
    {
        const GenICamFeature* key;
        std::shared_ptr<GenICamFeature> feature;
        std::vector<ObserverPtr> observers;
    };
    std::vector<Change> changes;
    for (auto& item : observed)
    {
        if (stop)
            return;
        // Takes and releases the device lock.
        const std::string now = item.second->stateSnapshot();
        std::lock_guard<std::mutex> lock(mutex);
        auto it = entries.find(item.first);
        if (it == entries.end() || it->second.last == now)
            continue;
        it->second.last = now;
        changes.push_back({item.first, item.second, it->second.observers});
    }

    for (const Change& change : changes)
    {
        const std::shared_ptr<OrvCPP::Feature> feature = change.feature;
        for (const ObserverPtr& observer : change.observers)
        {
            {
                std::lock_guard<std::mutex> lock(mutex);
                if (stop)
                    return;
                auto it = entries.find(change.key);
                if (it == entries.end() || std::find(it->second.observers.begin(), it->second.observers.end(),
                                                     observer) == it->second.observers.end())
                    continue; // unregistered in the meantime
                deliveringFeature = change.key;
                deliveringObserver = observer.get();
            }
            observer->FeatureChanged(feature);
            {
                std::lock_guard<std::mutex> lock(mutex);
                deliveringFeature = nullptr;
                deliveringObserver = nullptr;
            }
            delivered.notify_all();
        }
    }
}

FeaturePoller::FeaturePoller()
    : m_state(std::make_shared<State>())
{
}

FeaturePoller::~FeaturePoller()
{
    std::thread thread;
    std::map<const GenICamFeature*, State::Entry> entries; // released outside the lock
    {
        std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->stop = true;
        entries.swap(m_state->entries);
        thread = std::move(m_state->thread);
    }
    m_state->wake.notify_all();
    m_state->delivered.notify_all();
    if (thread.joinable())
    {
        if (thread.get_id() == std::this_thread::get_id())
            thread.detach(); // the thread ends by itself and owns its state
        else
            thread.join();
    }
}

void FeaturePoller::setPeriod(int milliseconds)
{
    {
        std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->periodMs = std::max(1, milliseconds);
    }
    m_state->wake.notify_all();
}

int FeaturePoller::period() const
{
    std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->periodMs;
}

OrvErrorType FeaturePoller::registerObserver(const std::shared_ptr<GenICamFeature>& feature,
                                             const ObserverPtr& observer)
{
    if (!feature || !observer)
        return OrvErrorBadParameter;
    {
        std::lock_guard<std::mutex> lock(m_state->mutex);
        auto it = m_state->entries.find(feature.get());
        if (it != m_state->entries.end())
        {
            auto& observers = it->second.observers;
            if (std::find(observers.begin(), observers.end(), observer) != observers.end())
                return OrvErrorInvalidCall;
        }
    }
    // The reading to compare with: changes from now on are reported.
    const std::string now = feature->stateSnapshot();

    std::lock_guard<std::mutex> lock(m_state->mutex);
    if (m_state->stop)
        return OrvErrorDeviceLost;
    auto it = m_state->entries.find(feature.get());
    if (it == m_state->entries.end())
    {
        State::Entry entry;
        entry.feature = feature;
        entry.last = now;
        it = m_state->entries.emplace(feature.get(), std::move(entry)).first;
    }
    auto& observers = it->second.observers;
    if (std::find(observers.begin(), observers.end(), observer) != observers.end())
        return OrvErrorInvalidCall; // registered by another thread meanwhile
    observers.push_back(observer);
    if (!m_state->thread.joinable())
    {
        m_state->thread = std::thread(&State::run, m_state);
        m_state->threadId = m_state->thread.get_id();
    }
    return OrvErrorSuccess;
}

OrvErrorType FeaturePoller::unregisterObserver(const GenICamFeature* feature, const ObserverPtr& observer)
{
    if (!feature || !observer)
        return OrvErrorBadParameter;
    std::unique_lock<std::mutex> lock(m_state->mutex);
    auto it = m_state->entries.find(feature);
    if (it == m_state->entries.end())
        return OrvErrorInvalidCall;
    auto& observers = it->second.observers;
    auto found = std::find(observers.begin(), observers.end(), observer);
    if (found == observers.end())
        return OrvErrorInvalidCall;
    observers.erase(found);
    if (observers.empty())
        m_state->entries.erase(it);

    if (std::this_thread::get_id() != m_state->threadId)
    {
        State* state = m_state.get();
        state->delivered.wait(lock,
                              [&] {
                                  return state->stop || state->deliveringFeature != feature ||
                                         state->deliveringObserver != observer.get();
                              });
    }
    return OrvErrorSuccess;
}

void FeaturePoller::requestPoll()
{
    {
        std::lock_guard<std::mutex> lock(m_state->mutex);
        if (m_state->entries.empty())
            return;
        m_state->pollRequested = true;
    }
    m_state->wake.notify_all();
}
