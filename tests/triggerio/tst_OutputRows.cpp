#include "OutputTestCameras.h"
#include "TabAccess.h"

#include <QLineEdit>
#include <QtTest>

using TestCam::Op;
using TestCam::TestCamera;

namespace
{

QWidget* widgetAt(QGridLayout* grid, int row, int column)
{
    QLayoutItem* item = grid->itemAtPosition(row, column);
    return item ? item->widget() : nullptr;
}

QString textAt(QGridLayout* grid, int row, int column)
{
    QLabel* label = qobject_cast<QLabel*>(widgetAt(grid, row, column));
    return label ? label->text() : QString("<none>");
}

Qt::Alignment alignmentAt(QGridLayout* grid, int row, int column)
{
    return grid->itemAtPosition(row, column)->alignment();
}

QStringList lineLabels(const TabAccess& tab)
{
    QStringList texts;
    for (QLabel* label : tab.m_OutLineLabels)
        texts << label->text();
    return texts;
}

} // namespace

class tst_OutputRows : public QObject
{
    Q_OBJECT

private slots:
    void lineDiscovery_data();
    void lineDiscovery();
    void discoveryRestoresSelectorAfterEveryLine();
    void syncOutTakesEverySelectorEntry_data();
    void syncOutTakesEverySelectorEntry();
    void groupHeight_data();
    void groupHeight();
    void headerTexts_data();
    void headerTexts();
    void rowLayout();
    void syncLevelsRow_data();
    void syncLevelsRow();
    void userValuesBeyondFiveDoNothing();
    void outputPositionsInInputSelector();
};

void tst_OutputRows::lineDiscovery_data()
{
    QTest::addColumn<QStringList>("modes");
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QStringList>("labels");
    QTest::newRow("input and output") << QStringList{"Input", "Output"} << "Line0" << QStringList{"Line1: "};
    QTest::newRow("two of three") << QStringList{"Output", "Input", "Output"} << "Line1"
                                  << QStringList{"Line0: ", "Line2: "};
    QTest::newRow("no output") << QStringList{"Input", "Input"} << "Line1" << QStringList();
}

void tst_OutputRows::lineDiscovery()
{
    QFETCH(QStringList, modes);
    QFETCH(QString, selected);
    QFETCH(QStringList, labels);
    TestCamera cam;
    OutputCams::lineFamily(cam, modes);
    cam.set("LineSelector", selected);
    TabAccess tab(cam.features(), nullptr);

    QCOMPARE(lineLabels(tab), labels);
    QCOMPARE(tab.m_OutputRows.size(), labels.size());
    QCOMPARE(tab.m_Outputs.size(), labels.size());
    for (int i = 0; i < labels.size(); ++i)
        QCOMPARE(textAt(tab.ui.grid_Output, i + 1, 0), labels.at(i));
    QCOMPARE(cam.value("LineSelector"), selected);
    QCOMPARE(cam.value("UserOutputSelector"), QString("UserOutput0"));
}

void tst_OutputRows::discoveryRestoresSelectorAfterEveryLine()
{
    TestCamera cam;
    OutputCams::lineFamily(cam, {"Input", "Output", "Output"});
    cam.set("LineSelector", "Line2");
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();

    QStringList outputs{"kept"};
    QCOMPARE(tab.GetOutputs(&outputs), 2);
    QCOMPARE(outputs, (QStringList{"kept", "Line1", "Line2"}));
    QCOMPARE(cam.journal(), (QStringList{"LineSelector=Line0", "LineSelector=Line2", "LineSelector=Line1",
                                         "LineSelector=Line2", "LineSelector=Line2", "LineSelector=Line2"}));
}

void tst_OutputRows::syncOutTakesEverySelectorEntry_data()
{
    QTest::addColumn<bool>("lineOutNames");
    QTest::addColumn<bool>("emptyLineSelector");
    QTest::newRow("SyncOutSelector") << false << false;
    QTest::newRow("LineOutSelector") << true << false;
    QTest::newRow("LineSelector without entries") << false << true;
}

void tst_OutputRows::syncOutTakesEverySelectorEntry()
{
    QFETCH(bool, lineOutNames);
    QFETCH(bool, emptyLineSelector);
    TestCamera cam;
    OutputCams::syncOutFamily(cam, 3, lineOutNames);
    cam.addEnum("LineMode", {"Input", "Output"}, "Output");
    if (emptyLineSelector)
        cam.addEnum("LineSelector", {"Line0"}, "Line0").unavailable({"Line0"});
    cam.set(lineOutNames ? "LineOutSelector" : "SyncOutSelector", "SyncOut2");
    TabAccess tab(cam.features(), nullptr);

    QCOMPARE(lineLabels(tab), (QStringList{"SyncOut1: ", "SyncOut2: ", "SyncOut3: "}));
    QCOMPARE(cam.calls("LineMode", Op::GetString), 0);
    if (!emptyLineSelector)
        QCOMPARE(cam.value(lineOutNames ? "LineOutSelector" : "SyncOutSelector"), QString("SyncOut2"));
}

