#include "TabExtensionInterface.h"
#include "TestCamera.h"

#include <QCheckBox>
#include <QLabel>
#include <QLayout>
#include <QGridLayout>
#include <QStackedLayout>
#include <QPluginLoader>
#include <QtTest>

using TestCam::TestCamera;

namespace
{

// A host's acquisition toggle.
class Acquirer : public QObject
{
    Q_OBJECT
signals:
    void acquiring(bool on);
    void frameRate(double fps);
};

void addOutputCamera(TestCamera& cam, bool withLevels)
{
    if (withLevels)
        cam.addInt("SyncOutLevels", 0, 0, 15);
    cam.addEnum("SyncOutSelector", {"SyncOut1", "SyncOut2"}, "SyncOut1");
    cam.addEnum("SyncOutSource", {"GPO", "Exposing"}, "GPO").selectedBy("SyncOutSelector");
}

} // namespace

// Loads the built module the way a host does.
class tst_PluginLoading : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void metadata();
    void rawMetadataBytes();
    void sameInstanceOnEveryCall();
    void castByDeclaredIdentifier();
    void getBuildsTabIntoParent();
    void getReportsUnsupportedCamera();
    void streamingReachesEveryTab();
    void acquisitionSignalConnection();
    void deletedInstanceIsMadeAnew();

private:
    QPluginLoader m_loader{TRIGGERIO_PLUGIN_FILE};
    TabExtensionInterface* plugin();
};

TabExtensionInterface* tst_PluginLoading::plugin()
{
    return qobject_cast<TabExtensionInterface*>(m_loader.instance());
}

void tst_PluginLoading::initTestCase()
{
    QVERIFY2(m_loader.load(), qPrintable(m_loader.errorString()));
    QCOMPARE(QFileInfo(m_loader.fileName()).fileName(), QString("libtabextensiontriggerio.so"));
}

void tst_PluginLoading::metadata()
{
    const QJsonObject meta = m_loader.metaData();
    QCOMPARE(meta.value("IID").toString(), QString("TabExtensionInterface"));
    QCOMPARE(meta.value("className").toString(), QString("TabExtensionPlugin"));
    QVERIFY(!meta.contains("MetaData"));
    QCOMPARE(meta.value("debug").toBool(), false);
}

void tst_PluginLoading::rawMetadataBytes()
{
    QFile file(TRIGGERIO_PLUGIN_FILE);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray binary = file.readAll();
    const int at = binary.indexOf("QTMETADATA !");
    QVERIFY(at >= 0);
    // Format 0, Qt 5.15, no architecture requirements (release build), then an
    // indefinite CBOR map with exactly the IID (key 2) and the class name (key 3).
    QByteArray expected("QTMETADATA !", 12);
    expected += QByteArray::fromHex("00050f00bf0275");
    expected += "TabExtensionInterface";
    expected += QByteArray::fromHex("0372");
    expected += "TabExtensionPlugin";
    expected += QByteArray::fromHex("ff");
    QCOMPARE(binary.mid(at, expected.size()).toHex(), expected.toHex());
}

void tst_PluginLoading::sameInstanceOnEveryCall()
{
    QObject* first = m_loader.instance();
    QVERIFY(first);
    QCOMPARE(m_loader.instance(), first);
    QCOMPARE(first->metaObject()->className(), "TabExtensionPlugin");
    // Meta-methods of the plug-in class: the streaming signal, then its slot.
    const QMetaObject* meta = first->metaObject();
    QCOMPARE(meta->method(meta->methodOffset()).methodSignature(), QByteArray("camStreaming(bool)"));
    QCOMPARE(meta->method(meta->methodOffset() + 1).methodSignature(), QByteArray("OnCamIsStreaming(bool)"));
}

void tst_PluginLoading::castByDeclaredIdentifier()
{
    QObject* object = m_loader.instance();
    QVERIFY(plugin());
    QVERIFY(object->qt_metacast(TabExtensionInterface_iid));
    QVERIFY(QByteArray(TabExtensionInterface_iid).endsWith("Plugin.TabExtensionInterface/1.0"));
    // The bare metadata word is not a cast identifier.
    QVERIFY(!object->qt_metacast("TabExtensionInterface/1.0"));
}

