#include "PluginFeatureObserver.h"
#include "TestCamera.h"

#include <QtTest>

#include <thread>

using TestCam::TestCamera;

// What the observer reports when the feature's reads fail, and that a change
// reported on the camera's thread reaches a receiver on the receiver's thread.
class tst_PluginFeatureObserver : public QObject
{
    Q_OBJECT

private slots:
    void failingReads_data();
    void failingReads();
    void queuedFromCameraThread();
};

void tst_PluginFeatureObserver::failingReads_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QVariantList>("signal"); // empty: no signal
    QTest::newRow("value read fails") << "GetInt" << QVariantList{"Width", ""};
    QTest::newRow("name read fails") << "GetName" << QVariantList();
    QTest::newRow("type read fails") << "GetDataType" << QVariantList();
}

// A change is reported when the feature can be named, with or without its value;
// a null feature is no change.
void tst_PluginFeatureObserver::failingReads()
{
    QFETCH(QString, fault);
    QFETCH(QVariantList, signal);
    TestCamera cam;
    cam.add("Width", OrvFeatureDataInt, 640);
    cam.fail("Width", fault, OrvErrorDeviceLost);
    PluginFeatureObserver observer;
    QSignalSpy spy(&observer, &PluginFeatureObserver::setChangedFeature);
    observer.FeatureChanged(cam.feature("Width"));
    observer.FeatureChanged(nullptr);
    QCOMPARE(spy, signal.isEmpty() ? QList<QVariantList>() : QList<QVariantList>{signal});
}

void tst_PluginFeatureObserver::queuedFromCameraThread()
{
    TestCamera cam;
    cam.add("Width", OrvFeatureDataInt, 640, 0, 4096, 1);
    cam.addEnum("TriggerMode", {"Off", "On"}, "Off");
    OrvCPP::shared_ptr<PluginFeatureObserver> observer = PluginFeatureObserver::create();
    for (const char* name : {"Width", "TriggerMode"})
        QCOMPARE(cam.feature(name)->RegisterObserver(observer), OrvErrorType(OrvErrorSuccess));
    QObject receiver;
    QList<QStringList> received;
    QObject::connect(observer.get(), &PluginFeatureObserver::setChangedFeature, &receiver,
                     [&](const QString& name, const QString& value)
                     {
                         QCOMPARE(QThread::currentThread(), receiver.thread());
                         received << QStringList{name, value};
                     });
    cam.set("Width", 800);
    cam.notify("Width");
    QCOMPARE(cam.feature("TriggerMode")->SetValue("On"), OrvErrorType(OrvErrorSuccess));
    cam.waitForNotifications();
    QVERIFY(received.isEmpty()); // delivered only by the receiver's event loop
    QTRY_COMPARE(received, (QList<QStringList>{{"Width", "800"}, {"TriggerMode", "On"}}));

    // The last reference let go on another thread: the object dies on its own one,
    // or at once when its thread has ended.
    QThread* dying = nullptr;
    QObject::connect(observer.get(), &QObject::destroyed, [&dying] { dying = QThread::currentThread(); });
    for (const char* name : {"Width", "TriggerMode"})
        cam.feature(name)->UnregisterObserver(observer);
    std::thread([last = std::move(observer)]() mutable { last.reset(); }).join();
    QVERIFY(!dying);
    QTRY_COMPARE(dying, QThread::currentThread());
    OrvCPP::shared_ptr<PluginFeatureObserver> orphan = PluginFeatureObserver::create();
    QThread owner;
    orphan->moveToThread(&owner);
    owner.start();
    owner.quit();
    owner.wait();
    bool gone = false;
    QObject::connect(orphan.get(), &QObject::destroyed, [&gone] { gone = true; });
    orphan.reset();
    QVERIFY(gone);
}

QTEST_GUILESS_MAIN(tst_PluginFeatureObserver)
#include "tst_PluginFeatureObserver.moc"
