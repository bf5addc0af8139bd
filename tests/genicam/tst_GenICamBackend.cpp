// Aravis (gio) before Qt: gio uses "signals" as a name, Qt as a keyword.
#include <arv.h>

#include "GenICamCamera.h"
#include "GenICamDevice.h"
#include "FeaturePoller.h"
#include "GenICamFeature.h"
#include "LineSampler.h"
#include "RegisterCache.h"
#include "ReviewedRecord.h"

#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <pthread.h>

using FeaturePtr = OrvCPP::shared_ptr<OrvCPP::Feature>;
using Code = OrvErrorType;
Q_DECLARE_METATYPE(OrvErrorType)

namespace
{

// Opens a model file (under the demo cameras' folder unless absolute); the error, if any.
QString openModel(GenICamCamera& camera, const QString& file)
{
    const QString id = GenICamCamera::FakePrefix + QDir(TRIGGERIO_CAMERAS_DIR).filePath(file);
    return camera.open(id) == OrvErrorSuccess ? QString() : camera.errorString();
}

bool writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

FeaturePtr featureNamed(const FeatureList& list, const QString& name)
{
    for (const auto& feature : *list)
    {
        std::string n;
        if (feature->GetName(n) == OrvErrorSuccess && QString::fromStdString(n) == name)
            return feature;
    }
    return {};
}

QString textOf(const FeaturePtr& feature)
{
    std::string value;
    feature->GetValue(value);
    return QString::fromStdString(value);
}

// Runs one step (see steps_data) and returns it with its result.
QString runStep(GenICamCamera& camera, const QString& step)
{
    const int at = step.indexOf(QRegularExpression("[?#=!]"));
    const QString name = step.left(at), op = step.mid(at, 1), value = step.mid(at + 1);
    if (name.startsWith('@'))
    {
        const quint32 address = name.mid(1).toUInt(nullptr, 16);
        guint32 word = value.toUInt();
        camera.withAravisDevice(
            [&](ArvDevice* device)
            {
                op == "=" ? arv_device_write_register(device, address, word, nullptr)
                          : arv_device_read_register(device, address, &word, nullptr);
            });
        return step + " " + QString::number(word);
    }
    const FeaturePtr f = featureNamed(camera.features(), name);
    if (!f)
        return step + " no such feature";
    static const QMap<QChar, OrvFeatureDataType> forced{
        {'b', OrvFeatureDataBool}, {'i', OrvFeatureDataInt}, {'f', OrvFeatureDataFloat}, {'s', OrvFeatureDataString}};
    OrvFeatureDataType type = OrvFeatureDataUnknown;
    f->GetDataType(type);
    const QString text = value.contains(':') ? value.mid(2) : value;
    if (text != value)
        type = forced.value(value[0]);
    std::vector<std::string> entries;
    long long iMin = 0, iMax = 0, iInc = 0;
    double fMin = 0, fMax = 0, fInc = 0;
    bool writable = false;
    QString result;
    if (op == "?")
    {
        f->IsWritable(writable);
        result = QString("type %1 %2 \"%3\"").arg(type).arg(writable ? "rw" : "ro").arg(textOf(f));
    }
    else if (op == "#" && f->GetValues(entries) == OrvErrorSuccess)
        for (const std::string& entry : entries)
        {
            bool available = false;
            f->IsValueAvailable(entry.c_str(), available);
            result += QString::fromStdString(entry) + (available ? " " : "(unavailable) ");
        }
    else if (op == "#" && f->GetRange(iMin, iMax) == OrvErrorSuccess && f->GetIncrement(iInc) == OrvErrorSuccess)
        result = QString("[%1, %2] step %3").arg(iMin).arg(iMax).arg(iInc);
    else if (op == "#" && f->GetRange(fMin, fMax) == OrvErrorSuccess && f->GetIncrement(fInc) == OrvErrorSuccess)
        result = QString("[%1, %2] step %3").arg(fMin).arg(fMax).arg(fInc);
    else if (op == "#")
        result = QString("code %1").arg(f->GetValues(entries));
    else
        result = QString("code %1").arg(op == "!"                     ? f->RunCommand()
                                        : type == OrvFeatureDataInt   ? f->SetValue(text.toLongLong())
                                        : type == OrvFeatureDataFloat ? f->SetValue(text.toDouble())
                                        : type == OrvFeatureDataBool  ? f->SetValue(text == "true")
                                                                      : f->SetValue(text.toUtf8().constData()));
    return step + " " + result;
}

std::atomic<int> strayCalls{0}; // FeatureChanged called off the backend's threads (never)

// Records the names FeatureChanged reports. std::mutex: ThreadSanitizer sees through it, not through QMutex.
struct Recorder : OrvCPP::IFeatureObserver
{
    void FeatureChanged(const FeaturePtr& feature) override
    {
        char thread[16] = {};
        pthread_getname_np(pthread_self(), thread, sizeof thread);
        strayCalls += qstrcmp(thread, "triggerio-bg") != 0;
        textOf(feature); // calling back into the feature must be fine
        std::string name;
        feature->GetName(name);
        std::lock_guard<std::mutex> lock(mutex);
        names << QString::fromStdString(name);
        changed.notify_all();
    }
    // Waits until name has been reported count times (or ms have passed); all names reported so far.
    QStringList waitFor(const QString& name, int ms, int count = 1)
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait_for(lock, std::chrono::milliseconds(ms), [&] { return names.count(name) >= count; });
        return names;
    }

