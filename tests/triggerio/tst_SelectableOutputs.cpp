#include "OutputTestCameras.h"
#include "TabAccess.h"

#include <QPointer>
#include <QtTest>

using TestCam::Op;
using TestCam::TestCamera;

namespace
{

// Line0: mode writable but without "Output"; Line1: output, mode read-only;
// Line2 (output) and Line3 (input): switchable.
TestCam::FeatureSetup switchableCamera(TestCamera& cam)
{
    return OutputCams::lineFamily(cam, {"Input", "Output", "Output", "Input"})
        .writableAt("Line0", true)
        .unavailableAt("Line0", {"Output"})
        .writableAt("Line2", true)
        .writableAt("Line3", true);
}

QString textAt(QGridLayout* grid, int row, int column)
{
    QLayoutItem* item = grid->itemAtPosition(row, column);
    QLabel* label = item ? qobject_cast<QLabel*>(item->widget()) : nullptr;
    return label ? label->text() : QString("<none>");
}

QStringList outputLabels(const TabAccess& tab)
{
    QStringList texts;
    for (QLabel* label : tab.m_OutLineLabels)
        texts << label->text();
    return texts;
}

// Every widget the Output group has made for its line rows.
QList<QPointer<QWidget>> rowWidgets(const TabAccess& tab)
{
    QList<QPointer<QWidget>> widgets;
    for (QLabel* label : tab.m_OutLineLabels)
        widgets << label;
    for (const QSharedPointer<OutputRow>& row : tab.m_OutputRows)
        widgets << row->m_pComboSource.data() << row->m_pCBInvert.data() << row->m_pCBStatus.data()
                << row->m_pComboUserOutSelector.data() << row->m_pCBUserValue.data();
    return widgets;
}

// The group holds the header, and per line a label and five controls, and nothing else.
void verifyOutputGroup(const TabAccess& tab, const QStringList& lines)
{
    QCOMPARE(outputLabels(tab), lines);
    QCOMPARE(tab.m_OutputRows.size(), lines.size());
    QCOMPARE(tab.ui.grid_Output->count(), 5 + 6 * lines.size());
    QCOMPARE(tab.ui.gb_Output->findChildren<QLabel*>().size(), 5 + lines.size());
    QCOMPARE(tab.ui.gb_Output->findChildren<QComboBox*>().size(), 2 * lines.size());
    QCOMPARE(tab.ui.gb_Output->findChildren<QCheckBox*>().size(), 3 * lines.size());
    QCOMPARE(tab.ui.gb_Output->minimumHeight(), 60 + 35 * lines.size());
    for (int i = 0; i < lines.size(); ++i)
        QCOMPARE(tab.ui.grid_Output->itemAtPosition(i + 1, 1)->widget(), tab.m_OutputRows.at(i)->m_pComboSource.data());
}

} // namespace

class tst_SelectableOutputs : public QObject
{
    Q_OBJECT

private slots:
    void selectableLines();
    void discoveryRestoresSelectorAfterEveryLine();
    void headerTexts_data();
    void headerTexts();
    void modeEditWritesEveryLineShowingIt();
    void modeChangeRebuildsOutputGroup();
    void noSelectableLines();
};

