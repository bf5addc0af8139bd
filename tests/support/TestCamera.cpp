#include "TestCamera.h"

#include <QMap>
#include <QPair>
#include <QSet>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace TestCam
{

namespace
{

struct Slot
{
    QVariant value;
    bool writable = true;
    QSet<QString> unavailable;
};

QString text(OrvFeatureDataType type, const QVariant& value)
{
    if (type == OrvFeatureDataFloat)
        return QString::number(value.toDouble(), 'g', 12);
    if (type == OrvFeatureDataBool)
        return value.toBool() ? "true" : "false";
    return value.toString();
}

QVariant fit(OrvFeatureDataType type, const QVariant& value)
{
    switch (type)
    {
    case OrvFeatureDataInt:
        return value.toLongLong();
    case OrvFeatureDataFloat:
        return value.toDouble();
    case OrvFeatureDataBool:
        return value.toBool();
    default:
        return value.toString();
    }
}

} // namespace

class TestFeature;

struct FeatureData
{
    QString name;
    QString displayName;
    OrvFeatureDataType type = OrvFeatureDataUnknown;
    QStringList entries;
    double minimum = 0.0;
    double maximum = 0.0;
    double increment = 0.0;
    QString selector;
    Slot base;
    QMap<QString, Slot> perEntry;
    std::vector<OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>> observers;
    OrvCPP::shared_ptr<TestFeature> handle;
};

struct Core
{
    mutable std::recursive_mutex mutex;
    std::vector<FeatureData> features;
    QStringList journal;
    QMap<QPair<QString, int>, QPair<OrvErrorType, int>> faults; // code, calls left (-1: always)

    // Notification thread
    mutable std::mutex queueMutex;
    mutable std::condition_variable queueChanged;
    std::deque<int> queue;
    bool delivering = false;
    bool stopping = false;
    std::thread notifier;

    FeatureData* find(const QString& name)
    {
        for (FeatureData& d : features)
            if (d.name == name)
                return &d;
        return nullptr;
    }

    // The state that reads and writes of the feature address right now.
    Slot& slot(FeatureData& d)
    {
        FeatureData* selector = d.selector.isEmpty() ? nullptr : find(d.selector);
        auto it = selector ? d.perEntry.find(selector->base.value.toString()) : d.perEntry.end();
        return it == d.perEntry.end() ? d.base : it.value();
    }

    // An injected fault due on this call, or success.
    OrvErrorType enter(const QString& name, Op op)
    {
        auto it = faults.find(qMakePair(name, int(op)));
        if (it == faults.end())
            return OrvErrorSuccess;
        const OrvErrorType code = it->first;
        if (it->second > 0 && --it->second == 0)
            faults.erase(it);
        return code;
    }

    void enqueue(int index)
    {
        std::lock_guard<std::mutex> lock(queueMutex);
        queue.push_back(index);
        queueChanged.notify_all();
    }

    void run()
    {
        std::unique_lock<std::mutex> lock(queueMutex);
        for (;;)
        {
            delivering = false;
            queueChanged.notify_all();
            queueChanged.wait(lock, [this] { return stopping || !queue.empty(); });
            if (stopping)
                return;
            const int index = queue.front();
            queue.pop_front();
            delivering = true;
            lock.unlock();
            OrvCPP::shared_ptr<OrvCPP::Feature> handle;
            std::vector<OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>> observers;
            {
                std::lock_guard<std::recursive_mutex> data(mutex);
                handle = std::static_pointer_cast<OrvCPP::Feature>(features[index].handle);
                observers = features[index].observers;
            }
            // Delivered without any of the camera's locks held.
            for (const auto& observer : observers)
                observer->FeatureChanged(handle);
            lock.lock();
        }
    }
};

class TestFeature : public OrvCPP::Feature
{
public:
    TestFeature(const std::shared_ptr<Core>& core, int index)
        : m_core(core)
        , m_index(index)
    {
    }

    OrvErrorType GetName(std::string& v) override
    {
        return read(Op::GetName, [&](FeatureData& d, Slot&) { v = d.name.toStdString(); });
    }
    OrvErrorType GetDisplayName(std::string& v) override
    {
        return read(Op::GetDisplayName, [&](FeatureData& d, Slot&)
                    { v = (d.displayName.isEmpty() ? d.name : d.displayName).toStdString(); });
    }
    OrvErrorType GetCategory(std::string& v) override
    {
        return read(Op::GetCategory, [&](FeatureData&, Slot&) { v.clear(); });
    }
    OrvErrorType GetDataType(OrvFeatureDataType& v) override
    {
        return read(Op::GetDataType, [&](FeatureData& d, Slot&) { v = d.type; });
    }
    OrvErrorType IsWritable(bool& v) override
    {
        return read(Op::IsWritable, [&](FeatureData&, Slot& s) { v = s.writable; });
    }
    OrvErrorType IsValueAvailable(const char* value, bool& v) override
    {
        const QString entry = QString::fromUtf8(value ? value : "");
        return read(Op::IsValueAvailable,
                    [&](FeatureData& d, Slot& s) { v = d.entries.contains(entry) && !s.unavailable.contains(entry); },
                    {OrvFeatureDataEnum});
    }
    OrvErrorType GetValues(std::vector<std::string>& v) override
    {
        return read(Op::GetValues,
                    [&](FeatureData& d, Slot&)
                    {
                        v.clear();
                        for (const QString& entry : d.entries)
                            v.push_back(entry.toStdString());
                    },
                    {OrvFeatureDataEnum});
    }
    OrvErrorType GetValue(std::string& v) override
    {
        return read(
            Op::GetString, [&](FeatureData& d, Slot& s) { v = text(d.type, s.value).toStdString(); },
            {OrvFeatureDataInt, OrvFeatureDataFloat, OrvFeatureDataEnum, OrvFeatureDataString, OrvFeatureDataBool});
    }
    OrvErrorType GetValue(double& v) override
    {
        return read(Op::GetDouble, [&](FeatureData&, Slot& s) { v = s.value.toDouble(); }, {OrvFeatureDataFloat});
    }
    OrvErrorType GetValue(long long& v) override
    {
        return read(Op::GetInt, [&](FeatureData&, Slot& s) { v = s.value.toLongLong(); }, {OrvFeatureDataInt});
    }
    OrvErrorType GetValue(bool& v) override
    {
        return read(Op::GetBool, [&](FeatureData&, Slot& s) { v = s.value.toBool(); }, {OrvFeatureDataBool});
    }
    OrvErrorType GetRange(double& minimum, double& maximum) override
    {
        return read(Op::GetRangeDouble, [&](FeatureData& d, Slot&) { minimum = d.minimum, maximum = d.maximum; },
                    {OrvFeatureDataFloat});
    }
    OrvErrorType GetRange(long long& minimum, long long& maximum) override
    {
        return read(Op::GetRangeInt,
                    [&](FeatureData& d, Slot&) { minimum = (long long)d.minimum, maximum = (long long)d.maximum; },
                    {OrvFeatureDataInt});
    }
    OrvErrorType GetIncrement(double& v) override
    {
        return read(
            Op::GetIncrementDouble, [&](FeatureData& d, Slot&) { v = d.increment; }, {OrvFeatureDataFloat}, true);
    }
    OrvErrorType GetIncrement(long long& v) override
    {
        return read(
            Op::GetIncrementInt, [&](FeatureData& d, Slot&) { v = (long long)d.increment; }, {OrvFeatureDataInt}, true);
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
    OrvErrorType RegisterObserver(const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer) override
    {
        return observe(Op::RegisterObserver, observer, true);
    }
    OrvErrorType UnregisterObserver(const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer) override
    {
        return observe(Op::UnregisterObserver, observer, false);
    }

private:
    // Runs a query under the camera's lock: an injected fault, a feature of a type
    // not in `types` (when given), or a missing increment fails it.
    OrvErrorType read(Op op, const std::function<void(FeatureData&, Slot&)>& body,
                      const QVector<OrvFeatureDataType>& types = {}, bool increment = false)
    {
        std::shared_ptr<Core> core = m_core.lock();
        if (!core)
            return OrvErrorDeviceLost;
        std::lock_guard<std::recursive_mutex> lock(core->mutex);
        FeatureData& d = core->features[m_index];
        const OrvErrorType code = core->enter(d.name, op);
        if (code != OrvErrorSuccess)
            return code;
        if ((!types.isEmpty() && !types.contains(d.type)) || (increment && d.increment <= 0.0))
            return OrvErrorWrongType;
        body(d, core->slot(d));
        return OrvErrorSuccess;
    }

    OrvErrorType observe(Op op, const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer, bool add)
    {
        OrvErrorType code = OrvErrorSuccess;
        const OrvErrorType fault = read(op,
                                        [&](FeatureData& d, Slot&)
                                        {
                                            auto it = std::find(d.observers.begin(), d.observers.end(), observer);
                                            if (!observer)
                                                code = OrvErrorBadParameter;
                                            else if ((it != d.observers.end()) == add)
                                                code = OrvErrorInvalidCall;
                                            else if (add)
                                                d.observers.push_back(observer);
                                            else
                                                d.observers.erase(it);
                                        });
        return fault != OrvErrorSuccess ? fault : code;
    }

    // Checks a write as a camera would (type, access, range, grid, entry),
    // journals it, stores it and queues the change notifications, also of the
    // features whose value changes with this selector.
    OrvErrorType write(Op op, OrvFeatureDataType type, const QVariant& value)
    {
        std::shared_ptr<Core> core = m_core.lock();
        if (!core)
            return OrvErrorDeviceLost;
        std::lock_guard<std::recursive_mutex> lock(core->mutex);
        FeatureData& d = core->features[m_index];
        Slot& s = core->slot(d);
        OrvErrorType code = core->enter(d.name, op);
        const bool textual = d.type == OrvFeatureDataEnum || d.type == OrvFeatureDataString;
        const double v = value.toDouble();
        if (code == OrvErrorSuccess && d.type != type && !(type == OrvFeatureDataString && textual))
            code = OrvErrorWrongType;
        else if (code == OrvErrorSuccess && !s.writable)
            code = OrvErrorInvalidAccess;
        else if (code == OrvErrorSuccess && (d.type == OrvFeatureDataInt || d.type == OrvFeatureDataFloat) &&
                 (v < d.minimum || v > d.maximum ||
                  (d.type == OrvFeatureDataInt && d.increment > 0 &&
                   (value.toLongLong() - (long long)d.minimum) % (long long)d.increment != 0)))
            code = OrvErrorInvalidValue;
        else if (code == OrvErrorSuccess && d.type == OrvFeatureDataEnum &&
                 (!d.entries.contains(value.toString()) || s.unavailable.contains(value.toString())))
            code = OrvErrorInvalidValue;
        const QString refusal = code == OrvErrorSuccess ? QString() : QString(" refused %1").arg(code);
        core->journal << d.name + (type == OrvFeatureDataCommand ? "()" : "=" + text(d.type, value)) + refusal;
        if (code != OrvErrorSuccess || type == OrvFeatureDataCommand)
            return code;

        QMap<int, QString> dependents;
        for (size_t i = 0; i < core->features.size(); ++i)
            if (core->features[i].selector == d.name)
                dependents[int(i)] = core->slot(core->features[i]).value.toString();
        s.value = fit(d.type, value);
        core->enqueue(m_index);
        for (auto it = dependents.cbegin(); it != dependents.cend(); ++it)
            if (core->slot(core->features[it.key()]).value.toString() != it.value())
                core->enqueue(it.key());
        return OrvErrorSuccess;
    }

    std::weak_ptr<Core> m_core;
    int m_index;
};

FeatureSetup::FeatureSetup(std::shared_ptr<Core> core, int index)
    : m_core(std::move(core))
    , m_index(index)
{
}

FeatureSetup& FeatureSetup::displayName(const QString& text)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->features[m_index].displayName = text;
    return *this;
}

FeatureSetup& FeatureSetup::writable(bool on)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureData& d = m_core->features[m_index];
    d.base.writable = on;
    for (Slot& s : d.perEntry)
        s.writable = on;
    return *this;
}

