#include "TestCamera.h"

#include <QMap>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace TestCam
{

using Observer = OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>;

static QString text(OrvFeatureDataType type, const QVariant& value)
{
    if (type == OrvFeatureDataFloat)
        return QString::number(value.toDouble(), 'g', 12);
    return type == OrvFeatureDataBool ? QVariant(value.toBool()).toString() : value.toString();
}

// The value as a feature of the type holds it.
static QVariant fit(OrvFeatureDataType type, const QVariant& value)
{
    return type == OrvFeatureDataInt     ? QVariant(value.toLongLong())
           : type == OrvFeatureDataFloat ? QVariant(value.toDouble())
           : type == OrvFeatureDataBool  ? QVariant(value.toBool())
                                         : QVariant(value.toString());
}

// What reads and writes of a feature address: the whole feature, or one entry of its selector.
struct Slot
{
    QVariant value;
    bool writable = true;
    QStringList unavailable{};
};

struct FeatureData
{
    QString name, displayName;
    OrvFeatureDataType type;
    double minimum, maximum, increment;
    QStringList entries;
    Slot base; // as set up
    QString selector{};
    QMap<QString, Slot> perEntry{}; // each selector entry's own state, from `base` when first addressed
    std::vector<Observer> observers{};
    OrvCPP::shared_ptr<OrvCPP::Feature> handle{};

    Slot& at(const QString& entry)
    {
        auto it = perEntry.find(entry);
        return it != perEntry.end() ? *it : *perEntry.insert(entry, base);
    }
};

struct Core
{
    std::mutex mutex; // guards everything here
    std::deque<FeatureData> features;
    QStringList journal;
    QMap<QPair<QString, Op>, QPair<OrvErrorType, int>> faults; // code, calls left (-1: always)
    std::deque<FeatureData*> queue;                            // notifications, the front one being delivered
    std::condition_variable changed;                           // the queue or `stopping`
    bool stopping = false;
    std::thread notifier{[this] { deliver(); }};

    FeatureData* find(const QString& name)
    {
        auto it = std::find_if(features.begin(), features.end(), [&](const FeatureData& d) { return d.name == name; });
        return it == features.end() ? nullptr : &*it;
    }

    // The state that reads and writes of the feature address right now.
    Slot& slot(FeatureData& d)
    {
        const FeatureData* selector = find(d.selector);
        return selector ? d.at(selector->base.value.toString()) : d.base;
    }

    // An injected fault due on this call, or success.
    OrvErrorType fault(const QString& name, Op op)
    {
        auto it = faults.find(qMakePair(name, op));
        const OrvErrorType code = it == faults.end() ? OrvErrorSuccess : it->first;
        if (it != faults.end() && it->second > 0 && --it->second == 0)
            faults.erase(it);
        return code;
    }

    void enqueue(FeatureData* d)
    {
        queue.push_back(d);
        changed.notify_all();
    }

    // The notification thread: observers are called without the lock held.
    void deliver()
    {
        std::unique_lock<std::mutex> lock(mutex);
        for (;;)
        {
            changed.wait(lock, [this] { return stopping || !queue.empty(); });
            if (stopping)
                return;
            const std::vector<Observer> observers = queue.front()->observers;
            const OrvCPP::shared_ptr<OrvCPP::Feature> handle = queue.front()->handle;
            lock.unlock();
            for (const Observer& observer : observers)
                observer->FeatureChanged(handle);
            lock.lock();
            queue.pop_front();
            changed.notify_all();
        }
    }
};

class TestFeature : public OrvCPP::Feature
{
public:
    TestFeature(const std::shared_ptr<Core>& core, FeatureData& data)
        : m_core(core)
        , m_data(data)
    {
    }

    OrvErrorType GetName(std::string& v) override
    {
        return read(Op::GetName, {}, [&](Slot&) { v = m_data.name.toStdString(); });
    }
    OrvErrorType GetDisplayName(std::string& v) override
    {
        return read(Op::GetDisplayName, {}, [&](Slot&) { v = m_data.displayName.toStdString(); });
    }
    OrvErrorType GetCategory(std::string& v) override
    {
        return read(Op::GetCategory, {}, [&](Slot&) { v.clear(); });
    }
    OrvErrorType GetDataType(OrvFeatureDataType& v) override
    {
        return read(Op::GetDataType, {}, [&](Slot&) { v = m_data.type; });
    }
    OrvErrorType IsWritable(bool& v) override
    {
        return read(Op::IsWritable, {}, [&](Slot& s) { v = s.writable; });
    }
    OrvErrorType IsValueAvailable(const char* value, bool& v) override
    {
        const QString entry = QString::fromUtf8(value ? value : "");
        return read(Op::IsValueAvailable, {OrvFeatureDataEnum},
                    [&](Slot& s) { v = m_data.entries.contains(entry) && !s.unavailable.contains(entry); });
    }
    OrvErrorType GetValues(std::vector<std::string>& v) override
    {
        return read(Op::GetValues, {OrvFeatureDataEnum},
                    [&](Slot&)
                    {
                        v.clear();
                        for (const QString& entry : m_data.entries)
                            v.push_back(entry.toStdString());
                    });
    }
    OrvErrorType GetValue(std::string& v) override
    {
        return read(
            Op::GetString,
            {OrvFeatureDataInt, OrvFeatureDataFloat, OrvFeatureDataEnum, OrvFeatureDataString, OrvFeatureDataBool},
            [&](Slot& s) { v = text(m_data.type, s.value).toStdString(); });
    }
    OrvErrorType GetValue(double& v) override
    {
        return read(Op::GetDouble, {OrvFeatureDataFloat}, [&](Slot& s) { v = s.value.toDouble(); });
    }
    OrvErrorType GetValue(long long& v) override
    {
        return read(Op::GetInt, {OrvFeatureDataInt}, [&](Slot& s) { v = s.value.toLongLong(); });
    }
    OrvErrorType GetValue(bool& v) override
    {
        return read(Op::GetBool, {OrvFeatureDataBool}, [&](Slot& s) { v = s.value.toBool(); });
    }
    OrvErrorType GetRange(double& minimum, double& maximum) override
    {
        return read(Op::GetRangeDouble, {OrvFeatureDataFloat},
                    [&](Slot&) { minimum = m_data.minimum, maximum = m_data.maximum; });
    }
    OrvErrorType GetRange(long long& minimum, long long& maximum) override
    {
        return read(Op::GetRangeInt, {OrvFeatureDataInt},
                    [&](Slot&) { minimum = (long long)m_data.minimum, maximum = (long long)m_data.maximum; });
    }
    OrvErrorType GetIncrement(double& v) override
    {
        return read(Op::GetIncrementDouble, {OrvFeatureDataFloat}, [&](Slot&) { v = m_data.increment; });
    }
    OrvErrorType GetIncrement(long long& v) override
    {
        return read(Op::GetIncrementInt, {OrvFeatureDataInt}, [&](Slot&) { v = (long long)m_data.increment; });
    }
    OrvErrorType SetValue(double value) override
    {
        return write(Op::SetDouble, OrvFeatureDataFloat, value);
    }
    OrvErrorType SetValue(long long value) override
    {
        return write(Op::SetInt, OrvFeatureDataInt, value);
    }
    OrvErrorType SetValue(bool value) override
    {
        return write(Op::SetBool, OrvFeatureDataBool, value);
    }
    OrvErrorType SetValue(const char* value) override
    {
        return value ? write(Op::SetString, OrvFeatureDataString, QString::fromUtf8(value)) : OrvErrorBadParameter;
    }
    OrvErrorType RunCommand() override
    {
        return write(Op::RunCommand, OrvFeatureDataCommand, QVariant());
    }
    OrvErrorType RegisterObserver(const Observer& observer) override
    {
        return observe(Op::RegisterObserver, observer, true);
    }
    OrvErrorType UnregisterObserver(const Observer& observer) override
    {
        return observe(Op::UnregisterObserver, observer, false);
    }

private:
    // Runs a query under the camera's lock; an injected fault, a feature of a
    // type not in `types` (when given) or a missing increment fails it.
    template <class Body> OrvErrorType read(Op op, const QVector<OrvFeatureDataType>& types, Body body)
    {
        const std::shared_ptr<Core> core = m_core.lock();
        if (!core)
            return OrvErrorDeviceLost;
        std::lock_guard<std::mutex> lock(core->mutex);
        OrvErrorType code = core->fault(m_data.name, op);
        const bool noIncrement = (op == Op::GetIncrementDouble || op == Op::GetIncrementInt) && m_data.increment <= 0;
        if (code == OrvErrorSuccess && ((!types.isEmpty() && !types.contains(m_data.type)) || noIncrement))
            code = OrvErrorWrongType;
        else if (code == OrvErrorSuccess)
            body(core->slot(m_data));
        return code;
    }

    OrvErrorType observe(Op op, const Observer& observer, bool add)
    {
        std::vector<Observer>& all = m_data.observers;
        OrvErrorType code = observer ? OrvErrorSuccess : OrvErrorBadParameter;
        const OrvErrorType fault = read(op, {},
                                        [&](Slot&)
                                        {
                                            auto it = std::find(all.begin(), all.end(), observer);
                                            if (code == OrvErrorSuccess && (it != all.end()) == add)
                                                code = OrvErrorInvalidCall;
                                            else if (code == OrvErrorSuccess && add)
                                                all.push_back(observer);
                                            else if (code == OrvErrorSuccess)
                                                all.erase(it);
                                        });
        return fault != OrvErrorSuccess ? fault : code;
    }

    // Checks a write as a camera would (injected fault, type, access, range and
    // grid, entry), journals it, stores it and queues the change notifications,
    // also of the features whose value changes with this selector.
    OrvErrorType write(Op op, OrvFeatureDataType type, const QVariant& value)
    {
        const std::shared_ptr<Core> core = m_core.lock();
        if (!core)
            return OrvErrorDeviceLost;
        std::lock_guard<std::mutex> lock(core->mutex);
        const FeatureData& d = m_data;
        Slot& s = core->slot(m_data);
        const bool textual = d.type == OrvFeatureDataEnum || d.type == OrvFeatureDataString;
        const double v = value.toDouble();
        const bool offGrid = d.type == OrvFeatureDataInt && d.increment > 0 &&
                             (value.toLongLong() - (long long)d.minimum) % (long long)d.increment != 0;
        OrvErrorType code = core->fault(d.name, op);
        if (code == OrvErrorSuccess && d.type != type && !(type == OrvFeatureDataString && textual))
            code = OrvErrorWrongType;
        else if (code == OrvErrorSuccess && !s.writable)
            code = OrvErrorInvalidAccess;
        else if (code == OrvErrorSuccess && (d.type == OrvFeatureDataInt || d.type == OrvFeatureDataFloat) &&
                 (v < d.minimum || v > d.maximum || offGrid))
            code = OrvErrorInvalidValue;
        else if (code == OrvErrorSuccess && d.type == OrvFeatureDataEnum &&
                 (!d.entries.contains(value.toString()) || s.unavailable.contains(value.toString())))
            code = OrvErrorInvalidValue;
        const QString refused = code == OrvErrorSuccess ? QString() : QString(" refused %1").arg(code);
        core->journal << d.name + (type == OrvFeatureDataCommand ? "()" : "=" + text(d.type, value)) + refused;
        if (code != OrvErrorSuccess || type == OrvFeatureDataCommand)
            return code;
        QVector<QPair<FeatureData*, QString>> dependents;
        for (FeatureData& other : core->features)
            if (other.selector == d.name)
                dependents.append({&other, core->slot(other).value.toString()});
        s.value = fit(d.type, value);
        core->enqueue(&m_data);
        for (const auto& dependent : dependents)
            if (core->slot(*dependent.first).value.toString() != dependent.second)
                core->enqueue(dependent.first);
        return OrvErrorSuccess;
    }

    const std::weak_ptr<Core> m_core;
    FeatureData& m_data;
};

FeatureSetup& FeatureSetup::displayName(const QString& text)
{
    feature.displayName = text;
    return *this;
}

FeatureSetup& FeatureSetup::writable(bool on)
{
    feature.base.writable = on;
    return *this;
}

FeatureSetup& FeatureSetup::unavailable(const QStringList& entries)
{
    feature.base.unavailable = entries;
    return *this;
}

FeatureSetup& FeatureSetup::selectedBy(const QString& selectorName)
{
    feature.selector = selectorName;
    return *this;
}

FeatureSetup& FeatureSetup::writableAt(const QString& selectorEntry, bool on)
{
    feature.at(selectorEntry).writable = on;
    return *this;
}

TestCamera::TestCamera()
    : m_core(std::make_shared<Core>())
{
}

TestCamera::~TestCamera()
{
    {
        std::lock_guard<std::mutex> lock(m_core->mutex);
        m_core->stopping = true;
        m_core->changed.notify_all();
    }
    m_core->notifier.join();
}

FeatureSetup TestCamera::add(const QString& name, OrvFeatureDataType type, const QVariant& value, double minimum,
                             double maximum, double increment, const QStringList& entries)
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    m_core->features.push_back({name, name, type, minimum, maximum, increment, entries, {fit(type, value)}});
    FeatureData& d = m_core->features.back();
    d.handle = std::make_shared<TestFeature>(m_core, d);
    return {d};
}