void tst_PluginLoading::getBuildsTabIntoParent()
{
    TestCamera cam;
    addOutputCamera(cam, true);
    QWidget parent;
    QCOMPARE(plugin()->get(cam.features(), parent, nullptr), 0);
    QVERIFY(parent.layout());
    QCOMPARE(parent.layout()->count(), 1);
    QWidget* tab = parent.layout()->itemAt(0)->widget();
    QVERIFY(tab);
    QCOMPARE(tab->metaObject()->className(), "IOTriggerWidget");
    QCOMPARE(tab->accessibleName(), QString("Trigger IO"));
    QCOMPARE(parent.accessibleName(), QString("Trigger IO"));

    // A parent with a layout of its own keeps it and gets the tab inside it.
    for (QLayout* own : {static_cast<QLayout*>(new QGridLayout), static_cast<QLayout*>(new QStackedLayout)})
    {
        QWidget laidOut;
        laidOut.setLayout(own);
        QCOMPARE(plugin()->get(cam.features(), laidOut, nullptr), 0);
        QCOMPARE(laidOut.layout(), own);
        QCOMPARE(own->itemAt(0)->widget()->metaObject()->className(), "IOTriggerWidget");
    }
}

void tst_PluginLoading::getReportsUnsupportedCamera()
{
    TestCamera cam;
    cam.addEnum("TriggerMode", {"Off", "On"}, "Off");
    cam.addEnum("SyncOutSelector", {"SyncOut1"}, "SyncOut1");
    QWidget parent;
    QMap<QString, QVariant> settings;
    QCOMPARE(plugin()->get(cam.features(), parent, &settings), 4);
    QVERIFY(!parent.layout());
    QVERIFY(parent.findChildren<QWidget*>().isEmpty());
    QVERIFY(parent.accessibleName().isEmpty());
    QVERIFY(cam.journal().isEmpty());
}

void tst_PluginLoading::streamingReachesEveryTab()
{
    TestCamera cam;
    addOutputCamera(cam, true);
    QWidget first, second;
    QCOMPARE(plugin()->get(cam.features(), first, nullptr), 0);
    QCOMPARE(plugin()->get(cam.features(), second, nullptr), 0);
    QLabel* hint1 = first.findChild<QLabel*>("l_notAcquireHint");
    QLabel* hint2 = second.findChild<QLabel*>("l_notAcquireHint");
    QVERIFY(hint1 && hint2 && hint1 != hint2);
    QVERIFY(hint1->isHidden() && hint2->isHidden());

    QVERIFY(QMetaObject::invokeMethod(m_loader.instance(), "OnCamIsStreaming", Q_ARG(bool, true)));
    QVERIFY(!hint1->isHidden());
    QVERIFY(!hint2->isHidden());
    QVERIFY(QMetaObject::invokeMethod(m_loader.instance(), "OnCamIsStreaming", Q_ARG(bool, false)));
    QVERIFY(hint1->isHidden() && hint2->isHidden());
}

void tst_PluginLoading::acquisitionSignalConnection()
{
    Acquirer host;
    QVERIFY(plugin()->connectFromAcquire(&host, SIGNAL(acquiring(bool))));
    QVERIFY(!plugin()->connectFromAcquire(&host, SIGNAL(started(bool))));
    QVERIFY(!plugin()->connectToResetFps(&host, SLOT(deleteLater())));
    QVERIFY(!plugin()->connectToResetFps(nullptr, nullptr));

    TestCamera cam;
    addOutputCamera(cam, true);
    QWidget parent;
    QCOMPARE(plugin()->get(cam.features(), parent, nullptr), 0);
    emit host.acquiring(true);
    QVERIFY(!parent.findChild<QLabel*>("l_notAcquireHint")->isHidden());
    emit host.acquiring(false);
    QVERIFY(parent.findChild<QLabel*>("l_notAcquireHint")->isHidden());
}

void tst_PluginLoading::deletedInstanceIsMadeAnew()
{
    QPointer<QObject> first = m_loader.instance();
    delete first.data();
    QVERIFY(first.isNull());
    QObject* second = m_loader.instance();
    QVERIFY(second);
    QCOMPARE(m_loader.instance(), second);
    QVERIFY(qobject_cast<TabExtensionInterface*>(second));
}

QTEST_MAIN(tst_PluginLoading)
#include "tst_PluginLoading.moc"