FeatureSetup& FeatureSetup::unavailable(const QStringList& entries)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureData& d = m_core->features[m_index];
    d.base.unavailable = QSet<QString>(entries.begin(), entries.end());
    for (Slot& s : d.perEntry)
        s.unavailable = d.base.unavailable;
    return *this;
}

FeatureSetup& FeatureSetup::selectedBy(const QString& selectorName)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureData& d = m_core->features[m_index];
    d.selector = selectorName;
    d.perEntry.clear();
    if (FeatureData* selector = m_core->find(selectorName))
        for (const QString& entry : selector->entries)
            d.perEntry.insert(entry, d.base);
    return *this;
}

FeatureSetup& FeatureSetup::setAt(const QString& selectorEntry, const QVariant& value)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureData& d = m_core->features[m_index];
    d.perEntry[selectorEntry].value = fit(d.type, value);
    return *this;
}

FeatureSetup& FeatureSetup::writableAt(const QString& selectorEntry, bool on)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->features[m_index].perEntry[selectorEntry].writable = on;
    return *this;
}

TestCamera::TestCamera()
    : m_core(std::make_shared<Core>())
{
    Core* core = m_core.get();
    core->notifier = std::thread([core] { core->run(); });
}

TestCamera::~TestCamera()
{
    {
        std::lock_guard<std::mutex> lock(m_core->queueMutex);
        m_core->stopping = true;
        m_core->queueChanged.notify_all();
    }
    m_core->notifier.join();
    // Handles still held elsewhere answer "device lost" from now on.
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    for (FeatureData& d : m_core->features)
        d.observers.clear();
}