void tst_SelectableOutputs::selectableLines()
{
    TestCamera cam;
    TestCam::FeatureSetup mode = switchableCamera(cam);
    cam.set("LineSelector", "Line1");
    TabAccess tab(cam.features(), nullptr);

    QCOMPARE(tab.m_nOptionalOutputs, 2);
    QCOMPARE(tab.m_OptionalOutputs, (QStringList{"Line2", "Line3"}));
    QVERIFY(!tab.ui.gb_SelectOutput->isHidden());
    QCOMPARE(tab.ui.gb_SelectOutput->minimumHeight(), 110);
    QCOMPARE(tab.ui.gb_SelectOutput->maximumHeight(), 110);
    QGridLayout* grid = tab.ui.grid_SelectableOut;
    QCOMPARE(textAt(grid, 1, 0), QString("Line2: "));
    QCOMPARE(textAt(grid, 2, 0), QString("Line3: "));
    QCOMPARE(grid->itemAtPosition(1, 1)->widget(), tab.m_OptionalOutCombos.at(0));
    QCOMPARE(grid->itemAtPosition(2, 1)->alignment(), Qt::Alignment(Qt::AlignLeft));
    QCOMPARE(tab.m_OptionalOutCombos.at(0)->currentText(), QString("Output"));
    QCOMPARE(tab.m_OptionalOutCombos.at(1)->currentText(), QString("Input"));
    QVERIFY(tab.m_OptionalOutCombos.at(1)->isEnabled());

    // Filling the combos leaves the camera as it was.
    QCOMPARE(cam.value("LineSelector"), QString("Line1"));
    QCOMPARE(cam.valueAt("LineMode", "Line2"), QString("Output"));
    QCOMPARE(cam.valueAt("LineMode", "Line3"), QString("Input"));

    // A line that stops being switchable keeps its row, disabled.
    cam.setAt("LineMode", "Line3", "Output");
    mode.writableAt("Line3", false);
    OutputCams::MessageLog log;
    tab.updateOptionalOut();
    QCOMPARE(tab.m_OptionalOutCombos.at(1)->currentText(), QString("Output"));
    QVERIFY(!tab.m_OptionalOutCombos.at(1)->isEnabled());
    QVERIFY(OutputCams::MessageLog::lines.contains("RetValue updateOpt. Out \"Line1\""));
    QCOMPARE(cam.value("LineSelector"), QString("Line1"));
}

void tst_SelectableOutputs::discoveryRestoresSelectorAfterEveryLine()
{
    TestCamera cam;
    switchableCamera(cam);
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();

    QStringList lines;
    QCOMPARE(tab.GetOptionalOutputs(&lines), 2);
    QCOMPARE(lines, (QStringList{"Line2", "Line3"}));
    QCOMPARE(cam.journal(),
             (QStringList{"LineSelector=Line0", "LineSelector=Line0", "LineSelector=Line1", "LineSelector=Line0",
                          "LineSelector=Line2", "LineSelector=Line0", "LineSelector=Line3", "LineSelector=Line0"}));
}

void tst_SelectableOutputs::headerTexts_data()
{
    QTest::addColumn<QStringList>("extra");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("invert");
    QTest::newRow("line names only") << QStringList() << "LineSource:"
                                     << "Invert:";
    QTest::newRow("LineOutSource") << QStringList{"LineOutSource"} << "LineOutSource:"
                                   << "Invert:";
    QTest::newRow("SynOutSource") << QStringList{"SynOutSource"} << "SyncOutSource:"
                                  << "Invert:";
    QTest::newRow("both sources") << QStringList{"SynOutSource", "LineOutSource"} << "LineOutSource:"
                                  << "Invert:";
    QTest::newRow("SyncOutSource is not looked up") << QStringList{"SyncOutSource"} << "LineSource:"
                                                    << "Invert:";
    QTest::newRow("LineOutPolarity") << QStringList{"LineOutPolarity"} << "LineSource:"
                                     << "Polarity:";
    QTest::newRow("SynOutPolarity") << QStringList{"SynOutPolarity"} << "LineSource:"
                                    << "Polarity:";
    QTest::newRow("SyncOutPolarity is not looked up") << QStringList{"SyncOutPolarity"} << "LineSource:"
                                                      << "Invert:";
}

void tst_SelectableOutputs::headerTexts()
{
    QFETCH(QStringList, extra);
    QFETCH(QString, source);
    QFETCH(QString, invert);
    TestCamera cam;
    switchableCamera(cam);
    for (const QString& name : extra)
        cam.addEnum(name, {"Normal"}, "Normal");
    TabAccess tab(cam.features(), nullptr);

    QGridLayout* grid = tab.ui.grid_SelectableOut;
    const QStringList texts{textAt(grid, 0, 0), textAt(grid, 0, 1), textAt(grid, 0, 2),
                            textAt(grid, 0, 3), textAt(grid, 0, 4), textAt(grid, 0, 5)};
    QCOMPARE(texts, (QStringList{"<none>", source, invert, "Status:", "UserOutSel.:", "User Value:"}));

    // Flat and in the background colour: it only lines the columns up with the Output group.
    QLabel* first = qobject_cast<QLabel*>(grid->itemAtPosition(0, 1)->widget());
    const QColor window = first->palette().color(QPalette::Window);
    const QString style =
        QString("QLabel { color : rgb( %1, %2, %3); }").arg(window.red()).arg(window.green()).arg(window.blue());
    for (int column = 1; column <= 5; ++column)
    {
        QLabel* label = qobject_cast<QLabel*>(grid->itemAtPosition(0, column)->widget());
        QCOMPARE(label->maximumHeight(), 2);
        QCOMPARE(label->styleSheet(), style);
    }
}

