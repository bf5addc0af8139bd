// First: it brings Aravis, which must come before Qt's keywords.
#include "FakeGigEServer.h"

#include "CameraChooser.h"
#include "CameraFinder.h"
#include "CameraSession.h"
#include "CameraStream.h"
#include "ViewerWindow.h"

#include <QtTest>
#include <QtWidgets>

Q_DECLARE_METATYPE(std::shared_ptr<GenICamCamera>)

namespace
{

std::shared_ptr<GenICamCamera> camera(const QString& model = TRIGGERIO_CAMERAS_DIR "/line-camera.xml")
{
    auto camera = std::make_shared<GenICamCamera>();
    return camera->open("fake:" + model) == OrvErrorSuccess ? camera : nullptr;
}

} // namespace

// The viewer's window in process, on the demo models run by Aravis's fake device; finding
// a camera again, and keeping it, against a fake GigE Vision camera on 127.0.0.1; two
// cameras of a rig on 127.0.0.2 and 127.0.0.3.
class tst_ViewerWindow : public QObject
{
    Q_OBJECT

    FakeGigEServer m_server;
    QTemporaryDir m_settings; // the user's settings (the camera opened last), the test's own

private slots:
    // A chooser's search still running would meet Qt torn down at exit.
    void cleanupTestCase()
    {
        QVERIFY(GenICamCamera::waitForBackgroundWork(20000));
    }
    void initTestCase()
    {
        qputenv("XDG_CONFIG_HOME", m_settings.path().toUtf8()); // before the process's first QSettings
        qRegisterMetaType<std::shared_ptr<GenICamCamera>>();
        GenICamCamera camera;
        QString error;
        QVERIFY2(m_server.startAndOpen(TRIGGERIO_CAMERAS_DIR "/line-camera.xml", camera, &error), qPrintable(error));
    }

    // A camera found again while the I/O Monitor's save dialog runs waits, open; once it is closed the pages
    // are built anew, the same one current, the monitor's history and settings carried over. Found while a
    // page's popup is open, it waits too; a window closed meanwhile closes it.
    void reconnectWaitsForThePages()
    {
        const std::shared_ptr<GenICamCamera> lost = camera();
        auto window = std::make_unique<ViewerWindow>(lost.get());
        QCOMPARE(window->addTabs(TRIGGERIO_PLUGIN_DIR), 2);
        window->show();
        window->tabs()->setCurrentIndex(1);
        QPointer<QWidget> page = window->tabs()->widget(1); // the I/O Monitor's
        page->findChild<QSpinBox*>("sb_Window")->setValue(30);
        // Row r's lamp (column 2) or edges (4); rows Line0-3, AcquisitionActive, FrameTriggerWait, Acquiring.
        auto cell = [&](int r, int c)
        { return static_cast<QLabel*>(page->findChild<QGridLayout*>("grid_Lines")->itemAtPosition(r, c)->widget()); };
        // Line1 follows UserOutput0: one rising edge between samples (taken on the page's own thread).
        QVERIFY(QSignalSpy(page->layout()->itemAt(0)->widget(), SIGNAL(sampled())).wait(10000));
        lost->withAravisDevice([](auto d) { arv_device_set_boolean_feature_value(d, "UserOutputValue", 1, nullptr); });
        QTRY_VERIFY(cell(1, 2)->styleSheet().contains("80, 220, 120"));

        std::weak_ptr<GenICamCamera> found;
        auto reconnect = [&] // true when the window waits
        {
            lost->withAravisDevice([](auto device) { g_signal_emit_by_name(device, "control-lost"); });
            const bool dimmed = QTest::qWaitFor([&] { return window->isCameraLost(); }) && !window->tabs()->isEnabled();
            const std::shared_ptr<GenICamCamera> next = camera();
            found = next;
            QMetaObject::invokeMethod(window.get(), "onCameraFound", Q_ARG(std::shared_ptr<GenICamCamera>, next));
            QTest::qWait(300);
            return dimmed && window->isCameraLost() && page &&
                   window->statusBar()->currentMessage().contains("answers again");
        };
        QTemporaryDir dir;
        auto save = [&](const QString& name, const std::function<bool()>& meanwhile) // through the page's dialog
        {
            bool waited = false;
            QTimer::singleShot(0, [&] {
                waited = meanwhile();
                auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
                dialog->selectFile(dir.filePath(name));
                QMetaObject::invokeMethod(dialog, "accept");
            });
            page->findChild<QPushButton*>("pb_Save")->click();
            QFile file(dir.filePath(name));
            return waited && file.open(QIODevice::ReadOnly) ? QString(file.readAll()) : QString();
        };
        QVERIFY(!save("old.vcd", reconnect).isEmpty()); // by the page the dialog belongs to
        QTRY_VERIFY(!page && !window->isCameraLost() && window->tabs()->isEnabled() && found.expired());
        QCOMPARE(window->tabs()->currentIndex(), 1);
        page = window->tabs()->widget(1);
        QCOMPARE(page->findChild<QSpinBox*>("sb_Window")->value(), 30);
        // Line1's fall to the new camera's level counted across the outage, a gap in its trace (wire '"').
        QTRY_VERIFY(page->findChild<QLabel*>("lamp1") && cell(1, 4)->text() == QString::fromUtf8("↑1 ↓1"));
        QVERIFY(save("new.vcd", [] { return true; }).contains(QRegularExpression("\n1\"\n[^\"]*x\"\n[^\"]*0\"\n")));
        // The host's acquisition and the camera's state reach the monitor built anew.
        page->findChild<QCheckBox*>("cb_States")->setChecked(true);
        window->acquireButton()->click();
        QTRY_VERIFY(window->isStreaming());
        for (int row : {4, 6})
            QTRY_VERIFY(cell(row, 2)->styleSheet().contains("80, 220, 120"));

        (new QMenu(page))->popup({});
        QVERIFY(reconnect() && !found.expired());
        window.reset();
        QVERIFY(found.expired());
    }

