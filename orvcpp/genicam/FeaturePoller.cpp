#include "FeaturePoller.h"

#include "BackgroundJobs.h"
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
using WeakObserver = std::weak_ptr<OrvCPP::IFeatureObserver>;
using Clock = std::chrono::steady_clock;

namespace
{

// Selector settings remembered per feature; more are not worth keeping.
constexpr size_t MaxSettings = 64;
// How long a writer waits for the first readings of what it may change: they
// come from the poller's thread, which may be busy with a look or with an
// observer that takes its time.
constexpr auto FirstReadingsWait = std::chrono::seconds(2);

} // namespace

// What the next look owes an observed feature: its entry's stage, and how
// looks, writes and registrations move it on.
//
//   stage              a look claims it        a write to a register  the first observer
//                      (then reads it)         it depends on          registers
//   Clean              only when volatile:     -> Written [1]         -> Baseline when never
//                      -> Clean, told [2]                                read [3]
//   Baseline           -> BaselineRead         stays [4]              stays
//   BaselineRead       read, told nobody:      -> Written [1]         -> Baseline when never
//                      -> Clean                                          read
//   WrittenUnobserved  -> Clean, told [2]      -> Written [1]         -> Baseline [5]
//   Written            -> Clean, told [2]      -> Written [1]         stays
//   WrittenOwn         -> Clean, told [2]      stays                  stays
//
// [1] WrittenOwn when written through its own handle; WrittenUnobserved when
//     nobody observes it (and it is not Written already).
// [2] Told (FeatureChanged) when its state differs from the one last seen
//     under the same selector setting; always when written through its own
//     handle under a selector. Told to the observers registered then.
// [3] An observer that was unregistered when a change was told is owed it:
//     when it registers again the entry becomes WrittenUnobserved instead
//     (from Clean or BaselineRead), and its next look tells that observer
//     whatever it reads, if it tells nobody else.
// [4] Its first reading, still to come, is the state to compare with: a
//     writer waits for it (beforeWrite).
// [5] What changed while nobody looked is nobody's news.
enum class Stage : char
{
    Clean,
    Baseline,
    BaselineRead,
    WrittenUnobserved,
    Written,
    WrittenOwn
};

struct FeaturePoller::State
{
    struct Entry
    {
        std::weak_ptr<GenICamFeature> feature;
        std::vector<ObserverPtr> observers;
        bool known = false; // read at least once: what it depends on is known
        Stage stage = Stage::Clean;
        bool isBaseline() const
        {
            return stage == Stage::Baseline || stage == Stage::BaselineRead;
        }
        bool isWritten() const
        {
            return stage == Stage::WrittenUnobserved || stage == Stage::Written || stage == Stage::WrittenOwn;
        }
        // Observers that missed a change while they were unregistered (a tab
        // unregisters for the whole of its refresh, which takes seconds on a
        // slow link, while another page stays registered), and those of them
        // registered again, to whom the next look tells it.
        std::vector<WeakObserver> away;   // unregistered, not back yet
        std::vector<WeakObserver> missed; // away when a change was told
        std::vector<ObserverPtr> owed;    // back after missing one
        bool volatile_ = true; // may change by itself (until known otherwise)
        std::string last;
        std::map<std::string, std::string> bySetting; // selector setting -> state
        std::vector<const void*> registers;           // what it depends on, sorted
    };

    std::mutex mutex;
    std::condition_variable wake; // period over, first readings wanted, or stop
    std::map<const GenICamFeature*, Entry> entries;
    int periodMs = FeaturePoller::DefaultPeriodMs;
    Clock::time_point lastLook = Clock::now();
    Clock::time_point lastWrite;
    bool written = false; // since the last look
    int pendingBaselines = 0;
    std::atomic<bool> stop{false};
    bool running = false;  // the thread has started and not ended
    std::condition_variable settled; // first readings taken, or the thread ended
    std::thread::id threadId;

