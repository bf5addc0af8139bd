// First: it brings Aravis, which must come before Qt's keywords.
#include "FakeGigEServer.h"

#include "GenICamTestSupport.h"

#include <QtTest>

using FeaturePtr = OrvCPP::shared_ptr<OrvCPP::Feature>;

Q_DECLARE_METATYPE(OrvErrorType)

// A demo model served by arv-fake-gv-camera-0.8 on 127.0.0.1 and opened over
// GigE Vision through the backend. The server is always stopped by the test.
class tst_GenICamLoopback : public QObject
{
    Q_OBJECT

private:
    FakeGigEServer m_server;

    void stopServer()
    {
        m_server.stop();
    }

    static QByteArray serialOf(const GenICamCamera& camera)
    {
        return FakeGigEServer::serialOf(camera);
    }

    bool startAndOpen(GenICamCamera& camera, const QString& model)
    {
        QString error;
        const bool open = m_server.startAndOpen(modelPath(model), camera, &error);
        if (!open)
            qWarning() << error;
        return open;
    }

private slots:
    void initTestCase()
    {
        if (FakeGigEServer::program().isEmpty())
            QSKIP("arv-fake-gv-camera-0.8 (Debian package aravis-tools) is not installed");
    }

    void cleanup()
    {
        stopServer();
    }

    void cleanupTestCase()
    {
        stopServer();
    }

    void readWriteOverGigEVision_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("modelName");
        QTest::addColumn<QString>("selector");
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("feature");
        QTest::addColumn<QString>("value");