    // Two cameras of a rig chosen together open in one window, each with its pages: an edit on one camera's
    // Trigger IO tab reaches that camera only; one camera silent is shown lost, and back once it answers, while
    // the other streams on with its page enabled and no GUI event waits over 200 ms; closing one releases it
    // and nothing else.
    void rigOfTwoCameras()
    {
        FakeGigEServer lineServer("127.0.0.2"), syncServer("127.0.0.3");
        GenICamCamera line, sync; // the serial numbers checked, closed again for the chooser
        QString error;
        QVERIFY2(lineServer.startAndOpen(TRIGGERIO_CAMERAS_DIR "/line-camera.xml", line, &error) &&
                     syncServer.startAndOpen(TRIGGERIO_CAMERAS_DIR "/syncout-camera.xml", sync, &error),
                 qPrintable(error));
        sync.withAravisDevice([](ArvDevice* d) { arv_device_set_integer_feature_value(d, "Height", 64, nullptr); });
        line.close();
        sync.close();
        ViewerWindow window(&line);
        QVERIFY(window.addTabs(TRIGGERIO_PLUGIN_DIR) == 0 && window.hasPlugins());
        window.show();
        const QString a = lineServer.serial(), b = syncServer.serial();
        auto choice = [&](const QString& serial)
        { return window.chooser()->list()->findItems(serial, Qt::MatchExactly, 1).value(0); };
        QTRY_VERIFY_WITH_TIMEOUT(choice(a) && choice(b), 10000);
        window.chooser()->list()->clearSelection();
        choice(a)->setSelected(true);
        choice(b)->setSelected(true);
        window.chooser()->openSelected();
        auto rows = [&] // serial number and status, by serial number
        {
            QStringList texts;
            for (int i = 0; i < window.cameraList()->topLevelItemCount(); ++i)
                texts << window.cameraList()->topLevelItem(i)->text(1) + " " + window.cameraList()->topLevelItem(i)->text(2);
            texts.sort();
            return texts.join(", ");
        };
        QTRY_COMPARE_WITH_TIMEOUT(rows(), a + " Open, " + b + " Open", 20000);
        QPointer<CameraSession> first, second;
        for (CameraSession* session : window.sessions())
            (session->camera()->serialNumber() == a ? first : second) = session;
        QVERIFY(first && second && first->tabs()->count() == 2 && second->tabs()->count() == 2);

        window.showSession(second);
        QVERIFY(window.tabs() == second->tabs() && window.cameraList()->currentItem()->text(1) == b);
        auto mode = [](CameraSession* session)
        {
            QString text;
            session->camera()->withAravisDevice([&](ArvDevice* d)
                                                { text = arv_device_get_string_feature_value(d, "AcquisitionMode", nullptr); });
            return text;
        };
        const QString untouched = mode(first);
        for (QPushButton* button : second->tabs()->widget(0)->findChildren<QPushButton*>())
            if (button->text() == "Bulk")
                button->click();
        QCOMPARE(mode(second) + " " + mode(first), "MultiFrame " + untouched);
        QVERIFY(untouched != "MultiFrame");

        second->acquireButton()->click();
        QTRY_VERIFY_WITH_TIMEOUT(second->frameCount() > 0, 10000);
        QTimer tick;
        QElapsedTimer sinceTick;
        qint64 longest = 0;
        connect(&tick, &QTimer::timeout, [&] { longest = qMax(longest, sinceTick.restart()); });
        sinceTick.start();
        tick.start(10);
        lineServer.pause();
        QTRY_VERIFY_WITH_TIMEOUT(first->isCameraLost(), 20000);
        const int frames = second->frameCount();
        QTest::qWait(500);
        tick.stop();
        QVERIFY2(longest <= 200, qPrintable(QString::number(longest)));
        QVERIFY(second->frameCount() > frames && second->tabs()->isEnabled() && !first->tabs()->isEnabled());
        QCOMPARE(rows(), a + " Lost, " + b + " Open");
        lineServer.resume();
        QTRY_COMPARE_WITH_TIMEOUT(rows(), a + " Back, " + b + " Open", 30000);

        window.closeCamera(first);
        QTRY_VERIFY(!first && window.sessions() == QList<CameraSession*>{second});
        GenICamCamera again;
        QTRY_VERIFY_WITH_TIMEOUT(again.open("127.0.0.2") == OrvErrorSuccess, 20000);
        const int later = second->frameCount();
        QTRY_VERIFY_WITH_TIMEOUT(second->frameCount() > later && !second->isCameraLost(), 10000);
        QCOMPARE(rows(), b + " Open");
    }

