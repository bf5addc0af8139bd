#include "TabAccess.h"
#include "TabExtensionInterface.h"
#include "TestCamera.h"

#include <QImage>
#include <QtTest>

using TestCam::TestCamera;

class tst_TabFrame : public QObject
{
    Q_OBJECT

private slots:
    void supportTest_data();
    void supportTest();
    void observedFeaturesInOrder();
    void userOutputSelectorFlag_data();
    void userOutputSelectorFlag();
    void formLayout();
    void triggerGroupKeepsItsHeight();
    void imagesComeFromTheLibraryFolderOnly();
    void lockSkipsLineSelectorOnlyCameras();
    void notificationsReachTheGuiThread();
};

void tst_TabFrame::supportTest_data()
{
    QTest::addColumn<QStringList>("features");
    QTest::addColumn<bool>("supported");
    QTest::newRow("SyncOutLevels") << QStringList{"SyncOutLevels"} << true;
    QTest::newRow("LineOutLevels") << QStringList{"LineOutLevels"} << true;
    QTest::newRow("LineSelector only") << QStringList{"LineSelector"} << true;
    QTest::newRow("none of them") << QStringList{"TriggerMode", "LineSource", "SyncOutSelector"} << false;
    QTest::newRow("names differing in case") << QStringList{"syncOutLevels", "Lineselector"} << false;
}

void tst_TabFrame::supportTest()
{
    QFETCH(QStringList, features);
    QFETCH(bool, supported);
    TestCamera cam;
    for (const QString& name : features)
    {
        if (name.endsWith("Levels"))
            cam.addInt(name, 0, 0, 255);
        else
            cam.addEnum(name, {"Line0"}, "Line0");
    }
    QWidget parent;
    try
    {
        TabAccess tab(cam.features(), &parent);
        QVERIFY(supported);
        QCOMPARE(tab.accessibleName(), QString("Trigger IO"));
        QCOMPARE(parent.accessibleName(), QString("Trigger IO"));
    }
    catch (const TENotSupported& e)
    {
        QVERIFY(!supported);
        QCOMPARE(e.Result(), 4);
        QCOMPARE(e.Function(), QString("IOTriggerWidget"));
        QCOMPARE(e.Message(), QString("Trigger functionality not available, widget not constructed"));
        QVERIFY(parent.accessibleName().isEmpty());
        QVERIFY(parent.findChildren<QWidget*>().isEmpty());
        QCOMPARE(cam.observerCount(features.first()), 0);
    }
}

void tst_TabFrame::observedFeaturesInOrder()
{
    TestCamera cam;
    cam.addInt("SyncOutLevels", 0, 0, 15);
    cam.addEnum("TriggerMode", {"Off", "On"}, "Off");
    cam.addEnum("UserOutputSelector", {"UserOutput0"}, "UserOutput0");
    TabAccess tab(cam.features(), nullptr);
    const QStringList expected{
        "TriggerActivation", "TriggerSource",   "TriggerMode",   "TriggerSelector", "AcquisitionFrameCount",
        "AcquisitionMode",   "LineRouting",     "LineSelector",  "LineSource",      "SyncOutSource",
        "LineInverter",      "SyncOutPolarity", "LineStatus",    "SyncOutLevels",   "UserOutSelector",
        "UserOutputValue",   "LineMode",        "LineOutSource", "LineOutPolarity", "LineOutLevels",
        "ExposureMode",      "ExposureAuto"};
    QCOMPARE(tab.m_ObservedFeatures, expected);
    // Registered on the observed features the camera has, and all of them marked changed.
    QCOMPARE(cam.observerCount("SyncOutLevels"), 1);
    QCOMPARE(cam.observerCount("TriggerMode"), 1);
    QCOMPARE(cam.observerCount("UserOutputSelector"), 0);
    QVERIFY(tab.m_pChangedFeatures->contains("SyncOutLevels"));
    QVERIFY(tab.m_pChangedFeatures->contains("TriggerMode"));
    QVERIFY(!tab.m_pChangedFeatures->contains("UserOutputSelector"));
}

void tst_TabFrame::userOutputSelectorFlag_data()
{
    QTest::addColumn<QString>("selector");
    QTest::addColumn<bool>("flag");
    QTest::newRow("UserOutputSelector") << "UserOutputSelector" << true;
    QTest::newRow("UserOutSelector only") << "UserOutSelector" << false;
}

void tst_TabFrame::userOutputSelectorFlag()
{
    QFETCH(QString, selector);
    QFETCH(bool, flag);
    TestCamera cam;
    cam.addInt("SyncOutLevels", 0, 0, 15);
    cam.addEnum(selector, {"UserOutput0"}, "UserOutput0");
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(tab.m_bUserOutputSelector, flag);
}

