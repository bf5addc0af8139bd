#include "TabAccess.h"
#include "TriggerTestCameras.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

using TestCam::TestCamera;
using TriggerCams::Family;

// Edits of the trigger input controls: the writes they make, in order, with
// the trigger-mode and routing hand-overs; the software trigger; the helpers
// the presets build on; refreshes that follow the camera without writing.
class tst_TriggerEdits : public QObject
{
    Q_OBJECT

private slots:
    void comboEdits_data();
    void comboEdits();
    void triggerSelectorHandOver_data();
    void triggerSelectorHandOver();
    void routingHandOver_data();
    void routingHandOver();
    void softwareTrigger_data();
    void softwareTrigger();
    void setComboBoxValuePicksLastMatch();
    void firstInput_data();
    void firstInput();
    void refreshFollowsTheCameraWithoutWriting();
};

namespace
{

QComboBox* combo(TabAccess& tab, const QString& feature)
{
    const QMap<QString, QComboBox*> combos{
        {"TriggerSource", tab.m_pComboTriggerSource},     {"TriggerActivation", tab.m_pComboTriggerActivation},
        {"TriggerMode", tab.m_pComboTriggerMode},         {"TriggerSelector", tab.m_pComboTriggerSelector},
        {"AcquisitionMode", tab.m_pComboAcquisitionMode}, {"ExposureMode", tab.m_pComboExposureMode},
        {"ExposureAuto", tab.m_pComboExposureAuto}};
    return combos.value(feature);
}

} // namespace

void tst_TriggerEdits::comboEdits_data()
{
    QTest::addColumn<Family>("family");
    QTest::addColumn<QString>("feature");
    QTest::addColumn<QString>("value");

    QTest::newRow("source") << Family::Routing << "TriggerSource"
                            << "InputLines";
    QTest::newRow("activation") << Family::Routing << "TriggerActivation"
                                << "LowLevel";
    QTest::newRow("mode") << Family::Routing << "TriggerMode"
                          << "On";
    QTest::newRow("acquisition mode") << Family::ExposureMode << "AcquisitionMode"
                                      << "MultiFrame";
    QTest::newRow("exposure mode") << Family::ExposureMode << "ExposureMode"
                                   << "TriggerWidth";
    QTest::newRow("exposure auto") << Family::ExposureAuto << "ExposureAuto"
                                   << "other";
}

void tst_TriggerEdits::comboEdits()
{
    QFETCH(Family, family);
    QFETCH(QString, feature);
    QFETCH(QString, value);
    TestCamera cam;
    TriggerCams::build(cam, family);
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();
    QComboBox* box = combo(tab, feature);
    QVERIFY(box);
    box->setCurrentText(value);
    QCOMPARE(cam.journal(), QStringList{feature + "=" + value});
}

void tst_TriggerEdits::triggerSelectorHandOver_data()
{
    QTest::addColumn<Family>("family");
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QStringList>("writes");

    QTest::newRow("routing, trigger on") << Family::Routing << "On"
                                         << QStringList{"TriggerMode=Off", "TriggerSelector=ExposureActive",
                                                        "TriggerMode=On"};
    QTest::newRow("routing, trigger off") << Family::Routing << "Off" << QStringList{"TriggerSelector=ExposureActive"};
    QTest::newRow("exposure-mode, trigger on")
        << Family::ExposureMode << "On" << QStringList{"TriggerSelector=AcquisitionStart"};
    QTest::newRow("exposure-auto, trigger on")
        << Family::ExposureAuto << "On" << QStringList{"TriggerSelector=AcquisitionEnd"};
}

void tst_TriggerEdits::triggerSelectorHandOver()
{
    QFETCH(Family, family);
    QFETCH(QString, mode);
    QFETCH(QStringList, writes);
    TriggerCams::Options options;
    options.firstTriggerMode = mode;
    TestCamera cam;
    TriggerCams::build(cam, family, options);
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(tab.m_pComboTriggerMode->currentText(), mode);
    cam.clearJournal();
    tab.m_pComboTriggerSelector->setCurrentIndex(tab.m_pComboTriggerSelector->count() - 1);
    QCOMPARE(cam.journal(), writes);
    QCOMPARE(tab.m_pComboTriggerMode->currentText(), mode);
}