    // A plug-in that does not serve the camera (result 4) is skipped without a word.
    void unservedCameraIsNoProblem()
    {
        QTemporaryFile model;
        QVERIFY(model.open() && model.write("<RegisterDescription><Category Name='Root'><pFeature>SyncOutLevels"
                                            "</pFeature></Category><Integer Name='SyncOutLevels'><Value>0</Value>"
                                            "</Integer></RegisterDescription>") > 0 && model.flush());
        const std::shared_ptr<GenICamCamera> levels = camera(model.fileName());
        ViewerWindow window(levels.get());
        QCOMPARE(window.addTabs(TRIGGERIO_PLUGIN_DIR), 1);
        QCOMPARE(window.problems(), QStringList());
    }

    // Without a camera the window opens on the chooser: the fake GigE Vision camera is found by its serial number,
    // free, the demo models below; a double click opens it on the Trigger IO page. Another chooser shown sees it
    // taken and says in its row why it cannot open it. On a silent link the window's own acquisition start,
    // stop and software trigger return at once. The camera opened last is offered first.
    void chooserOpensACamera()
    {
        GenICamCamera camera;
        ViewerWindow window(&camera);
        CameraChooser* chooser = window.chooser();
        chooser->setDemoFolder(TRIGGERIO_CAMERAS_DIR);
        QVERIFY(window.addTabs(TRIGGERIO_PLUGIN_DIR) == 0 && window.hasPlugins());
        window.show();
        CameraChooser other; // refreshed while shown: it sees the camera taken
        other.show();
        auto row = [](CameraChooser* in, const QString& text, int column = 1)
        { const auto items = in->list()->findItems(text, Qt::MatchExactly, column); return items.value(0); };
        const QString serial = m_server.serial();
        QTRY_VERIFY_WITH_TIMEOUT(row(chooser, serial) && row(chooser, "Demo: syncout-camera", 0) && row(&other, serial),
                                 10000);
        QCOMPARE(row(chooser, serial)->text(2) + " " + row(chooser, serial)->text(3), QString("127.0.0.1 Free"));
        QCOMPARE(chooser->list()->topLevelItemCount(), 4);
        QVERIFY(chooser->list()->indexOfTopLevelItem(row(chooser, "Demo: line-camera", 0)) == 1);
        const QRect cell = chooser->list()->visualItemRect(row(chooser, serial));
        QTest::mouseClick(chooser->list()->viewport(), Qt::LeftButton, {}, cell.center());
        QTest::mouseDClick(chooser->list()->viewport(), Qt::LeftButton, {}, cell.center());
        QTRY_VERIFY_WITH_TIMEOUT(camera.isOpen() && window.tabs()->isVisible(), 20000);
        QCOMPARE(camera.serialNumber() + window.tabs()->tabText(window.tabs()->currentIndex()), serial + "Trigger IO");

        QTRY_COMPARE_WITH_TIMEOUT(row(&other, serial) ? row(&other, serial)->text(3) : QString(),
                                  QString("Controlled by another application"), 10000);
        other.openSelected();
        QTRY_VERIFY_WITH_TIMEOUT(row(&other, serial)->text(3).contains("in use by another program"), 20000);

        const auto* stream = window.findChild<CameraStream*>();
        auto silent = [&](const std::function<void()>& calls) // how long the calls keep the GUI thread
        {
            QTRY_VERIFY_WITH_TIMEOUT(!stream->isBusy(), 20000);
            m_server.pause();
            QElapsedTimer busy;
            busy.start();
            calls();
            const qint64 elapsed = busy.elapsed();
            m_server.resume();
            QVERIFY2(elapsed < 500, qPrintable(QString::number(elapsed))); // a call that waits: 2.5 s at least
        };
        silent([&] { window.acquireButton()->click(); });
        QTRY_VERIFY_WITH_TIMEOUT(window.isStreaming(), 20000);
        silent([&] { window.triggerSoftware(); window.acquireButton()->click(); });
        QTRY_VERIFY_WITH_TIMEOUT(!stream->isBusy() && !window.isStreaming() && !camera.isDeviceLost(), 20000);

        window.findChild<QMenu*>()->actions().first()->trigger(); // Camera > Open...
        QVERIFY(chooser->isVisible() && !window.tabs()->isVisible());
        chooser->open(row(chooser, "Demo: routing-camera", 0)->data(0, Qt::UserRole).toString());
        QTRY_VERIFY(camera.id().endsWith("routing-camera.xml") && window.tabs()->count() == 2);
        CameraChooser next;
        next.setDemoFolder(TRIGGERIO_CAMERAS_DIR);
        next.show();
        QTRY_COMPARE_WITH_TIMEOUT(next.list()->topLevelItemCount(), 4, 10000);
        QCOMPARE(next.list()->topLevelItem(0)->text(0), QString("Demo: routing-camera"));
    }