void tst_TabFrame::formLayout()
{
    TestCamera cam;
    cam.addInt("SyncOutLevels", 0, 0, 15);
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(tab.objectName(), QString("IOTriggerWidget"));
    QCOMPARE(tab.windowTitle(), QString("Form"));
    QCOMPARE(tab.locale(), QLocale(QLocale::English, QLocale::UnitedStates));
    QCOMPARE(tab.ui.gb_Output->title(), QString("Output"));
    QCOMPARE(tab.ui.gb_SelectOutput->title(), QString("Selectable Output"));
    QCOMPARE(tab.ui.gb_TriggerInput->title(), QString("Trigger - Input"));
    QCOMPARE(tab.ui.l_notAcquireHint->text(), QString("Full Input configuration only if camera is not acquiring!"));
    QCOMPARE(tab.ui.l_notAcquireHint->styleSheet(), QString("color : rgb(64,94,127);"));
    QVERIFY(tab.ui.l_notAcquireHint->isHidden());
    // No selectable outputs on this camera: their group is hidden.
    QVERIFY(tab.ui.gb_SelectOutput->isHidden());

    // Top to bottom: hint, trigger input, spacer, outputs, (rows 4 and 5 empty), selectable outputs.
    int row, column, rowSpan, columnSpan;
    QGridLayout* page = tab.ui.gridLayout_2;
    page->getItemPosition(page->indexOf(tab.ui.l_notAcquireHint), &row, &column, &rowSpan, &columnSpan);
    QCOMPARE(row, 0);
    page->getItemPosition(page->indexOf(tab.ui.gb_TriggerInput), &row, &column, &rowSpan, &columnSpan);
    QCOMPARE(row, 1);
    page->getItemPosition(page->indexOf(tab.ui.gb_Output), &row, &column, &rowSpan, &columnSpan);
    QCOMPARE(row, 3);
    page->getItemPosition(page->indexOf(tab.ui.gb_SelectOutput), &row, &column, &rowSpan, &columnSpan);
    QCOMPARE(row, 6);
    QCOMPARE(tab.ui.grid_Output->contentsMargins(), QMargins(12, 4, 12, 6));
    QCOMPARE(tab.ui.gb_SelectOutput->maximumHeight(), 150);
    QCOMPARE(tab.ui.gb_SelectOutput->sizeIncrement(), QSize(0, -6));
}

void tst_TabFrame::triggerGroupKeepsItsHeight()
{
    TestCamera cam;
    cam.addInt("SyncOutLevels", 0, 0, 15);
    QWidget window;
    QVBoxLayout layout(&window);
    TabAccess* tab = new TabAccess(cam.features(), &window);
    layout.addWidget(tab);
    for (const QSize& size : {QSize(500, 900), QSize(800, 1400), QSize(400, 600)})
    {
        window.resize(size);
        window.show();
        QCoreApplication::processEvents();
        QCOMPARE(tab->ui.gb_TriggerInput->height(), 425);
    }
}

void tst_TabFrame::imagesComeFromTheLibraryFolderOnly()
{
    for (const char* name : {"edge", "level", "bulk"})
    {
        const QString file = QString("triggering_%1_256.png").arg(name);
        const QImage own(":/OrviaViewer/Images/" + file);
        QCOMPARE(own.size(), QSize(256, 256));
        // The buttons ask the host's folder; without a host it has nothing.
        QVERIFY(QImage(":/OrvViewer/Images/" + file).isNull());
    }
}

void tst_TabFrame::lockSkipsLineSelectorOnlyCameras()
{
    TestCamera cam;
    cam.addEnum("LineSelector", {"Line0"}, "Line0");
    TabAccess tab(cam.features(), nullptr);
    tab.camIsStreaming(true);
    QVERIFY(tab.ui.l_notAcquireHint->isHidden());

    TestCamera levels;
    levels.addInt("LineOutLevels", 0, 0, 15);
    TabAccess locked(levels.features(), nullptr);
    locked.camIsStreaming(true);
    locked.camIsStreaming(true);
    QVERIFY(!locked.ui.l_notAcquireHint->isHidden());
    locked.camIsStreaming(false);
    QVERIFY(locked.ui.l_notAcquireHint->isHidden());
}

void tst_TabFrame::notificationsReachTheGuiThread()
{
    TestCamera cam;
    cam.addInt("SyncOutLevels", 0, 0, 15);
    cam.addEnum("TriggerMode", {"Off", "On"}, "Off");
    TabAccess tab(cam.features(), nullptr);
    tab.m_pChangedFeatures->clear();
    cam.notify("TriggerMode");
    cam.notify("TriggerMode");
    cam.waitForNotifications();
    QVERIFY(tab.m_pChangedFeatures->isEmpty()); // queued, not yet delivered
    QTRY_COMPARE(*tab.m_pChangedFeatures, QStringList{"TriggerMode"});
}

QTEST_MAIN(tst_TabFrame)
#include "tst_TabFrame.moc"
