// First: it brings Aravis, which must come before Qt's keywords.
#include "FakeGigEServer.h"
#include "ViewerWindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLibraryInfo>
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
        for (const QString& neighbour : neighbours)
            if (combo->findText(entry) >= 0 && combo->findText(neighbour) >= 0)
                return combo->setCurrentText(entry);
    QFAIL(qPrintable("no combo box offers " + entry));
}

} // namespace

// The viewer binary on bad input: a one-line reason, a non-zero code, and
// plug-ins it cannot use skipped. The viewer on each demo model served over
// loopback GigE Vision, as a user runs it. The run command without a display,
// in German.
class tst_ViewerLoopback : public QObject
{
    Q_OBJECT

private slots:
    void badInput_data()
    {
        QTest::addColumn<QByteArray>("model"); // null: the line-family model; empty: no file at all
        QTest::addColumn<QStringList>("plugins");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("reason");
        // A Qt plug-in of another kind, which the viewer must skip.
        const QString other = QLibraryInfo::location(QLibraryInfo::PluginsPath) + "/imageformats/libqgif.so";
        const QStringList none;
        QTest::newRow("missing model file") << QByteArray("") << none << 2 << "cannot open camera";
        QTest::newRow("malformed model file")
            << QByteArray("<RegisterDescription><Category Name=\"Root\">") << none << 2 << "cannot open camera";
        QTest::newRow("a camera the tab does not serve")
            << QByteArray("<RegisterDescription><Category Name=\"Root\"><pFeature>Gain</pFeature></Category>"
                          "<Integer Name=\"Gain\"><Value>1</Value></Integer></RegisterDescription>")
            << QStringList{TRIGGERIO_PLUGIN_FILE} << 3 << "offers no tab for this camera";
        QTest::newRow("empty plug-in folder") << QByteArray() << none << 3 << "No tab plug-in";
        QTest::newRow("another IID only") << QByteArray() << QStringList{other} << 3 << "not TabExtensionInterface";
        QTest::newRow("another IID beside the tab")
            << QByteArray() << QStringList{other, TRIGGERIO_PLUGIN_FILE} << 0 << "not TabExtensionInterface";
    }

    // A copy of the viewer, with the plug-ins given in its plugins/ folder.
    void badInput()
    {
        QFETCH(QByteArray, model);
        QFETCH(QStringList, plugins);
        QFETCH(int, code);
        QFETCH(QString, reason);
        QTemporaryDir host;
        QVERIFY(QDir(host.path()).mkdir("plugins"));
        const QString viewer = host.filePath("triggerio-viewer");
        QVERIFY(QFile::copy(TRIGGERIO_VIEWER, viewer));
        for (const QString& plugin : plugins)
            QVERIFY(QFile::copy(plugin, host.filePath("plugins/" + QFileInfo(plugin).fileName())));
        QString camera = TRIGGERIO_CAMERAS_DIR "/line-camera.xml";
        if (!model.isNull())
        {
            QFile file(camera = host.filePath("camera.xml"));
            QVERIFY(model.isEmpty() || (file.open(QIODevice::WriteOnly) && file.write(model) == model.size()));
        }

        QProcess process; // on this test's display
        const QString shot = host.filePath("shot.png");
        process.start(viewer, {"--camera", "fake:" + camera, "--screenshot", shot, "--after", "300"});
        QVERIFY(process.waitForFinished(30000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), code);
        const QStringList errors = QString::fromUtf8(process.readAllStandardError())
                                       .split('\n')
                                       .filter(QRegularExpression("^triggerio-viewer:"));
        QCOMPARE(errors.size(), 1);
        QVERIFY2(errors.first().contains(reason), qPrintable(errors.first()));
        QCOMPARE(QFile::exists(shot), code == 0);
    }

    void softwareTriggerGivesOneFramePerPress_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<bool>("userOutputs");
        QTest::newRow("line family") << "line-camera.xml" << true;
        QTest::newRow("sync-out family") << "syncout-camera.xml" << false;
        QTest::newRow("line-routing family") << "routing-camera.xml" << true;
    }

    void softwareTriggerGivesOneFramePerPress()
    {
        QFETCH(QString, model);
        QFETCH(bool, userOutputs);
        if (FakeGigEServer::program().isEmpty())
            QSKIP("arv-fake-gv-camera-0.8 (Debian package aravis-tools) is not installed");
        FakeGigEServer server;
        GenICamCamera camera;
        QString error;
        QVERIFY2(server.startAndOpen(TRIGGERIO_CAMERAS_DIR "/" + model, camera, &error), qPrintable(error));

        ViewerWindow window(&camera);
        QCOMPARE(window.addTabs(TRIGGERIO_PLUGIN_DIR), 1);
        window.resize(1100, 900);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QWidget* tab = window.tabs()->widget(0);

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
        QTest::qWait(500);
        QCOMPARE(window.frameCount(), 0);
        for (int press = 1; press <= 3; ++press)
        {
            trigger->click();
            QTRY_COMPARE_WITH_TIMEOUT(window.frameCount(), press, 3000);
        }
        QTest::qWait(400);
        QCOMPARE(window.findChild<QLabel*>("frameCounter")->text(), QString("Frames: 3"));

        QTest::mouseClick(window.acquireButton(), Qt::LeftButton);
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

    void runCommandShowsATriggeredFrame()
    {
        if (FakeGigEServer::program().isEmpty())
            QSKIP("arv-fake-gv-camera-0.8 (Debian package aravis-tools) is not installed");
        QTemporaryDir dir;
        const QString shot = dir.filePath("shot.png");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(name);
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
        const QRgb background = image.pixel(image.width() / 6, 40);
        int plain = 0;
        for (int y = image.height() / 2 - 60; y < image.height() / 2 + 60; ++y)
            for (int x = image.width() / 6 - 60; x < image.width() / 6 + 60; ++x)
                plain += image.pixel(x, y) == background;
        QVERIFY2(plain < 120 * 120 / 10, qPrintable(QString::number(plain)));
    }
};

QTEST_MAIN(tst_ViewerLoopback)
#include "tst_ViewerLoopback.moc"
