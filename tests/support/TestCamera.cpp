#include "TestCamera.h"

#include <OrvCPP/ExclusiveAccess.h>

#include <QCoreApplication>
#include <QMap>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace TestCam
{

using Observer = OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>;
const OrvFeatureDataType Int = OrvFeatureDataInt, Float = OrvFeatureDataFloat, Bool = OrvFeatureDataBool,
                         Enum = OrvFeatureDataEnum, String = OrvFeatureDataString, Command = OrvFeatureDataCommand;

static QString text(OrvFeatureDataType type, const QVariant& value)
{
    return type == Float  ? QString::number(value.toDouble(), 'g', 12)
           : type == Bool ? QVariant(value.toBool()).toString()
                          : value.toString();
}

// The value as a feature of the type holds it.
static QVariant fit(OrvFeatureDataType type, const QVariant& value)
{
    return type == Int     ? QVariant(value.toLongLong())
           : type == Float ? QVariant(value.toDouble())
           : type == Bool  ? QVariant(value.toBool())
                           : QVariant(value.toString());
}

// What reads and writes of a feature address: the whole feature, or one entry of its selector.
struct Slot
{
    QVariant value;
    bool writable = true;
};

struct FeatureData
{
    QString name, displayName;
    OrvFeatureDataType type;
    double minimum, maximum, increment;
    QStringList entries, unavailable;
    Slot base; // as set up
    QString selector{};
    QMap<QString, Slot> perEntry{}; // each selector entry's own state, from `base` when first addressed
    std::vector<Observer> observers{};

    Slot& at(const QString& entry)
    {
        auto it = perEntry.find(entry);
        return it != perEntry.end() ? *it : *perEntry.insert(entry, base);
    }
};

class TestFeature;

struct Core
{
    std::mutex mutex; // guards everything here
    std::vector<std::shared_ptr<TestFeature>> features;
    QStringList journal;
    QMap<QPair<QString, QString>, QPair<OrvErrorType, int>> faults; // code, calls left (-1: always)
    std::deque<TestFeature*> queue;                                 // notifications, the front one being delivered
    std::condition_variable changed;                                // the queue or `stopping`
    bool stopping = false;
    std::thread notifier{[this] { deliver(); }};
    // ExclusiveAccess: held by a thread between BeginExclusive and EndExclusive,
    // and by the GUI thread from a call until its event loop passes again.
    // (A mutex and a condition rather than a timed mutex: ThreadSanitizer sees those.)
    std::mutex runLock;
    std::condition_variable runFree;
    std::thread::id runOwner;
    int runDepth = 0;
    bool guiHolds = false;
    bool beginRun(int timeoutMs)
    {
        std::unique_lock<std::mutex> lock(runLock);
        const auto self = std::this_thread::get_id();
        const auto free = [&] { return runDepth == 0 || runOwner == self; };
        if (timeoutMs < 0)
            runFree.wait(lock, free);
        else if (!runFree.wait_for(lock, std::chrono::milliseconds(timeoutMs), free))
            return false;
        runOwner = self, ++runDepth;
        return true;
    }
    void endRun()
    {
        std::lock_guard<std::mutex> lock(runLock);
        if (--runDepth == 0)
            runOwner = std::thread::id(), runFree.notify_all();
    }

    std::shared_ptr<TestFeature> find(const QString& name);
    Slot& slot(FeatureData& d);
    void deliver();

    // An injected fault due on this call, or success.
    OrvErrorType fault(const QString& name, const char* op)
    {
        auto it = faults.find(qMakePair(name, QString(op)));
        const OrvErrorType code = it == faults.end() ? OrvErrorSuccess : it->first;
        if (it != faults.end() && it->second > 0 && --it->second == 0)
            faults.erase(it);
        return code;
    }
};

class TestFeature : public OrvCPP::Feature,
                    public OrvCPP::ExclusiveAccess,
                    public FeatureData,
                    public std::enable_shared_from_this<TestFeature>
{
public:
    TestFeature(const std::shared_ptr<Core>& core, const FeatureData& data)
        : FeatureData(data)
        , m_core(core)
    {
    }

    OrvErrorType GetName(std::string& v) override
    {
        return read("GetName", {}, [&](Slot&) { v = name.toStdString(); });
    }
    OrvErrorType GetDisplayName(std::string& v) override
    {
        return read("GetDisplayName", {}, [&](Slot&) { v = displayName.toStdString(); });
    }
    OrvErrorType GetCategory(std::string& v) override
    {
        return read("GetCategory", {}, [&](Slot&) { v.clear(); });
    }
    OrvErrorType GetDataType(OrvFeatureDataType& v) override
    {
        return read("GetDataType", {}, [&](Slot&) { v = type; });
    }
    OrvErrorType IsWritable(bool& v) override
    {
        return read("IsWritable", {}, [&](Slot& s) { v = s.writable; });
    }
    OrvErrorType IsValueAvailable(const char* entry, bool& v) override
    {
        const QString e = QString::fromUtf8(entry ? entry : "");
        return read("IsValueAvailable", {Enum}, [&](Slot&) { v = entries.contains(e) && !unavailable.contains(e); });
    }
    OrvErrorType GetValues(std::vector<std::string>& v) override
    {
        std::vector<std::string> all;
        for (const QString& entry : entries)
            all.push_back(entry.toStdString());
        return read("GetValues", {Enum}, [&](Slot&) { v = all; });
    }
    OrvErrorType GetValue(std::string& v) override
    {
        return read("GetString", {Int, Float, Enum, String, Bool},
                    [&](Slot& s) { v = text(type, s.value).toStdString(); });
    }
    OrvErrorType GetValue(double& v) override
    {
        return read("GetDouble", {Float}, [&](Slot& s) { v = s.value.toDouble(); });
    }
    OrvErrorType GetValue(long long& v) override
    {
        return read("GetInt", {Int}, [&](Slot& s) { v = s.value.toLongLong(); });
    }
    OrvErrorType GetValue(bool& v) override
    {
        return read("GetBool", {Bool}, [&](Slot& s) { v = s.value.toBool(); });
    }
    OrvErrorType GetRange(double& lowest, double& highest) override
    {
        return read("GetRangeDouble", {Float}, [&](Slot&) { lowest = minimum, highest = maximum; });
    }
    OrvErrorType GetRange(long long& lowest, long long& highest) override
    {
        return read("GetRangeInt", {Int}, [&](Slot&) { lowest = (long long)minimum, highest = (long long)maximum; });
    }
    OrvErrorType GetIncrement(double& v) override
    {
        return read("GetIncrementDouble", {Float}, [&](Slot&) { v = increment; });
    }
    OrvErrorType GetIncrement(long long& v) override
    {
        return read("GetIncrementInt", {Int}, [&](Slot&) { v = (long long)increment; });
    }
    OrvErrorType SetValue(double value) override
    {
        return write("SetDouble", Float, value);
    }
    OrvErrorType SetValue(long long value) override
    {
        return write("SetInt", Int, value);
    }
    OrvErrorType SetValue(bool value) override
    {
        return write("SetBool", Bool, value);
    }
    OrvErrorType SetValue(const char* value) override
    {
        return value ? write("SetString", String, QString::fromUtf8(value)) : OrvErrorBadParameter;
    }
    OrvErrorType RunCommand() override
    {
        return write("RunCommand", Command, QVariant());
    }
    OrvErrorType RegisterObserver(const Observer& observer) override
    {
        return observe("RegisterObserver", observer, true);
    }
    OrvErrorType UnregisterObserver(const Observer& observer) override
    {
        return observe("UnregisterObserver", observer, false);
    }

    bool BeginExclusive(int timeoutMs) override
    {
        const std::shared_ptr<Core> core = m_core.lock(); // the camera may be gone
        return core && core->beginRun(timeoutMs);
    }
    void EndExclusive() override
    {
        m_core.lock()->endRun(); // after BeginExclusive: the camera is there
    }

private:
    // The GUI thread's calls between two passes of its event loop are one run; other threads' calls do not wait.
    static void enterRun(const std::shared_ptr<Core>& core)
    {
        QCoreApplication* app = QCoreApplication::instance();
        if (!app || QThread::currentThread() != app->thread() || core->guiHolds)
            return;
        core->beginRun(-1), core->guiHolds = true;
        QTimer::singleShot(0, app, [core] { core->guiHolds = false, core->endRun(); });
    }

    // Runs a query under the camera's lock; an injected fault, a feature of a
    // type not in `types` (when given) or a missing increment fails it.
    template <class Body> OrvErrorType read(const char* op, const QVector<OrvFeatureDataType>& types, Body body)
    {
        const std::shared_ptr<Core> core = m_core.lock();
        if (!core)
            return OrvErrorDeviceLost;
        enterRun(core);
        std::lock_guard<std::mutex> lock(core->mutex);
        OrvErrorType code = core->fault(name, op);
        const bool noIncrement = QByteArray(op).startsWith("GetIncrement") && increment <= 0;
        if (code == OrvErrorSuccess && ((!types.isEmpty() && !types.contains(type)) || noIncrement))
            code = OrvErrorWrongType;
        else if (code == OrvErrorSuccess)
            body(core->slot(*this));
        return code;
    }

    OrvErrorType observe(const char* op, const Observer& observer, bool add)
    {
        OrvErrorType code = observer ? OrvErrorSuccess : OrvErrorBadParameter;
        const OrvErrorType fault = read(op, {},
                                        [&](Slot&)
                                        {
                                            auto it = std::find(observers.begin(), observers.end(), observer);
                                            if (code == OrvErrorSuccess && (it != observers.end()) == add)
                                                code = OrvErrorInvalidCall;
                                            else if (code == OrvErrorSuccess && add)
                                                observers.push_back(observer);
                                            else if (code == OrvErrorSuccess)
                                                observers.erase(it);
                                        });
        return fault != OrvErrorSuccess ? fault : code;
    }

    // Checks a write as a camera would (injected fault, type, access, range and
    // grid, entry), journals it, stores it and queues the change notifications,
    // also of the features whose value changes with this selector.
    OrvErrorType write(const char* op, OrvFeatureDataType given, const QVariant& value)
    {
        const std::shared_ptr<Core> core = m_core.lock();
        if (!core)
            return OrvErrorDeviceLost;
        enterRun(core);
        std::lock_guard<std::mutex> lock(core->mutex);
        Slot& s = core->slot(*this);
        const double v = value.toDouble();
        const bool offGrid =
            type == Int && increment > 0 && (value.toLongLong() - (long long)minimum) % (long long)increment != 0;
        const bool badEntry = !entries.contains(value.toString()) || unavailable.contains(value.toString());
        OrvErrorType code = core->fault(name, op);
        if (code == OrvErrorSuccess && type != given && !(given == String && type == Enum))
            code = OrvErrorWrongType;
        else if (code == OrvErrorSuccess && !s.writable)
            code = OrvErrorInvalidAccess;
        else if (code == OrvErrorSuccess &&
                 (((type == Int || type == Float) && (v < minimum || v > maximum || offGrid)) ||
                  (type == Enum && badEntry)))
            code = OrvErrorInvalidValue;
        const QString refused = code == OrvErrorSuccess ? QString() : QString(" refused %1").arg(code);
        core->journal << name + (given == Command ? "()" : "=" + text(type, value)) + refused;
        if (code != OrvErrorSuccess || given == Command)
            return code;
        const QString entryBefore = base.value.toString(); // the one the features it selects address
        s.value = fit(type, value);
        core->queue.push_back(this);
        for (const std::shared_ptr<TestFeature>& f : core->features)
            if (f->selector == name && f->at(entryBefore).value.toString() != core->slot(*f).value.toString())
                core->queue.push_back(f.get());
        core->changed.notify_all();
        return OrvErrorSuccess;
    }

    const std::weak_ptr<Core> m_core;
};

std::shared_ptr<TestFeature> Core::find(const QString& name)
{
    auto it = std::find_if(features.begin(), features.end(), [&](const auto& f) { return f->name == name; });
    return it == features.end() ? nullptr : *it;
}

// The state that reads and writes of the feature address right now.
Slot& Core::slot(FeatureData& d)
{
    const std::shared_ptr<TestFeature> selector = d.selector.isEmpty() ? nullptr : find(d.selector);
    return selector ? d.at(selector->base.value.toString()) : d.base;
}

// The notification thread: observers are called without the lock held.
void Core::deliver()
{
    std::unique_lock<std::mutex> lock(mutex);
    for (;;)
    {
        changed.wait(lock, [this] { return stopping || !queue.empty(); });
        if (stopping)
            return;
        const std::shared_ptr<TestFeature> feature = queue.front()->shared_from_this();
        const std::vector<Observer> observers = feature->observers;
        lock.unlock();
        for (const Observer& observer : observers)
            observer->FeatureChanged(feature);
        lock.lock();
        queue.pop_front();
        changed.notify_all();
    }
}

FeatureSetup& FeatureSetup::displayName(const QString& text)
{
    feature.displayName = text;
    return *this;
}

FeatureSetup& FeatureSetup::writable(bool on, const QString& selectorEntry)
{
    (selectorEntry.isNull() ? feature.base : feature.at(selectorEntry)).writable = on;
    return *this;
}

FeatureSetup& FeatureSetup::unavailable(const QStringList& entries)
{
    feature.unavailable = entries;
    return *this;
}

FeatureSetup& FeatureSetup::selectedBy(const QString& selectorName)
{
    feature.selector = selectorName;
    return *this;
}

TestCamera::TestCamera()
    : m_core(std::make_shared<Core>())
{
}

// Handles kept elsewhere answer "device lost" from now on and hold no observers.
TestCamera::~TestCamera()
{
    std::vector<std::vector<Observer>> released; // let go of without the lock held
    std::unique_lock<std::mutex> lock(m_core->mutex);
    m_core->stopping = true;
    m_core->changed.notify_all();
    for (const std::shared_ptr<TestFeature>& f : m_core->features)
        released.push_back(std::exchange(f->observers, {}));
    lock.unlock();
    m_core->notifier.join();
}

FeatureSetup TestCamera::add(const QString& name, OrvFeatureDataType type, const QVariant& value, double minimum,
                             double maximum, double increment, const QStringList& entries)
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    const FeatureData data{name, name, type, minimum, maximum, increment, entries, {}, {fit(type, value)}};
    m_core->features.push_back(std::make_shared<TestFeature>(m_core, data));
    return {*m_core->features.back()};
}

