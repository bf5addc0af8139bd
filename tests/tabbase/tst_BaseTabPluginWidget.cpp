#include "BaseTabPluginWidget.h"
#include "TestCamera.h"

#include <QComboBox>
#include <QMutexLocker>
#include <QtTest>

using TestCam::Op;
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

    bool timerActive() const
    {
        return m_pUpdateTimer->isActive();
    }

    QList<QStringList> passes;
};

QStringList g_messages;

void collect(QtMsgType, const QMessageLogContext&, const QString& message)
{
    g_messages.append(message);
}

} // namespace

class tst_BaseTabPluginWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void burstOfChangesRefreshesOnce();
    void firstShowCoversEveryObservedFeature();
    void nothingRefreshedWhileHidden();
    void hideDropsOnlyEarlierChanges();
    void pauseAndContinue();
    void emptyFeatureListGivesNotFound();
    void registrationReturnsTheLastCallsCode();
    void notRegisteredIsSilentOnlyWhenAsked_data();
    void notRegisteredIsSilentOnlyWhenAsked();
    void destructorRemovesObservers();
    void comboBoxFill_data();
    void comboBoxFill();

private:
    std::unique_ptr<TestCamera> m_cam;
};

void tst_BaseTabPluginWidget::init()
{
    m_cam.reset(new TestCamera);
    m_cam->addEnum("TriggerMode", {"Off", "On"}, "Off");
    m_cam->addInt("Width", 64);
    m_cam->addEnum("TriggerSource", {"Line0", "Line1", "Software"}, "Line0");
    m_cam->addBool("LineStatus", false);
}

void tst_BaseTabPluginWidget::burstOfChangesRefreshesOnce()
{
    ProbeTab tab(m_cam->features(), {"TriggerMode", "TriggerSource"});
    QCOMPARE(tab.RegisterFeatureObserver(false), 0);
    tab.show();
    QCOMPARE(tab.passes, QList<QStringList>{QStringList()});

    for (int i = 0; i < 5; ++i)
        m_cam->notify("TriggerSource");
    m_cam->notify("Width"); // not observed: never reported
    m_cam->waitForNotifications();
    QTRY_COMPARE(tab.changed(), QStringList{"TriggerSource"});

    // The real one-second tick hands the name over once and empties the list.
    QTRY_COMPARE_WITH_TIMEOUT(tab.passes.size(), 2, 2000);
    QCOMPARE(tab.passes.at(1), QStringList{"TriggerSource"});
    QVERIFY(tab.changed().isEmpty());
    QCOMPARE(m_cam->observerCount("TriggerSource"), 1);
}

void tst_BaseTabPluginWidget::firstShowCoversEveryObservedFeature()
{
    ProbeTab tab(m_cam->features(), {"LineStatus", "TriggerMode", "ExposureAuto"});
    tab.RegisterFeatureObserver(true);
    tab.show();
    // Camera order, and only names the camera has.
    QCOMPARE(tab.passes, QList<QStringList>{QStringList({"TriggerMode", "LineStatus"})});
    QVERIFY(tab.timerActive());
}

void tst_BaseTabPluginWidget::nothingRefreshedWhileHidden()
{
    ProbeTab tab(m_cam->features(), {"TriggerMode"});
    tab.RegisterFeatureObserver(false);
    m_cam->notify("TriggerMode");
    m_cam->waitForNotifications();
    QTRY_COMPARE(tab.changed(), QStringList{"TriggerMode"});
    QTest::qWait(1200);
    QVERIFY(tab.passes.isEmpty());
    QVERIFY(!tab.timerActive());
}

void tst_BaseTabPluginWidget::hideDropsOnlyEarlierChanges()
{
    ProbeTab tab(m_cam->features(), {"TriggerMode", "TriggerSource"});
    tab.RegisterFeatureObserver(false);
    tab.show();
    m_cam->notify("TriggerMode");
    m_cam->waitForNotifications();
    QTRY_COMPARE(tab.changed(), QStringList{"TriggerMode"});

    tab.hide();
    QVERIFY(!tab.timerActive());
    QVERIFY(tab.changed().isEmpty());

    m_cam->notify("TriggerSource");
    m_cam->waitForNotifications();
    QTRY_COMPARE(tab.changed(), QStringList{"TriggerSource"});
    tab.show();
    QCOMPARE(tab.passes.last(), QStringList{"TriggerSource"});
}

void tst_BaseTabPluginWidget::pauseAndContinue()
{
    ProbeTab tab(m_cam->features(), {"TriggerMode", "TriggerSource"});
    tab.RegisterFeatureObserver(false);
    tab.show();
    tab.pauseUpdateTimer();
    QVERIFY(!tab.timerActive());
    QCOMPARE(m_cam->observerCount("TriggerMode"), 0);

    tab.continueUpdateTimer();
    QVERIFY(tab.timerActive());
    QCOMPARE(m_cam->observerCount("TriggerMode"), 1);
    QCOMPARE(tab.changed(), QStringList({"TriggerMode", "TriggerSource"}));
}