void tst_OutputRows::groupHeight_data()
{
    QTest::addColumn<int>("family"); // 0 line family, 1 sync-out family
    QTest::addColumn<int>("outputs");
    QTest::addColumn<int>("height");
    QTest::newRow("three sync outputs") << 1 << 3 << 190;
    QTest::newRow("three lines") << 0 << 3 << 165;
    QTest::newRow("no sync output") << 1 << 0 << 85;
    QTest::newRow("no output line") << 0 << 0 << 60;
}

void tst_OutputRows::groupHeight()
{
    QFETCH(int, family);
    QFETCH(int, outputs);
    QFETCH(int, height);
    TestCamera cam;
    if (family == 1)
        OutputCams::syncOutFamily(cam, outputs);
    else
        OutputCams::lineFamily(cam,
                               outputs ? QStringList{"Output", "Output", "Input", "Output"} : QStringList{"Input"});
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(tab.m_OutputRows.size(), outputs);
    QCOMPARE(tab.ui.gb_Output->minimumHeight(), height);
    QCOMPARE(tab.ui.gb_Output->maximumHeight(), height);
}

void tst_OutputRows::headerTexts_data()
{
    QTest::addColumn<int>("family"); // 0 line, 1 sync-out, 2 line-out names
    QTest::addColumn<QStringList>("extra");
    QTest::addColumn<QString>("inverterDisplayName");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("invert");
    QTest::newRow("line family") << 0 << QStringList() << "Line Inverter"
                                 << "LineSource:"
                                 << "Invert:";
    QTest::newRow("inverter shown as polarity") << 0 << QStringList() << "Output Polarity"
                                                << "LineSource:"
                                                << "Polarity:";
    QTest::newRow("LineOutSource before LineSource") << 0 << QStringList{"LineOutSource"} << ""
                                                     << "LineOutSource:"
                                                     << "Invert:";
    QTest::newRow("sync-out family") << 1 << QStringList() << ""
                                     << "SyncOutSource:"
                                     << "Polarity:";
    QTest::newRow("line-out names") << 2 << QStringList() << ""
                                    << "LineOutSource:"
                                    << "Polarity:";
}

void tst_OutputRows::headerTexts()
{
    QFETCH(int, family);
    QFETCH(QStringList, extra);
    QFETCH(QString, inverterDisplayName);
    QFETCH(QString, source);
    QFETCH(QString, invert);
    TestCamera cam;
    if (family == 0)
        OutputCams::lineFamily(cam, {"Output"}, true, inverterDisplayName);
    else
        OutputCams::syncOutFamily(cam, 1, family == 2);
    for (const QString& name : extra)
        cam.addEnum(name, {"Off"}, "Off");
    TabAccess tab(cam.features(), nullptr);

    QGridLayout* grid = tab.ui.grid_Output;
    QCOMPARE(textAt(grid, 0, 0), QString("<none>"));
    QCOMPARE(textAt(grid, 0, 1), source);
    QCOMPARE(textAt(grid, 0, 2), invert);
    QCOMPARE(textAt(grid, 0, 3), QString("Status:"));
    QCOMPARE(textAt(grid, 0, 4), family == 0 ? QString("UserOutSel.:") : QString("<none>"));
    QCOMPARE(textAt(grid, 0, 5), family == 0 ? QString("User Value:") : QString("<none>"));
    QCOMPARE(alignmentAt(grid, 0, 1), Qt::Alignment(Qt::AlignLeft));
    QCOMPARE(alignmentAt(grid, 0, 2), Qt::Alignment(Qt::AlignCenter));
}