FeatureSetup TestCamera::add(const QString& name, OrvFeatureDataType type, const QVariant& value, double minimum,
                             double maximum, double increment, const QStringList& entries)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureData d;
    d.name = name;
    d.type = type;
    d.base.value = fit(type, value);
    d.minimum = minimum;
    d.maximum = maximum;
    d.increment = increment;
    d.entries = entries;
    const int index = int(m_core->features.size());
    d.handle = std::make_shared<TestFeature>(m_core, index);
    m_core->features.push_back(d);
    return FeatureSetup(m_core, index);
}

FeatureSetup TestCamera::addInt(const QString& name, long long value, long long minimum, long long maximum,
                                long long increment)
{
    return add(name, OrvFeatureDataInt, value, double(minimum), double(maximum), double(increment));
}

FeatureSetup TestCamera::addFloat(const QString& name, double value, double minimum, double maximum, double increment)
{
    return add(name, OrvFeatureDataFloat, value, minimum, maximum, increment);
}

FeatureSetup TestCamera::addBool(const QString& name, bool value)
{
    return add(name, OrvFeatureDataBool, value);
}

FeatureSetup TestCamera::addEnum(const QString& name, const QStringList& entries, const QString& value)
{
    return add(name, OrvFeatureDataEnum, value, 0, 0, 0, entries);
}