    static void run(std::shared_ptr<State> self);
    // Whether an observer of the entry is unregistered now and still alive.
    // Forgets observers that are gone, and observer (when given) in both lists.
    static void prune(std::vector<WeakObserver>& list, const ObserverPtr& observer = nullptr);
    // Reads the observed features that need it; baselinesOnly: only those
    // registered afresh, whose reading is compared with nothing.
    void look(bool baselinesOnly);
    void countBaselines();
    // Writes pause this long before a look (shorter for short periods): longer
    // than the tab's pauses inside a preset.
    Clock::duration quietTime() const
    {
        return std::chrono::milliseconds(std::min(250, periodMs / 2));
    }
};

void FeaturePoller::State::run(std::shared_ptr<State> self)
{
    // The thread keeps the state alive on its own: the device (and with it the
    // FeaturePoller) may be destroyed on this very thread when it drops the
    // last reference to a feature.
    std::unique_lock<std::mutex> lock(self->mutex);
    self->threadId = std::this_thread::get_id();
    while (!self->stop)
    {
        if (self->pendingBaselines > 0)
        {
            lock.unlock();
            self->look(true);
            lock.lock();
            continue;
        }
        // After writes one look once they pause, else one a period (it reads
        // only volatile features, if any). Writes that never pause for long
        // (a page that walks a selector and puts it back ten times a second)
        // hold the look off for half a period at most, then a short pause
        // will do: with the tab's tick of a period, a change is shown within
        // one and a half periods.
        const Clock::time_point quietAgain = self->lastWrite + self->quietTime();
        const Clock::time_point nextPeriod = self->lastLook + std::chrono::milliseconds(self->periodMs);
        const Clock::time_point halfPeriod = self->lastLook + std::chrono::milliseconds(self->periodMs / 2);
        const Clock::time_point due =
            self->written ? std::min(quietAgain, std::max(halfPeriod, self->lastWrite + self->quietTime() / 5))
                          : std::max(nextPeriod, quietAgain);
        if (Clock::now() < due)
        {
            // Woken early by a new period, a write, a registration or stop: decide again.
            self->wake.wait_until(lock, due);
            continue;
        }
        self->lastLook = Clock::now();
        self->written = false;
        lock.unlock();
        self->look(false);
        lock.lock();
    }
    self->running = false;
    self->settled.notify_all();
}

void FeaturePoller::State::countBaselines()
{
    pendingBaselines =
        int(std::count_if(entries.begin(), entries.end(),
                          [](const auto& item) { return item.second.isBaseline() && !item.second.observers.empty(); }));
}