FeatureSetup TestCamera::addEnum(const QString& name, const QStringList& entries, const QString& value)
{
    return add(name, Enum, value, 0, 0, 0, entries);
}

FeatureList TestCamera::features() const
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    return FeatureList::create(m_core->features.begin(), m_core->features.end());
}

OrvCPP::shared_ptr<OrvCPP::Feature> TestCamera::feature(const QString& name) const
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    return m_core->find(name);
}

QString TestCamera::value(const QString& name) const
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    const std::shared_ptr<TestFeature> f = m_core->find(name);
    return f ? text(f->type, m_core->slot(*f).value) : QString();
}

void TestCamera::set(const QString& name, const QVariant& value, const QString& selectorEntry)
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    if (const std::shared_ptr<TestFeature> f = m_core->find(name))
        (selectorEntry.isNull() ? m_core->slot(*f) : f->at(selectorEntry)).value = fit(f->type, value);
}

QStringList TestCamera::takeJournal()
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    return std::exchange(m_core->journal, {});
}

void TestCamera::fail(const QString& name, const QString& op, OrvErrorType code, int times)
{
    static const QStringList ops =
        QString("GetName GetDisplayName GetCategory GetDataType IsWritable IsValueAvailable GetValues GetString "
                "GetDouble GetInt GetBool GetRangeDouble GetRangeInt GetIncrementDouble GetIncrementInt SetDouble "
                "SetInt SetBool SetString RunCommand RegisterObserver UnregisterObserver")
            .split(' ');
    if (!ops.contains(op))
        qFatal("TestCamera: no operation %s", qPrintable(op));
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
    if (const std::shared_ptr<TestFeature> f = m_core->find(name))
        m_core->queue.push_back(f.get());
    m_core->changed.notify_all();
}

void TestCamera::waitForNotifications() const
{
    std::unique_lock<std::mutex> lock(m_core->mutex);
    m_core->changed.wait(lock, [this] { return m_core->queue.empty(); });
}

int TestCamera::observerCount(const QString& name) const
{
    std::lock_guard<std::mutex> lock(m_core->mutex);
    int count = 0;
    for (const std::shared_ptr<TestFeature>& f : m_core->features)
        count += name.isEmpty() || f->name == name ? int(f->observers.size()) : 0;
    return count;
}

} // namespace TestCam