    // Another camera answering at the address is not taken, and the search
    // goes on until the one looked for answers. A finder destroyed while its
    // attempt runs: the attempt closes what it opened, and its thread ends.
    void takesOnlyTheSameCamera()
    {
        auto finder = std::make_unique<CameraFinder>();
        finder->setInterval(100);
        QSignalSpy found(finder.get(), &CameraFinder::found), missed(finder.get(), &CameraFinder::missed);
        finder->start("127.0.0.1", "ANOTHER-1");
        QVERIFY(missed.wait(20000) || missed.count() > 0);
        QCOMPARE(missed.first().first().toString(),
                 "another camera answers at 127.0.0.1 (serial number " + m_server.serial() + ", not ANOTHER-1)");
        QVERIFY(found.isEmpty() && finder->isSearching());
        finder->start("127.0.0.1", m_server.serial());
        QTRY_COMPARE_WITH_TIMEOUT(found.count(), 1, 20000);
        const auto taken = found.takeFirst().first().value<std::shared_ptr<GenICamCamera>>();
        QVERIFY(!finder->isSearching() && taken->serialNumber() == m_server.serial() && (taken->close(), true));
        finder->start("127.0.0.1", m_server.serial());
        finder.reset();
        QVERIFY(GenICamCamera::waitForBackgroundWork(20000));
        GenICamCamera camera;
        QCOMPARE(camera.open("127.0.0.1"), OrvErrorSuccess);
    }

