#include "TestCamera.h"

#include <QMap>
#include <QPair>
#include <QSet>

#include <condition_variable>
#include <deque>
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

QString typeName(OrvFeatureDataType type, const QVariant& value)
{
    switch (type)
    {
    case OrvFeatureDataInt:
        return QString::number(value.toLongLong());
    case OrvFeatureDataFloat:
        return QString::number(value.toDouble(), 'g', 12);
    case OrvFeatureDataBool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    default:
        return value.toString();
    }
}

QVariant fitType(OrvFeatureDataType type, const QVariant& value)
{
    switch (type)
    {
    case OrvFeatureDataInt:
        return QVariant(value.toLongLong());
    case OrvFeatureDataFloat:
        return QVariant(value.toDouble());
    case OrvFeatureDataBool:
        return QVariant(value.toBool());
    default:
        return QVariant(value.toString());
    }
}

} // namespace

struct FeatureData
{
    QString name;
    QString displayName;
    QString category;
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

struct Fault
{
    OrvErrorType code;
    int remaining;
};

struct Core
{
    mutable std::recursive_mutex mutex;
    std::vector<FeatureData> features;
    QStringList journal;
    QStringList reads;
    QMap<QPair<QString, int>, int> calls;
    QMap<QPair<QString, int>, Fault> faults;

    // Notification thread
    mutable std::mutex queueMutex;
    mutable std::condition_variable queueChanged;
    std::deque<int> queue;
    bool delivering = false;
    bool stopping = false;
    std::thread notifier;

    int indexOf(const QString& name) const
    {
        for (size_t i = 0; i < features.size(); ++i)
            if (features[i].name == name)
                return static_cast<int>(i);
        return -1;
    }

    // The state that reads and writes of the feature address right now.
    Slot& slot(FeatureData& data)
    {
        if (data.selector.isEmpty())
            return data.base;
        const int sel = indexOf(data.selector);
        if (sel < 0)
            return data.base;
        const QString entry = features[sel].base.value.toString();
        auto it = data.perEntry.find(entry);
        return it == data.perEntry.end() ? data.base : it.value();
    }

    // Counts the call and answers an injected fault, if one is due.
    OrvErrorType enter(const QString& name, Op op)
    {
        const QPair<QString, int> key(name, static_cast<int>(op));
        ++calls[key];
        if (op == Op::GetString || op == Op::GetDouble || op == Op::GetInt || op == Op::GetBool)
            reads.append(name);
        auto it = faults.find(key);
        if (it == faults.end())
            return OrvErrorSuccess;
        const OrvErrorType code = it->code;
        if (it->remaining > 0 && --it->remaining == 0)
            faults.erase(it);
        return code;
    }

    void enqueue(int index)
    {
        {
            std::lock_guard<std::mutex> lock(queueMutex);
            queue.push_back(index);
        }
        queueChanged.notify_all();
    }