void FeaturePoller::State::look(bool baselinesOnly)
{
    struct Reading
    {
        const GenICamFeature* key;
        std::shared_ptr<GenICamFeature> feature;
        bool ownWrite; // written through its own handle since the last look
        std::vector<ObserverPtr> owed; // told whatever the look finds
        bool baseline; // read to compare with, not reported
    };
    std::vector<Reading> toRead;
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
            Entry& entry = it->second;
            const bool wanted =
                !entry.observers.empty() &&
                (baselinesOnly ? entry.stage == Stage::Baseline
                               : entry.stage == Stage::Baseline || entry.isWritten() || entry.volatile_);
            if (wanted)
            {
                const bool baseline = entry.stage == Stage::Baseline;
                toRead.push_back({it->first, std::move(feature), entry.stage == Stage::WrittenOwn, {}, baseline});
                toRead.back().owed.swap(entry.owed);
                // A write from now on marks it again for the next look.
                entry.stage = baseline ? Stage::BaselineRead : Stage::Clean;
            }
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
    for (auto& item : toRead)
    {
        if (stop)
            return;
        // A writer waits for first readings: they go before the rest of this look.
        if (!baselinesOnly)
        {
            std::unique_lock<std::mutex> lock(mutex);
            if (pendingBaselines > 0)
            {
                lock.unlock();
                look(true);
            }
        }
        std::string setting;
        std::string now;
        bool isVolatile = true;
        std::vector<const void*> registers;
        // Takes and releases the device lock.
        item.feature->observe(setting, now, isVolatile, registers);
        std::lock_guard<std::mutex> lock(mutex);
        auto it = entries.find(item.key);
        if (it == entries.end())
            continue;
        Entry& entry = it->second;
        entry.volatile_ = isVolatile;
        entry.registers.swap(registers);
        auto seen = entry.bySetting.find(setting);
        // A feature written through its own handle under a selector is
        // reported whatever this look sees: the write may have gone to another
        // selector setting than the one the look reads (the tab points
        // "LineSelector" at a line, writes its "LineMode" and points it back),
        // and the tab relies on hearing of it (it rebuilds its output rows
        // when "LineMode" changes). Everything else is reported when its state
        // differs from the one last seen under the same setting.
        const bool changed = !item.baseline && !entry.isBaseline() &&
                             ((item.ownWrite && !setting.empty()) ||
                              (seen != entry.bySetting.end() ? seen->second : entry.last) != now);
        entry.known = true;
        if (entry.isBaseline())
            entry.stage = Stage::Clean;
        entry.last = now;
        if (seen == entry.bySetting.end() && entry.bySetting.size() >= MaxSettings)
            entry.bySetting.clear();
        entry.bySetting[setting] = now;
        if (changed)
        {
            for (const WeakObserver& gone : entry.away)
            {
                prune(entry.missed, gone.lock());
                entry.missed.push_back(gone);
            }
            prune(entry.missed);
        }
        const std::vector<ObserverPtr>& told = changed ? entry.observers : item.owed;
        if (!told.empty())
            changes.push_back({item.key, item.feature, told});
    }
    {
        std::lock_guard<std::mutex> lock(mutex);
        countBaselines();
    }
    settled.notify_all();

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
                if (it == entries.end())
                    continue;
                if (std::find(it->second.observers.begin(), it->second.observers.end(), observer) ==
                    it->second.observers.end())
                {
                    it->second.missed.push_back(observer); // unregistered in the meantime: told when it is back
                    continue;
                }
            }
            observer->FeatureChanged(feature);
        }
    }
}

void FeaturePoller::State::prune(std::vector<WeakObserver>& list, const ObserverPtr& observer)
{
    list.erase(std::remove_if(list.begin(), list.end(),
                              [&](const WeakObserver& gone)
                              { return gone.expired() || (observer && gone.lock() == observer); }),
               list.end());
}

FeaturePoller::FeaturePoller()
    : m_state(std::make_shared<State>())
{
}

FeaturePoller::~FeaturePoller()
{
    std::map<const GenICamFeature*, State::Entry> entries; // released outside the lock
    {
        std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->stop = true;
        entries.swap(m_state->entries);
    }
    m_state->wake.notify_all();
    // The thread's owner (BackgroundJobs) joins it; here it is only waited
    // for, so that nothing of this device is read once it is gone. On the
    // thread itself (it dropped the last reference to the device) there is
    // nothing to wait for: it ends as soon as this returns.
    std::unique_lock<std::mutex> lock(m_state->mutex);
    if (m_state->threadId != std::this_thread::get_id())
        m_state->settled.wait(lock, [this] { return !m_state->running; });
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
    std::lock_guard<std::mutex> lock(m_state->mutex);
    if (m_state->stop)
        return OrvErrorDeviceLost;
    auto it = m_state->entries.find(feature.get());
    if (it != m_state->entries.end() && it->second.feature.lock() != feature)
    {
        // A feature gone since, whose address the new one has taken.
        m_state->entries.erase(it);
        it = m_state->entries.end();
    }
    if (it == m_state->entries.end())
    {
        State::Entry entry;
        entry.feature = feature;
        it = m_state->entries.emplace(feature.get(), std::move(entry)).first;
    }
    State::Entry& entry = it->second;
    auto& observers = entry.observers;
    if (std::find(observers.begin(), observers.end(), observer) != observers.end())
        return OrvErrorInvalidCall;
    // Changes from now on are reported: a feature never read, or written only
    // while nobody observed it, is read soon on the poller's thread and
    // compared from then on. A change told to others while this observer was
    // unregistered is told to it at the next look (the tab unregisters for
    // the whole of its refresh). Otherwise what was last seen still holds.
    State::prune(entry.away, observer);
    const bool owed = std::any_of(entry.missed.begin(), entry.missed.end(),
                                  [&](const WeakObserver& gone) { return gone.lock() == observer; });
    State::prune(entry.missed, observer);
    if (owed)
    {
        entry.owed.push_back(observer);
        if (entry.stage == Stage::Clean || entry.stage == Stage::BaselineRead)
            entry.stage = Stage::WrittenUnobserved; // read at the next look and reported
        m_state->wake.notify_all();
    }
    else if (observers.empty() && (!entry.known || entry.stage == Stage::WrittenUnobserved))
    {
        entry.stage = Stage::Baseline;
        m_state->wake.notify_all();
    }
    observers.push_back(observer);
    m_state->countBaselines();
    if (!m_state->running)
    {
        m_state->running = true;
        BackgroundJobs::start([state = m_state] { State::run(state); });
    }
    return OrvErrorSuccess;
}