FeatureSetup TestCamera::addInt(const QString& name, long long value, long long minimum, long long maximum,
                                long long increment)
{
    return add(name, OrvFeatureDataInt, value, double(minimum), double(maximum), double(increment));
}

FeatureSetup TestCamera::addEnum(const QString& name, const QStringList& entries, const QString& value)
{
    return add(name, OrvFeatureDataEnum, value, 0, 0, 0, entries);
}

FeatureList TestCamera::features() const
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    FeatureList list(new QVector<OrvCPP::shared_ptr<OrvCPP::Feature>>());
    for (const FeatureData& d : m_core->features)
        list->append(d.handle);
    return list;
}

OrvCPP::shared_ptr<OrvCPP::Feature> TestCamera::feature(const QString& name) const
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    FeatureData* d = m_core->find(name);
    return d ? d->handle : nullptr;
}

QString TestCamera::value(const QString& name) const
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    FeatureData* d = m_core->find(name);
    return d ? text(d->type, m_core->slot(*d).value) : QString();
}

void TestCamera::set(const QString& name, const QVariant& value, const QString& selectorEntry)
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    if (FeatureData* d = m_core->find(name))
        (selectorEntry.isNull() ? m_core->slot(*d) : d->at(selectorEntry)).value = fit(d->type, value);
}

QStringList TestCamera::takeJournal()
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    return std::exchange(m_core->journal, {});
}

void TestCamera::fail(const QString& name, Op op, OrvErrorType code, int times)
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    m_core->faults.insert(qMakePair(name, op), qMakePair(code, times));
}

void TestCamera::clearFaults()
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    m_core->faults.clear();
}

void TestCamera::notify(const QString& name)
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    if (FeatureData* d = m_core->find(name))
        m_core->enqueue(d);
}

void TestCamera::waitForNotifications() const
{
    std::unique_lock<std::mutex> lock(m_core->mutex);
    m_core->changed.wait(lock, [this] { return m_core->queue.empty(); });
}

int TestCamera::observerCount(const QString& name) const
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    FeatureData* d = m_core->find(name);
    return d ? int(d->observers.size()) : 0;
}

} // namespace TestCam
