#include "TabAccess.h"
#include "TriggerTestCameras.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QtTest>

using TestCam::Op;
using TestCam::TestCamera;
using TriggerCams::Family;

// The Edge, Level and Bulk presets, clicked on cameras of each family: the
// writes the camera receives, in order, and the handling of observer and buttons.
class tst_QuickSettings : public QObject
{
    Q_OBJECT

private slots:
    void presets_data();
    void presets();
    void responsiveDuringPreset_data();
    void responsiveDuringPreset();
};

namespace
{

QPushButton* button(TabAccess& tab, const QString& preset)
{
    if (preset == "Edge")
        return tab.m_pButtonEdge;
    if (preset == "Level")
        return tab.m_pButtonLevel;
    return tab.m_pButtonBulk;
}

// Refilling the trigger selector with its signal live passes through an empty
// text (refused by the camera) and the first entry before the camera's value.
const QStringList refillRouting{"TriggerSelector= refused -7", "TriggerSelector=AcquisitionStart"};

} // namespace

void tst_QuickSettings::presets_data()
{
    QTest::addColumn<Family>("family");
    QTest::addColumn<TriggerCams::Options>("options");
    QTest::addColumn<QString>("preset");
    QTest::addColumn<QStringList>("writes");
    QTest::addColumn<int>("observerPauses");

    const TriggerCams::Options plain;
    TriggerCams::Options fallin;
    fallin.extraActivations = QStringList{"FallinEdge"};
    TriggerCams::Options triggerWidth;
    triggerWidth.exposureMode = "TriggerWidth";
    TriggerCams::Options triggerOn;
    triggerOn.firstTriggerMode = "On";
    TriggerCams::Options smallCount = triggerOn;
    smallCount.frameCountMaximum = 5;

    // Routing family
    QTest::newRow("routing Edge") << Family::Routing << plain << "Edge"
                                  << refillRouting +
                                         QStringList{"TriggerSelector=ExposureStart", "TriggerSource=InputLines",
                                                     "TriggerActivation=FallingEdge", "LineRouting=Trigger",
                                                     "AcquisitionMode=Continuous",    "TriggerMode=On"}
                                  << 1;
    // The mode goes on early; every selector change then turns it off and on around the write.
    QTest::newRow("routing Level") << Family::Routing << plain << "Level"
                                   << QStringList{"TriggerSource=InputLines",
                                                  "TriggerMode=On",
                                                  "ExposureMode=TriggerWidth",
                                                  "TriggerMode=Off",
                                                  "TriggerSelector= refused -7",
                                                  "TriggerMode=On",
                                                  "TriggerMode=Off",
                                                  "TriggerSelector=AcquisitionStart",
                                                  "TriggerMode=On",
                                                  "TriggerMode=Off",
                                                  "TriggerSelector=ExposureActive",
                                                  "TriggerMode=On",
                                                  "TriggerActivation=LowLevel",
                                                  "LineRouting=Trigger",
                                                  "AcquisitionMode=Continuous"}
                                   << 0;
    const QStringList bulkRouting{"TriggerSelector=ExposureStart",
                                  "TriggerSource=InputLines",
                                  "TriggerSelector=AcquisitionStart",
                                  "LineRouting=Trigger",
                                  "AcquisitionFrameCount=10",
                                  "AcquisitionMode=MultiFrame",
                                  "TriggerMode=On"};
    // "FallinEdge" is not offered: the activation step is skipped.
    QTest::newRow("routing Bulk") << Family::Routing << plain << "Bulk" << refillRouting + bulkRouting << 1;
    QTest::newRow("routing Bulk, FallinEdge offered")
        << Family::Routing << fallin << "Bulk"
        << refillRouting + QStringList{"TriggerSelector=ExposureStart", "TriggerSource=InputLines",
                                       "TriggerActivation=FallinEdge",  "TriggerSelector=AcquisitionStart",
                                       "LineRouting=Trigger",           "AcquisitionFrameCount=10",
                                       "AcquisitionMode=MultiFrame",    "TriggerMode=On"}
        << 1;
    // From "TriggerWidth" the whole Edge preset runs first; Bulk then works on
    // the state Edge left (trigger on, routing checked).
    QTest::newRow("routing Bulk from TriggerWidth")
        << Family::Routing << triggerWidth << "Bulk"
        << QStringList{"ExposureMode=Timed"} + refillRouting +
               QStringList{"TriggerSelector=ExposureStart", "TriggerSource=InputLines", "TriggerActivation=FallingEdge",
                           "LineRouting=Trigger", "AcquisitionMode=Continuous", "TriggerMode=On",
                           // Bulk: refilling the selector hands the active trigger over three times
                           "TriggerMode=Off", "TriggerSelector= refused -7", "TriggerMode=On", "TriggerMode=Off",
                           "TriggerSelector=AcquisitionStart", "TriggerMode=On", "TriggerMode=Off",
                           "TriggerSelector=ExposureStart", "TriggerMode=On", "TriggerMode=Off",
                           "TriggerSelector=AcquisitionStart", "AcquisitionFrameCount=10", "AcquisitionMode=MultiFrame",
                           "TriggerMode=On"}
        << 2;

    // Exposure-auto family: every selector is switched off first.
    const QStringList allOff{"TriggerMode=Off", "TriggerSelector=AcquisitionStart", "TriggerSelector=AcquisitionEnd"};
    QTest::newRow("exposure-auto Edge") << Family::ExposureAuto << triggerOn << "Edge"
                                        << allOff +
                                               QStringList{
                                                   "TriggerSelector=FrameStart", "TriggerActivation=FallingEdge",
                                                   "TriggerSource=Line1",        "AcquisitionMode=Continuous",
                                                   "ExposureAuto=Off",           "TriggerMode=On"}
                                        << 1;
    QTest::newRow("exposure-auto Level") << Family::ExposureAuto << triggerOn << "Level"
                                         << allOff + QStringList{"TriggerSelector=FrameStart", "TriggerSource=Line1",
                                                                 "AcquisitionMode=Continuous", "ExposureAuto=other",
                                                                 "TriggerActivation=LevelLow", "TriggerMode=On"}
                                         << 0;
    QTest::newRow("exposure-auto Bulk") << Family::ExposureAuto << triggerOn << "Bulk"
                                        << allOff +
                                               QStringList{"TriggerSelector=AcquisitionStart", "TriggerSource=Line1",
                                                           "AcquisitionMode=MultiFrame",       "ExposureAuto=Off",
                                                           "AcquisitionFrameCount=10",         "TriggerMode=On"}
                                        << 1;
    TriggerCams::Options fallinOn = fallin;
    fallinOn.firstTriggerMode = "On";
    QTest::newRow("exposure-auto Bulk, FallinEdge offered") << Family::ExposureAuto << fallinOn << "Bulk"
                                                            << allOff + QStringList{"TriggerSelector=AcquisitionStart",
                                                                                    "TriggerSource=Line1",
                                                                                    "AcquisitionMode=MultiFrame",
                                                                                    "ExposureAuto=Off",
                                                                                    "AcquisitionFrameCount=10",
                                                                                    "TriggerActivation=FallinEdge",
                                                                                    "TriggerMode=On"}
                                                            << 1;
    QTest::newRow("exposure-auto Bulk, frame count at most 5")
        << Family::ExposureAuto << smallCount << "Bulk"
        << allOff + QStringList{"TriggerSelector=AcquisitionStart", "TriggerSource=Line1",
                                "AcquisitionMode=MultiFrame",       "ExposureAuto=Off",
                                "AcquisitionFrameCount=5",          "TriggerMode=On"}
        << 1;

    // Exposure-mode family: the first input line (Line1) is found by probing the lines.
    const QStringList probe{"LineSelector=Line0", "LineSelector=Line0", "LineSelector=Line1"};
    QTest::newRow("exposure-mode Edge") << Family::ExposureMode << triggerOn << "Edge"
                                        << QStringList{"TriggerSelector=AcquisitionStart", "TriggerMode=Off",
                                                       "TriggerSelector=FrameStart"} +
                                               probe +
                                               QStringList{"TriggerSource=Line1", "TriggerActivation=FallingEdge",
                                                           "AcquisitionMode=Continuous", "TriggerMode=On"}
                                        << 1;
    QTest::newRow("exposure-mode Level") << Family::ExposureMode << triggerOn << "Level"
                                         << QStringList{"ExposureMode=TriggerWidth", "TriggerSelector=AcquisitionStart",
                                                        "TriggerMode=Off", "TriggerSelector=FrameStart"} +
                                                probe +
                                                QStringList{"TriggerSource=Line1", "TriggerActivation=FallingEdge",
                                                            "AcquisitionMode=Continuous", "TriggerMode=On"}
                                         << 0;
    QTest::newRow("exposure-mode Bulk") << Family::ExposureMode << triggerOn << "Bulk"
                                        << QStringList{"TriggerMode=Off", "TriggerSelector=AcquisitionStart"} + probe +
                                               QStringList{"TriggerSource=Line1", "TriggerActivation=FallingEdge",
                                                           "AcquisitionMode=MultiFrame", "AcquisitionFrameCount=10",
                                                           "TriggerMode=On"}
                                        << 1;

    // No exposure control: nothing is written, only the frame steps run.
    QTest::newRow("neither Edge") << Family::Neither << triggerOn << "Edge" << QStringList() << 1;
    QTest::newRow("neither Level") << Family::Neither << triggerOn << "Level" << QStringList() << 0;
    QTest::newRow("neither Bulk") << Family::Neither << triggerOn << "Bulk" << QStringList() << 1;
}

