// Aravis (gio) before Qt: gio uses "signals" as a name, Qt as a keyword.
#include <arv.h>

#include "GenICamFeature.h"
#include "GenICamTestSupport.h"
#include "ReviewedRecord.h"

#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <thread>

using FeaturePtr = OrvCPP::shared_ptr<OrvCPP::Feature>;

Q_DECLARE_METATYPE(OrvErrorType)
Q_DECLARE_METATYPE(OrvFeatureDataType)

class tst_GenICamBackend : public QObject
{
    Q_OBJECT

private:
    ReviewedRecord m_record{TRIGGERIO_TESTS_DIR "/genicam/backend-steps.txt"};

    // Opens a demo model in process, or fails the test.
    bool openModel(GenICamCamera& camera, const QString& file)
    {
        const OrvErrorType code = camera.open(GenICamCamera::FakePrefix + modelPath(file));
        if (code != OrvErrorSuccess)
            qWarning() << camera.errorString();
        return code == OrvErrorSuccess;
    }

    static quint32 readRegister(GenICamCamera& camera, quint32 address)
    {
        guint32 value = 0xffffffff;
        camera.withAravisDevice([&](ArvDevice* device) { arv_device_read_register(device, address, &value, nullptr); });
        return value;
    }

    static void writeRegister(GenICamCamera& camera, quint32 address, quint32 value)
    {
        camera.withAravisDevice([&](ArvDevice* device) { arv_device_write_register(device, address, value, nullptr); });
    }

private slots:
    void initTestCase()
    {
        // In-process tests only: no discovery on the network.
        for (const char* interfaceId : {"GigEVision", "USB3Vision", "Fake"})
            arv_disable_interface(interfaceId);
    }

    void openErrors_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QByteArray>("fileContent"); // written to a temporary file used as "fake:" id when not null
        QTest::addColumn<OrvErrorType>("code");
        QTest::addColumn<QString>("reason"); // part of the message

        const OrvErrorType invalid = OrvErrorInvalidValue;
        QTest::newRow("unknown device id")
            << "no-such-camera-4711" << QByteArray() << OrvErrorType(OrvErrorNotFound) << "";
        QTest::newRow("empty id") << "" << QByteArray() << OrvErrorType(OrvErrorBadParameter) << "";
        QTest::newRow("missing file") << "fake:/nonexistent/camera.xml" << QByteArray()
                                      << OrvErrorType(OrvErrorNotFound) << "not found";
        QTest::newRow("fake without path") << "fake:" << QByteArray() << OrvErrorType(OrvErrorNotFound) << "";
        QTest::newRow("empty file") << "" << QByteArray("") << invalid << "empty file";
        QTest::newRow("malformed xml") << "" << QByteArray("<RegisterDescription><Category Name=\"Root\"></pFeature>")
                                       << invalid << "not well-formed";
        QFile model(modelPath("line-camera.xml"));
        model.open(QIODevice::ReadOnly);
        QTest::newRow("truncated model") << "" << model.readAll().left(int(model.size() / 2)) << invalid
                                         << "not well-formed";
        QTest::newRow("xml but not GenICam")
            << "" << QByteArray("<?xml version=\"1.0\"?><html><body/></html>") << invalid << "no 'Root' category";