void tst_TriggerEdits::routingHandOver_data()
{
    QTest::addColumn<bool>("routed");
    QTest::addColumn<QStringList>("writes");
    QTest::newRow("routed") << true << QStringList{"LineRouting=Off", "LineSelector=Line2", "LineRouting=Trigger"};
    QTest::newRow("not routed") << false << QStringList{"LineSelector=Line2"};
}

void tst_TriggerEdits::routingHandOver()
{
    QFETCH(bool, routed);
    QFETCH(QStringList, writes);
    TestCamera cam;
    TriggerCams::build(cam, Family::Routing);
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(tab.m_pComboInputLineSelector->currentText(), QString("Line0"));
    QVERIFY(!tab.m_pCBLineRouting->isChecked());

    // The check box writes the routing of the line the camera has selected.
    cam.clearJournal();
    tab.m_pCBLineRouting->setChecked(true);
    tab.m_pCBLineRouting->setCheckState(Qt::PartiallyChecked);
    tab.m_pCBLineRouting->setChecked(false);
    QCOMPARE(cam.journal(), (QStringList{"LineRouting=Trigger", "LineRouting=Trigger", "LineRouting=Off"}));

    tab.m_pCBLineRouting->setChecked(routed);
    cam.clearJournal();
    tab.m_pComboInputLineSelector->setCurrentText("Line2");
    QCOMPARE(cam.journal(), writes);
    QCOMPARE(tab.m_pCBLineRouting->isChecked(), routed);
    QCOMPARE(cam.valueAt("LineRouting", "Line0"), QString("Off"));
    QCOMPARE(cam.valueAt("LineRouting", "Line2"), QString(routed ? "Trigger" : "Off"));
}

void tst_TriggerEdits::softwareTrigger_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("Software") << "Software" << true;
    QTest::newRow("SoftwareSignal1") << "SoftwareSignal1" << true;
    QTest::newRow("contains SoftwareSignal") << "Line1SoftwareSignal" << true;
    QTest::newRow("software, other case") << "software" << false;
    QTest::newRow("Line1") << "Line1" << false;
}

void tst_TriggerEdits::softwareTrigger()
{
    QFETCH(QString, source);
    QFETCH(bool, enabled);
    TestCamera cam;
    cam.addEnum("LineSelector", {"Line0"}, "Line0");
    cam.addEnum("TriggerSource", {"Line1", "Software", "SoftwareSignal1", "Line1SoftwareSignal", "software"}, "Line1");
    cam.addCommand("TriggerSoftware");
    TabAccess tab(cam.features(), nullptr);
    QVERIFY(!tab.m_pButtonSWTrigger->isEnabled());
    cam.set("TriggerSource", source);
    tab.refresh({"TriggerSource"});
    QCOMPARE(tab.m_pButtonSWTrigger->isEnabled(), enabled);
    cam.clearJournal();
    tab.m_pButtonSWTrigger->click();
    QCOMPARE(cam.journal(), enabled ? QStringList{"TriggerSoftware()"} : QStringList());
}

void tst_TriggerEdits::setComboBoxValuePicksLastMatch()
{
    TestCamera cam;
    cam.addEnum("LineSelector", {"Line0"}, "Line0");
    TabAccess tab(cam.features(), nullptr);
    QComboBox box;
    box.addItems({"A", "B", "A", "b"});
    QSignalSpy spy(&box, SIGNAL(currentIndexChanged(int)));
    tab.SetComboBoxValue("A", &box);
    QCOMPARE(box.currentIndex(), 2);
    tab.SetComboBoxValue("c", &box);
    tab.SetComboBoxValue("a", &box);
    QCOMPARE(box.currentIndex(), 2);
    QCOMPARE(spy.count(), 1);
}

