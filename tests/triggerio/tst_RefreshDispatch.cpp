#include "OutputTestCameras.h"
#include "TabAccess.h"
#include "TestCamera.h"
#include "TriggerTestCameras.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

using TestCam::TestCamera;

namespace
{

enum class Camera
{
    Routing,      // trigger input with line routing and exposure mode
    ExposureAuto, // trigger input with exposure auto and sync output levels
    LineOutputs,  // output lines with user outputs
    SyncOutputs,  // sync outputs
    LineOutNames  // sync outputs under the "LineOut..." names
};

void build(TestCamera& cam, Camera camera)
{
    switch (camera)
    {
    case Camera::Routing:
        TriggerCams::build(cam, TriggerCams::Family::Routing);
        break;
    case Camera::ExposureAuto:
        TriggerCams::build(cam, TriggerCams::Family::ExposureAuto);
        break;
    case Camera::LineOutputs:
        OutputCams::lineFamily(cam, {"Output", "Input", "Output"});
        cam.setAt("LineSource", "Line2", "UserOutput1");
        break;
    case Camera::SyncOutputs:
        OutputCams::syncOutFamily(cam, 2);
        break;
    case Camera::LineOutNames:
        OutputCams::syncOutFamily(cam, 2, true);
        break;
    }
}

// The features in the order they were first read.
QStringList firstReads(const QStringList& reads)
{
    QStringList first;
    for (const QString& name : reads)
        if (!first.contains(name))
            first << name;
    return first;
}

} // namespace

Q_DECLARE_METATYPE(Camera)

// The refresh dispatcher: which camera reads each reported name leads to, in
// which order, and that a refresh moves no setting on the camera.
class tst_RefreshDispatch : public QObject
{
    Q_OBJECT

private slots:
    void rules_data();
    void rules();
    void refreshShowsCameraChangesWithoutWritingBack();
    void lineModeWithoutSelectableOutputsRebuildsNothing();
    void lockFollowsStreaming();
    void levelButtonNeedsTriggerWidth();
    void blockedControlWritesNothing();
};

void tst_RefreshDispatch::rules_data()
{
    QTest::addColumn<Camera>("camera");
    QTest::addColumn<QStringList>("changed");
    QTest::addColumn<QStringList>("readInOrder");
    QTest::addColumn<QStringList>("notRead");

    QTest::newRow("1 TriggerSource") << Camera::Routing << QStringList{"TriggerSource"} << QStringList{"TriggerSource"}
                                     << QStringList{"TriggerActivation", "TriggerSelector", "AcquisitionMode"};
    QTest::newRow("2 TriggerActivation") << Camera::Routing << QStringList{"TriggerActivation"}
                                         << QStringList{"TriggerActivation"}
                                         << QStringList{"TriggerSource", "TriggerMode", "TriggerSelector"};
    QTest::newRow("3 TriggerMode") << Camera::Routing << QStringList{"TriggerMode"}
                                   << QStringList{"TriggerMode", "TriggerSelector", "TriggerActivation"}
                                   << QStringList{"TriggerSource"};
    QTest::newRow("4 TriggerSelector") << Camera::Routing << QStringList{"TriggerSelector"}
                                       << QStringList{"TriggerSelector"}
                                       << QStringList{"TriggerActivation", "TriggerSource"};
    QTest::newRow("5 frame count alone") << Camera::Routing << QStringList{"AcquisitionFrameCount"} << QStringList{}
                                         << QStringList{"AcquisitionFrameCount"};
    QTest::newRow("6 AcquisitionMode") << Camera::Routing << QStringList{"AcquisitionMode"}
                                       << QStringList{"AcquisitionMode", "AcquisitionFrameCount"}
                                       << QStringList{"TriggerSource"};
    QTest::newRow("7 LineSelector") << Camera::Routing << QStringList{"LineSelector"} << QStringList{"LineSelector"}
                                    << QStringList{"LineRouting", "TriggerSource"};
    QTest::newRow("8 LineRouting") << Camera::Routing << QStringList{"LineRouting"} << QStringList{"LineRouting"}
                                   << QStringList{"TriggerSource", "ExposureMode"};
    QTest::newRow("9 ExposureMode") << Camera::Routing << QStringList{"ExposureMode"} << QStringList{"ExposureMode"}
                                    << QStringList{"TriggerSource"};
    QTest::newRow("10 ExposureAuto") << Camera::ExposureAuto << QStringList{"ExposureAuto"}
                                     << QStringList{"ExposureAuto"} << QStringList{"ExposureMode", "TriggerSource"};
    QTest::newRow("11 LineSource") << Camera::LineOutputs << QStringList{"LineSource"} << QStringList{"LineSource"}
                                   << QStringList{"LineInverter", "LineStatus"};
    QTest::newRow("11 SyncOutSource") << Camera::SyncOutputs << QStringList{"SyncOutSource"}
                                      << QStringList{"SyncOutSource"} << QStringList{"SyncOutPolarity"};
    QTest::newRow("12 LineInverter") << Camera::LineOutputs << QStringList{"LineInverter"}
                                     << QStringList{"LineInverter"} << QStringList{"LineSource", "LineStatus"};
    QTest::newRow("12 SyncOutPolarity") << Camera::SyncOutputs << QStringList{"SyncOutPolarity"}
                                        << QStringList{"SyncOutPolarity"} << QStringList{"SyncOutLevels"};
    QTest::newRow("13 LineStatus") << Camera::LineOutputs << QStringList{"LineStatus"}
                                   << QStringList{"LineStatus", "LineInverter"} << QStringList{"LineSource"};
    QTest::newRow("14 SyncOutLevels") << Camera::SyncOutputs << QStringList{"SyncOutLevels"}
                                      << QStringList{"SyncOutLevels"} << QStringList{"SyncOutSource"};
    QTest::newRow("14 LineOutLevels alone")
        << Camera::LineOutNames << QStringList{"LineOutLevels"} << QStringList{} << QStringList{"LineOutLevels"};
    QTest::newRow("16 UserOutputValue") << Camera::LineOutputs << QStringList{"UserOutputValue"}
                                        << QStringList{"UserOutputValue"} << QStringList{"LineInverter"};
    QTest::newRow("rules 2 and 3 together")
        << Camera::Routing << QStringList{"TriggerActivation", "TriggerMode"}
        << QStringList{"TriggerActivation", "TriggerMode", "TriggerSelector"} << QStringList{"TriggerSource"};
}

