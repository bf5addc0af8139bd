// First: it brings Aravis, which must come before Qt's keywords.
#include "FakeGigEServer.h"
#include "GvcpLink.h"
#include "ViewerWindow.h"

#include <QtTest>
#include <QtWidgets>

#include <memory>

namespace
{

// The tab's combo box that offers the entry next to one of the neighbours (so
// that "On" finds the trigger mode box, not an output's); a dummy when none does.
QComboBox* comboOffering(QWidget* tab, const QString& entry, const QStringList& neighbours)
{
    for (QComboBox* combo : tab->findChildren<QComboBox*>())
        for (const QString& neighbour : neighbours)
            if (combo->findText(entry) >= 0 && combo->findText(neighbour) >= 0)
                return combo;
    static QComboBox none;
    return &none;
}

void choose(QWidget* tab, const QString& entry, const QStringList& neighbours)
{
    QComboBox* combo = comboOffering(tab, entry, neighbours);
    QVERIFY2(combo->findText(entry) >= 0, qPrintable("no combo box offers " + entry));
    combo->setCurrentText(entry);
}

QPushButton* button(QWidget* tab, const QString& text)
{
    for (QPushButton* button : tab->findChildren<QPushButton*>())
        if (button->text() == text)
            return button;
    return nullptr;
}

// Writes (if a value is given) and reads a feature of any type straight on the device.
QString deviceValue(GenICamCamera& camera, const QString& feature, const QString& value = QString())
{
    QString text;
    camera.withAravisDevice(
        [&](ArvDevice* device)
        {
            auto* node = ARV_GC_FEATURE_NODE(arv_device_get_feature(device, qPrintable(feature)));
            if (!value.isNull())
                arv_gc_feature_node_set_value_from_string(node, qPrintable(value), nullptr);
            text = QString::fromUtf8(arv_gc_feature_node_get_value_as_string(node, nullptr));
        });
    return text;
}

// Every name the tab observes, marked changed: its next tick is a full refresh.
void markAllChanged(QWidget* tab)
{
    for (const char* name :
         {"TriggerActivation", "TriggerSource",   "TriggerMode",   "TriggerSelector", "AcquisitionFrameCount",
          "AcquisitionMode",   "LineRouting",     "LineSelector",  "LineSource",      "SyncOutSource",
          "LineInverter",      "SyncOutPolarity", "LineStatus",    "SyncOutLevels",   "UserOutSelector",
          "UserOutputValue",   "LineMode",        "LineOutSource", "LineOutPolarity", "LineOutLevels",
          "ExposureMode",      "ExposureAuto"})
        QVERIFY(QMetaObject::invokeMethod(tab->layout()->itemAt(0)->widget(), "OnFeatureChanged", Q_ARG(QString, name),
                                          Q_ARG(QString, {})));
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
    void cleanup()
    {
        GvcpLink::setEmulation({}); // the next case talks over plain loopback
    }

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
            << QStringList{TRIGGERIO_PLUGIN_FILE} << 3 << "no tab for this camera";
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
        // Problems, beside the camera's status ("Camera ... open").
        const QStringList errors = QString::fromUtf8(process.readAllStandardError())
                                       .split('\n')
                                       .filter(QRegularExpression("^triggerio-viewer: (?!Camera .* open$)"));
        QCOMPARE(errors.size(), 1);
        QVERIFY2(errors.first().contains(reason), qPrintable(errors.first()));
        QCOMPARE(QFile::exists(shot), code == 0);
    }