    void run()
    {
        for (;;)
        {
            int index = -1;
            {
                std::unique_lock<std::mutex> lock(queueMutex);
                delivering = false;
                queueChanged.notify_all();
                queueChanged.wait(lock, [this] { return stopping || !queue.empty(); });
                if (stopping)
                    return;
                index = queue.front();
                queue.pop_front();
                delivering = true;
            }
            OrvCPP::shared_ptr<OrvCPP::Feature> handle;
            std::vector<OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>> observers;
            {
                std::lock_guard<std::recursive_mutex> lock(mutex);
                handle = std::static_pointer_cast<OrvCPP::Feature>(features[index].handle);
                observers = features[index].observers;
            }
            // Delivered without any of the camera's locks held.
            for (const auto& observer : observers)
                observer->FeatureChanged(handle);
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

    OrvErrorType GetName(std::string& name) override
    {
        return read(Op::GetName,
                    [&](FeatureData& d, Slot&)
                    {
                        name = d.name.toStdString();
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType GetDisplayName(std::string& displayName) override
    {
        return read(Op::GetDisplayName,
                    [&](FeatureData& d, Slot&)
                    {
                        displayName = (d.displayName.isEmpty() ? d.name : d.displayName).toStdString();
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType GetCategory(std::string& category) override
    {
        return read(Op::GetCategory,
                    [&](FeatureData& d, Slot&)
                    {
                        category = d.category.toStdString();
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType GetDataType(OrvFeatureDataType& type) override
    {
        return read(Op::GetDataType,
                    [&](FeatureData& d, Slot&)
                    {
                        type = d.type;
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType IsWritable(bool& writable) override
    {
        return read(Op::IsWritable,
                    [&](FeatureData&, Slot& s)
                    {
                        writable = s.writable;
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType IsValueAvailable(const char* value, bool& available) override
    {
        return read(Op::IsValueAvailable,
                    [&](FeatureData& d, Slot& s)
                    {
                        if (!value)
                            return OrvErrorBadParameter;
                        if (d.type != OrvFeatureDataEnum)
                            return OrvErrorWrongType;
                        const QString entry = QString::fromUtf8(value);
                        if (!d.entries.contains(entry))
                            return OrvErrorInvalidValue;
                        available = !s.unavailable.contains(entry);
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType GetValues(std::vector<std::string>& values) override
    {
        return read(Op::GetValues,
                    [&](FeatureData& d, Slot&)
                    {
                        if (d.type != OrvFeatureDataEnum)
                            return OrvErrorWrongType;
                        values.clear();
                        for (const QString& entry : d.entries)
                            values.push_back(entry.toStdString());
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType GetValue(std::string& value) override
    {
        return read(Op::GetString,
                    [&](FeatureData& d, Slot& s)
                    {
                        if (d.type == OrvFeatureDataCommand || d.type == OrvFeatureDataRaw)
                            return OrvErrorWrongType;
                        value = typeName(d.type, s.value).toStdString();
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType GetValue(double& value) override
    {
        return read(Op::GetDouble,
                    [&](FeatureData& d, Slot& s)
                    {
                        if (d.type != OrvFeatureDataFloat)
                            return OrvErrorWrongType;
                        value = s.value.toDouble();
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType GetValue(long long& value) override
    {
        return read(Op::GetInt,
                    [&](FeatureData& d, Slot& s)
                    {
                        if (d.type != OrvFeatureDataInt)
                            return OrvErrorWrongType;
                        value = s.value.toLongLong();
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType GetValue(bool& value) override
    {
        return read(Op::GetBool,
                    [&](FeatureData& d, Slot& s)
                    {
                        if (d.type != OrvFeatureDataBool)
                            return OrvErrorWrongType;
                        value = s.value.toBool();
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType GetRange(double& minimum, double& maximum) override
    {
        return read(Op::GetRangeDouble,
                    [&](FeatureData& d, Slot&)
                    {
                        if (d.type != OrvFeatureDataFloat)
                            return OrvErrorWrongType;
                        minimum = d.minimum;
                        maximum = d.maximum;
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType GetRange(long long& minimum, long long& maximum) override
    {
        return read(Op::GetRangeInt,
                    [&](FeatureData& d, Slot&)
                    {
                        if (d.type != OrvFeatureDataInt)
                            return OrvErrorWrongType;
                        minimum = static_cast<long long>(d.minimum);
                        maximum = static_cast<long long>(d.maximum);
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType GetIncrement(double& increment) override
    {
        return read(Op::GetIncrementDouble,
                    [&](FeatureData& d, Slot&)
                    {
                        if (d.type != OrvFeatureDataFloat || d.increment <= 0.0)
                            return OrvErrorWrongType;
                        increment = d.increment;
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType GetIncrement(long long& increment) override
    {
        return read(Op::GetIncrementInt,
                    [&](FeatureData& d, Slot&)
                    {
                        if (d.type != OrvFeatureDataInt || d.increment <= 0.0)
                            return OrvErrorWrongType;
                        increment = static_cast<long long>(d.increment);
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType SetValue(double value) override
    {
        return write(Op::SetDouble, OrvFeatureDataFloat, QVariant(value));
    }

    OrvErrorType SetValue(long long value) override
    {
        return write(Op::SetInt, OrvFeatureDataInt, QVariant(value));
    }

    OrvErrorType SetValue(bool value) override
    {
        return write(Op::SetBool, OrvFeatureDataBool, QVariant(value));
    }

    OrvErrorType SetValue(const char* value) override
    {
        if (!value)
            return OrvErrorBadParameter;
        return write(Op::SetString, OrvFeatureDataString, QVariant(QString::fromUtf8(value)));
    }

    OrvErrorType RunCommand() override
    {
        std::shared_ptr<Core> core = m_core.lock();
        if (!core)
            return OrvErrorDeviceLost;
        std::lock_guard<std::recursive_mutex> lock(core->mutex);
        FeatureData& d = core->features[m_index];
        OrvErrorType code = core->enter(d.name, Op::RunCommand);
        if (code == OrvErrorSuccess && d.type != OrvFeatureDataCommand)
            code = OrvErrorWrongType;
        core->journal.append(d.name + QStringLiteral("()") + refusal(code));
        return code;
    }

    OrvErrorType RegisterObserver(const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer) override
    {
        return read(Op::RegisterObserver,
                    [&](FeatureData& d, Slot&)
                    {
                        if (!observer)
                            return OrvErrorBadParameter;
                        for (const auto& o : d.observers)
                            if (o == observer)
                                return OrvErrorInvalidCall;
                        d.observers.push_back(observer);
                        return OrvErrorSuccess;
                    });
    }

    OrvErrorType UnregisterObserver(const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer) override
    {
        return read(Op::UnregisterObserver,
                    [&](FeatureData& d, Slot&)
                    {
                        for (auto it = d.observers.begin(); it != d.observers.end(); ++it)
                        {
                            if (*it == observer)
                            {
                                d.observers.erase(it);
                                return OrvErrorSuccess;
                            }
                        }
                        return OrvErrorInvalidCall;
                    });
    }

private:
    static QString refusal(OrvErrorType code)
    {
        return code == OrvErrorSuccess ? QString() : QStringLiteral(" refused %1").arg(code);
    }

    template <typename Body> OrvErrorType read(Op op, Body body)
    {
        std::shared_ptr<Core> core = m_core.lock();
        if (!core)
            return OrvErrorDeviceLost;
        std::lock_guard<std::recursive_mutex> lock(core->mutex);
        FeatureData& d = core->features[m_index];
        const OrvErrorType code = core->enter(d.name, op);
        if (code != OrvErrorSuccess)
            return code;
        return body(d, core->slot(d));
    }

    // Checks a write as a camera would (type, access, range, entry), journals it,
    // stores it, and queues the change notifications.
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
        if (code == OrvErrorSuccess && !(d.type == type || (type == OrvFeatureDataString && textual)))
            code = OrvErrorWrongType;
        if (code == OrvErrorSuccess && !s.writable)
            code = OrvErrorInvalidAccess;
        if (code == OrvErrorSuccess && (d.type == OrvFeatureDataInt || d.type == OrvFeatureDataFloat))
        {
            const double v = value.toDouble();
            if (v < d.minimum || v > d.maximum)
                code = OrvErrorInvalidValue;
            else if (d.type == OrvFeatureDataInt && d.increment > 0 &&
                     (value.toLongLong() - static_cast<long long>(d.minimum)) % static_cast<long long>(d.increment) !=
                         0)
                code = OrvErrorInvalidValue;
        }
        if (code == OrvErrorSuccess && d.type == OrvFeatureDataEnum)
        {
            const QString entry = value.toString();
            if (!d.entries.contains(entry) || s.unavailable.contains(entry))
                code = OrvErrorInvalidValue;
        }
        core->journal.append(d.name + QLatin1Char('=') + typeName(d.type, value) + refusal(code));
        if (code != OrvErrorSuccess)
            return code;

        // Dependent features whose reads change with this write are reported too.
        QVector<int> dependents;
        for (size_t i = 0; i < core->features.size(); ++i)
            if (core->features[i].selector == d.name)
                dependents.append(static_cast<int>(i));
        QVector<QString> before;
        for (int i : dependents)
            before.append(core->slot(core->features[i]).value.toString());
        s.value = fitType(d.type, value);
        core->enqueue(m_index);
        for (int k = 0; k < dependents.size(); ++k)
            if (core->slot(core->features[dependents[k]]).value.toString() != before[k])
                core->enqueue(dependents[k]);
        return OrvErrorSuccess;
    }

    std::weak_ptr<Core> m_core;
    int m_index;
};

// ---------------------------------------------------------------- FeatureSetup

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

FeatureSetup& FeatureSetup::category(const QString& text)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->features[m_index].category = text;
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
    const int sel = m_core->indexOf(selectorName);
    if (sel >= 0)
        for (const QString& entry : m_core->features[sel].entries)
            d.perEntry.insert(entry, d.base);
    return *this;
}

FeatureSetup& FeatureSetup::setAt(const QString& selectorEntry, const QVariant& value)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureData& d = m_core->features[m_index];
    d.perEntry[selectorEntry].value = fitType(d.type, value);
    return *this;
}

FeatureSetup& FeatureSetup::writableAt(const QString& selectorEntry, bool on)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->features[m_index].perEntry[selectorEntry].writable = on;
    return *this;
}

FeatureSetup& FeatureSetup::unavailableAt(const QString& selectorEntry, const QStringList& entries)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->features[m_index].perEntry[selectorEntry].unavailable = QSet<QString>(entries.begin(), entries.end());
    return *this;
}

// ---------------------------------------------------------------- TestCamera

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
    }
    m_core->queueChanged.notify_all();
    m_core->notifier.join();
    // Handles still held elsewhere answer "device lost" from now on.
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    for (FeatureData& d : m_core->features)
        d.observers.clear();
}

FeatureSetup TestCamera::add(const QString& name, OrvFeatureDataType type, const QVariant& value)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureData d;
    d.name = name;
    d.type = type;
    d.base.value = fitType(type, value);
    const int index = static_cast<int>(m_core->features.size());
    d.handle = std::make_shared<TestFeature>(m_core, index);
    m_core->features.push_back(d);
    return FeatureSetup(m_core, index);
}

FeatureSetup TestCamera::addInt(const QString& name, long long value, long long minimum, long long maximum,
                                long long increment)
{
    FeatureSetup setup = add(name, OrvFeatureDataInt, QVariant(value));
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureData& d = m_core->features.back();
    d.minimum = static_cast<double>(minimum);
    d.maximum = static_cast<double>(maximum);
    d.increment = static_cast<double>(increment);
    return setup;
}

FeatureSetup TestCamera::addFloat(const QString& name, double value, double minimum, double maximum, double increment)
{
    FeatureSetup setup = add(name, OrvFeatureDataFloat, QVariant(value));
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    FeatureData& d = m_core->features.back();
    d.minimum = minimum;
    d.maximum = maximum;
    d.increment = increment;
    return setup;
}

FeatureSetup TestCamera::addBool(const QString& name, bool value)
{
    return add(name, OrvFeatureDataBool, QVariant(value));
}

FeatureSetup TestCamera::addEnum(const QString& name, const QStringList& entries, const QString& value)
{
    FeatureSetup setup = add(name, OrvFeatureDataEnum, QVariant(value));
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->features.back().entries = entries;
    return setup;
}

FeatureSetup TestCamera::addString(const QString& name, const QString& value)
{
    return add(name, OrvFeatureDataString, QVariant(value));
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
    const int index = m_core->indexOf(name);
    if (index < 0)
        return nullptr;
    return m_core->features[index].handle;
}

QString TestCamera::value(const QString& name) const
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    const int index = m_core->indexOf(name);
    if (index < 0)
        return QString();
    FeatureData& d = m_core->features[index];
    return typeName(d.type, m_core->slot(d).value);
}

QString TestCamera::valueAt(const QString& name, const QString& selectorEntry) const
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    const int index = m_core->indexOf(name);
    if (index < 0)
        return QString();
    const FeatureData& d = m_core->features[index];
    return typeName(d.type, d.perEntry.value(selectorEntry, d.base).value);
}

void TestCamera::set(const QString& name, const QVariant& value)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    const int index = m_core->indexOf(name);
    if (index < 0)
        return;
    FeatureData& d = m_core->features[index];
    m_core->slot(d).value = fitType(d.type, value);
}

void TestCamera::setAt(const QString& name, const QString& selectorEntry, const QVariant& value)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    const int index = m_core->indexOf(name);
    if (index < 0)
        return;
    FeatureData& d = m_core->features[index];
    d.perEntry[selectorEntry].value = fitType(d.type, value);
}

void TestCamera::setWritable(const QString& name, bool on)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    const int index = m_core->indexOf(name);
    if (index >= 0)
        FeatureSetup(m_core, index).writable(on);
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

QStringList TestCamera::reads() const
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    return m_core->reads;
}

void TestCamera::clearReads()
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->reads.clear();
}

int TestCamera::calls(const QString& name, Op op) const
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    return m_core->calls.value(qMakePair(name, static_cast<int>(op)), 0);
}

int TestCamera::totalCalls() const
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    int total = 0;
    for (int n : m_core->calls)
        total += n;
    return total;
}

void TestCamera::resetCalls()
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->calls.clear();
}

void TestCamera::fail(const QString& name, Op op, OrvErrorType code, int times)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->faults.insert(qMakePair(name, static_cast<int>(op)), Fault{code, times});
}

void TestCamera::clearFaults()
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    m_core->faults.clear();
}

void TestCamera::notify(const QString& name)
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    const int index = m_core->indexOf(name);
    if (index >= 0)
        m_core->enqueue(index);
}

void TestCamera::waitForNotifications() const
{
    std::unique_lock<std::mutex> lock(m_core->queueMutex);
    m_core->queueChanged.wait(lock, [this] { return m_core->queue.empty() && !m_core->delivering; });
}

int TestCamera::observerCount(const QString& name) const
{
    std::lock_guard<std::recursive_mutex> lock(m_core->mutex);
    const int index = m_core->indexOf(name);
    return index < 0 ? 0 : static_cast<int>(m_core->features[index].observers.size());
}

} // namespace TestCam