OrvErrorType FeaturePoller::unregisterObserver(const GenICamFeature* feature, const ObserverPtr& observer)
{
    if (!feature || !observer)
        return OrvErrorBadParameter;
    std::lock_guard<std::mutex> lock(m_state->mutex);
    auto it = m_state->entries.find(feature);
    if (it == m_state->entries.end())
        return OrvErrorInvalidCall;
    auto& observers = it->second.observers;
    auto found = std::find(observers.begin(), observers.end(), observer);
    if (found == observers.end())
        return OrvErrorInvalidCall;
    // The entry stays, with what the feature last looked like, for the next
    // registration. A call to this observer in progress on the poller's thread
    // is not waited for: it holds the observer until it returns.
    observers.erase(found);
    it->second.away.push_back(observer);
    m_state->countBaselines();
    return OrvErrorSuccess;
}

void FeaturePoller::beforeWrite()
{
    // Features registered for the first time and not read yet are read by the
    // poller's thread, which the writer asks for them and waits for (with a
    // bound): their readings, and every call to an observer, stay on that one
    // thread. An observer that writes from FeatureChanged does not wait for
    // itself.
    std::unique_lock<std::mutex> lock(m_state->mutex);
    if (m_state->pendingBaselines == 0 || m_state->threadId == std::this_thread::get_id())
        return;
    m_state->wake.notify_all();
    m_state->settled.wait_for(lock, FirstReadingsWait,
                              [this] { return m_state->pendingBaselines == 0 || !m_state->running; });
}

void FeaturePoller::afterWrite(const std::vector<const void*>* registers, const GenICamFeature* writer)
{
    bool first = false;
    {
        std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->lastWrite = Clock::now();
        first = !m_state->written;
        m_state->written = true;
        for (auto& item : m_state->entries)
        {
            // Not read yet: what it depends on is not known, so it may depend on anything.
            const std::vector<const void*>& depends = item.second.registers;
            if (!registers || !item.second.known ||
                std::find_first_of(depends.begin(), depends.end(), registers->begin(), registers->end()) !=
                    depends.end())
            {
                State::Entry& entry = item.second;
                if (entry.stage == Stage::Baseline)
                    continue; // its first reading, still to come, is the state before
                if (entry.observers.empty() && entry.stage != Stage::Written && entry.stage != Stage::WrittenOwn)
                    entry.stage = Stage::WrittenUnobserved;
                else
                    entry.stage =
                        item.first == writer || entry.stage == Stage::WrittenOwn ? Stage::WrittenOwn : Stage::Written;
            }
        }
    }
    // The first write of a burst moves the next look closer; later ones push it on.
    if (first)
        m_state->wake.notify_all();
}