void tst_RefreshDispatch::rules()
{
    QFETCH(Camera, camera);
    QFETCH(QStringList, changed);
    QFETCH(QStringList, readInOrder);
    QFETCH(QStringList, notRead);
    TestCamera cam;
    build(cam, camera);
    TabAccess tab(cam.features(), nullptr);
    const QMap<QString, QString> selectors{{"LineSelector", cam.value("LineSelector")},
                                           {"SyncOutSelector", cam.value("SyncOutSelector")},
                                           {"UserOutputSelector", cam.value("UserOutputSelector")},
                                           {"TriggerSelector", cam.value("TriggerSelector")}};
    cam.waitForNotifications();
    cam.clearJournal();
    cam.clearReads();

    tab.refresh(changed);

    const QStringList reads = firstReads(cam.reads());
    if (readInOrder.isEmpty())
        QCOMPARE(reads, QStringList());
    int last = -1;
    for (const QString& name : readInOrder)
    {
        const int at = reads.indexOf(name);
        QVERIFY2(at > last, qPrintable(name + " not read in its place: " + reads.join(", ")));
        last = at;
    }
    for (const QString& name : notRead)
        QVERIFY2(!reads.contains(name), qPrintable(name + " read: " + reads.join(", ")));

    // A refresh may move selectors to reach each line, but writes nothing else
    // and leaves every selector where it was.
    for (const QString& write : cam.journal())
        QVERIFY2(write.section('=', 0, 0).endsWith("Selector"), qPrintable(write));
    for (auto it = selectors.begin(); it != selectors.end(); ++it)
        QCOMPARE(cam.value(it.key()), it.value());
}

