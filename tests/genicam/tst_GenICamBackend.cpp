// Aravis (gio) before Qt: gio uses "signals" as a name, Qt as a keyword.
#include <arv.h>

#include "GenICamFeature.h"
#include "GenICamTestSupport.h"

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
        QTest::addColumn<QByteArray>("fileContent"); // written to a temporary file used as "fake:" id when set
        QTest::addColumn<OrvErrorType>("code");

        QTest::newRow("unknown device id") << "no-such-camera-4711" << QByteArray() << OrvErrorType(OrvErrorNotFound);
        QTest::newRow("empty id") << "" << QByteArray() << OrvErrorType(OrvErrorBadParameter);
        QTest::newRow("missing file") << "fake:/nonexistent/camera.xml" << QByteArray()
                                      << OrvErrorType(OrvErrorNotFound);
        QTest::newRow("fake without path") << "fake:" << QByteArray() << OrvErrorType(OrvErrorNotFound);
        QTest::newRow("empty file") << "" << QByteArray(" ") << OrvErrorType(OrvErrorInvalidValue);
        QTest::newRow("broken xml") << "" << QByteArray("<RegisterDescription><Category Name=")
                                    << OrvErrorType(OrvErrorInvalidValue);
        QTest::newRow("xml but not GenICam")
            << "" << QByteArray("<?xml version=\"1.0\"?><html><body/></html>") << OrvErrorType(OrvErrorInvalidValue);
    }

    void openErrors()
    {
        QFETCH(QString, id);
        QFETCH(QByteArray, fileContent);
        QFETCH(OrvErrorType, code);

        QTemporaryDir dir;
        if (!fileContent.isEmpty())
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
        QVERIFY(!camera.isOpen());
        QVERIFY(camera.features()->isEmpty());

        // The object stays usable: a good model opens afterwards.
        QVERIFY(openModel(camera, "line-camera.xml"));
        QVERIFY(camera.isOpen());
    }

    void modelsOfferTheTabsFeatures_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QStringList>("names");
        const QStringList common = {"TriggerSelector", "TriggerMode",     "TriggerSource",        "TriggerActivation",
                                    "TriggerSoftware", "AcquisitionMode", "AcquisitionFrameCount"};
        QTest::newRow("line") << "line-camera.xml"
                              << common + QStringList{"ExposureAuto",       "LineSelector",   "LineMode",
                                                      "LineSource",         "LineInverter",   "LineStatus",
                                                      "UserOutputSelector", "UserOutputValue"};
        QTest::newRow("sync-out") << "syncout-camera.xml"
                                  << common + QStringList{"ExposureMode", "SyncOutSelector", "SyncOutSource",
                                                          "SyncOutPolarity", "SyncOutLevels"};
        QTest::newRow("routing") << "routing-camera.xml"
                                 << common + QStringList{"ExposureMode", "LineSelector", "LineMode",   "LineRouting",
                                                         "LineSource",   "LineInverter", "LineStatus", "LineOutLevels"};
    }

    void modelsOfferTheTabsFeatures()
    {
        QFETCH(QString, model);
        QFETCH(QStringList, names);
        GenICamCamera camera;
        QVERIFY(openModel(camera, model));
        for (const QString& name : names)
            QVERIFY2(featureNamed(camera.features(), name.toStdString()), qPrintable(name));
        // Helper nodes (registers, formulas) are not features of the camera.
        QVERIFY(!featureNamed(camera.features(), "LineSelectorRegister"));
        QVERIFY(!featureNamed(camera.features(), "Root"));
    }

    void categoryOrder()
    {
        GenICamCamera camera;
        QVERIFY(openModel(camera, "line-camera.xml"));
        const FeatureList features = camera.features();
        QStringList names;
        QStringList categories;
        for (const FeaturePtr& feature : *features)
        {
            std::string name, category;
            QCOMPARE(feature->GetName(name), OrvErrorType(OrvErrorSuccess));
            QCOMPARE(feature->GetCategory(category), OrvErrorType(OrvErrorSuccess));
            names << QString::fromStdString(name);
            if (categories.isEmpty() || categories.last() != QString::fromStdString(category))
                categories << QString::fromStdString(category);
        }
        QCOMPARE(names.first(), QStringLiteral("DeviceVendorName"));
        QCOMPARE(names.last(), QStringLiteral("UserOutputValue"));
        QVERIFY(names.indexOf("LineSelector") < names.indexOf("LineMode"));
        QCOMPARE(categories,
                 (QStringList{"DeviceControl", "ImageFormatControl", "AcquisitionControl", "DigitalIOControl"}));
        std::string displayName;
        QCOMPARE(featureNamed(features, "LineSelector")->GetDisplayName(displayName), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(displayName, std::string("Line Selector"));
    }

    void readWriteEveryType_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("name");
        QTest::addColumn<OrvFeatureDataType>("type");
        QTest::addColumn<QString>("value"); // written in the type's own form, read back as text

        QTest::newRow("integer") << "syncout-camera.xml"
                                 << "SyncOutLevels" << OrvFeatureDataInt << "5";
        QTest::newRow("float") << "line-camera.xml"
                               << "ExposureTime" << OrvFeatureDataFloat << "1234.5";
        QTest::newRow("enumeration") << "routing-camera.xml"
                                     << "TriggerActivation" << OrvFeatureDataEnum << "LowLevel";
        QTest::newRow("string") << "line-camera.xml"
                                << "DeviceUserID" << OrvFeatureDataString << "bench-7";
        QTest::newRow("boolean") << "line-camera.xml"
                                 << "LineInverter" << OrvFeatureDataBool << "true";
        QTest::newRow("raw") << "line-camera.xml"
                             << "DeviceUserData" << OrvFeatureDataRaw << "0102a0b0c0d0e0f0";
        QTest::newRow("command") << "line-camera.xml"
                                 << "TriggerSoftware" << OrvFeatureDataCommand << "";
    }

    void readWriteEveryType()
    {
        QFETCH(QString, model);
        QFETCH(QString, name);
        QFETCH(OrvFeatureDataType, type);
        QFETCH(QString, value);

        GenICamCamera camera;
        QVERIFY(openModel(camera, model));
        const FeaturePtr feature = featureNamed(camera.features(), name.toStdString());
        QVERIFY(feature);
        OrvFeatureDataType actual = OrvFeatureDataUnknown;
        QCOMPARE(feature->GetDataType(actual), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(actual, type);
        bool writable = false;
        QCOMPARE(feature->IsWritable(writable), OrvErrorType(OrvErrorSuccess));
        QVERIFY(writable);

        const std::string before = textOf(feature);
        OrvErrorType code = OrvErrorInternalFault;
        switch (type)
        {
        case OrvFeatureDataInt:
        {
            code = feature->SetValue(value.toLongLong());
            long long number = -1;
            QCOMPARE(feature->GetValue(number), OrvErrorType(OrvErrorSuccess));
            QCOMPARE(number, value.toLongLong());
            break;
        }
        case OrvFeatureDataFloat:
        {
            code = feature->SetValue(value.toDouble());
            double number = -1;
            QCOMPARE(feature->GetValue(number), OrvErrorType(OrvErrorSuccess));
            QCOMPARE(number, value.toDouble());
            break;
        }
        case OrvFeatureDataBool:
        {
            code = feature->SetValue(value == "true");
            bool flag = false;
            QCOMPARE(feature->GetValue(flag), OrvErrorType(OrvErrorSuccess));
            QCOMPARE(flag, value == "true");
            break;
        }
        case OrvFeatureDataCommand:
        {
            code = feature->RunCommand();
            std::string text;
            QCOMPARE(feature->GetValue(text), OrvErrorType(OrvErrorWrongType));
            break;
        }
        default:
            code = feature->SetValue(value.toUtf8().constData());
        }
        QCOMPARE(code, OrvErrorType(OrvErrorSuccess));
        if (type != OrvFeatureDataCommand)
        {
            QVERIFY(before != value.toStdString());
            QCOMPARE(QString::fromStdString(textOf(feature)), value);
        }
    }

    void wrongTypeCalls()
    {
        GenICamCamera camera;
        QVERIFY(openModel(camera, "line-camera.xml"));
        const FeatureList features = camera.features();
        bool flag = false;
        long long number = 0;
        std::vector<std::string> entries;
        QCOMPARE(featureNamed(features, "Width")->GetValue(flag), OrvErrorType(OrvErrorWrongType));
        QCOMPARE(featureNamed(features, "LineSource")->SetValue(true), OrvErrorType(OrvErrorWrongType));
        QCOMPARE(featureNamed(features, "LineSource")->GetValue(number), OrvErrorType(OrvErrorWrongType));
        QCOMPARE(featureNamed(features, "Width")->RunCommand(), OrvErrorType(OrvErrorWrongType));
        QCOMPARE(featureNamed(features, "Width")->GetValues(entries), OrvErrorType(OrvErrorWrongType));
        QCOMPARE(featureNamed(features, "LineSource")->SetValue(nullptr), OrvErrorType(OrvErrorBadParameter));
        QCOMPARE(featureNamed(features, "DeviceUserData")->SetValue("12"), OrvErrorType(OrvErrorInvalidValue));
    }

    void rangeAndIncrement()
    {
        GenICamCamera camera;
        QVERIFY(openModel(camera, "line-camera.xml"));
        const FeatureList features = camera.features();
        const FeaturePtr width = featureNamed(features, "Width");
        long long minimum = 0, maximum = 0, increment = 0;
        QCOMPARE(width->GetRange(minimum, maximum), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(width->GetIncrement(increment), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(minimum, 16LL);
        QCOMPARE(maximum, 2048LL);
        QCOMPARE(increment, 16LL);
        QCOMPARE(width->SetValue(64LL), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(width->SetValue(4096LL), OrvErrorType(OrvErrorInvalidValue));
        QCOMPARE(width->SetValue(70LL), OrvErrorType(OrvErrorInvalidValue)); // off the increment
        QCOMPARE(textOf(width), std::string("64"));
        QCOMPARE(readRegister(camera, 0x100), 64u);

        const FeaturePtr exposure = featureNamed(features, "ExposureTime");
        double low = 0, high = 0, step = 0;
        QCOMPARE(exposure->GetRange(low, high), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(exposure->GetIncrement(step), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(low, 10.0);
        QCOMPARE(high, 1000000.0);
        QCOMPARE(step, 0.5);
        QCOMPARE(exposure->SetValue(5.0), OrvErrorType(OrvErrorInvalidValue));
        QCOMPARE(textOf(exposure), std::string("5000"));
    }

    void enumerationEntries()
    {
        GenICamCamera camera;
        QVERIFY(openModel(camera, "line-camera.xml"));
        const FeatureList features = camera.features();
        std::vector<std::string> entries;
        // Declared order, not Aravis's reversed list nor the numeric values' order.
        QCOMPARE(featureNamed(features, "TriggerSelector")->GetValues(entries), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(entries, (std::vector<std::string>{"AcquisitionStart", "FrameStart"}));
        QCOMPARE(featureNamed(features, "TriggerSource")->GetValues(entries), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(entries, (std::vector<std::string>{"Line0", "Line2", "Line3", "Software"}));

        const FeaturePtr lineMode = featureNamed(features, "LineMode");
        const FeaturePtr selector = featureNamed(features, "LineSelector");
        bool available = true;
        QCOMPARE(lineMode->IsValueAvailable("Output", available), OrvErrorType(OrvErrorSuccess));
        QVERIFY(!available); // Line0 is an input only
        QCOMPARE(lineMode->IsValueAvailable("Bidirectional", available), OrvErrorType(OrvErrorInvalidValue));
        QCOMPARE(selector->SetValue("Line2"), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(lineMode->IsValueAvailable("Output", available), OrvErrorType(OrvErrorSuccess));
        QVERIFY(available);
        QCOMPARE(lineMode->SetValue("Bidirectional"), OrvErrorType(OrvErrorInvalidValue));
        QCOMPARE(textOf(lineMode), std::string("Input"));
    }

    void unavailableEntryIsRefused()
    {
        // Line1 has a writable... no: Line1 is a fixed output; make Line0 writable
        // in memory to reach the entry check itself.
        GenICamCamera camera;
        QVERIFY(openModel(camera, "line-camera.xml"));
        const FeaturePtr lineMode = featureNamed(camera.features(), "LineMode");
        bool writable = true;
        QCOMPARE(lineMode->IsWritable(writable), OrvErrorType(OrvErrorSuccess));
        QVERIFY(!writable); // locked on Line0
        QCOMPARE(lineMode->SetValue("Output"), OrvErrorType(OrvErrorInvalidAccess));
        QCOMPARE(readRegister(camera, 0x1110), 0u);
    }

    void readOnlyAndLocked_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("value");
        QTest::addColumn<quint32>("address"); // register that must stay unchanged (0: none)

        QTest::newRow("read-only string") << "line-camera.xml"
                                          << "DeviceModelName"
                                          << "Other" << 0u;
        QTest::newRow("read-only formula") << "line-camera.xml"
                                           << "PayloadSize"
                                           << "10" << 0u;
        QTest::newRow("read-only enumeration") << "routing-camera.xml"
                                               << "LineMode"
                                               << "Output" << 0u;
        QTest::newRow("locked frame count") << "line-camera.xml"
                                            << "AcquisitionFrameCount"
                                            << "7" << 0x1010u;
        QTest::newRow("locked line mode") << "line-camera.xml"
                                          << "LineMode"
                                          << "Output" << 0x1110u;
        QTest::newRow("locked routing on output line") << "routing-camera.xml"
                                                       << "LineRouting"
                                                       << "Trigger" << 0x1110u;
        QTest::newRow("locked status of non-Direct line") << "line-camera.xml"
                                                          << "LineStatus"
                                                          << "1" << 0x1140u;
        QTest::newRow("unavailable exposure time") << "line-camera.xml"
                                                   << "ExposureTime"
                                                   << "100" << 0x120u;
    }

    void readOnlyAndLocked()
    {
        QFETCH(QString, model);
        QFETCH(QString, name);
        QFETCH(QString, value);
        QFETCH(quint32, address);

        GenICamCamera camera;
        QVERIFY(openModel(camera, model));
        const FeatureList features = camera.features();
        if (model == "routing-camera.xml")
            QCOMPARE(featureNamed(features, "LineSelector")->SetValue("Line2"), OrvErrorType(OrvErrorSuccess));
        if (name == "ExposureTime")
            QCOMPARE(featureNamed(features, "ExposureAuto")->SetValue("Continuous"), OrvErrorType(OrvErrorSuccess));
        const FeaturePtr feature = featureNamed(features, name.toStdString());
        const quint32 before = address ? readRegister(camera, address) : 0;

        bool writable = true;
        QCOMPARE(feature->IsWritable(writable), OrvErrorType(OrvErrorSuccess));
        QVERIFY(!writable);
        OrvFeatureDataType type = OrvFeatureDataUnknown;
        feature->GetDataType(type);
        OrvErrorType code = OrvErrorSuccess;
        if (type == OrvFeatureDataInt)
            code = feature->SetValue(value.toLongLong());
        else if (type == OrvFeatureDataFloat)
            code = feature->SetValue(value.toDouble());
        else if (type == OrvFeatureDataBool)
            code = feature->SetValue(value == "1");
        else
            code = feature->SetValue(value.toUtf8().constData());
        QCOMPARE(code, OrvErrorType(OrvErrorInvalidAccess));
        if (address)
            QCOMPARE(readRegister(camera, address), before);
    }

    void lockFollowsAcquisitionMode()
    {
        GenICamCamera camera;
        QVERIFY(openModel(camera, "line-camera.xml"));
        const FeatureList features = camera.features();
        const FeaturePtr count = featureNamed(features, "AcquisitionFrameCount");
        bool writable = true;
        QCOMPARE(count->IsWritable(writable), OrvErrorType(OrvErrorSuccess));
        QVERIFY(!writable);
        QCOMPARE(featureNamed(features, "AcquisitionMode")->SetValue("MultiFrame"), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(count->IsWritable(writable), OrvErrorType(OrvErrorSuccess));
        QVERIFY(writable);
        QCOMPARE(count->SetValue(10.0), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(textOf(count), std::string("10"));
    }

    void unavailableFeatureIsNotReadable()
    {
        GenICamCamera camera;
        QVERIFY(openModel(camera, "line-camera.xml"));
        const FeatureList features = camera.features();
        const FeaturePtr exposure = featureNamed(features, "ExposureTime");
        double value = -1;
        QCOMPARE(exposure->GetValue(value), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(featureNamed(features, "ExposureAuto")->SetValue("Continuous"), OrvErrorType(OrvErrorSuccess));
        value = -1;
        QCOMPARE(exposure->GetValue(value), OrvErrorType(OrvErrorInvalidAccess));
        QCOMPARE(value, -1.0); // outputs untouched on failure
    }

    void selectorChangesDependentReads_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("selector");
        QTest::addColumn<QString>("feature");
        QTest::addColumn<QStringList>("entries");
        QTest::addColumn<QStringList>("powerUp"); // per entry

        QTest::newRow("line mode") << "line-camera.xml"
                                   << "LineSelector"
                                   << "LineMode" << QStringList{"Line0", "Line1", "Line2", "Line3"}
                                   << QStringList{"Input", "Output", "Input", "Input"};
        QTest::newRow("line source") << "line-camera.xml"
                                     << "LineSelector"
                                     << "LineSource" << QStringList{"Line1", "Line2"}
                                     << QStringList{"UserOutput0", "Off"};
        QTest::newRow("routing line mode") << "routing-camera.xml"
                                           << "LineSelector"
                                           << "LineMode" << QStringList{"Line0", "Line1", "Line2", "Line3"}
                                           << QStringList{"Input", "Input", "Output", "Output"};
        QTest::newRow("sync-out source") << "syncout-camera.xml"
                                         << "SyncOutSelector"
                                         << "SyncOutSource" << QStringList{"SyncOut1", "SyncOut2", "SyncOut3"}
                                         << QStringList{"ExposureActive", "GPO", "GPO"};
    }

    void selectorChangesDependentReads()
    {
        QFETCH(QString, model);
        QFETCH(QString, selector);
        QFETCH(QString, feature);
        QFETCH(QStringList, entries);
        QFETCH(QStringList, powerUp);

        GenICamCamera camera;
        QVERIFY(openModel(camera, model));
        const FeaturePtr sel = featureNamed(camera.features(), selector.toStdString());
        const FeaturePtr dependent = featureNamed(camera.features(), feature.toStdString());
        for (int i = 0; i < entries.size(); ++i)
        {
            QCOMPARE(sel->SetValue(entries[i].toUtf8().constData()), OrvErrorType(OrvErrorSuccess));
            QCOMPARE(QString::fromStdString(textOf(dependent)), powerUp[i]);
        }
    }

    void selectorKeepsValuesPerLine()
    {
        GenICamCamera camera;
        QVERIFY(openModel(camera, "line-camera.xml"));
        const FeatureList features = camera.features();
        const FeaturePtr selector = featureNamed(features, "LineSelector");
        const FeaturePtr inverter = featureNamed(features, "LineInverter");
        const FeaturePtr mode = featureNamed(features, "LineMode");
        QCOMPARE(selector->SetValue("Line2"), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(mode->SetValue("Output"), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(inverter->SetValue(true), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(selector->SetValue("Line3"), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(textOf(inverter), std::string("false"));
        QCOMPARE(textOf(mode), std::string("Input"));
        QCOMPARE(selector->SetValue("Line2"), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(textOf(inverter), std::string("true"));
        QCOMPARE(textOf(mode), std::string("Output"));
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