FeatureSetup TestCamera::addString(const QString& name, const QString& value)
{
    return add(name, OrvFeatureDataString, value);
}

FeatureSetup TestCamera::addCommand(const QString& name)
{
    return add(name, OrvFeatureDataCommand, QVariant());
}

FeatureSetup TestCamera::addRaw(const QString& name)
{
    return add(name, OrvFeatureDataRaw, QVariant());
}

FeatureList TestCamera::features() const
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureList list(new QVector<OrvCPP::shared_ptr<OrvCPP::Feature>>());
    for (const FeatureData& d : m_core->features)
        list->append(d.handle);
    return list;
}

OrvCPP::shared_ptr<OrvCPP::Feature> TestCamera::feature(const QString& name) const
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureData* d = m_core->find(name);
    return d ? d->handle : nullptr;
}

QString TestCamera::value(const QString& name) const
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureData* d = m_core->find(name);
    return d ? text(d->type, m_core->slot(*d).value) : QString();
}

void TestCamera::set(const QString& name, const QVariant& value)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    if (FeatureData* d = m_core->find(name))
        m_core->slot(*d).value = fit(d->type, value);
}

void TestCamera::setAt(const QString& name, const QString& selectorEntry, const QVariant& value)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    if (FeatureData* d = m_core->find(name))
        d->perEntry[selectorEntry].value = fit(d->type, value);
}

void TestCamera::setWritable(const QString& name, bool on)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    if (FeatureData* d = m_core->find(name))
        FeatureSetup(m_core, int(d - m_core->features.data())).writable(on);
}

QStringList TestCamera::journal() const
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    return m_core->journal;
}

void TestCamera::clearJournal()
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->journal.clear();
}

void TestCamera::fail(const QString& name, Op op, OrvErrorType code, int times)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->faults.insert(qMakePair(name, int(op)), qMakePair(code, times));
}

void TestCamera::clearFaults()
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->faults.clear();
}

void TestCamera::notify(const QString& name)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    if (FeatureData* d = m_core->find(name))
        m_core->enqueue(int(d - m_core->features.data()));
}

void TestCamera::waitForNotifications() const
{
    std::unique_lock<std::mutex> lock(m_core->queueMutex);
    m_core->queueChanged.wait(lock, [this] { return m_core->queue.empty() && !m_core->delivering; });
}

int TestCamera::observerCount(const QString& name) const
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureData* d = m_core->find(name);
    return d ? int(d->observers.size()) : 0;
}

} // namespace TestCam