        QTest::newRow("line") << "line-camera.xml"
                              << "TriggerIO Line Demo"
                              << "LineSelector"
                              << "Line2"
                              << "LineMode"
                              << "Output";
        QTest::newRow("sync-out") << "syncout-camera.xml"
                                  << "TriggerIO SyncOut Demo"
                                  << "SyncOutSelector"
                                  << "SyncOut3"
                                  << "SyncOutPolarity"
                                  << "Invert";
        QTest::newRow("routing") << "routing-camera.xml"
                                 << "TriggerIO Routing Demo"
                                 << "LineSelector"
                                 << "Line1"
                                 << "LineRouting"
                                 << "Trigger";
    }

    void readWriteOverGigEVision()
    {
        QFETCH(QString, model);
        QFETCH(QString, modelName);
        QFETCH(QString, selector);
        QFETCH(QString, entry);
        QFETCH(QString, feature);
        QFETCH(QString, value);

        GenICamCamera camera;
        QVERIFY(startAndOpen(camera, model));
        {
            const FeatureList features = camera.features();
            QCOMPARE(QString::fromStdString(textOf(featureNamed(features, "DeviceModelName"))), modelName);
            const FeaturePtr sel = featureNamed(features, selector.toStdString());
            const FeaturePtr dependent = featureNamed(features, feature.toStdString());
            QCOMPARE(sel->SetValue(entry.toUtf8().constData()), OrvErrorType(OrvErrorSuccess));
            QCOMPARE(dependent->SetValue(value.toUtf8().constData()), OrvErrorType(OrvErrorSuccess));
            QCOMPARE(QString::fromStdString(textOf(dependent)), value);
        }

        // The device is in use: a second connection is refused with a reason.
        GenICamCamera second;
        QCOMPARE(second.open("127.0.0.1"), OrvErrorType(OrvErrorInvalidAccess));
        QVERIFY(second.errorString().contains("in use"));
        QVERIFY(second.features()->isEmpty());

        // Once the first one is closed (no feature handle left), a new
        // connection sees the values in the device.
        camera.close();
        QCOMPARE(second.open("127.0.0.1"), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(QString::fromStdString(textOf(featureNamed(second.features(), selector.toStdString()))), entry);
        QCOMPARE(QString::fromStdString(textOf(featureNamed(second.features(), feature.toStdString()))), value);
    }

    void softwareTriggerDeliversOneFrame()
    {
        GenICamCamera camera;
        QVERIFY(startAndOpen(camera, "line-camera.xml"));
        const FeatureList features = camera.features();
        QCOMPARE(featureNamed(features, "Width")->SetValue(64LL), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(featureNamed(features, "Height")->SetValue(64LL), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(featureNamed(features, "TriggerSelector")->SetValue("FrameStart"), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(featureNamed(features, "TriggerMode")->SetValue("On"), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(featureNamed(features, "TriggerSource")->SetValue("Software"), OrvErrorType(OrvErrorSuccess));

        ArvStream* stream = nullptr;
        camera.withAravisDevice(
            [&](ArvDevice* device)
            {
                arv_gv_device_set_stream_options(ARV_GV_DEVICE(device), ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
                stream = arv_device_create_stream(device, nullptr, nullptr, nullptr);
            });
        QVERIFY(stream);
        for (int i = 0; i < 4; ++i)
            arv_stream_push_buffer(stream, arv_buffer_new(64 * 64, nullptr));
        QCOMPARE(featureNamed(features, "AcquisitionStart")->RunCommand(), OrvErrorType(OrvErrorSuccess));

        // Triggered: no frame without the trigger, one frame after it.
        ArvBuffer* early = arv_stream_timeout_pop_buffer(stream, 300000);
        QVERIFY(!early);
        QCOMPARE(featureNamed(features, "TriggerSoftware")->RunCommand(), OrvErrorType(OrvErrorSuccess));
        ArvBuffer* frame = arv_stream_timeout_pop_buffer(stream, 2000000);
        QVERIFY(frame);
        QCOMPARE(arv_buffer_get_status(frame), ARV_BUFFER_STATUS_SUCCESS);
        QCOMPARE(arv_buffer_get_image_width(frame), 64);
        g_object_unref(frame);
        ArvBuffer* extra = arv_stream_timeout_pop_buffer(stream, 300000);
        if (extra)
            g_object_unref(extra);
        QVERIFY(!extra);

        QCOMPARE(featureNamed(features, "AcquisitionStop")->RunCommand(), OrvErrorType(OrvErrorSuccess));
        g_object_unref(stream);
    }

    void killedServerMeansDeviceLost()
    {
        GenICamCamera camera;
        QVERIFY(startAndOpen(camera, "routing-camera.xml"));
        camera.setPollPeriod(100);
        const FeatureList features = camera.features();
        const FeaturePtr levels = featureNamed(features, "LineOutLevels");
        auto observer = std::make_shared<RecordingObserver>();
        QCOMPARE(levels->RegisterObserver(observer), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(levels->SetValue(2LL), OrvErrorType(OrvErrorSuccess));
        QVERIFY(observer->waitFor("LineOutLevels", 1000) >= 0);

        stopServer();
        QElapsedTimer timer;
        timer.start();
        long long value = -1;
        OrvErrorType code = levels->GetValue(value);
        if (code == OrvErrorSuccess && !serialOf(camera).isEmpty())
            QSKIP("another program's GigE Vision fake camera answers on 127.0.0.1");
        // The notification thread may have met the loss first; either way within Aravis's timeout.
        QCOMPARE(code, OrvErrorType(OrvErrorDeviceLost));
        QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(value, -1LL);
        QVERIFY(camera.isDeviceLost());

        // From now on every call fails at once.
        timer.restart();
        bool writable = true;
        std::vector<std::string> entries;
        QCOMPARE(levels->SetValue(1LL), OrvErrorType(OrvErrorDeviceLost));
        QCOMPARE(levels->IsWritable(writable), OrvErrorType(OrvErrorDeviceLost));
        QCOMPARE(featureNamed(features, "LineSelector")->GetValues(entries), OrvErrorType(OrvErrorDeviceLost));
        QCOMPARE(featureNamed(features, "TriggerSoftware")->RunCommand(), OrvErrorType(OrvErrorDeviceLost));
        QVERIFY(timer.elapsed() < 100);
        std::string name;
        QCOMPARE(levels->GetName(name), OrvErrorType(OrvErrorSuccess));
        QCOMPARE(levels->UnregisterObserver(observer), OrvErrorType(OrvErrorSuccess));
    }
};

QTEST_GUILESS_MAIN(tst_GenICamLoopback)
#include "tst_GenICamLoopback.moc"