void tst_OutputRows::rowLayout()
{
    TestCamera cam;
    OutputCams::lineFamily(cam, {"Input", "Output", "Output"});
    TabAccess tab(cam.features(), nullptr);
    QGridLayout* grid = tab.ui.grid_Output;
    QCOMPARE(tab.m_OutputRows.size(), 2);

    const OutputRow& row = *tab.m_OutputRows.at(1);
    QCOMPARE(widgetAt(grid, 2, 0), tab.m_OutLineLabels.at(1));
    QCOMPARE(widgetAt(grid, 2, 1), row.m_pComboSource.data());
    QCOMPARE(widgetAt(grid, 2, 2), row.m_pCBInvert.data());
    QCOMPARE(widgetAt(grid, 2, 3), row.m_pCBStatus.data());
    QCOMPARE(widgetAt(grid, 2, 4), row.m_pComboUserOutSelector.data());
    QCOMPARE(widgetAt(grid, 2, 5), row.m_pCBUserValue.data());
    const Qt::Alignment expected[] = {Qt::AlignLeft,   Qt::Alignment(), Qt::AlignCenter,
                                      Qt::AlignCenter, Qt::Alignment(), Qt::AlignCenter};
    for (int column = 0; column < 6; ++column)
        QCOMPARE(alignmentAt(grid, 2, column), expected[column]);

    QCOMPARE(row.m_pComboSource->maximumWidth(), 95);
    QCOMPARE(row.m_pComboSource->sizeAdjustPolicy(), QComboBox::AdjustToContentsOnFirstShow);
    QCOMPARE(row.m_pComboUserOutSelector->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(row.m_pComboSource->parentWidget(), tab.ui.gb_Output);
    const int stretch[] = {1, 3, 1, 1, 1, 1};
    for (int column = 0; column < 6; ++column)
        QCOMPARE(grid->columnStretch(column), stretch[column]);
    QVERIFY(!tab.m_pLabelSyncLevels);
    QVERIFY(!tab.m_pEditSyncLevels);
}

void tst_OutputRows::syncLevelsRow_data()
{
    QTest::addColumn<bool>("lineOutNames");
    QTest::addColumn<QString>("label");
    QTest::newRow("SyncOutLevels") << false << "SyncLevels:";
    QTest::newRow("LineOutLevels, bare name") << true << "LineOutLevels";
}

void tst_OutputRows::syncLevelsRow()
{
    QFETCH(bool, lineOutNames);
    QFETCH(QString, label);
    TestCamera cam;
    OutputCams::syncOutFamily(cam, 2, lineOutNames);
    cam.set(lineOutNames ? "LineOutLevels" : "SyncOutLevels", 2);
    TabAccess tab(cam.features(), nullptr);
    QGridLayout* grid = tab.ui.grid_Output;

    QCOMPARE(textAt(grid, 3, 0), label);
    QCOMPARE(widgetAt(grid, 3, 0), tab.m_pLabelSyncLevels);
    QCOMPARE(widgetAt(grid, 3, 3), tab.m_pEditSyncLevels);
    QCOMPARE(alignmentAt(grid, 3, 3), Qt::Alignment(Qt::AlignCenter));
    QVERIFY(tab.m_pEditSyncLevels->isReadOnly());
    QCOMPARE(tab.m_pEditSyncLevels->maximumWidth(), 65);
    QCOMPARE(tab.m_pEditSyncLevels->styleSheet(), QString("QLineEdit {background-color: gray;}"));
    QCOMPARE(tab.m_pEditSyncLevels->alignment(), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(tab.m_pEditSyncLevels->text(), QString("2"));
}

void tst_OutputRows::userValuesBeyondFiveDoNothing()
{
    TestCamera cam;
    OutputCams::lineFamily(cam, QVector<QString>(7, "Output").toList());
    for (int i = 0; i < 7; ++i)
        cam.setAt("LineSource", QString("Line%1").arg(i), "UserOutput2");
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(tab.m_OutputRows.size(), 7);
    cam.clearJournal();

    tab.m_OutputRows.at(5)->m_pCBUserValue->setChecked(true);
    tab.m_OutputRows.at(6)->m_pCBUserValue->setChecked(true);
    QVERIFY(cam.journal().isEmpty());

    tab.m_OutputRows.at(4)->m_pCBUserValue->setChecked(true);
    QCOMPARE(cam.journal().mid(0, 3),
             (QStringList{"UserOutputSelector=UserOutput2", "UserOutputValue=true", "UserOutputSelector=UserOutput0"}));
    QCOMPARE(cam.valueAt("UserOutputValue", "UserOutput2"), QString("true"));
}

void tst_OutputRows::outputPositionsInInputSelector()
{
    TestCamera cam;
    OutputCams::lineFamily(cam, {"Input", "Output", "Input", "Output"});
    TabAccess tab(cam.features(), nullptr);
    if (!tab.m_pComboInputLineSelector)
        tab.m_pComboInputLineSelector = new QComboBox; // deleted by the tab
    tab.m_pComboInputLineSelector->clear();
    tab.m_pComboInputLineSelector->addItems({"Line0", "Line1", "Line2", "Line3"});
    tab.m_pComboInputLineSelector->setCurrentText("Line2");
    cam.clearJournal();

    QCOMPARE(tab.DetermineOutsIndex(), (QList<int>{1, 3}));
    QCOMPARE(tab.m_pComboInputLineSelector->currentText(), QString("Line2"));
    QCOMPARE(cam.journal(), (QStringList{"LineSelector=Line0", "LineSelector=Line1", "LineSelector=Line2",
                                         "LineSelector=Line3", "LineSelector=Line0"}));
}

QTEST_MAIN(tst_OutputRows)
#include "tst_OutputRows.moc"