void tst_QuickSettings::presets()
{
    QFETCH(Family, family);
    QFETCH(TriggerCams::Options, options);
    QFETCH(QString, preset);
    QFETCH(QStringList, writes);
    QFETCH(int, observerPauses);

    TestCamera cam;
    TriggerCams::build(cam, family, options);
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();
    cam.resetCalls();

    QPushButton* clicked = button(tab, preset);
    QVERIFY(clicked->isEnabled());
    clicked->click();

    QCOMPARE(cam.journal(), writes);
    // Edge and Bulk suspend the observer while they write, Level does not.
    QCOMPARE(cam.calls("TriggerMode", Op::UnregisterObserver), observerPauses);
    QCOMPARE(cam.calls("TriggerMode", Op::RegisterObserver), observerPauses);
    QCOMPARE(cam.observerCount("TriggerMode"), 1);
    // The acquisition mode is writable, so the presets are offered again.
    QVERIFY(tab.m_pButtonEdge->isEnabled());
    QVERIFY(tab.m_pButtonLevel->isEnabled());
    QVERIFY(tab.m_pButtonBulk->isEnabled());
}

void tst_QuickSettings::responsiveDuringPreset_data()
{
    QTest::addColumn<Family>("family");
    QTest::addColumn<QString>("preset");
    QTest::addColumn<int>("observersWhileRunning");
    QTest::addColumn<QString>("notified"); // a feature the preset does not write before it processes events

    QTest::newRow("routing Edge (waits)") << Family::Routing << "Edge" << 0 << "LineSelector";
    QTest::newRow("exposure-mode Level (processes events)") << Family::ExposureMode << "Level" << 1 << "LineSelector";
}

