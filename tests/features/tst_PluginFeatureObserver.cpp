#include "PluginFeatureObserver.h"
#include "TestCamera.h"

#include <QtTest>

#include <atomic>
#include <thread>

using TestCam::Op;
using TestCam::TestCamera;

namespace
{

// Adds the feature "F" of the given type holding the value.
void addFeature(TestCamera& cam, int type, const QVariant& value)
{
    switch (type)
    {
    case OrvFeatureDataInt:
        cam.addInt("F", value.toLongLong());
        break;
    case OrvFeatureDataFloat:
        cam.addFloat("F", value.toDouble());
        break;
    case OrvFeatureDataEnum:
        cam.addEnum("F", {"Off", value.toString()}, value.toString());
        break;
    case OrvFeatureDataString:
        cam.addString("F", value.toString());
        break;
    case OrvFeatureDataBool:
        cam.addBool("F", value.toBool());
        break;
    case OrvFeatureDataCommand:
        cam.addCommand("F");
        break;
    default:
        cam.addRaw("F");
        break;
    }
}

int valueReads(const TestCamera& cam)
{
    int reads = 0;
    for (Op op : {Op::GetString, Op::GetDouble, Op::GetInt, Op::GetBool})
        reads += cam.calls("F", op);
    return reads;
}

} // namespace

// Lives in the test's (GUI) thread and notes where each signal arrived.
class Receiver : public QObject
{
    Q_OBJECT

public:
    QList<QStringList> received;
    QList<QThread*> threads;

public slots:
    void OnFeatureChanged(QString featureName, QString sValue)
    {
        received << QStringList{featureName, sValue};
        threads << QThread::currentThread();
    }
};

class tst_PluginFeatureObserver : public QObject
{
    Q_OBJECT

private slots:
    void emptyHandleEmitsNothing();
    void valueText_data();
    void valueText();
    void failedReads_data();
    void failedReads();
    void metaObject();
    void queuedFromCameraThread();
};

void tst_PluginFeatureObserver::emptyHandleEmitsNothing()
{
    PluginFeatureObserver observer;
    QSignalSpy spy(&observer, &PluginFeatureObserver::setChangedFeature);
    observer.FeatureChanged(nullptr);
    QCOMPARE(spy.count(), 0);
}

void tst_PluginFeatureObserver::valueText_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("reads");

    QTest::newRow("int") << int(OrvFeatureDataInt) << QVariant(42) << "42" << 1;
    QTest::newRow("negative int") << int(OrvFeatureDataInt) << QVariant(-7) << "-7" << 1;
    QTest::newRow("64-bit int") << int(OrvFeatureDataInt) << QVariant(1234567890123LL) << "1234567890123" << 1;
    QTest::newRow("float tenth") << int(OrvFeatureDataFloat) << QVariant(0.1) << "0.1" << 1;
    QTest::newRow("float six digits") << int(OrvFeatureDataFloat) << QVariant(1234567.0) << "1.23457e+06" << 1;
    QTest::newRow("float small") << int(OrvFeatureDataFloat) << QVariant(0.0000125) << "1.25e-05" << 1;
    QTest::newRow("float whole") << int(OrvFeatureDataFloat) << QVariant(100.0) << "100" << 1;
    QTest::newRow("enum") << int(OrvFeatureDataEnum) << QVariant("RisingEdge") << "RisingEdge" << 1;
    QTest::newRow("string") << int(OrvFeatureDataString) << QVariant("Cam 1") << "Cam 1" << 1;
    QTest::newRow("bool true") << int(OrvFeatureDataBool) << QVariant(true) << "true" << 1;
    QTest::newRow("bool false") << int(OrvFeatureDataBool) << QVariant(false) << "false" << 1;
    QTest::newRow("command") << int(OrvFeatureDataCommand) << QVariant() << "[COMMAND]" << 0;
    QTest::newRow("raw") << int(OrvFeatureDataRaw) << QVariant() << "Click here to open" << 0;
}

void tst_PluginFeatureObserver::valueText()
{
    QFETCH(int, type);
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    QFETCH(int, reads);
    TestCamera cam;
    addFeature(cam, type, value);
    PluginFeatureObserver observer;
    QSignalSpy spy(&observer, &PluginFeatureObserver::setChangedFeature);

    observer.FeatureChanged(cam.feature("F"));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toString(), QString("F"));
    QCOMPARE(spy.at(0).at(1).toString(), text);
    QCOMPARE(valueReads(cam), reads);
    QVERIFY(cam.journal().isEmpty());
}

void tst_PluginFeatureObserver::failedReads_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("fault");
    QTest::addColumn<bool>("signal");

    QTest::newRow("name") << int(OrvFeatureDataInt) << int(Op::GetName) << false;
    QTest::newRow("type") << int(OrvFeatureDataInt) << int(Op::GetDataType) << false;
    QTest::newRow("int value") << int(OrvFeatureDataInt) << int(Op::GetInt) << true;
    QTest::newRow("float value") << int(OrvFeatureDataFloat) << int(Op::GetDouble) << true;
    QTest::newRow("enum value") << int(OrvFeatureDataEnum) << int(Op::GetString) << true;
    QTest::newRow("string value") << int(OrvFeatureDataString) << int(Op::GetString) << true;
    QTest::newRow("bool value") << int(OrvFeatureDataBool) << int(Op::GetBool) << true;
}