    std::mutex mutex;
    std::condition_variable changed;
    QStringList names;
};

} // namespace

class tst_GenICamBackend : public QObject
{
    Q_OBJECT

    ReviewedRecord m_record{TRIGGERIO_TESTS_DIR "/genicam/backend-steps.txt"};

private slots:
    void initTestCase()
    {
        // In-process tests only: no discovery on the network.
        for (const char* interfaceId : {"GigEVision", "USB3Vision", "Fake"})
            arv_disable_interface(interfaceId);
    }

    void cleanup()
    {
        QCOMPARE(strayCalls.exchange(0), 0);
    }

    // Once every camera is closed, every thread the backend started ends.
    void cleanupTestCase()
    {
        QVERIFY(GenICamCamera::waitForBackgroundWork(10000));
    }

    void openErrors_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QByteArray>("fileContent"); // when not null: a temporary file, opened as "fake:"
        QTest::addColumn<Code>("code");
        QTest::addColumn<QString>("reason"); // part of the message

        const Code invalid = OrvErrorInvalidValue, notFound = OrvErrorNotFound;
        QTest::newRow("unknown device id") << "no-such-camera-4711" << QByteArray() << notFound << "4711";
        QTest::newRow("empty id") << "" << QByteArray() << Code(OrvErrorBadParameter) << "No device id";
        QTest::newRow("missing file") << "fake:/nonexistent/camera.xml" << QByteArray() << notFound << "not found";
        QTest::newRow("empty file") << "" << QByteArray("") << invalid << "empty file";
        QTest::newRow("malformed xml") << "" << QByteArray("<RegisterDescription><Category Name=\"Root\"></pFeature>")
                                       << invalid << "not well-formed";
        QTest::newRow("xml but not GenICam")
            << "" << QByteArray("<?xml version=\"1.0\"?><html><body/></html>") << invalid << "no 'Root' category";