void tst_QuickSettings::responsiveDuringPreset()
{
    QFETCH(Family, family);
    QFETCH(QString, preset);
    QFETCH(int, observersWhileRunning);
    QFETCH(QString, notified);

    TestCamera cam;
    TriggerCams::build(cam, family);
    TabAccess tab(cam.features(), nullptr);
    tab.m_pChangedFeatures->clear();
    cam.clearJournal();

    // A camera notification queued for the GUI thread before the click.
    cam.notify(notified);
    cam.waitForNotifications();
    QVERIFY(tab.m_pChangedFeatures->isEmpty());

    // What the first tick of a timer sees while the preset runs.
    int ticks = 0;
    int writesAtTick = -1;
    QStringList changedAtTick;
    bool buttonsEnabledAtTick = true;
    int observersAtTick = -1;
    QTimer timer;
    timer.setInterval(0);
    connect(&timer, &QTimer::timeout,
            [&]
            {
                if (ticks++ > 0)
                    return;
                writesAtTick = cam.journal().size();
                changedAtTick = *tab.m_pChangedFeatures;
                buttonsEnabledAtTick =
                    tab.m_pButtonEdge->isEnabled() || tab.m_pButtonLevel->isEnabled() || tab.m_pButtonBulk->isEnabled();
                observersAtTick = cam.observerCount("TriggerMode");
            });
    timer.start();

    button(tab, preset)->click();
    timer.stop();

    QVERIFY(ticks > 0);
    QVERIFY(writesAtTick > 0);
    QVERIFY(writesAtTick < cam.journal().size());
    QVERIFY2(changedAtTick.contains(notified), "the queued notification did not run during the preset");
    QVERIFY(!buttonsEnabledAtTick);
    QCOMPARE(observersAtTick, observersWhileRunning);
}

QTEST_MAIN(tst_QuickSettings)
#include "tst_QuickSettings.moc"