// A failed value read still reports the change, with an empty text.
void tst_PluginFeatureObserver::failedReads()
{
    QFETCH(int, type);
    QFETCH(int, fault);
    QFETCH(bool, signal);
    TestCamera cam;
    addFeature(cam, type, QVariant(1));
    cam.fail("F", static_cast<Op>(fault), OrvErrorDeviceLost);
    PluginFeatureObserver observer;
    QSignalSpy spy(&observer, &PluginFeatureObserver::setChangedFeature);

    observer.FeatureChanged(cam.feature("F"));
    QCOMPARE(spy.count(), signal ? 1 : 0);
    if (signal)
        QCOMPARE(spy.at(0), (QVariantList{"F", ""}));
}

void tst_PluginFeatureObserver::metaObject()
{
    PluginFeatureObserver observer;
    QObject* object = &observer;
    OrvCPP::IFeatureObserver* asInterface = &observer;
    QCOMPARE(qobject_cast<OrvCPP::IFeatureObserver*>(object), asInterface);
    QCOMPARE(object->qt_metacast("OrvCPP::IFeatureObserver"), static_cast<void*>(asInterface));
    QCOMPARE(object->qt_metacast("PluginFeatureObserver"), static_cast<void*>(&observer));
    QCOMPARE(object->qt_metacast("IFeatureObserver"), nullptr);
    QVERIFY(!observer.parent());

    const QMetaObject* meta = observer.metaObject();
    QCOMPARE(meta->methodCount() - meta->methodOffset(), 1);
    const QMetaMethod method = meta->method(meta->methodOffset());
    QCOMPARE(method.methodType(), QMetaMethod::Signal);
    QCOMPARE(method.methodSignature(), QByteArray("setChangedFeature(QString,QString)"));
    QCOMPARE(method.parameterNames(), (QList<QByteArray>{"featureName", "sValue"}));
}

// Registered on the camera, the observer is called on the camera's thread and the
// default connection carries the change over to the receiver's thread.
void tst_PluginFeatureObserver::queuedFromCameraThread()
{
    TestCamera cam;
    cam.addInt("Width", 640, 0, 4096, 1);
    cam.addEnum("TriggerMode", {"Off", "On"}, "Off");
    cam.addCommand("TriggerSoftware");
    OrvCPP::shared_ptr<PluginFeatureObserver> observer = PluginFeatureObserver::create();
    for (const char* name : {"Width", "TriggerMode", "TriggerSoftware"})
        QCOMPARE(cam.feature(name)->RegisterObserver(observer), OrvErrorType(OrvErrorSuccess));

    Receiver receiver;
    QVERIFY(QObject::connect(observer.get(), SIGNAL(setChangedFeature(QString, QString)), &receiver,
                             SLOT(OnFeatureChanged(QString, QString))));
    std::atomic<QThread*> emittingThread{nullptr};
    QObject::connect(
        observer.get(), &PluginFeatureObserver::setChangedFeature, observer.get(),
        [&emittingThread] { emittingThread = QThread::currentThread(); }, Qt::DirectConnection);

    cam.set("Width", 800);
    cam.notify("Width");
    cam.notify("TriggerMode");
    cam.notify("TriggerSoftware");
    cam.waitForNotifications();
    QVERIFY(emittingThread.load() && emittingThread.load() != QThread::currentThread());
    // Nothing arrives before the receiver's thread runs its event loop.
    QVERIFY(receiver.received.isEmpty());

    QTRY_COMPARE(receiver.received.size(), 3);
    QCOMPARE(receiver.received,
             (QList<QStringList>{{"Width", "800"}, {"TriggerMode", "Off"}, {"TriggerSoftware", "[COMMAND]"}}));
    for (QThread* thread : receiver.threads)
        QCOMPARE(thread, QThread::currentThread());

    // A write through the camera reports itself as well.
    QCOMPARE(cam.feature("TriggerMode")->SetValue("On"), OrvErrorType(OrvErrorSuccess));
    QTRY_COMPARE(receiver.received.size(), 4);
    QCOMPARE(receiver.received.last(), (QStringList{"TriggerMode", "On"}));

    // The last reference let go on another thread: the object dies on its own one.
    std::atomic<QThread*> dyingThread{nullptr};
    QObject::connect(observer.get(), &QObject::destroyed, [&dyingThread] { dyingThread = QThread::currentThread(); });
    for (const char* name : {"Width", "TriggerMode", "TriggerSoftware"})
        cam.feature(name)->UnregisterObserver(observer);
    std::thread([last = std::move(observer)]() mutable { last.reset(); }).join();
    QVERIFY(!dyingThread.load());
    QTRY_COMPARE(dyingThread.load(), QThread::currentThread());

    // An owner thread that has ended runs no deletion any more: the last reference deletes at once.
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