void tst_SelectableOutputs::modeEditWritesEveryLineShowingIt()
{
    TestCamera cam;
    switchableCamera(cam);
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();

    tab.m_OptionalOutCombos.at(1)->setCurrentText("Output");
    // Line2 shows "Output" too and is written as well.
    QCOMPARE(cam.journal(), (QStringList{"LineSelector=Line2", "LineMode=Output", "LineSelector=Line3",
                                         "LineMode=Output", "LineSelector=Line0"}));
    QCOMPARE(cam.valueAt("LineMode", "Line3"), QString("Output"));
}

void tst_SelectableOutputs::modeChangeRebuildsOutputGroup()
{
    TestCamera cam;
    switchableCamera(cam);
    cam.setAt("LineSource", "Line3", "UserOutput2");
    TabAccess tab(cam.features(), nullptr);
    tab.show();
    verifyOutputGroup(tab, {"Line1: ", "Line2: "});

    // The user switches Line3 to output; the camera reports the change.
    QList<QPointer<QWidget>> old = rowWidgets(tab);
    tab.m_OptionalOutCombos.at(1)->setCurrentText("Output");
    tab.refresh({"LineMode"});
    verifyOutputGroup(tab, {"Line1: ", "Line2: ", "Line3: "});
    for (const QPointer<QWidget>& widget : old)
        QVERIFY(widget.isNull());
    QCOMPARE(tab.m_OutputRows.at(2)->m_pComboSource->currentText(), QString("UserOutput2"));
    QCOMPARE(tab.m_OutputRows.at(2)->m_pComboUserOutSelector->currentText(), QString("UserOutput2"));
    QCOMPARE(tab.m_OutputRows.at(0)->m_pComboSource->maximumWidth(), 16777215);
    QCOMPARE(tab.m_OptionalOutCombos.at(1)->currentText(), QString("Output"));
    QCOMPARE(cam.value("LineSelector"), QString("Line0"));
    QCOMPARE(cam.value("UserOutputSelector"), QString("UserOutput0"));

    // The camera itself switches Line2 back to input.
    old = rowWidgets(tab);
    cam.setAt("LineMode", "Line2", "Input");
    tab.refresh({"LineMode"});
    verifyOutputGroup(tab, {"Line1: ", "Line3: "});
    for (const QPointer<QWidget>& widget : old)
        QVERIFY(widget.isNull());
    QCOMPARE(tab.m_OptionalOutCombos.at(0)->currentText(), QString("Input"));
    QCOMPARE(cam.valueAt("LineMode", "Line2"), QString("Input"));

    // New rows are live: an edit in a rebuilt row reaches the camera.
    cam.clearJournal();
    tab.m_OutputRows.at(1)->m_pCBInvert->setChecked(true);
    QCOMPARE(cam.valueAt("LineInverter", "Line3"), QString("true"));
    QTest::qWait(20);
    QVERIFY(tab.m_OutputRows.at(1)->m_pComboSource->isVisible());
}

void tst_SelectableOutputs::noSelectableLines()
{
    TestCamera cam;
    OutputCams::lineFamily(cam, {"Input", "Output"});
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(tab.m_nOptionalOutputs, 0);
    QVERIFY(tab.ui.gb_SelectOutput->isHidden());

    cam.resetCalls();
    tab.updateOptionalOut();
    QCOMPARE(cam.totalCalls(), 0);

    // Without selectable outputs a mode change rebuilds nothing.
    QPointer<QWidget> combo = tab.m_OutputRows.at(0)->m_pComboSource.data();
    cam.setAt("LineMode", "Line0", "Output");
    tab.refresh({"LineMode"});
    QVERIFY(!combo.isNull());
    QCOMPARE(tab.m_OutputRows.size(), 1);
}

QTEST_MAIN(tst_SelectableOutputs)
#include "tst_SelectableOutputs.moc"
