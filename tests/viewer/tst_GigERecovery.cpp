// Aravis (gio) before Qt: gio uses "signals" as a name, Qt as a keyword.
#include "FakeGigEServer.h"

#include "CameraFinder.h"

#include <QSignalSpy>
#include <QtTest>

Q_DECLARE_METATYPE(std::shared_ptr<GenICamCamera>)

// Finding a camera again, and keeping it, against a fake GigE Vision camera on
// 127.0.0.1: the finder takes only the camera with the serial number it looks
// for and can go at any moment; control lost to a silence is taken back.
class tst_GigERecovery : public QObject
{
    Q_OBJECT

    FakeGigEServer m_server;

private slots:
    void initTestCase()
    {
        if (FakeGigEServer::program().isEmpty())
            QSKIP("arv-fake-gv-camera-0.8 (Debian package aravis-tools) is not installed");
        qRegisterMetaType<std::shared_ptr<GenICamCamera>>();
        GenICamCamera camera;
        QString error;
        QVERIFY2(m_server.startAndOpen(TRIGGERIO_CAMERAS_DIR "/line-camera.xml", camera, &error), qPrintable(error));
    }

    // Another camera answering at the address is not taken, and the search
    // goes on until the one looked for answers.
    void takesOnlyTheSameCamera()
    {
        CameraFinder finder;
        finder.setInterval(100);
        QSignalSpy found(&finder, &CameraFinder::found), missed(&finder, &CameraFinder::missed);
        finder.start("127.0.0.1", "ANOTHER-1");
        QVERIFY(missed.wait(20000) || missed.count() > 0);
        QVERIFY2(missed.first().first().toString().contains("another camera answers at 127.0.0.1 (serial number " +
                                                              m_server.serial() + ", not ANOTHER-1)"),
                 qPrintable(missed.first().first().toString()));
        QVERIFY(found.isEmpty() && finder.isSearching());
        finder.start("127.0.0.1", m_server.serial());
        QTRY_COMPARE_WITH_TIMEOUT(found.count(), 1, 20000);
        QCOMPARE(found.first().first().value<std::shared_ptr<GenICamCamera>>()->serialNumber(),
                 QString::fromLatin1(m_server.serial()));
        QVERIFY(!finder.isSearching());
    }

    // A finder destroyed while its attempt runs: the attempt closes what it
    // opened, so the camera can be opened again, and its thread ends.
    void destroyedWhileAnAttemptRuns()
    {
        auto finder = std::make_unique<CameraFinder>();
        finder->start("127.0.0.1", m_server.serial());
        finder.reset();
        QVERIFY(GenICamCamera::waitForBackgroundWork(20000));
        GenICamCamera camera;
        QCOMPARE(camera.open("127.0.0.1"), OrvErrorSuccess);
    }

    // Silent for longer than its heartbeat timeout, the camera drops us as its
    // controller and says so once it answers again: control is taken back,
    // and Aravis's heartbeat keeps it ours (else the camera would drop us
    // again three seconds later).
    void controlTakenBackAfterASilence()
    {
        GenICamCamera camera;
        QCOMPARE(camera.open("127.0.0.1"), OrvErrorSuccess);
        QCOMPARE(camera.serialNumber(), QString::fromLatin1(m_server.serial()));
        const auto privilege = [&]
        {
            guint32 value = 0;
            camera.withAravisDevice([&](ArvDevice* device) { arv_device_read_register(device, 0x0a00, &value, nullptr); });
            return value;
        };
        m_server.pause();
        QTest::qWait(4000);
        m_server.resume();
        QTest::qWait(3000); // the camera's drop seen by Aravis's heartbeat, control asked for again
        QTest::qWait(5000);
        QCOMPARE(privilege() & 0x3, guint32(0x2)); // control, not exclusive
        QVERIFY(!camera.isDeviceLost());
    }
};

QTEST_GUILESS_MAIN(tst_GigERecovery)
#include "tst_GigERecovery.moc"
