// First: it brings Aravis, which must come before Qt's keywords.
#include "FakeGigEServer.h"
#include "ViewerWindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
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
// Vision, acquisition on, the "FrameStart" trigger on "Software", one frame per
// press of "SW Trigger", and frames streaming with the trigger "Off"; an output
// driven by a user output shows that user output's value as its status. Then
// the run command without a display, and the viewer's texts in German.
class tst_ViewerLoopback : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void softwareTriggerGivesOneFramePerPress_data();
    void softwareTriggerGivesOneFramePerPress();
    void runCommandShowsATriggeredFrame();
    void viewerTextsInGerman(); // last: its translation stays installed
};

void tst_ViewerLoopback::initTestCase()
{
    if (FakeGigEServer::program().isEmpty())
        QSKIP("arv-fake-gv-camera-0.8 (Debian package aravis-tools) is not installed");
}

void tst_ViewerLoopback::softwareTriggerGivesOneFramePerPress_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<bool>("userOutputs");
    QTest::newRow("line family") << "line-camera.xml" << true;
    QTest::newRow("sync-out family") << "syncout-camera.xml" << false;
    QTest::newRow("line-routing family") << "routing-camera.xml" << true;
}

void tst_ViewerLoopback::softwareTriggerGivesOneFramePerPress()
{
    QFETCH(QString, model);
    QFETCH(bool, userOutputs);
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
    choose(tab, "Off", {"On"});
    QTest::mouseClick(window.acquireButton(), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(window.frameCount() >= 3, 5000);

    // The first row driven by a user output: its status follows the user value, both ways.
    QGridLayout* grid = tab->findChild<QGridLayout*>("grid_Output");
    QCheckBox* value = nullptr;
    QCheckBox* status = nullptr;
    for (int row = 1; grid && row < grid->rowCount() && !value; ++row)
    {
        QLayoutItem* source = grid->itemAtPosition(row, 1);
        QComboBox* combo = source ? qobject_cast<QComboBox*>(source->widget()) : nullptr;
        if (combo && combo->currentText().contains("UserOutput"))
        {
            value = qobject_cast<QCheckBox*>(grid->itemAtPosition(row, 5)->widget());
            status = qobject_cast<QCheckBox*>(grid->itemAtPosition(row, 3)->widget());
        }
    }
    QCOMPARE(value && status, userOutputs);
    for (int flip = 0; value && status && flip < 2; ++flip)
    {
        const bool before = status->isChecked();
        value->click();
        QTRY_COMPARE(status->isChecked(), !before);
    }
}

void tst_ViewerLoopback::runCommandShowsATriggeredFrame()
{
    QTemporaryDir dir;
    const QString shot = dir.filePath("shot.png");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("DISPLAY");
    environment.remove("WAYLAND_DISPLAY");
    environment.remove("QT_QPA_PLATFORM");
    environment.insert("LANG", "de_DE.UTF-8");
    environment.insert("VIEWER", TRIGGERIO_VIEWER);
    environment.insert("SCREENSHOT", shot);
    QProcess run;
    run.setProcessEnvironment(environment);
    run.start(TRIGGERIO_VIEWER, {"--help"}); // needs no display either
    QVERIFY(run.waitForFinished(10000));
    QCOMPARE(run.exitStatus(), QProcess::NormalExit);
    QCOMPARE(run.exitCode(), 0);
    run.start(TRIGGERIO_RUN_VIEWER, QStringList());
    QVERIFY(run.waitForFinished(60000));
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(QString::fromUtf8(run.readAllStandardOutput()).contains("Bildschirmfoto geschrieben nach " + shot));

    // The live image, in the middle of the window's left third, shows the
    // camera's grey ramp, not the panel's plain background around "No image".
    const QImage image(shot);
    QVERIFY(!image.isNull());
    const QRgb background = image.pixel(image.width() / 6, 40);
    int plain = 0;
    for (int y = image.height() / 2 - 60; y < image.height() / 2 + 60; ++y)
        for (int x = image.width() / 6 - 60; x < image.width() / 6 + 60; ++x)
            plain += image.pixel(x, y) == background;
    QVERIFY2(plain < 120 * 120 / 10, qPrintable(QString::number(plain)));
}

void tst_ViewerLoopback::viewerTextsInGerman()
{
    QVERIFY(ViewerWindow::installTranslation(QLocale("de_DE")));
    GenICamCamera closed;
    ViewerWindow window(&closed);
    QCOMPARE(window.acquireButton()->text(), QString("Aufnehmen"));
}

QTEST_MAIN(tst_ViewerLoopback)
#include "tst_ViewerLoopback.moc"
