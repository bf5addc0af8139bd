#include "TabAccess.h"
#include "TriggerTestCameras.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

using TestCam::TestCamera;
using TriggerCams::Family;

// The trigger input section as built and refreshed: controls per camera family,
// their places and sizes, the first fill, and the refreshes of the line
// selector, trigger selector and frame count.
class tst_TriggerInput : public QObject
{
    Q_OBJECT

private slots:
    void controlsPerFamily_data();
    void controlsPerFamily();
    void quickButtons();
    void routingStartsOnLine0_data();
    void routingStartsOnLine0();
    void inputLineSelectorSkipsOutputs_data();
    void inputLineSelectorSkipsOutputs();
    void triggerSelectorRefresh_data();
    void triggerSelectorRefresh();
    void frameCountFollowsWritability();
};

namespace
{

// Row and column of a widget in a grid, or (-1, -1).
QPoint cell(QGridLayout* grid, QWidget* widget)
{
    const int index = grid->indexOf(widget);
    if (index < 0)
        return QPoint(-1, -1);
    int row, column, rowSpan, columnSpan;
    grid->getItemPosition(index, &row, &column, &rowSpan, &columnSpan);
    return QPoint(column, row);
}

} // namespace

void tst_TriggerInput::controlsPerFamily_data()
{
    QTest::addColumn<Family>("family");
    QTest::addColumn<bool>("routing");
    QTest::addColumn<QString>("exposureLabel");
    QTest::addColumn<int>("triggerHeight");
    QTest::addColumn<int>("swTriggerRow");
    QTest::addColumn<int>("inputHeight"); // 470 when "TriggerSource" offers "InputLines"
    QTest::addColumn<bool>("swTriggerEnabled");

    QTest::newRow("routing") << Family::Routing << true << "Exp. Mode:" << 220 << 6 << 470 << true;
    // Has "ExposureMode" with "Timed" too, but exposure auto wins.
    QTest::newRow("exposure-auto") << Family::ExposureAuto << false << "Exp. Auto:" << 170 << 4 << 425 << false;
    QTest::newRow("exposure-mode") << Family::ExposureMode << false << "Exp. Mode:" << 170 << 4 << 425 << true;
    QTest::newRow("neither") << Family::Neither << false << "" << 170 << 4 << 470 << true;
}