    // Silent for longer than its heartbeat timeout, the camera drops us as its
    // controller and says so once it answers again: control is taken back,
    // and Aravis's heartbeat keeps it ours (else the camera would drop us
    // again three seconds later).
    void controlTakenBackAfterASilence()
    {
        GenICamCamera camera;
        QCOMPARE(camera.open("127.0.0.1"), OrvErrorSuccess);
        QCOMPARE(camera.serialNumber(), QString::fromLatin1(m_server.serial()));
        m_server.pause();
        QTest::qWait(4000);
        m_server.resume();
        QTest::qWait(8000); // the drop seen by Aravis's heartbeat, control asked for again, 5 s kept
        guint32 privilege = 0;
        camera.withAravisDevice([&](ArvDevice* device) { arv_device_read_register(device, 0x0a00, &privilege, nullptr); });
        QCOMPARE(privilege & 0x3, guint32(0x2)); // control, not exclusive
        QVERIFY(!camera.isDeviceLost());
    }

    // The I/O Monitor shown on a camera that stops answering: the GUI thread never waits for it (no event
    // waits longer than 200 ms), the traces show the gap ("no answer"), the camera is reported lost as ever.
    void silentCameraNeverHoldsTheMonitor()
    {
        GenICamCamera camera;
        QCOMPARE(camera.open("127.0.0.1"), OrvErrorSuccess);
        ViewerWindow window(&camera);
        QCOMPARE(window.addTabs(TRIGGERIO_PLUGIN_DIR), 2);
        window.show();
        window.tabs()->setCurrentIndex(1);
        QWidget* page = window.tabs()->widget(1);
        QLabel* lamp = nullptr; // Line0's, once the lines are found and sampled
        QTRY_VERIFY((lamp = page->findChild<QLabel*>("lamp0")) && !lamp->styleSheet().contains("gray"));
        QElapsedTimer clock;
        qint64 longest = 0;
        QTimer beat;
        connect(&beat, &QTimer::timeout, [&] { longest = qMax(longest, clock.restart()); });
        clock.start(), beat.start(10), m_server.pause();
        QTRY_VERIFY_WITH_TIMEOUT(lamp->styleSheet().contains("gray") && !window.isCameraLost() && // a gap, soon
                                     page->findChild<QLabel*>("l_SamplingNote")->text().startsWith("No answer"),
                                 1500);
        QTRY_VERIFY_WITH_TIMEOUT(window.isCameraLost() && !window.tabs()->isEnabled(), 20000);
        QVERIFY2(longest <= 200, qPrintable(QString("the GUI waited %1 ms").arg(longest)));
        m_server.resume();
    }
};

QTEST_MAIN(tst_ViewerWindow)
#include "tst_ViewerWindow.moc"