        // Nodes whose evaluation needs themselves: Aravis would recurse without end.
        const auto refused = [&](const char* name, const QByteArray& nodes, const QString& message)
        {
            QTest::newRow(name) << ""
                                << "<RegisterDescription><Category Name=\"Root\"><pFeature>A</pFeature></Category>" +
                                       nodes + "</RegisterDescription>"
                                << invalid << message;
        };
        const auto loop = [&](const char* name, const QByteArray& nodes, const QString& names)
        { refused(name, nodes, "Reference loop in the camera description: " + names); };
        const QByteArray formulaOfA = "<pVariable Name=\"X\">A</pVariable><Formula>X</Formula></IntSwissKnife>";
        loop("formula variable is the formula", "<IntSwissKnife Name=\"A\">" + formulaOfA, "A -> A");
        // One loop through every kind of reference.
        loop("through every kind of reference",
             "<Integer Name=\"A\"><pIsAvailable>B</pIsAvailable><Value>1</Value></Integer>"
             "<Integer Name=\"B\"><pIsLocked>L</pIsLocked><Value>1</Value></Integer>"
             "<IntSwissKnife Name=\"L\"><pVariable Name=\"X\">R</pVariable><Formula>X</Formula></IntSwissKnife>"
             "<IntReg Name=\"R\"><pAddress>V</pAddress><Length>4</Length><pPort>Device</pPort></IntReg>"
             "<Integer Name=\"V\"><pValue>A</pValue></Integer>",
             "A -> B -> L -> R -> V -> A");
        // No loop, but deeper than Aravis's recursion can go, or registers whose
        // addresses it evaluates 2^17 times (twice for each register read).
        QByteArray formulas, categories = "<Category Name=\"A\"><pFeature>C0</pFeature></Category>", fan;
        for (int i = 0; i < 100000; ++i)
        {
            const QByteArray name = "N" + QByteArray::number(i), next = "N" + QByteArray::number(i + 1);
            formulas += "<IntSwissKnife Name=\"" + (i ? name : "A") + "\"><pVariable Name=\"X\">" + next +
                        "</pVariable><Formula>X+1</Formula></IntSwissKnife>";
            categories += "<Category Name=\"C" + QByteArray::number(i) + "\"><pFeature>C" + QByteArray::number(i + 1) +
                          "</pFeature></Category>";
            if (i < 16)
                fan += "<IntReg Name=\"" + (i ? name : "A") + "\"><pAddress>" + next + "</pAddress></IntReg>";
        }
        refused("100,000 formulas in a chain", formulas + "<Integer Name=\"N100000\"><Value>1</Value></Integer>",
                "Reference chain too deep in the camera description: A -> N1 -> N2 -> N3 -> ... (99993 more) ... -> "
                "N99997 -> N99998 -> N99999 -> N100000");
        refused("categories nested 100,000 deep", categories,
                "Categories nested too deep in the camera description: Root -> A -> C0 -> C1 -> ... (194 more) ... -> "
                "C196 -> C197 -> C198 -> C199");
        refused("16 registers, each address the next one", fan + "<Integer Name=\"N16\"><Value>1</Value></Integer>",
                "Reference fan-out too wide (a read of A evaluates nodes over 50000 times) in the camera description: "
                "A -> N1 -> N2 -> N3 -> ... (9 more) ... -> N13 -> N14 -> N15 -> N16");
    }

    void openErrors()
    {
        QFETCH(QString, id);
        QFETCH(QByteArray, fileContent);
        QFETCH(Code, code);
        QFETCH(QString, reason);
        QTemporaryDir dir;
        if (!fileContent.isNull())
        {
            id = GenICamCamera::FakePrefix + dir.filePath("camera.xml");
            QVERIFY(writeFile(dir.filePath("camera.xml"), fileContent));
        }
        GenICamCamera camera;
        QCOMPARE(camera.open(id), code);
        QVERIFY2(camera.errorString().contains(reason), qPrintable(camera.errorString()));
        QVERIFY(!camera.isOpen() && camera.features()->isEmpty());
        QCOMPARE(openModel(camera, "line-camera.xml"), QString()); // the object stays usable
    }

    void steps_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("steps");
        // "F?" reads F (type, writability, value), "F#" its entries or range and
        // increment, "F=V" writes V in F's own type ("b:", "i:", "f:", "s:" force
        // one), "F!" runs F as a command, "@A?" reads the register at address A,
        // "@A=V" writes V there, "~" waits for a look of the change poller (observingSparesTheLink only).
        const QString line = "line-camera.xml", syncout = "syncout-camera.xml", routing = "routing-camera.xml";
        auto row = [](const char* tag, const QString& model, const QString& steps)
        { QTest::newRow(tag) << model << steps; };
        row("every type", line,
            "DeviceVendorName? LineSelector? ExposureTime=1234.5 ExposureTime? DeviceUserID=bench-7 DeviceUserID? "
            "LineInverter=true LineInverter? DeviceUserData=0102a0b0c0d0e0f0 DeviceUserData? DeviceUserData=12 "
            "TriggerSoftware! TriggerSoftware? PayloadSize? DeviceModelName=Other PayloadSize=10 DeviceModelName?");
        row("wrong types", line,
            "Width=b:true LineSource=b:true LineSource=i:1 Width! Width# LineSource=s:Nowhere LineSource?");
        row("range and grid", line,
            "Width# Width=64 Width=4096 Width=70 Width? @0x100? ExposureTime# ExposureTime=5 ExposureTime?");
        row("entries in declared order", line,
            "TriggerSelector# TriggerSource# LineMode# LineSelector=Line2 LineMode#");
        row("locks", line,
            "AcquisitionFrameCount=7 @0x1010? AcquisitionMode=MultiFrame AcquisitionFrameCount=10 "
            "AcquisitionFrameCount? LineMode=Output @0x1110? LineStatus=true @0x1140? LineSource?");
        row("unavailable", line, "ExposureTime? ExposureAuto=Continuous ExposureTime? ExposureTime=100 @0x120?");
        row("routing locks", routing, "LineMode? LineSelector=Line2 LineMode=Input LineRouting=Trigger @0x1110?");
        row("selector walks", line,
            "LineSelector=Line0 LineMode? LineSelector=Line1 LineMode? LineSource? LineSelector=Line2 LineMode=Output "
            "LineInverter=true LineSource? LineSelector=Line3 LineMode? LineInverter? LineSelector=Line2 LineMode? "
            "LineInverter? @0x1140=1 UserOutputValue=true LineStatusAll? LineStatusAll=2 LineSelector=Line1 "
            "LineSource=AcquisitionActive LineStatusAll? AcquisitionStart! LineStatusAll? AcquisitionStatus?");
        row("sync-out", syncout,
            "SyncOutLevels=5 SyncOutSource? SyncOutSelector=SyncOut3 SyncOutSource? LineStatusAll? LineStatusAll=0 "
            "SyncOutSelector=SyncOut2 SyncOutSource=AcquisitionActive AcquisitionStart! LineStatusAll?");
        row("routing", routing,
            "TriggerActivation=LowLevel TriggerActivation# LineStatusAll? LineStatusAll=0 LineSelector=Line2 "
            "LineSource=FrameTriggerWait TriggerMode=On AcquisitionStart! LineStatus? LineStatusAll?");
    }

    // Each step's result on a demo model in process, compared with the reviewed
    // record backend-steps.txt.
    void steps()
    {
        QFETCH(QString, model);
        QFETCH(QString, steps);
        GenICamCamera camera;
        QCOMPARE(openModel(camera, model), QString());
        QStringList lines;
        for (const QString& step : steps.split(' '))
            lines << runStep(camera, step);
        QCOMPARE(lines, m_record.take(QString(QTest::currentDataTag()), lines));
    }

    // Refused: an access past the fake device's memory (0x10000 bytes, the description), above 4 GiB or wrapped.
    void fakeMemoryEnd()
    {
        const guint64 end = 0x10000 + QFileInfo(TRIGGERIO_CAMERAS_DIR "/line-camera.xml").size();
        const auto check = [&, word = guint32(0)](ArvDevice* device) mutable
        {
            QVERIFY(arv_device_read_memory(device, end - 4, 4, &word, nullptr));
            for (const guint64 at : {end - 3, (guint64(1) << 32) + 0x100, ~guint64(1)})
                QVERIFY(!arv_device_read_memory(device, at, 4, &word, nullptr) &&
                        !arv_device_write_memory(device, at, 4, &word, nullptr) &&
                        !arv_device_read_register(device, at, &word, nullptr) &&
                        !arv_device_write_register(device, at, 1, nullptr));
        };
        GenICamCamera camera;
        QVERIFY(openModel(camera, "line-camera.xml").isEmpty() && camera.withAravisDevice(check));
    }

    // The registration rules, on features that outlive their camera (and close
    // the device cleanly when dropped with an observer still registered).
    void registrationOnFeaturesOutlivingTheCamera()
    {
        FeatureList features;
        {
            GenICamCamera camera;
            QCOMPARE(openModel(camera, "routing-camera.xml"), QString());
            camera.setPollPeriod(50);
            features = camera.features();
        }
        const FeaturePtr levels = featureNamed(features, "LineOutLevels");
        auto observer = std::make_shared<Recorder>(), other = std::make_shared<Recorder>();
        QCOMPARE(levels->UnregisterObserver(observer), Code(OrvErrorInvalidCall));
        QCOMPARE(levels->RegisterObserver(observer), Code(OrvErrorSuccess));
        QCOMPARE(levels->RegisterObserver(observer), Code(OrvErrorInvalidCall));
        QCOMPARE(levels->RegisterObserver(other), Code(OrvErrorSuccess));
        QCOMPARE(levels->RegisterObserver(nullptr), Code(OrvErrorBadParameter));
        QCOMPARE(levels->UnregisterObserver(observer), Code(OrvErrorSuccess));
        QCOMPARE(levels->UnregisterObserver(observer), Code(OrvErrorInvalidCall));

        // No notification after unregistering; the other observer still gets its own.
        QCOMPARE(levels->SetValue(3LL), Code(OrvErrorSuccess));
        // The look that tells the other one has passed the first one (registered first) by.
        QVERIFY(other->waitFor("LineOutLevels", 10000).contains("LineOutLevels"));
        QVERIFY(observer->waitFor({}, 0).isEmpty());
    }

    // Two threads (beside the poller's) walk selectors and read and write what
    // they select: each sees what it sees alone.
    void concurrentCallsFromTwoThreads()
    {
        GenICamCamera camera;
        QCOMPARE(openModel(camera, "line-camera.xml"), QString());
        camera.setPollPeriod(5);
        auto observer = std::make_shared<Recorder>();
        for (const char* name : {"LineSource", "UserOutputValue"})
            QCOMPARE(featureNamed(camera.features(), name)->RegisterObserver(observer), Code(OrvErrorSuccess));
        const QString lines = "LineSelector=Line3 LineMode? LineSource? LineSelector=Line1 LineMode? LineSource?";
        const QString outputs = "UserOutputSelector=UserOutput1 UserOutputValue=true UserOutputValue? "
                                "UserOutputSelector=UserOutput2 UserOutputValue=false UserOutputValue?";
        auto walk = [&](const QString& steps, int times)
        {
            QStringList results;
            for (int i = 0; i < times; ++i)
                for (const QString& step : steps.split(' '))
                    results << runStep(camera, step);
            results.removeDuplicates();
            return results;
        };
        const QStringList linesAlone = walk(lines, 1), outputsAlone = walk(outputs, 1);
        QStringList linesTogether;
        std::thread thread([&] { linesTogether = walk(lines, 100); });
        const QStringList outputsTogether = walk(outputs, 100);
        thread.join();
        QCOMPARE(linesTogether, linesAlone);
        QCOMPARE(outputsTogether, outputsAlone);
        QVERIFY(observer->waitFor("LineSource", 10000).contains("LineSource"));
    }

    // Within a burst of the test's thread (the application's: until events
    // run) a register is read once; a write of a selector makes what it
    // selects (pSelected) or invalidates (pInvalidator) be read again, a
    // NoCache register is always read, nothing survives the burst, and
    // verify mode reports a stale value. Another thread's bracket and the
    // burst exclude each other.
    void registerCache()
    {
        QTemporaryDir dir;
        QByteArray xml =
            "<?xml version=\"1.0\"?><RegisterDescription ModelName=\"C\" VendorName=\"T\" "
            "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" "
            "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" ToolTip=\"\" ProductGuid=\"0\" "
            "VersionGuid=\"0\" StandardNameSpace=\"None\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">"
            "<Category Name=\"Root\"><pFeature>Selector</pFeature><pFeature>Muxed</pFeature><pFeature>"
            "Marked</pFeature><pFeature>Volatile</pFeature><pFeature>Plain</pFeature></Category>"
            "<Integer Name=\"Selector\"><pValue>SelectorReg</pValue><pSelected>Muxed</pSelected></Integer>";
        const char* registers[][2] = {{"SelectorReg", "0x2000"},
                                      {"Muxed", "0x2004"},
                                      {"Marked", "0x2008"},
                                      {"Volatile", "0x200c"},
                                      {"Plain", "0x2010"}};
        for (const auto& reg : registers)
            xml += QByteArray("<IntReg Name=\"") + reg[0] + "\"><Address>" + reg[1] + "</Address><Length>4</Length>" +
                   (qstrcmp(reg[0], "Marked") ? "" : "<pInvalidator>Selector</pInvalidator>") +
                   (qstrcmp(reg[0], "Volatile") ? "" : "<Cachable>NoCache</Cachable>") +
                   "<AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>BigEndian"
                   "</Endianess></IntReg>";
        QVERIFY(writeFile(dir.filePath("cache.xml"), xml + "<Port Name=\"Device\"/></RegisterDescription>"));
        GenICamCamera camera;
        QCOMPARE(openModel(camera, dir.filePath("cache.xml")), QString());
        ArvFakeCamera* fake = nullptr;
        guint32 registerValue = 0;
        camera.withAravisDevice([&](ArvDevice* d) { fake = arv_fake_device_get_fake_camera(ARV_FAKE_DEVICE(d)); });
        const FeatureList features = camera.features();
        // The cache on whatever the environment says; the mismatches below are planted.
        RegisterCache& cache = dynamic_cast<GenICamFeature&>(*features->first()).device()->cache();
        cache.setMode(RegisterCache::Mode::On);
        const QByteArray fatal = qgetenv("TRIGGERIO_REGISTER_CACHE_FATAL");
        qunsetenv("TRIGGERIO_REGISTER_CACHE_FATAL");
        auto value = [&](const char* name)
        {
            long long v = -1;
            featureNamed(features, name)->GetValue(v);
            return v;
        };
        // Reads each register, changes each behind the cache; what is read again within the burst.
        auto readAgain = [&](auto between)
        {
            QStringList fresh;
            for (const char* name : {"Muxed", "Marked", "Volatile", "Plain"})
                value(name);
            for (guint32 address = 0x2004; address <= 0x2010; address += 4)
                arv_fake_camera_write_register(fake, address, address + 7);
            between();
            for (const char* name : {"Muxed", "Marked", "Volatile", "Plain"})
                if (value(name) > 0x2000)
                    fresh << name;
            for (guint32 address = 0x2004; address <= 0x2010; address += 4)
                arv_fake_camera_write_register(fake, address, 0);
            QCoreApplication::processEvents(); // the burst ends
            return fresh;
        };
        QCOMPARE(readAgain([] {}), QStringList{"Volatile"});
        QCOMPARE(readAgain([&] { featureNamed(features, "Selector")->SetValue(1LL); }),
                 QStringList({"Muxed", "Marked", "Volatile"}));
        QCOMPARE(readAgain( // the camera may keep something else than what was written
                     [&]
                     {
                         featureNamed(features, "Plain")->SetValue(1LL);
                         arv_fake_camera_write_register(fake, 0x2010, 0x2017);
                     }),
                 QStringList({"Volatile", "Plain"}));
        QCOMPARE(readAgain([] { QCoreApplication::processEvents(); }),
                 QStringList({"Muxed", "Marked", "Volatile", "Plain"}));
        // A write of the value kept is sent, but for a selector's: the camera may act on it.
        value("Plain");
        arv_fake_camera_write_register(fake, 0x2010, 5);
        featureNamed(features, "Plain")->SetValue(0LL);
        QCOMPARE(arv_fake_camera_read_register(fake, 0x2010, &registerValue) ? registerValue : 1u, 0u);
        QCoreApplication::processEvents();
        cache.setMode(RegisterCache::Mode::Verify);
        const long before = RegisterCache::mismatches();
        QCOMPARE(readAgain([] {}), QStringList({"Muxed", "Marked", "Volatile", "Plain"}));
        QCOMPARE(RegisterCache::mismatches() - before, 3L);
        qputenv("TRIGGERIO_REGISTER_CACHE_FATAL", fatal);
        cache.setMode(RegisterCache::Mode::On);

        // The burst holds the camera: another thread's bracket waits for its end.
        auto* access = dynamic_cast<OrvCPP::ExclusiveAccess*>(features->first().get());
        value("Plain");
        std::atomic<int> stage{0};
        std::thread other(
            [&]
            {
                stage = access->BeginExclusive(100) ? -1 : 1;
                while (stage != 2)
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                stage = access->BeginExclusive(5000) && access->BeginExclusive(0) ? 3 : -3; // nested
                std::this_thread::sleep_for(std::chrono::milliseconds(300));
                featureNamed(features, "Plain")->SetValue(5LL);
                access->EndExclusive();
                access->EndExclusive();
            });
        while (stage == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        QCOMPARE(int(stage), 1);
        QCoreApplication::processEvents();
        stage = 2;
        while (stage == 2)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        QCOMPARE(int(stage), 3);
        QCOMPARE(value("Plain"), 5LL); // waited for the bracket's end
        other.join();
    }

    // A camera-side change is told while a page walks LineSelector ten times a
    // second; two observers away at overlapping times each hear of a change made
    // meanwhile once back; one made while nobody observed is nobody's news.
    void observersHearOfChangesOnce()
    {
        GenICamCamera camera;
        QCOMPARE(openModel(camera, "line-camera.xml"), QString());
        camera.setPollPeriod(500);
        const FeaturePtr inverter = featureNamed(camera.features(), "LineInverter");
        auto first = std::make_shared<Recorder>(), second = std::make_shared<Recorder>();
        QVERIFY(!inverter->RegisterObserver(first) && !inverter->RegisterObserver(second));
        std::atomic<bool> walking{true};
        std::thread walker([&] {
            for (; walking; std::this_thread::sleep_for(std::chrono::milliseconds(100)))
                for (const char* step : {"LineSelector=Line1", "LineStatus?", "LineSelector=Line0"})
                    runStep(camera, step);
        });
        QTest::qWait(300);
        QElapsedTimer took;
        took.start();
        runStep(camera, "@0x1130=1"); // Line0's inverter, changed by the camera
        const bool told = first->waitFor("LineInverter", 5000).contains("LineInverter");
        const qint64 ms = took.elapsed();
        walking = false;
        walker.join();
        QVERIFY2(told && ms < 2000, qPrintable(QString("%1 ms").arg(ms)));

        QCOMPARE(second->waitFor("LineInverter", 1000), QStringList{"LineInverter"});
        QVERIFY(!inverter->UnregisterObserver(first) && !runStep(camera, "@0x1130=0").isEmpty() &&
                !inverter->UnregisterObserver(second));
        QTest::qWait(600);
        QVERIFY(!inverter->RegisterObserver(first));
        QCOMPARE(first->waitFor("LineInverter", 5000, 2).size(), 2);
        QVERIFY(!inverter->RegisterObserver(second));
        QCOMPARE(second->waitFor("LineInverter", 5000, 2).size(), 2);
        QVERIFY(!inverter->UnregisterObserver(first) && !inverter->UnregisterObserver(second) &&
                !runStep(camera, "LineInverter=true").isEmpty());
        QVERIFY(!inverter->RegisterObserver(first));
        QCOMPARE(first->waitFor("LineInverter", 1000, 3).size(), 2);
    }

    // Timeouts make a loss only when they follow each other for longer than the
    // camera's patience (an answer starts afresh); the loss is told once, also to
    // a later handler. An adopted device gets the settings of the camera taking it.
    void timeoutsInARowMakeALoss()
    {
        GenICamCamera camera, opened;
        camera.setPollPeriod(70);
        QCOMPARE(openModel(opened, "line-camera.xml"), QString());
        camera.adopt(opened);
        const std::shared_ptr<GenICamDevice> device =
            std::dynamic_pointer_cast<GenICamFeature>(camera.features()->first())->device();
        QVERIFY(!opened.isOpen() && device->poller().period() == 70);
        std::atomic<int> reports{0};
        camera.setLostHandler([&] { ++reports; });
        const auto timeout = [&](int ms) {
            return device->takeError(g_error_new_literal(ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_TIMEOUT, "timeout"),
                                     std::chrono::milliseconds(ms)); };
        QCOMPARE(timeout(2000), Code(OrvErrorTimeout));
        device->answered();
        QVERIFY(timeout(2000) == OrvErrorTimeout && reports == 0);
        QVERIFY(timeout(1001) == OrvErrorDeviceLost && timeout(1) == OrvErrorDeviceLost);
        QVERIFY(camera.isDeviceLost() && camera.lostReason().contains("no answer for 3001 ms"));
        QCOMPARE(reports.load(), 1);
        camera.setLostHandler([&] { reports += 10; });
        QCOMPARE(reports.load(), 11);
    }

    void observingSparesTheLink_data()
    {
        QTest::addColumn<QStringList>("observed");
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QStringList>("reported");
        auto row = [](const char* tag, const QStringList& observed, const QString& steps, const QStringList& reported)
        { QTest::newRow(tag) << observed << steps << reported; };
        row("own write", {"UserOutputValue"}, "UserOutputValue=true", {"UserOutputValue"});
        row("own write under another selector setting", {"LineMode"}, "LineSelector=Line2 LineMode=Output "
            "LineSelector=Line0", {"LineMode"});
        row("side effect of a selector write", {"LineSource"}, "LineSelector=Line1", {"LineSource"});
        row("lock follows another feature", {"AcquisitionFrameCount"}, "AcquisitionMode=MultiFrame",
            {"AcquisitionFrameCount"});
        row("changed by the camera", {"LineInverter"}, "@0x1130=1", {"LineInverter"}); // Line0's inverter
        // Each value is compared with the one seen under the same selector setting.
        const QStringList lines{"LineInverter", "LineMode", "LineSelector", "LineSource", "LineStatus"};
        QString walk; // the tab's way of reading one line after the other
        for (const char* line : {"Line0", "Line1", "Line2", "Line3"})
            walk += QString("LineSelector=%1 LineSource? LineMode? ").arg(line);
        row("select, read and restore", lines, walk + "LineSelector=Line0", {});
        row("away and back, with a look on the way", {"LineMode", "LineSelector"},
            "LineSelector=Line1 ~ LineSelector=Line0", {"LineMode", "LineSelector", "LineSelector"});
        row("another line's value", lines, "@0x1138=1 LineInverter?", {}); // Line2's inverter
        row("selector left on that line", {"LineInverter", "LineSelector"},
            "@0x1138=1 LineSelector=Line2 LineInverter?", {"LineInverter", "LineSelector"});
    }

    // Registration and unregistration reach no register; a look sees the
    // settled state and reports what changed, on the backend's thread, once,
    // not on every look.
    // LineInverter has a NoCache register below it here: it is read on every
    // look (and reported only when it changes), other features only after writes.
    void observingSparesTheLink()
    {
        QFETCH(QStringList, observed);
        QFETCH(QString, steps);
        QFETCH(QStringList, reported);
        QTemporaryDir dir;
        QFile file(TRIGGERIO_CAMERAS_DIR "/line-camera.xml");
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(writeFile(dir.filePath("volatile.xml"),
                          file.readAll().replace("<Address>0x1130</Address>",
                                                 "<Address>0x1130</Address><Cachable>NoCache</Cachable>")));
        GenICamCamera camera;
        QCOMPARE(openModel(camera, dir.filePath("volatile.xml")), QString());
        const int period = 400;
        camera.setPollPeriod(period);
        const FeatureList features = camera.features();
        for (const char* name : {"LineInverter", "LineSource"})
        {
            std::string setting, state;
            bool isVolatile = false;
            std::vector<const void*> registers;
            dynamic_cast<GenICamFeature&>(*featureNamed(features, name)).observe(setting, state, isVolatile, registers);
            QCOMPARE(isVolatile, qstrcmp(name, "LineInverter") == 0);
        }
        auto observer = std::make_shared<Recorder>();
        // With the device held by this very thread: a registration that
        // touched the device would never return.
        camera.withAravisDevice(
            [&](ArvDevice*)
            {
                for (const QString& name : observed)
                    for (int i = 0; i < 3; ++i) // register, unregister, register again
                        QCOMPARE(i == 1 ? featureNamed(features, name)->UnregisterObserver(observer)
                                        : featureNamed(features, name)->RegisterObserver(observer),
                                 Code(OrvErrorSuccess));
            });
        // "~": a look has happened (and told what it found) once a write to an
        // unrelated feature has been reported, and the look after it.
        auto marker = std::make_shared<Recorder>();
        const FeaturePtr userId = featureNamed(features, "DeviceUserID");
        QCOMPARE(userId->RegisterObserver(marker), Code(OrvErrorSuccess));
        int marks = 0;
        auto look = [&]
        {
            for (int i = 0; i < 2; ++i)
            {
                QCOMPARE(userId->SetValue(QByteArray::number(++marks).constData()), Code(OrvErrorSuccess));
                QVERIFY(marker->waitFor("DeviceUserID", 10000, marks).count() == marks);
            }
        };
        for (const QString& step : (steps + " ~").split(' '))
            step == "~" ? look() : void(runStep(camera, step));
        QStringList names = observer->waitFor({}, 0);
        names.sort();
        QCOMPARE(names, reported);
    }

    // The I/O Monitor's levels (LineStatusAll; walk or masks) are the models': an output driven by a user output shows
    // it through the inverter, an input register 0x1140 + 4 n; sync out GPO a SyncOutLevels bit, SyncOut1 its polarity.
    void monitorLevelsFollowTheModels()
    {
        for (const QString model : {"line", "routing", "syncout"})
        {
            GenICamCamera camera;
            QCOMPARE(openModel(camera, model + "-camera.xml"), QString());
            FeatureManager fm(camera.features());
            FeatureList withoutAll(new QVector<FeaturePtr>(*camera.features()));
            withoutAll->removeOne(fm.GetFeatureByName(QString("LineStatusAll")));
            const QStringList users = fm.GetAvailableEnumEntries("UserOutputSelector");
            const bool sync = model == "syncout";
            for (int c = 0; c < 16; ++c)
            {
                QString expected, levels;
                for (int u = 0; u < users.size(); ++u)
                    fm.SetValue("UserOutputSelector", users.at(u)), fm.SetValue("UserOutputValue", (c >> u) & 1);
                for (int i = 0; i < 4 - sync; ++i)
                {
                    const guint32 input = sync ? (c >> i) & 1 : (c >> (3 - i)) & 1;
                    camera.withAravisDevice([&](ArvDevice* d)
                                            { arv_device_write_register(d, 0x1140 + 4 * i, input, 0); });
                    fm.SetValue(sync ? "SyncOutSelector" : "LineSelector",
                                sync ? "SyncOut" + QString::number(i + 1) : "Line" + QString::number(i));
                    fm.SetValue(sync ? "SyncOutPolarity" : "LineMode", sync          ? c & 1 ? "Invert" : "Normal"
                                                                       : (c + i) % 3 ? "Output"
                                                                                     : "Input");
                    fm.SetValue(sync ? "SyncOutSource" : "LineSource",
                                sync ? i ? "GPO" : "AcquisitionActive" : users.value((c + i) % users.size()));
                    fm.SetValue(sync ? "SyncOutLevels" : "LineInverter", sync ? c & 7 : (c >> i) & 1);
                    const int user = users.indexOf(fm.GetStringValue("LineSource"));
                    const bool output = !sync && fm.GetStringValue("LineMode") == "Output";
                    QVERIFY(user >= 0 || !output);
                    expected += QString::number(output ? ((c >> user) & 1) ^ int(fm.GetValue("LineInverter")) : input);
                }
                for (const FeatureList& list : {camera.features(), withoutAll})
                {
                    LineSampler sampler(list);
                    for (int level : sampler.sample())
                        levels += QString::number(level);
                    levels += QString::number(sampler.source());
                }
                QCOMPARE(levels, expected + QString::number(LineSampler::StatusAll) + expected +
                                     QString::number(sync ? LineSampler::LevelMasks : LineSampler::StatusWalk));
            }
        }
    }
};

QTEST_GUILESS_MAIN(tst_GenICamBackend)
#include "tst_GenICamBackend.moc"