void tst_BaseTabPluginWidget::emptyFeatureListGivesNotFound()
{
    ProbeTab tab(FeatureList(new QVector<OrvCPP::shared_ptr<OrvCPP::Feature>>()), {"TriggerMode"});
    g_messages.clear();
    qInstallMessageHandler(collect);
    QCOMPARE(tab.RegisterFeatureObserver(true), -3);
    QCOMPARE(tab.UnRegisterFeatureObserver(true), -3);
    QVERIFY(tab.changed().isEmpty());
    QCOMPARE(g_messages.size(), 2);
    QVERIFY(g_messages.at(0).startsWith("Could not get features. Error code:"));
}

void tst_BaseTabPluginWidget::registrationReturnsTheLastCallsCode()
{
    ProbeTab tab(m_cam->features(), {"TriggerMode"});
    // A later failure of a name query decides the result, even after a success.
    m_cam->fail("LineStatus", Op::GetName, OrvErrorDeviceLost);
    QCOMPARE(tab.RegisterFeatureObserver(true), int(OrvErrorDeviceLost));
    QCOMPARE(m_cam->observerCount("TriggerMode"), 1);
    m_cam->clearFaults();

    // A failed registration still marks the name and the walk goes on.
    m_cam->fail("TriggerMode", Op::RegisterObserver, OrvErrorTimeout);
    ProbeTab other(m_cam->features(), {"TriggerMode", "TriggerSource"});
    QCOMPARE(other.RegisterFeatureObserver(true), 0);
    QCOMPARE(other.changed(), QStringList({"TriggerMode", "TriggerSource"}));
    QCOMPARE(m_cam->observerCount("TriggerSource"), 1);
}

void tst_BaseTabPluginWidget::notRegisteredIsSilentOnlyWhenAsked_data()
{
    QTest::addColumn<bool>("ignore");
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("logged");
    QTest::newRow("-5 ignored") << true << -5 << false;
    QTest::newRow("-5 reported") << false << -5 << true;
    QTest::newRow("other code ignored flag") << true << int(OrvErrorDeviceLost) << true;
}

void tst_BaseTabPluginWidget::notRegisteredIsSilentOnlyWhenAsked()
{
    QFETCH(bool, ignore);
    QFETCH(int, code);
    QFETCH(bool, logged);
    // "LineStatus" is the camera's last feature, so its call decides the result.
    ProbeTab tab(m_cam->features(), {"LineStatus"});
    if (code != -5)
    {
        tab.RegisterFeatureObserver(false);
        m_cam->fail("LineStatus", Op::UnregisterObserver, code, 1);
    }
    g_messages.clear();
    qInstallMessageHandler(collect);
    QCOMPARE(tab.UnRegisterFeatureObserver(ignore), code);
    qInstallMessageHandler(nullptr);
    QCOMPARE(!g_messages.isEmpty(), logged);
    if (logged)
        QCOMPARE(g_messages.first().simplified(),
                 QString("Could not unregister feature observer. Error code: %1").arg(code));
}

void tst_BaseTabPluginWidget::destructorRemovesObservers()
{
    {
        ProbeTab tab(m_cam->features(), {"TriggerMode", "TriggerSource", "LineStatus"});
        tab.RegisterFeatureObserver(false);
        QCOMPARE(tab.RegisterFeatureObserver(false), -5); // already registered
        QCOMPARE(m_cam->observerCount("TriggerSource"), 1);
    }
    QCOMPARE(m_cam->observerCount("TriggerMode"), 0);
    QCOMPARE(m_cam->observerCount("TriggerSource"), 0);
    // A notification after the tab is gone reaches nobody and harms nothing.
    m_cam->notify("TriggerMode");
    m_cam->waitForNotifications();
    QCoreApplication::processEvents();
}

void tst_BaseTabPluginWidget::comboBoxFill_data()
{
    QTest::addColumn<QString>("current");
    QTest::addColumn<bool>("writable");
    QTest::addColumn<bool>("toolTips");
    QTest::addColumn<int>("index");
    QTest::newRow("available value") << "Line1" << true << false << 1;
    QTest::newRow("unavailable value") << "Software" << true << false << -1;
    QTest::newRow("read-only") << "Line1" << false << true << 1;
}

void tst_BaseTabPluginWidget::comboBoxFill()
{
    QFETCH(QString, current);
    QFETCH(bool, writable);
    QFETCH(bool, toolTips);
    QFETCH(int, index);
    TestCamera cam;
    cam.addEnum("TriggerSource", {"Line0", "Line1", "Line2", "Software"}, current)
        .unavailable({"Line2", "Software"})
        .writable(writable);
    ProbeTab tab(cam.features(), {});
    QComboBox combo;
    combo.addItem("stale");
    QCOMPARE(tab.updateComboBox("TriggerSource", &combo, toolTips), writable);
    QCOMPARE(combo.count(), 2);
    QCOMPARE(combo.itemText(0), QString("Line0"));
    QCOMPARE(combo.itemText(1), QString("Line1"));
    QCOMPARE(combo.currentIndex(), index);
    QCOMPARE(combo.isEnabled(), writable);
    QCOMPARE(combo.itemData(1, Qt::ToolTipRole).toString(), toolTips ? QString("Line1") : QString());
    QVERIFY(cam.journal().isEmpty());
    QVERIFY(!tab.updateComboBox("TriggerSource", nullptr, false));
}

QTEST_MAIN(tst_BaseTabPluginWidget)
#include "tst_BaseTabPluginWidget.moc"