        // Nodes whose evaluation needs themselves: Aravis would recurse without end.
        const auto loop = [](const char* name, const QByteArray& nodes, const QString& names)
        {
            QTest::newRow(name) << ""
                                << "<RegisterDescription><Category Name=\"Root\"><pFeature>A</pFeature></Category>" +
                                       nodes + "</RegisterDescription>"
                                << OrvErrorType(OrvErrorInvalidValue)
                                << "Reference loop in the camera description: " + names;
        };
        const QByteArray formulaOfA = "<pVariable Name=\"X\">A</pVariable><Formula>X</Formula></IntSwissKnife>";
        loop("formula variable is the formula", "<IntSwissKnife Name=\"A\">" + formulaOfA, "A -> A");
        loop("availability nodes point at each other",
             "<Integer Name=\"A\"><pIsAvailable>B</pIsAvailable><Value>1</Value></Integer>"
             "<Integer Name=\"B\"><pIsAvailable>A</pIsAvailable><Value>1</Value></Integer>",
             "A -> B -> A");
        loop("lock through a formula",
             "<Integer Name=\"A\"><pIsLocked>L</pIsLocked><Value>1</Value></Integer><IntSwissKnife Name=\"L\">" +
                 formulaOfA,
             "A -> L -> A");
        loop("value loop",
             "<Integer Name=\"A\"><pValue>B</pValue></Integer><Integer Name=\"B\"><pValue>A</pValue></Integer>",
             "A -> B -> A");
        loop("address through a formula",
             "<IntReg Name=\"A\"><pAddress>S</pAddress><Length>4</Length><pPort>Device</pPort></IntReg>"
             "<IntSwissKnife Name=\"S\">" +
                 formulaOfA,
             "A -> S -> A");
        loop("three nodes",
             "<Integer Name=\"A\"><pValue>B</pValue></Integer><IntSwissKnife Name=\"B\"><pVariable "
             "Name=\"X\">C</pVariable><Formula>X</Formula></IntSwissKnife><Integer "
             "Name=\"C\"><pValue>A</pValue></Integer>",
             "A -> B -> C -> A");
        // About 20 MB, one loop through all of it (the message leaves its middle out).
        QByteArray chain = "<Integer Name=\"A\"><pValue>N0</pValue></Integer>";
        const int count = 360000;
        for (int i = 0; i < count; ++i)
            chain += "<Integer Name=\"N" + QByteArray::number(i) + "\"><pValue>N" +
                     QByteArray::number((i + 1) % count) + "</pValue></Integer>";
        loop("huge, one long loop", chain,
             "N0 -> N1 -> N2 -> N3 -> ... (359993 more) ... -> N359997 -> N359998 -> N359999 -> N0");
    }

    void openErrors()
    {
        QFETCH(QString, id);
        QFETCH(QByteArray, fileContent);
        QFETCH(OrvErrorType, code);
        QFETCH(QString, reason);

        QTemporaryDir dir;
        if (!fileContent.isNull())
        {
            QFile file(dir.filePath("camera.xml"));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(fileContent);
            file.close();
            id = GenICamCamera::FakePrefix + file.fileName();
        }

        GenICamCamera camera;
        QCOMPARE(camera.open(id), code);
        QVERIFY(!camera.errorString().isEmpty());
        QVERIFY2(camera.errorString().contains(reason), qPrintable(camera.errorString()));
        QVERIFY(!camera.isOpen());
        QVERIFY(camera.features()->isEmpty());

        // The object stays usable: a good model opens afterwards.
        QVERIFY(openModel(camera, "line-camera.xml"));
        QVERIFY(camera.isOpen());
    }

    void steps_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("steps");
        // "F?" reads F (type, writability, value), "F#" its entries or range and
        // increment, "F=V" writes V in F's own type ("b:", "i:", "f:", "s:" force
        // one), "F!" runs F as a command, "@A?" reads the register at address A.
        const QString line = "line-camera.xml", syncout = "syncout-camera.xml", routing = "routing-camera.xml";
        auto row = [](const char* tag, const QString& model, const QString& steps)
        { QTest::newRow(tag) << model << steps; };
        row("every type", line,
            "DeviceVendorName? LineSelector? ExposureTime=1234.5 ExposureTime? DeviceUserID=bench-7 DeviceUserID? "
            "LineInverter=true LineInverter? DeviceUserData=0102a0b0c0d0e0f0 DeviceUserData? DeviceUserData=12 "
            "TriggerSoftware! TriggerSoftware? PayloadSize?");
        row("integer", syncout, "SyncOutLevels=5 SyncOutLevels? SyncOutLevels#");
        row("enumeration", routing, "TriggerActivation=LowLevel TriggerActivation? TriggerActivation#");
        row("wrong types", line,
            "Width=b:true LineSource=b:true LineSource=i:1 Width! Width# LineSource=s:Nowhere LineSource?");
        row("range and grid", line,
            "Width# Width=64 Width=4096 Width=70 Width? @0x100? ExposureTime# ExposureTime=5 ExposureTime?");
        row("entries in declared order", line,
            "TriggerSelector# TriggerSource# LineMode# LineSelector=Line2 LineMode#");
        row("read-only", line, "DeviceModelName=Other PayloadSize=10 DeviceModelName?");
        row("locks", line,
            "AcquisitionFrameCount=7 @0x1010? AcquisitionMode=MultiFrame AcquisitionFrameCount=10 "
            "AcquisitionFrameCount? LineMode=Output @0x1110? LineStatus=true @0x1140? LineSource?");
        row("unavailable", line, "ExposureTime? ExposureAuto=Continuous ExposureTime? ExposureTime=100 @0x120?");
        row("routing locks", routing, "LineMode? LineSelector=Line2 LineMode=Input LineRouting=Trigger @0x1110?");
        row("selector walks", line,
            "LineSelector=Line0 LineMode? LineSelector=Line1 LineMode? LineSource? LineSelector=Line2 LineMode=Output "
            "LineInverter=true LineSource? LineSelector=Line3 LineMode? LineInverter? LineSelector=Line2 LineMode? "
            "LineInverter?");
        row("sync-out selector", syncout,
            "SyncOutSource? SyncOutSelector=SyncOut2 SyncOutSource? SyncOutSelector=SyncOut3 SyncOutSource?");
        row("routing selector", routing,
            "LineSelector=Line0 LineMode? LineSelector=Line1 LineMode? LineSelector=Line3 LineMode? LineOutLevels?");
    }

    // Each step's result on a demo model in process, compared with the reviewed
    // record backend-steps.txt.
    void steps()
    {
        QFETCH(QString, model);
        QFETCH(QString, steps);
        GenICamCamera camera;
        QVERIFY(openModel(camera, model));
        QStringList lines;
        for (const QString& step : steps.split(' '))
        {
            const int at = step.indexOf(QRegularExpression("[?#=!]"));
            const QString name = step.left(at), op = step.mid(at, 1);
            QString value = step.mid(at + 1);
            if (name.startsWith('@'))
            {
                lines << step + " " + QString::number(readRegister(camera, name.mid(1).toUInt(nullptr, 16)));
                continue;
            }
            const FeaturePtr f = featureNamed(camera.features(), name.toStdString());
            QVERIFY2(f, qPrintable(name));
            OrvFeatureDataType type = OrvFeatureDataUnknown;
            f->GetDataType(type);
            const QString forced = value.section(':', 0, 0);
            if (value.contains(':'))
            {
                type = forced == "b"   ? OrvFeatureDataBool
                       : forced == "i" ? OrvFeatureDataInt
                       : forced == "f" ? OrvFeatureDataFloat
                                       : OrvFeatureDataString;
                value = value.section(':', 1);
            }
            QString result;
            if (op == "?")
            {
                bool writable = false;
                f->IsWritable(writable);
                result = QString("type %1 %2 \"%3\"")
                             .arg(type)
                             .arg(writable ? "rw" : "ro")
                             .arg(QString::fromStdString(textOf(f)));
            }
            else if (op == "#")
            {
                std::vector<std::string> entries;
                long long iMin = 0, iMax = 0, iInc = 0;
                double fMin = 0, fMax = 0, fInc = 0;
                if (f->GetValues(entries) == OrvErrorSuccess)
                    for (const std::string& entry : entries)
                    {
                        bool available = false;
                        f->IsValueAvailable(entry.c_str(), available);
                        result += QString::fromStdString(entry) + (available ? " " : "(unavailable) ");
                    }
                else if (f->GetRange(iMin, iMax) == OrvErrorSuccess && f->GetIncrement(iInc) == OrvErrorSuccess)
                    result = QString("[%1, %2] step %3").arg(iMin).arg(iMax).arg(iInc);
                else if (f->GetRange(fMin, fMax) == OrvErrorSuccess && f->GetIncrement(fInc) == OrvErrorSuccess)
                    result = QString("[%1, %2] step %3").arg(fMin).arg(fMax).arg(fInc);
                else
                    result = QString("code %1").arg(f->GetValues(entries));
            }
            else if (op == "!")
                result = QString("code %1").arg(f->RunCommand());
            else if (type == OrvFeatureDataInt)
                result = QString("code %1").arg(f->SetValue(value.toLongLong()));
            else if (type == OrvFeatureDataFloat)
                result = QString("code %1").arg(f->SetValue(value.toDouble()));
            else if (type == OrvFeatureDataBool)
                result = QString("code %1").arg(f->SetValue(value == "true"));
            else
                result = QString("code %1").arg(f->SetValue(value.toUtf8().constData()));
            lines << step + " " + result;
        }
        QCOMPARE(lines, m_record.take(QString(QTest::currentDataTag()), lines));
    }

    void observerNotifiedOnBackendThread_data()
    {
        QTest::addColumn<QString>("observed");
        QTest::addColumn<QString>("change"); // "register" writes memory as the camera itself would

        QTest::newRow("own write") << "UserOutputValue"
                                   << "UserOutputValue";
        QTest::newRow("side effect of a selector write") << "LineSource"
                                                         << "LineSelector";
        QTest::newRow("lock follows another feature") << "AcquisitionFrameCount"
                                                      << "AcquisitionMode";
        QTest::newRow("changed by the camera") << "LineInverter"
                                               << "register";
    }

    void observerNotifiedOnBackendThread()
    {
        QFETCH(QString, observed);
        QFETCH(QString, change);

        GenICamCamera camera;
        QVERIFY(openModel(camera, "line-camera.xml"));
        const int period = 100;
        camera.setPollPeriod(period);
        QCOMPARE(camera.pollPeriod(), period);
        const FeatureList features = camera.features();
        auto observer = std::make_shared<RecordingObserver>();
        const FeaturePtr feature = featureNamed(features, observed.toStdString());
        QCOMPARE(feature->RegisterObserver(observer), OrvErrorType(OrvErrorSuccess));
        QTest::qWait(2 * period);
        QVERIFY(observer->names().isEmpty()); // nothing changed yet

        if (change == "UserOutputValue")
            QCOMPARE(feature->SetValue(true), OrvErrorType(OrvErrorSuccess));
        else if (change == "LineSelector")
            QCOMPARE(featureNamed(features, "LineSelector")->SetValue("Line1"), OrvErrorType(OrvErrorSuccess));
        else if (change == "AcquisitionMode")
            QCOMPARE(featureNamed(features, "AcquisitionMode")->SetValue("MultiFrame"), OrvErrorType(OrvErrorSuccess));
        else
            writeRegister(camera, 0x1130, 1); // LineInverter of Line0

        // Within one period (plus scheduling slack, generous for sanitizer builds).
        const qint64 elapsed = observer->waitFor(observed, period + 400);
        QVERIFY2(elapsed >= 0, "no notification");
        QVERIFY(!observer->threads().contains(QThread::currentThread()));
        QTest::qWait(2 * period);
        QCOMPARE(observer->names().count(), 1); // reported once, not on every poll
        QCOMPARE(feature->UnregisterObserver(observer), OrvErrorType(OrvErrorSuccess));
    }

    void registrationRules()
    {
        GenICamCamera camera;
        QVERIFY(openModel(camera, "line-camera.xml"));
        camera.setPollPeriod(50);
        const FeatureList features = camera.features();
        const FeaturePtr levels = featureNamed(features, "UserOutputValue");
        auto observer = std::make_shared<RecordingObserver>();
        auto other = std::make_shared<RecordingObserver>();
        QCOMPARE(levels->UnregisterObserver(observer), OrvErrorType(OrvErrorInvalidCall));
        QCOMPARE(levels->RegisterObserver(observer), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(levels->RegisterObserver(observer), OrvErrorType(OrvErrorInvalidCall));
        QCOMPARE(levels->RegisterObserver(other), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(levels->RegisterObserver(nullptr), OrvErrorType(OrvErrorBadParameter));
        QCOMPARE(featureNamed(features, "LineInverter")->UnregisterObserver(observer),
                 OrvErrorType(OrvErrorInvalidCall));
        QCOMPARE(levels->UnregisterObserver(observer), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(levels->UnregisterObserver(observer), OrvErrorType(OrvErrorInvalidCall));

        // No notification after unregistering; the other observer still gets its own.
        QCOMPARE(levels->SetValue(true), OrvErrorType(OrvErrorSuccess));
        QVERIFY(other->waitFor("UserOutputValue", 500) >= 0);
        QTest::qWait(150);
        QVERIFY(observer->names().isEmpty());
        QCOMPARE(levels->UnregisterObserver(other), OrvErrorType(OrvErrorSuccess));
    }

    void concurrentCallsFromTwoThreads()
    {
        GenICamCamera camera;
        QVERIFY(openModel(camera, "line-camera.xml"));
        camera.setPollPeriod(5);
        const FeatureList features = camera.features();
        auto observer = std::make_shared<RecordingObserver>();
        QCOMPARE(featureNamed(features, "LineSource")->RegisterObserver(observer), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(featureNamed(features, "UserOutputValue")->RegisterObserver(observer), OrvErrorType(OrvErrorSuccess));

        std::atomic<int> failures{0};
        auto lines = [&]
        {
            const FeaturePtr selector = featureNamed(features, "LineSelector");
            const FeaturePtr mode = featureNamed(features, "LineMode");
            for (int i = 0; i < 200; ++i)
            {
                std::string value;
                if (selector->SetValue(i % 2 ? "Line1" : "Line3") != OrvErrorSuccess ||
                    mode->GetValue(value) != OrvErrorSuccess)
                    ++failures;
            }
        };
        auto outputs = [&]
        {
            const FeaturePtr selector = featureNamed(features, "UserOutputSelector");
            const FeaturePtr value = featureNamed(features, "UserOutputValue");
            for (int i = 0; i < 200; ++i)
            {
                bool flag = false;
                if (selector->SetValue(i % 2 ? "UserOutput1" : "UserOutput2") != OrvErrorSuccess ||
                    value->SetValue(i % 3 == 0) != OrvErrorSuccess || value->GetValue(flag) != OrvErrorSuccess)
                    ++failures;
            }
        };
        std::thread first(lines);
        std::thread second(outputs);
        first.join();
        second.join();
        QCOMPARE(failures.load(), 0);
        QVERIFY(observer->waitFor("LineSource", 1000) >= 0);
        QCOMPARE(featureNamed(features, "LineSource")->UnregisterObserver(observer), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(featureNamed(features, "UserOutputValue")->UnregisterObserver(observer),
                 OrvErrorType(OrvErrorSuccess));
    }

    void observingSparesTheLink_data()
    {
        QTest::addColumn<QStringList>("observed");
        QTest::addColumn<QString>("change");
        QTest::addColumn<QStringList>("reported");
        const QStringList lines{"LineSelector", "LineSource", "LineMode", "LineInverter", "LineStatus"};
        QTest::newRow("select, read and restore") << lines << "each line" << QStringList();
        QTest::newRow("another line's value") << lines << "Line2 register" << QStringList();
        const QStringList inverter{"LineSelector", "LineInverter"};
        QTest::newRow("selector left on that line") << inverter << "Line2 register, select Line2" << inverter;
        QTest::newRow("volatile register") << QStringList{"LineInverter", "LineSource"} << "volatile" << QStringList();
    }

    // Registration and unregistration reach no register; a look sees the
    // settled state and compares each value with the one seen under the same
    // selector setting.
    void observingSparesTheLink()
    {
        QFETCH(QStringList, observed);
        QFETCH(QString, change);
        QFETCH(QStringList, reported);
        QTemporaryDir dir;
        QString model = modelPath("line-camera.xml");
        if (change == "volatile")
        {
            QFile file(model);
            QVERIFY(file.open(QIODevice::ReadOnly));
            QByteArray xml = file.readAll();
            xml.replace("<Address>0x1130</Address>", "<Address>0x1130</Address><Cachable>NoCache</Cachable>");
            model = dir.filePath("volatile.xml");
            QFile out(model);
            QVERIFY(out.open(QIODevice::WriteOnly) && out.write(xml) == xml.size());
        }
        GenICamCamera camera;
        QVERIFY(camera.open(GenICamCamera::FakePrefix + model) == OrvErrorSuccess);
        camera.setPollPeriod(400);
        const FeatureList features = camera.features();
        auto observer = std::make_shared<RecordingObserver>();

        // With the device held by this very thread: a registration that
        // touched the device would never return.
        camera.withAravisDevice(
            [&](ArvDevice*)
            {
                for (const QString& name : observed)
                {
                    const FeaturePtr feature = featureNamed(features, name.toStdString());
                    QCOMPARE(feature->RegisterObserver(observer), OrvErrorType(OrvErrorSuccess));
                    QCOMPARE(feature->UnregisterObserver(observer), OrvErrorType(OrvErrorSuccess));
                    QCOMPARE(feature->RegisterObserver(observer), OrvErrorType(OrvErrorSuccess));
                }
            });

        const FeaturePtr selector = featureNamed(features, "LineSelector");
        if (change == "each line")
        {
            // The tab's way of reading one line after the other.
            const std::string saved = textOf(selector);
            for (const char* line : {"Line0", "Line1", "Line2", "Line3"})
            {
                QCOMPARE(selector->SetValue(line), OrvErrorType(OrvErrorSuccess));
                textOf(featureNamed(features, "LineSource"));
                textOf(featureNamed(features, "LineMode"));
            }
            QCOMPARE(selector->SetValue(saved.c_str()), OrvErrorType(OrvErrorSuccess));
        }
        else if (change.startsWith("Line2 register"))
        {
            writeRegister(camera, 0x1138, 1); // LineInverter of Line2
            if (change.endsWith("select Line2"))
                QCOMPARE(selector->SetValue("Line2"), OrvErrorType(OrvErrorSuccess));
            QCOMPARE(textOf(featureNamed(features, "LineInverter")),
                     std::string(change.endsWith("Line2") ? "true" : "false"));
        }
        else
        {
            // Read on every look: a NoCache register below it; another feature is not.
            for (const char* name : {"LineInverter", "LineSource"})
            {
                std::string setting, state;
                bool isVolatile = false;
                std::vector<const void*> registers;
                auto* feature = dynamic_cast<GenICamFeature*>(featureNamed(features, name).get());
                feature->observe(setting, state, isVolatile, registers);
                QCOMPARE(isVolatile, std::string(name) == "LineInverter");
                QCOMPARE(setting, std::string("0,")); // indexed by LineSelector, at Line0
            }
        }
        QTest::qWait(1000);
        QStringList names = observer->names();
        names.sort();
        reported.sort();
        QCOMPARE(names, reported);
    }

    void featuresOutliveTheCamera()
    {
        FeatureList features;
        auto observer = std::make_shared<RecordingObserver>();
        {
            GenICamCamera camera;
            QVERIFY(openModel(camera, "routing-camera.xml"));
            features = camera.features();
        }
        const FeaturePtr levels = featureNamed(features, "LineOutLevels");
        QCOMPARE(levels->RegisterObserver(observer), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(levels->SetValue(3LL), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(textOf(levels), std::string("3"));
        QVERIFY(observer->waitFor("LineOutLevels", 1000) >= 0);
        // Dropping the last handle with an observer still registered closes the device cleanly.
        features.reset();
    }
};

QTEST_GUILESS_MAIN(tst_GenICamBackend)
#include "tst_GenICamBackend.moc"
