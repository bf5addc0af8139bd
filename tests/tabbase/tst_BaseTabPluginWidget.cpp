#include "BaseTabPluginWidget.h"
#include "TestCamera.h"

#include <QComboBox>
#include <QMutexLocker>
#include <QtTest>

using TestCam::TestCamera;

namespace
{

// A tab that records what each refresh pass was given.
class ProbeTab : public BaseTabPluginWidget
{
public:
    ProbeTab(const FeatureList& features, const QStringList& observed)
        : BaseTabPluginWidget(features, nullptr)
    {
        m_ObservedFeatures = observed;
    }
    void updateInit() override
    {
        passes.append(*m_pChangedFeatures);
    }
    QStringList changed()
    {
        QMutexLocker lock(m_pMutex);
        return *m_pChangedFeatures;
    }
    using BaseTabPluginWidget::m_pUpdateTimer;
    QList<QStringList> passes;
};

} // namespace

class tst_BaseTabPluginWidget : public QObject
{
    Q_OBJECT

private slots:
    void changesReachTheTick();
    void comboBoxFill();
};

// From registration to destruction: the first show refreshes every observed
// feature the camera has, a burst of changes makes one refresh of each name on
// the real one-second tick, a hidden tab refreshes nothing and drops what came
// before the hide, and the destructor leaves no observer behind.
void tst_BaseTabPluginWidget::changesReachTheTick()
{
    TestCamera cam;
    cam.addEnum("TriggerMode", {"Off", "On"}, "Off");
    cam.add("Width", OrvFeatureDataInt, 64);
    cam.addEnum("TriggerSource", {"Line0", "Software"}, "Line0");
    {
        ProbeTab tab(cam.features(), {"TriggerSource", "TriggerMode", "ExposureAuto"});
        QCOMPARE(tab.RegisterFeatureObserver(true), 0);
        QCOMPARE(tab.RegisterFeatureObserver(false), -5);
        tab.show();
        QCOMPARE(tab.passes, (QList<QStringList>{{"TriggerMode", "TriggerSource"}}));
        QVERIFY(tab.m_pUpdateTimer->isActive());
        QTRY_COMPARE_WITH_TIMEOUT(tab.passes.size(), 2, 20000); // the first tick empties the list
        QVERIFY(tab.changed().isEmpty());

        for (int i = 0; i < 5; ++i)
            cam.notify("TriggerSource");
        cam.notify("Width");
        cam.waitForNotifications();
        QTRY_COMPARE(tab.changed(), QStringList{"TriggerSource"});
        QTRY_COMPARE_WITH_TIMEOUT(tab.passes.size(), 3, 20000);
        QCOMPARE(tab.passes.at(2), QStringList{"TriggerSource"});
        QCOMPARE(cam.observerCount("TriggerSource"), 1);

        cam.notify("TriggerMode");
        cam.waitForNotifications();
        QTRY_COMPARE(tab.changed(), QStringList{"TriggerMode"});
        tab.hide();
        QVERIFY(!tab.m_pUpdateTimer->isActive());
        QVERIFY(tab.changed().isEmpty());
        cam.notify("TriggerSource");
        cam.waitForNotifications();
        QTRY_COMPARE(tab.changed(), QStringList{"TriggerSource"});
        QTest::qWait(1200);
        QCOMPARE(tab.passes.size(), 3);
        tab.show();
        QCOMPARE(tab.passes.last(), QStringList{"TriggerSource"});
    }
    QCOMPARE(cam.observerCount("TriggerMode") + cam.observerCount("TriggerSource"), 0);
    cam.notify("TriggerMode"); // reaches nobody, harms nothing
    cam.waitForNotifications();
    QCoreApplication::processEvents();
}

// Only available entries are offered, a value that is not one of them selects
// nothing, and a read-only feature gives a disabled box with tool tips.
void tst_BaseTabPluginWidget::comboBoxFill()
{
    TestCamera cam;
    cam.addEnum("TriggerSource", {"Line0", "Line1", "Line2", "Software"}, "Software")
        .unavailable({"Line2", "Software"})
        .writable(false);
    ProbeTab tab(cam.features(), {});
    QComboBox combo;
    combo.addItem("stale");
    QVERIFY(!tab.updateComboBox("TriggerSource", &combo, true));
    QCOMPARE(combo.count(), 2);
    QCOMPARE(combo.currentIndex(), -1);
    QVERIFY(!combo.isEnabled());
    QCOMPARE(combo.itemData(1, Qt::ToolTipRole).toString(), QString("Line1"));
    QVERIFY(cam.takeJournal().isEmpty());
}

QTEST_MAIN(tst_BaseTabPluginWidget)
#include "tst_BaseTabPluginWidget.moc"