    void tabDrivesTheCamera_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<bool>("userOutputs");
        QTest::addColumn<QStringList>("outputs");
        QTest::addColumn<QString>("selector"); // and "...Source" and the inverter beside it
        QTest::addColumn<QString>("inverter");
        QTest::addColumn<bool>("slowLink"); // a real camera's round trip, 2% of the control packets lost, a cut
        for (bool slow : {false, true})
        {
            const char* link = slow ? ", slow link" : "";
            QTest::addRow("line family%s", link) << "line-camera.xml" << true << QStringList{"Line1"} << "Line"
                                                 << "LineInverter" << slow;
            QTest::addRow("sync-out family%s", link)
                << "syncout-camera.xml" << false << QStringList{"SyncOut1", "SyncOut2", "SyncOut3"} << "SyncOut"
                << "SyncOutPolarity" << slow;
            QTest::addRow("line-routing family%s", link)
                << "routing-camera.xml" << true << QStringList{"Line2", "Line3"} << "Line"
                << "LineInverter" << slow;
        }
    }

    void tabDrivesTheCamera()
    {
        QFETCH(QString, model);
        QFETCH(bool, userOutputs);
        QFETCH(QStringList, outputs);
        QFETCH(QString, selector);
        QFETCH(QString, inverter);
        QFETCH(bool, slowLink);
        if (FakeGigEServer::program().isEmpty())
            QSKIP("arv-fake-gv-camera-0.8 (Debian package aravis-tools) is not installed");
        GvcpLink::setEmulation(slowLink ? GvcpLink::Emulation{1.5, 0.02, 1} : GvcpLink::Emulation{});
        FakeGigEServer server;
        GenICamCamera camera;
        QString error;
        QVERIFY2(server.startAndOpen(TRIGGERIO_CAMERAS_DIR "/" + model, camera, &error), qPrintable(error));
        GenICamCamera second; // the camera is ours: another controller is turned away (slowly through the slow link)
        QVERIFY(slowLink || second.open("127.0.0.1") == OrvErrorInvalidAccess);

        // How long the build and a full refresh keep the GUI thread busy.
        ViewerWindow window(&camera);
        QElapsedTimer busy;
        busy.start();
        QCOMPARE(window.addTabs(TRIGGERIO_PLUGIN_DIR), 2); // Trigger IO, then the I/O Monitor
        window.resize(1100, 900);
        window.show();
        const qint64 buildMs = busy.restart();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QWidget* tab = window.tabs()->widget(0);
        markAllChanged(tab);
        busy.restart();
        QVERIFY(QMetaObject::invokeMethod(tab->layout()->itemAt(0)->widget(), "updateTimer"));
        const QtMessageHandler tabLog = qInstallMessageHandler(nullptr); // the tab silences Qt's log process-wide
        qInfo("GUI thread busy: build and show %lld ms, full refresh %lld ms; %ld control packets dropped", buildMs,
              busy.elapsed(), GvcpLink::dropped());
        qInstallMessageHandler(tabLog);
        QCOMPARE(GvcpLink::dropped() > 0, slowLink);
        // The tab shows the camera's state.
        for (const QStringList& box : {QStringList{"TriggerSelector", "FrameStart", "AcquisitionStart"},
                                       {"TriggerMode", "On", "Off"},
                                       {"AcquisitionMode", "Continuous", "MultiFrame"}})
            QCOMPARE(comboOffering(tab, box[1], {box[2]})->currentText(), deviceValue(camera, box[0]));

        // Trigger settings first: some cameras lock them while acquiring.
        choose(tab, "FrameStart", {"AcquisitionStart"});
        QTest::qWait(300);
        choose(tab, "Software", {"Line0", "Line1", "InputLines"});
        QTest::qWait(300);
        choose(tab, "On", {"Off"});
        QTest::qWait(300);
        QPushButton* trigger = button(tab, "SW Trigger");
        QVERIFY(trigger);
        QTRY_VERIFY_WITH_TIMEOUT(trigger->isEnabled(), 20000);

        // Small frames cross the loopback without lost packets.
        camera.withAravisDevice(
            [](ArvDevice* device)
            {
                arv_device_set_integer_feature_value(device, "Width", 64, nullptr);
                arv_device_set_integer_feature_value(device, "Height", 64, nullptr);
            });
        QTest::mouseClick(window.acquireButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(window.isStreaming(), 10000);
        QTest::qWait(300);
        QCOMPARE(window.frameCount(), 0);
        for (int press = 1; press <= 3; ++press)
        {
            trigger->click();
            QTRY_COMPARE_WITH_TIMEOUT(window.frameCount(), press, 10000);
        }
        QTest::qWait(400);
        QCOMPARE(window.findChild<QLabel*>("frameCounter")->text(), QString("Frames: 3"));

        QTest::mouseClick(window.acquireButton(), Qt::LeftButton);
        choose(tab, "Off", {"On"});
        QTest::mouseClick(window.acquireButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(window.frameCount() >= 3, 10000);

        // The first row driven by a user output: its status follows the user value, both ways.
        QGridLayout* grid = tab->findChild<QGridLayout*>("grid_Output");
        QCheckBox* value = nullptr;
        QCheckBox* status = nullptr;
        auto findDriven = [&] { // again after each refresh: a reported "LineMode" rebuilds the rows
            value = status = nullptr;
            for (int row = 1; row < grid->rowCount() && !value; ++row)
            {
                QLayoutItem* source = grid->itemAtPosition(row, 1);
                QComboBox* combo = source ? qobject_cast<QComboBox*>(source->widget()) : nullptr;
                if (combo && combo->currentText().contains("UserOutput"))
                {
                    value = qobject_cast<QCheckBox*>(grid->itemAtPosition(row, 5)->widget());
                    status = qobject_cast<QCheckBox*>(grid->itemAtPosition(row, 3)->widget());
                }
            }
            return status && status->isChecked();
        };
        findDriven();
        QCOMPARE(value && status, userOutputs);
        for (int flip = 0; value && status && flip < 2; ++flip)
        {
            const bool before = status->isChecked();
            value->click();
            QTRY_COMPARE_WITH_TIMEOUT(findDriven(), !before, 20000);
        }
        // One row per output line of the model, labelled with the line's name.
        auto rows = [grid]
        {
            QStringList names;
            for (int row = 1; row < grid->rowCount(); ++row)
            {
                QLayoutItem* item = grid->itemAtPosition(row, 0);
                QLabel* label = item ? qobject_cast<QLabel*>(item->widget()) : nullptr;
                QLayoutItem* source = grid->itemAtPosition(row, 1);
                if (label && source && qobject_cast<QComboBox*>(source->widget()))
                    names << label->text().remove(':').trimmed();
            }
            return names;
        };
        QCOMPARE(rows(), outputs);

        // Edits of the first row's source and inversion reach the device, and the selector is back where it was.
        const QString source = selector + "Source";
        selector += "Selector";
        const QString selected = deviceValue(camera, selector);
        auto firstRow = [&](const QString& feature)
        {
            deviceValue(camera, selector, outputs.first());
            const QString value = deviceValue(camera, feature);
            deviceValue(camera, selector, selected);
            return value;
        };
        if (slowLink) // unplugged for 2 s while the tab is idle, right after a heartbeat (the camera's runs 3 s)
        {
            const long heartbeats = GvcpLink::counts().heartbeat;
            QTRY_VERIFY_WITH_TIMEOUT(GvcpLink::counts().heartbeat > heartbeats, 10000);
            GvcpLink::cut(2000);
            QTest::qWait(2000);
        }
        QComboBox* sourceCombo = qobject_cast<QComboBox*>(grid->itemAtPosition(1, 1)->widget());
        QVERIFY(sourceCombo && sourceCombo->count() > 1);
        const QString chosen = sourceCombo->itemText((sourceCombo->currentIndex() + 1) % sourceCombo->count());
        sourceCombo->setCurrentText(chosen);
        QCOMPARE(deviceValue(camera, selector), selected);
        QCOMPARE(firstRow(source), chosen);
        const QString inverted = firstRow(inverter);
        qobject_cast<QCheckBox*>(grid->itemAtPosition(1, 2)->widget())->click();
        QCOMPARE(deviceValue(camera, selector), selected);
        QVERIFY(firstRow(inverter) != inverted);
        QVERIFY(!camera.isDeviceLost()); // the cut lost nothing

        // A line switched in the Selectable Output group joins or leaves the output
        // rows within a few ticks: the camera reports the tab's own mode write.
        QGroupBox* selectable = tab->findChild<QGroupBox*>("gb_SelectOutput");
        if (QComboBox* mode = selectable->findChild<QComboBox*>())
        {
            QString line; // its label is the line's name and ": "
            for (QLabel* label : selectable->findChildren<QLabel*>())
                if (line.isEmpty() && label->text().endsWith(": ") && label->text().startsWith("Line"))
                    line = label->text().remove(':').trimmed();
            QTest::qWait(1200); // a tick empties the changed list that the edits left
            const bool output = mode->currentText() == "Output";
            mode->setCurrentText(output ? "Input" : "Output");
            QStringList expected = outputs;
            if (output)
                expected.removeAll(line);
            else
                expected << line;
            expected.sort();
            QTRY_COMPARE_WITH_TIMEOUT(rows(), expected, 20000);
        }

        // A preset, once the camera stops streaming: the camera takes the bulk trigger settings.
        QTest::mouseClick(window.acquireButton(), Qt::LeftButton);
        QPushButton* bulk = button(tab, "Bulk");
        QTRY_VERIFY_WITH_TIMEOUT(bulk && bulk->isEnabled(), 20000);
        bulk->click();
        QCOMPARE(deviceValue(camera, "AcquisitionMode"), QString("MultiFrame"));
        QCOMPARE(deviceValue(camera, "TriggerMode"), QString("On"));
    }

    void outagesAreSurvived_data()
    {
        QTest::addColumn<bool>("powerCycle");
        QTest::newRow("server stopped for 10 s") << false;
        QTest::newRow("server killed and started again") << true;
    }

    // The window tells that the camera is lost within 8 s of its silence,
    // stays responsive, and takes it back within 10 s of its first answer
    // with a tab built afresh that shows the camera's values (its power-up
    // values after a power cycle). It closes in under a second while lost.
    void outagesAreSurvived()
    {
        QFETCH(bool, powerCycle);
        if (FakeGigEServer::program().isEmpty())
            QSKIP("arv-fake-gv-camera-0.8 (Debian package aravis-tools) is not installed");
        FakeGigEServer server;
        GenICamCamera camera;
        QString error;
        QVERIFY2(server.startAndOpen(TRIGGERIO_CAMERAS_DIR "/line-camera.xml", camera, &error), qPrintable(error));
        auto window = std::make_unique<ViewerWindow>(&camera);
        QCOMPARE(window->addTabs(TRIGGERIO_PLUGIN_DIR), 2);
        window->show();
        choose(window->tabs()->widget(0), "On", {"Off"});
        QCOMPARE(deviceValue(camera, "TriggerMode"), QString("On"));

        QElapsedTimer silence, answer, closing, sinceTick;
        qint64 longestTick = 0; // the GUI thread's longest pause while the camera is lost
        QTimer tick;
        connect(&tick, &QTimer::timeout, [&] { longestTick = qMax(longestTick, sinceTick.restart()); });
        silence.start();
        powerCycle ? server.stop() : server.pause();
        QTRY_VERIFY_WITH_TIMEOUT(window->isCameraLost(), 12000);
        QVERIFY2(silence.elapsed() < 8000, qPrintable(QString::number(silence.elapsed())));
        QVERIFY(!window->tabs()->isEnabled() && !window->acquireButton()->isEnabled());
        QVERIFY(window->statusBar()->currentMessage().startsWith("Camera 127.0.0.1 lost"));
        sinceTick.start();
        tick.start(50);
        QTest::qWait(int(qMax<qint64>(0, 10000 - silence.elapsed())));
        QVERIFY(powerCycle ? server.startAgain() : (server.resume(), true));
        answer.start();
        QTRY_VERIFY_WITH_TIMEOUT(!window->isCameraLost(), 15000);
        QVERIFY2(answer.elapsed() < 10000, qPrintable(QString::number(answer.elapsed())));
        QVERIFY2(longestTick < 1000, qPrintable(QString::number(longestTick)));
        QCOMPARE(camera.serialNumber(), QString::fromLatin1(server.serial()));
        QCOMPARE(window->statusBar()->currentMessage(), QString("Camera 127.0.0.1 open"));

        // The page built afresh shows what the camera has, and edits reach it.
        const QString mode = powerCycle ? "Off" : "On", other = powerCycle ? "On" : "Off";
        QCOMPARE(deviceValue(camera, "TriggerMode"), mode);
        QComboBox* modeCombo = comboOffering(window->tabs()->widget(0), "On", {"Off"});
        QVERIFY(window->tabs()->isEnabled());
        QTRY_COMPARE(modeCombo->currentText(), mode);
        modeCombo->setCurrentText(other);
        QCOMPARE(deviceValue(camera, "TriggerMode"), other);

        server.pause();
        QTRY_VERIFY_WITH_TIMEOUT(window->isCameraLost(), 12000);
        closing.start();
        window.reset();
        camera.close();
        QVERIFY2(closing.elapsed() < 1000, qPrintable(QString::number(closing.elapsed())));
        QVERIFY(GenICamCamera::waitForBackgroundWork(6000)); // the goodbye to the lost camera ends
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
