#include "TabExtensionInterface.h"
#include "TestCamera.h"

#include <QLabel>
#include <QLayout>
#include <QPluginLoader>
#include <QStackedLayout>
#include <QtTest>

using TestCam::TestCamera;

// A host's acquisition toggle.
class Acquirer : public QObject
{
    Q_OBJECT
signals:
    void acquiring(bool on);
};

// Loads the built module the way a host does.
class tst_PluginLoading : public QObject
{
    Q_OBJECT

private slots:
    void metadataBytes();
    void tabsFollowTheHostsAcquisition();
    void unsupportedCameraGetsNoTab();
    void deletedInstanceIsMadeAnew();

private:
    QPluginLoader m_loader{TRIGGERIO_PLUGIN_FILE};
    TabExtensionInterface* plugin()
    {
        return qobject_cast<TabExtensionInterface*>(m_loader.instance());
    }
};

// Format 0, Qt 5.15, a release build, then an indefinite CBOR map with exactly
// the IID (key 2) and the class name (key 3): what a host's loader checks.
void tst_PluginLoading::metadataBytes()
{
    QFile file(TRIGGERIO_PLUGIN_FILE);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray binary = file.readAll();
    QByteArray expected("QTMETADATA !", 12);
    expected += QByteArray::fromHex("00050f00bf0275") + "TabExtensionInterface" + QByteArray::fromHex("0372") +
                "TabExtensionPlugin" + QByteArray::fromHex("ff");
    QCOMPARE(binary.mid(binary.indexOf("QTMETADATA !"), expected.size()).toHex(), expected.toHex());
    QVERIFY2(plugin(), qPrintable(m_loader.errorString()));
}

// Every tab built by the plug-in, in a parent of its own, shows the streaming
// hint while the host's acquisition signal says the camera acquires.
void tst_PluginLoading::tabsFollowTheHostsAcquisition()
{
    Acquirer host;
    QVERIFY(plugin()->connectFromAcquire(&host, SIGNAL(acquiring(bool))));
    QVERIFY(!plugin()->connectFromAcquire(&host, SIGNAL(started(bool))));
    TestCamera cam;
    cam.add("SyncOutLevels", OrvFeatureDataInt, 0, 0, 15);
    cam.addEnum("SyncOutSelector", {"SyncOut1", "SyncOut2"}, "SyncOut1");
    cam.addEnum("SyncOutSource", {"GPO", "Exposing"}, "GPO").selectedBy("SyncOutSelector");
    QWidget first, second;
    for (QWidget* parent : {&first, &second})
    {
        QCOMPARE(plugin()->get(cam.features(), *parent, nullptr), 0);
        QCOMPARE(parent->layout()->count(), 1);
        QCOMPARE(parent->layout()->itemAt(0)->widget()->metaObject()->className(), "IOTriggerWidget");
        QCOMPARE(parent->accessibleName(), QString("Trigger IO"));
    }
    // A parent with a layout of its own keeps it and gets the tab inside it.
    QWidget laidOut;
    QStackedLayout* own = new QStackedLayout(&laidOut);
    QCOMPARE(plugin()->get(cam.features(), laidOut, nullptr), 0);
    QCOMPARE(laidOut.layout(), own);
    QCOMPARE(own->itemAt(0)->widget()->metaObject()->className(), "IOTriggerWidget");
    for (bool on : {true, false})
    {
        emit host.acquiring(on);
        for (QWidget* parent : {&first, &second})
            QCOMPARE(parent->findChild<QLabel*>("l_notAcquireHint")->isHidden(), !on);
    }
}

void tst_PluginLoading::unsupportedCameraGetsNoTab()
{
    TestCamera cam;
    cam.addEnum("TriggerMode", {"Off", "On"}, "Off");
    cam.addEnum("SyncOutSelector", {"SyncOut1"}, "SyncOut1");
    QWidget parent;
    QMap<QString, QVariant> settings;
    QCOMPARE(plugin()->get(cam.features(), parent, &settings), 4);
    QVERIFY(!parent.layout());
    QVERIFY(parent.findChildren<QWidget*>().isEmpty());
    QVERIFY(cam.takeJournal().isEmpty());
}

void tst_PluginLoading::deletedInstanceIsMadeAnew()
{
    delete m_loader.instance();
    tabsFollowTheHostsAcquisition(); // with the new instance (a dangling one would not build tabs)
}

QTEST_MAIN(tst_PluginLoading)
#include "tst_PluginLoading.moc"
