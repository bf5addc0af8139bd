#include "PluginFeatureObserver.h"
#include "TestCamera.h"

#include <QtTest>

#include <thread>

using TestCam::Op;
using TestCam::TestCamera;

// What the observer reports for a changed feature of each type, and that a change
// reported on the camera's thread reaches a receiver on the receiver's thread.
class tst_PluginFeatureObserver : public QObject
{
    Q_OBJECT

private slots:
    void valueText_data();
    void valueText();
    void queuedFromCameraThread();
};

void tst_PluginFeatureObserver::valueText_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("fault");
    QTest::addColumn<QStringList>("signal");
    const int none = -1;
    QTest::newRow("int") << int(OrvFeatureDataInt) << none << QStringList{"F", "1234567890123"};
    QTest::newRow("float") << int(OrvFeatureDataFloat) << none << QStringList{"F", "1.23457e+12"};
    QTest::newRow("enum") << int(OrvFeatureDataEnum) << none << QStringList{"F", "1234567890123"};
    QTest::newRow("bool") << int(OrvFeatureDataBool) << none << QStringList{"F", "true"};
    QTest::newRow("command") << int(OrvFeatureDataCommand) << none << QStringList{"F", "[COMMAND]"};
    QTest::newRow("raw") << int(OrvFeatureDataRaw) << none << QStringList{"F", "Click here to open"};
    QTest::newRow("value read fails") << int(OrvFeatureDataFloat) << int(Op::GetDouble) << QStringList{"F", ""};
    QTest::newRow("name read fails") << int(OrvFeatureDataInt) << int(Op::GetName) << QStringList();
    QTest::newRow("type read fails") << int(OrvFeatureDataInt) << int(Op::GetDataType) << QStringList();
}

void tst_PluginFeatureObserver::valueText()
{
    QFETCH(int, type);
    QFETCH(int, fault);
    QFETCH(QStringList, signal);
    TestCamera cam;
    const qint64 value = 1234567890123LL;
    // Bool true, the enumeration's one entry named after the number.
    const QVariant shown = type == OrvFeatureDataBool ? QVariant(true) : QVariant(value);
    cam.add("F", OrvFeatureDataType(type), shown, 0, double(value), 1, {QString::number(value)});
    if (fault >= 0)
        cam.fail("F", Op(fault), OrvErrorDeviceLost);
    PluginFeatureObserver observer;
    QSignalSpy spy(&observer, &PluginFeatureObserver::setChangedFeature);
    observer.FeatureChanged(cam.feature("F"));
    observer.FeatureChanged(nullptr);
    QCOMPARE(spy.count(), signal.isEmpty() ? 0 : 1);
    if (!signal.isEmpty())
        QCOMPARE(spy.at(0), (QVariantList{signal.at(0), signal.at(1)}));
    QVERIFY(cam.takeJournal().isEmpty());
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