void tst_RefreshDispatch::refreshShowsCameraChangesWithoutWritingBack()
{
    TestCamera cam;
    TriggerCams::build(cam, TriggerCams::Family::ExposureAuto);
    TabAccess tab(cam.features(), nullptr);
    tab.show();
    cam.set("TriggerSource", "Line2");
    cam.set("AcquisitionMode", "MultiFrame");
    cam.set("AcquisitionFrameCount", 7);
    cam.set("ExposureAuto", "Once");
    cam.clearJournal();

    tab.refresh({"TriggerSource", "AcquisitionMode", "ExposureAuto"});

    QCOMPARE(tab.m_pComboTriggerSource->currentText(), QString("Line2"));
    QCOMPARE(tab.m_pComboAcquisitionMode->currentText(), QString("MultiFrame"));
    QCOMPARE(tab.m_pSpinAcquisitionFrameCount->value(), 7);
    QCOMPARE(tab.m_pComboExposureAuto->currentText(), QString("Once"));
    QCOMPARE(cam.journal(), QStringList());
    // Signals are live again after the pass: a user edit writes.
    tab.m_pComboTriggerSource->setCurrentText("Line1");
    QCOMPARE(cam.journal(), QStringList{"TriggerSource=Line1"});
}

void tst_RefreshDispatch::lineModeWithoutSelectableOutputsRebuildsNothing()
{
    TestCamera cam;
    OutputCams::lineFamily(cam, {"Output", "Input", "Output"});
    TabAccess tab(cam.features(), nullptr);
    QVERIFY(tab.m_OptionalOutCombos.isEmpty());
    const auto rows = tab.m_OutputRows;
    const auto labels = tab.m_OutLineLabels;
    QCOMPARE(rows.size(), 2);
    cam.set("LineMode", "Output");
    tab.refresh({"LineMode"});
    QCOMPARE(tab.m_OutputRows, rows);
    QCOMPARE(tab.m_OutLineLabels, labels);
}

void tst_RefreshDispatch::lockFollowsStreaming()
{
    TestCamera cam;
    TriggerCams::build(cam, TriggerCams::Family::ExposureAuto);
    TabAccess tab(cam.features(), nullptr);
    const QList<QWidget*> locked{tab.m_pComboTriggerSelector,
                                 tab.m_pComboTriggerSource,
                                 tab.m_pComboExposureAuto,
                                 tab.m_pComboTriggerActivation,
                                 tab.m_pComboTriggerMode,
                                 tab.m_pComboAcquisitionMode,
                                 tab.m_pSpinAcquisitionFrameCount,
                                 tab.m_pButtonEdge,
                                 tab.m_pButtonLevel,
                                 tab.m_pButtonBulk};
    for (QWidget* widget : locked)
        QVERIFY(widget);
    tab.m_pButtonSWTrigger->setEnabled(true);

    for (bool streaming : {true, true, false})
    {
        tab.camIsStreaming(streaming);
        for (QWidget* widget : locked)
            QCOMPARE(widget->isEnabled(), !streaming);
        QCOMPARE(tab.ui.l_notAcquireHint->isHidden(), !streaming);
        QVERIFY(tab.m_pButtonSWTrigger->isEnabled()); // never locked
    }
}

void tst_RefreshDispatch::levelButtonNeedsTriggerWidth()
{
    TestCamera cam;
    cam.addInt("SyncOutLevels", 0, 0, 15);
    cam.addEnum("ExposureMode", {"Timed", "TriggerWidth"}, "Timed").unavailable({"TriggerWidth"});
    TabAccess tab(cam.features(), nullptr);
    QVERIFY(tab.m_pComboExposureMode);
    QVERIFY(!tab.m_pButtonLevel->isEnabled());
    tab.camIsStreaming(true);
    tab.camIsStreaming(false);
    QVERIFY(tab.m_pButtonEdge->isEnabled());
    QVERIFY(!tab.m_pButtonLevel->isEnabled());
}

void tst_RefreshDispatch::blockedControlWritesNothing()
{
    TestCamera cam;
    TriggerCams::build(cam, TriggerCams::Family::ExposureMode);
    OutputCams::MessageLog log;
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();
    tab.SetConnectionsDisabled(true);
    tab.m_pComboTriggerSource->setCurrentText("Line1");
    tab.m_pComboTriggerActivation->setCurrentText("FallingEdge");
    tab.m_pSpinAcquisitionFrameCount->setValue(5);
    QCOMPARE(cam.journal(), QStringList());
    tab.SetConnectionsDisabled(false);
    tab.m_pComboTriggerSource->setCurrentText("Line2");
    QCOMPARE(cam.journal(), QStringList{"TriggerSource=Line2"});
}

QTEST_MAIN(tst_RefreshDispatch)
#include "tst_RefreshDispatch.moc"