void tst_TriggerInput::controlsPerFamily()
{
    QFETCH(Family, family);
    QFETCH(bool, routing);
    QFETCH(QString, exposureLabel);
    QFETCH(int, triggerHeight);
    QFETCH(int, swTriggerRow);
    QFETCH(int, inputHeight);
    QFETCH(bool, swTriggerEnabled);

    TestCamera cam;
    TriggerCams::build(cam, family);
    TabAccess tab(cam.features(), nullptr);

    for (QObject* member : QList<QObject*>{tab.m_pComboInputLineSelector, tab.m_pCBLineRouting,
                                           tab.m_pLabelInputLineSelector, tab.m_pLabelLineRouting})
        QCOMPARE(member != nullptr, routing);
    QCOMPARE(tab.m_pComboExposureAuto && tab.m_pLabelExposureAuto, exposureLabel == "Exp. Auto:");
    QCOMPARE(tab.m_pComboExposureMode && tab.m_pLabelExposureMode, exposureLabel == "Exp. Mode:");
    QCOMPARE(tab.m_pComboExposureAuto || tab.m_pComboExposureMode, !exposureLabel.isEmpty());

    // Fixed heights: the input group, and the trigger group with or without the line row.
    QCOMPARE(tab.ui.gb_TriggerInput->minimumHeight(), inputHeight);
    QCOMPARE(tab.ui.gb_TriggerInput->maximumHeight(), inputHeight);
    QCOMPARE(tab.m_pGroupTrigger->minimumHeight(), triggerHeight);
    QCOMPARE(tab.m_pGroupTrigger->maximumHeight(), triggerHeight);
    QCOMPARE(tab.m_pGroupAcquisition->maximumHeight(), 125);
    QCOMPARE(tab.m_pGroupTrigger->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);

    QGridLayout* trigger = tab.m_pGridTrigger;
    QCOMPARE(tab.m_pGroupTrigger->layout(), trigger);
    const QList<QPair<QWidget*, QPoint>> cells{{tab.m_pLabelTriggerSource, {1, 0}},
                                               {tab.m_pComboTriggerSource, {3, 0}},
                                               {tab.m_pLabelTriggerActivation, {5, 0}},
                                               {tab.m_pComboTriggerActivation, {7, 0}},
                                               {tab.m_pComboTriggerSelector, {3, 2}},
                                               {tab.m_pComboTriggerMode, {7, 2}},
                                               {tab.m_pButtonSWTrigger, {3, swTriggerRow}},
                                               {tab.m_pComboInputLineSelector, {3, 4}},
                                               {tab.m_pCBLineRouting, {7, 4}}};
    for (const auto& c : cells)
    {
        if (c.first)
            QCOMPARE(cell(trigger, c.first), c.second);
    }
    QCOMPARE(trigger->itemAt(trigger->indexOf(tab.m_pButtonSWTrigger))->alignment(), Qt::AlignCenter);
    QCOMPARE(trigger->itemAt(trigger->indexOf(tab.m_pLabelTriggerSource))->alignment(), Qt::AlignRight);
    auto* acquisition = qobject_cast<QGridLayout*>(tab.m_pGroupAcquisition->layout());
    QVERIFY(acquisition);
    QCOMPARE(cell(acquisition, tab.m_pSpinAcquisitionFrameCount), QPoint(7, 0));
    QLayoutItem* exposure = acquisition->itemAtPosition(1, 1);
    QCOMPARE(exposure ? qobject_cast<QLabel*>(exposure->widget())->text() : QString(), exposureLabel);
    QCOMPARE(acquisition->itemAtPosition(1, 3) != nullptr, !exposureLabel.isEmpty());

    // First fill from the camera; no trigger, acquisition or exposure feature written.
    QCOMPARE(tab.m_pComboTriggerSource->currentText(), cam.value("TriggerSource"));
    QCOMPARE(tab.m_pComboTriggerActivation->currentText(), QString("RisingEdge"));
    QCOMPARE(tab.m_pComboTriggerMode->currentText(), QString("Off"));
    QCOMPARE(tab.m_pComboTriggerSelector->currentText(), cam.value("TriggerSelector"));
    QCOMPARE(tab.m_pComboAcquisitionMode->currentText(), QString("SingleFrame"));
    QCOMPARE(tab.m_pSpinAcquisitionFrameCount->maximum(), 255);
    QCOMPARE(tab.m_pSpinAcquisitionFrameCount->value(), 1);
    QCOMPARE(tab.m_pButtonSWTrigger->isEnabled(), swTriggerEnabled);
    const QStringList writes = cam.journal().filter(QRegularExpression("^(Trigger|Acquisition|Exposure)"));
    QCOMPARE(writes.join(" | "), QString());
}

void tst_TriggerInput::quickButtons()
{
    TestCamera cam;
    TriggerCams::build(cam, Family::ExposureAuto);
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(tab.m_pGroupQuickSettings->title(), QString("Quick Settings: Trigger Mode"));
    QCOMPARE(tab.m_pGroupQuickSettings->maximumHeight(), 75);
    auto* grid = qobject_cast<QGridLayout*>(tab.m_pGroupQuickSettings->layout());
    const QList<QPushButton*> buttons{tab.m_pButtonEdge, tab.m_pButtonLevel, tab.m_pButtonBulk};
    for (int i = 0; i < 3; ++i)
    {
        QCOMPARE(buttons[i]->text(), (QStringList{"Edge", "Level", "Bulk"}[i]));
        QCOMPARE(buttons[i]->minimumHeight(), 28);
        QCOMPARE(buttons[i]->maximumHeight(), 28);
        QCOMPARE(buttons[i]->iconSize(), QSize(56, 42));
        QCOMPARE(cell(grid, buttons[i]), QPoint(4 * i, 0));
    }
    QCOMPARE(tab.m_pButtonSWTrigger->maximumHeight(), 25);
    QCOMPARE(tab.m_pComboTriggerSource->minimumSize(), QSize(90, 25));
}

void tst_TriggerInput::routingStartsOnLine0_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("expected");
    QTest::newRow("Line0 offered") << QStringList{"Line0", "Line1", "Line2"} << "Line0";
    QTest::newRow("Line1 but no Line0") << QStringList{"Line2", "Line1"} << "Line1";
    QTest::newRow("neither") << QStringList{"Line3", "Line2"} << "Line2";
}

void tst_TriggerInput::routingStartsOnLine0()
{
    QFETCH(QStringList, lines);
    QFETCH(QString, expected);
    TestCamera cam;
    cam.addEnum("LineSelector", lines, lines.last());
    cam.addEnum("LineRouting", {"Off", "Trigger"}, "Off").selectedBy("LineSelector");
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(cam.value("LineSelector"), expected);
    QCOMPARE(tab.m_pComboInputLineSelector->currentText(), expected);
}