void tst_TriggerEdits::firstInput_data()
{
    QTest::addColumn<QStringList>("outputs");
    QTest::addColumn<QString>("saved");
    QTest::addColumn<QString>("found");
    QTest::addColumn<QStringList>("writes");

    QTest::newRow("second line") << QStringList{"Line0"} << "Line2"
                                 << "Line1"
                                 << QStringList{"LineSelector=Line0", "LineSelector=Line2", "LineSelector=Line1"};
    QTest::newRow("first line") << QStringList{"Line1"} << "Line2"
                                << "Line0" << QStringList{"LineSelector=Line0"};
    QTest::newRow("no input") << QStringList{"Line0", "Line1", "Line2"} << "Line1"
                              << "" << QStringList{"LineSelector=Line0", "LineSelector=Line1", "LineSelector=Line1",
                                                   "LineSelector=Line1", "LineSelector=Line2", "LineSelector=Line1"};
}

void tst_TriggerEdits::firstInput()
{
    QFETCH(QStringList, outputs);
    QFETCH(QString, saved);
    QFETCH(QString, found);
    QFETCH(QStringList, writes);
    TestCamera cam;
    cam.addEnum("LineSelector", {"Line0", "Line1", "Line2"}, "Line0");
    TestCam::FeatureSetup mode = cam.addEnum("LineMode", {"Input", "Output"}, "Input").selectedBy("LineSelector");
    for (const QString& line : outputs)
        mode.setAt(line, "Output");
    mode.writable(false); // fixed line directions: no selectable outputs to probe at construction
    TabAccess tab(cam.features(), nullptr);
    cam.set("LineSelector", saved);
    cam.clearJournal();
    QCOMPARE(tab.GetFirstInput(), found);
    QCOMPARE(cam.journal(), writes);
    // Left on the input found, else back where it was.
    QCOMPARE(cam.value("LineSelector"), found.isEmpty() ? saved : found);
}

void tst_TriggerEdits::refreshFollowsTheCameraWithoutWriting()
{
    TestCamera cam;
    TriggerCams::build(cam, Family::Routing);
    TabAccess tab(cam.features(), nullptr);
    cam.set("TriggerSource", "InputLines");
    cam.set("TriggerActivation", "HighLevel");
    cam.set("TriggerSelector", "ExposureActive");
    cam.set("TriggerMode", "On");
    cam.set("AcquisitionMode", "MultiFrame");
    cam.set("AcquisitionFrameCount", 12);
    cam.set("ExposureMode", "TriggerWidth");
    cam.set("LineSelector", "Line2");
    cam.set("LineRouting", "Trigger");
    cam.setWritable("LineRouting", false);
    cam.clearJournal();
    tab.refresh({"TriggerSource", "TriggerActivation", "TriggerMode", "TriggerSelector", "AcquisitionMode",
                 "LineSelector", "LineRouting", "ExposureMode"});
    QCOMPARE(cam.journal(), QStringList());
    for (const char* feature :
         {"TriggerSource", "TriggerActivation", "TriggerSelector", "TriggerMode", "AcquisitionMode", "ExposureMode"})
        QCOMPARE(combo(tab, feature)->currentText(), cam.value(feature));
    QVERIFY(!tab.m_pButtonSWTrigger->isEnabled());
    QCOMPARE(tab.m_pSpinAcquisitionFrameCount->value(), 12);
    QCOMPARE(tab.m_pComboExposureMode->currentText(), QString("TriggerWidth"));
    QCOMPARE(tab.m_pComboInputLineSelector->currentText(), QString("Line2"));
    QVERIFY(tab.m_pCBLineRouting->isChecked());
    QVERIFY(!tab.m_pCBLineRouting->isEnabled());
    // A read-only exposure mode shows the hint; a read-only acquisition mode withdraws the presets.
    cam.setWritable("ExposureMode", false);
    cam.setWritable("AcquisitionMode", false);
    tab.refresh({"ExposureMode", "AcquisitionMode"});
    QVERIFY(!tab.ui.l_notAcquireHint->isHidden());
    QVERIFY(!tab.m_pComboExposureMode->isEnabled());
    QVERIFY(!tab.m_pButtonEdge->isEnabled() && !tab.m_pButtonLevel->isEnabled() && !tab.m_pButtonBulk->isEnabled());
    QCOMPARE(cam.journal(), QStringList());
}

QTEST_MAIN(tst_TriggerEdits)
#include "tst_TriggerEdits.moc"
