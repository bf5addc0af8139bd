// First: it brings Aravis, which must come before Qt's keywords.
#include "FakeGigEServer.h"
#include "ViewerWindow.h"

#include <QComboBox>
#include <QLabel>
#include <QGroupBox>
#include <QPushButton>
#include <QTabWidget>
#include <QtTest>

namespace
{

// Picks the entry in the tab's combo box that offers it next to one of the
// neighbours (so that "On" finds the trigger mode box, not an output's).
void choose(QWidget* tab, const QString& entry, const QStringList& neighbours)
{
    for (QComboBox* combo : tab->findChildren<QComboBox*>())
    {
        if (combo->findText(entry) < 0)
            continue;
        for (const QString& neighbour : neighbours)
        {
            if (combo->findText(neighbour) >= 0)
            {
                combo->setCurrentIndex(combo->findText(entry));
                return;
            }
        }
    }
    QFAIL(qPrintable("no combo box offers " + entry));
}

} // namespace

// The viewer as a user runs it: the tab on a camera served over loopback GigE
// Vision, acquisition on, the "FrameStart" trigger on "Software", and one frame
// per press of "SW Trigger".
class tst_ViewerLoopback : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void softwareTriggerGivesOneFramePerPress_data();
    void softwareTriggerGivesOneFramePerPress();
};

void tst_ViewerLoopback::initTestCase()
{
    if (FakeGigEServer::program().isEmpty())
        QSKIP("arv-fake-gv-camera-0.8 (Debian package aravis-tools) is not installed");
}

void tst_ViewerLoopback::softwareTriggerGivesOneFramePerPress_data()
{
    QTest::addColumn<QString>("model");
    QTest::newRow("line family") << "line-camera.xml";
    QTest::newRow("sync-out family") << "syncout-camera.xml";
    QTest::newRow("line-routing family") << "routing-camera.xml";
}

void tst_ViewerLoopback::softwareTriggerGivesOneFramePerPress()
{
    QFETCH(QString, model);
    FakeGigEServer server;
    GenICamCamera camera;
    QString error;
    QVERIFY2(server.startAndOpen(TRIGGERIO_CAMERAS_DIR "/" + model, camera, &error), qPrintable(error));

    ViewerWindow window(&camera);
    QCOMPARE(window.addTabs(TRIGGERIO_PLUGIN_DIR), 1);
    QCOMPARE(window.tabs()->tabText(0), QString("Trigger IO"));
    window.resize(1100, 900);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QWidget* tab = window.tabs()->widget(0);

    // Every group of the tab is filled.
    for (QGroupBox* group : tab->findChildren<QGroupBox*>())
    {
        if (group->isVisible() && group->objectName().startsWith("gb_"))
            QVERIFY2(!group->findChildren<QComboBox*>().isEmpty() || !group->findChildren<QPushButton*>().isEmpty(),
                     qPrintable(group->title()));
    }

    // Trigger settings first: some cameras lock them while acquiring.
    choose(tab, "FrameStart", {"AcquisitionStart"});
    QTest::qWait(300);
    choose(tab, "Software", {"Line0", "Line1", "InputLines"});
    QTest::qWait(300);
    choose(tab, "On", {"Off"});
    QTest::qWait(300);
    QPushButton* trigger = nullptr;
    for (QPushButton* button : tab->findChildren<QPushButton*>())
        if (button->text() == "SW Trigger")
            trigger = button;
    QVERIFY(trigger);
    QTRY_VERIFY(trigger->isEnabled());

    // Small frames cross the loopback without lost packets.
    camera.withAravisDevice(
        [](ArvDevice* device)
        {
            arv_device_set_integer_feature_value(device, "Width", 64, nullptr);
            arv_device_set_integer_feature_value(device, "Height", 64, nullptr);
        });
    QTest::mouseClick(window.acquireButton(), Qt::LeftButton);
    QVERIFY(window.acquireButton()->isChecked());
    QTest::qWait(500);
    QCOMPARE(window.frameCount(), 0);

    for (int press = 1; press <= 3; ++press)
    {
        trigger->click();
        QTRY_COMPARE_WITH_TIMEOUT(window.frameCount(), press, 3000);
    }
    QTest::qWait(400);
    QCOMPARE(window.frameCount(), 3);
    QCOMPARE(window.findChild<QLabel*>("frameCounter")->text(), QString("Frames: 3"));

    QTest::mouseClick(window.acquireButton(), Qt::LeftButton);
    QVERIFY(!window.acquireButton()->isChecked());
}

QTEST_MAIN(tst_ViewerLoopback)
#include "tst_ViewerLoopback.moc"