void tst_TriggerInput::inputLineSelectorSkipsOutputs_data()
{
    QTest::addColumn<QString>("current");
    QTest::addColumn<QString>("shown");
    QTest::newRow("input Line2") << "Line2"
                                 << "Line2";
    QTest::newRow("input Line0") << "Line0"
                                 << "Line0";
    // An output line in the camera: the removal leaves its neighbour current.
    QTest::newRow("output Line3") << "Line3"
                                  << "Line2";
}

void tst_TriggerInput::inputLineSelectorSkipsOutputs()
{
    QFETCH(QString, current);
    QFETCH(QString, shown);
    TestCamera cam;
    TriggerCams::build(cam, Family::Routing); // Line1 and Line3 are outputs
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(tab.m_OutsIndex, (QList<int>{1, 3}));
    QCOMPARE(tab.m_pComboInputLineSelector->count(), 2);
    cam.set("LineSelector", current);
    cam.clearJournal();
    tab.refresh({"LineSelector"});
    QStringList items;
    for (int i = 0; i < tab.m_pComboInputLineSelector->count(); ++i)
        items << tab.m_pComboInputLineSelector->itemText(i);
    QCOMPARE(items, (QStringList{"Line0", "Line2"}));
    QCOMPARE(tab.m_pComboInputLineSelector->currentText(), shown);
    QCOMPARE(cam.journal(), QStringList());
}

void tst_TriggerInput::triggerSelectorRefresh_data()
{
    QTest::addColumn<QStringList>("unavailable");
    QTest::addColumn<QStringList>("writes");
    QTest::newRow("one entry left, camera elsewhere")
        << QStringList{"AcquisitionStart", "AcquisitionEnd"} << QStringList{"TriggerSelector=FrameStart"};
    QTest::newRow("two entries left, camera elsewhere") << QStringList{"AcquisitionEnd"} << QStringList();
    QTest::newRow("camera on an available entry") << QStringList{"FrameStart"} << QStringList();
}

void tst_TriggerInput::triggerSelectorRefresh()
{
    QFETCH(QStringList, unavailable);
    QFETCH(QStringList, writes);
    TestCamera cam;
    cam.addEnum("LineSelector", {"Line0"}, "Line0");
    TestCam::FeatureSetup selector =
        cam.addEnum("TriggerSelector", {"FrameStart", "AcquisitionStart", "AcquisitionEnd"}, "AcquisitionEnd");
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(tab.m_pComboTriggerSelector->count(), 3);
    // The camera narrows the list; the next refresh follows.
    selector.unavailable(unavailable);
    cam.clearJournal();
    tab.refresh({"TriggerSelector"});
    QCOMPARE(cam.journal(), writes);
    QCOMPARE(tab.m_pComboTriggerSelector->count(), 3 - unavailable.size());
}

void tst_TriggerInput::frameCountFollowsWritability()
{
    TriggerCams::Options options;
    options.frameCountMaximum = 5;
    TestCamera cam;
    TriggerCams::build(cam, Family::ExposureMode, options);
    TabAccess tab(cam.features(), nullptr);
    QSpinBox* spin = tab.m_pSpinAcquisitionFrameCount;
    QVERIFY(!spin->isHidden() && !tab.m_pLabelFrameCount->isHidden());
    QCOMPARE(spin->singleStep(), 1);
    cam.clearJournal();
    spin->setValue(10); // clamped into 1..5, then written
    QCOMPARE(spin->value(), 5);
    QCOMPARE(cam.journal(), QStringList{"AcquisitionFrameCount=5"});

    cam.setWritable("AcquisitionFrameCount", false);
    cam.set("AcquisitionFrameCount", 2);
    // The frame count alone is not refreshed; it follows the acquisition mode.
    tab.refresh({"AcquisitionFrameCount"});
    QVERIFY(!spin->isHidden());
    QCOMPARE(spin->value(), 5);
    tab.refresh({"AcquisitionMode"});
    QVERIFY(spin->isHidden() && tab.m_pLabelFrameCount->isHidden());
    QCOMPARE(spin->value(), 2);
    // Hidden and read-only: the spin box takes a value, the camera gets nothing.
    spin->setValue(3);
    QCOMPARE(cam.journal(), QStringList{"AcquisitionFrameCount=5"});

    cam.setWritable("AcquisitionFrameCount", true);
    tab.refresh({"AcquisitionMode"});
    QVERIFY(!spin->isHidden() && !tab.m_pLabelFrameCount->isHidden());
}

QTEST_MAIN(tst_TriggerInput)
#include "tst_TriggerInput.moc"
