#include "OutputTestCameras.h"
#include "TabAccess.h"

#include <QLineEdit>
#include <QtTest>

using TestCam::TestCamera;

namespace
{

enum Family
{
    LineFamily,
    SyncOutFamily,
    LineOutFamily
};

// Line family: Line0 input, Line1 to Line3 outputs; sync-out families: three outputs.
void build(TestCamera& cam, int family)
{
    if (family == LineFamily)
        OutputCams::lineFamily(cam, {"Input", "Output", "Output", "Output"});
    else
        OutputCams::syncOutFamily(cam, 3, family == LineOutFamily);
}

QString prefix(int family)
{
    return family == LineOutFamily ? "LineOut" : "SyncOut";
}

QList<bool> checked(const TabAccess& tab, QSharedPointer<QCheckBox> OutputRow::*box)
{
    QList<bool> states;
    for (const QSharedPointer<OutputRow>& row : tab.m_OutputRows)
        states << ((*row).*box)->isChecked();
    return states;
}

QList<bool> enabled(const TabAccess& tab, QSharedPointer<QCheckBox> OutputRow::*box)
{
    QList<bool> states;
    for (const QSharedPointer<OutputRow>& row : tab.m_OutputRows)
        states << ((*row).*box)->isEnabled();
    return states;
}

} // namespace

class tst_OutputEdits : public QObject
{
    Q_OBJECT

private slots:
    void refreshKeepsSelectors_data();
    void refreshKeepsSelectors();
    void rowsShowTheLines();
    void invertRefreshRestores_data();
    void invertRefreshRestores();
    void sourceEditLineFamily();
    void sameSourceWritesEveryRow_data();
    void sameSourceWritesEveryRow();
    void invertEditWritesEveryRow_data();
    void invertEditWritesEveryRow();
    void statusEditLineFamily();
    void statusEditBuildsMask();
    void maskBitWrapsAt32();
    void syncLevelsRefresh_data();
    void syncLevelsRefresh();
    void sharedUserOutputWrittenTogether();
};

void tst_OutputEdits::refreshKeepsSelectors_data()
{
    QTest::addColumn<int>("family");
    QTest::addColumn<QStringList>("changed");
    const QStringList all{"LineSource",      "SyncOutSource", "LineOutSource", "LineInverter",    "SyncOutPolarity",
                          "LineOutPolarity", "LineStatus",    "SyncOutLevels", "UserOutSelector", "UserOutputValue"};
    for (int family : {LineFamily, SyncOutFamily, LineOutFamily})
    {
        const QString name = family == LineFamily ? "line " : prefix(family) + " ";
        for (const QString& changed : all)
            QTest::newRow(qPrintable(name + changed)) << family << QStringList{changed};
        QTest::newRow(qPrintable(name + "all")) << family << all;
    }
}

void tst_OutputEdits::refreshKeepsSelectors()
{
    QFETCH(int, family);
    QFETCH(QStringList, changed);
    TestCamera cam;
    build(cam, family);
    const QString selector = family == LineFamily ? "LineSelector" : prefix(family) + "Selector";
    const QString start = family == LineFamily ? "Line2" : "SyncOut3";
    cam.set(selector, start);
    if (family == LineFamily)
    {
        cam.setAt("LineSource", "Line2", "UserOutput1");
        cam.set("UserOutputSelector", "UserOutput2");
    }
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();

    tab.refresh(changed);
    QCOMPARE(cam.value(selector), start);
    if (family == LineFamily)
        QCOMPARE(cam.value("UserOutputSelector"), QString("UserOutput2"));
    // A refresh moves selectors only.
    for (const QString& entry : cam.journal())
        QVERIFY2(entry.startsWith(selector + "=") || entry.startsWith("UserOutputSelector="), qPrintable(entry));
}

void tst_OutputEdits::rowsShowTheLines()
{
    TestCamera cam;
    build(cam, LineFamily);
    cam.setAt("LineSource", "Line1", "Direct");
    cam.setAt("LineStatus", "Line1", true);
    cam.setAt("LineSource", "Line2", "UserOutput1");
    cam.setAt("LineInverter", "Line2", true);
    cam.setAt("LineSource", "Line3", "ExposureActive");
    cam.setAt("UserOutputValue", "UserOutput1", true);
    TabAccess tab(cam.features(), nullptr);

    QStringList sources, userOuts;
    for (const QSharedPointer<OutputRow>& row : tab.m_OutputRows)
    {
        sources << row->m_pComboSource->currentText();
        userOuts << row->m_pComboUserOutSelector->currentText();
        QVERIFY(!row->m_pComboUserOutSelector->isEnabled());
    }
    QCOMPARE(sources, (QStringList{"Direct", "UserOutput1", "ExposureActive"}));
    QCOMPARE(userOuts, (QStringList{"", "UserOutput1", ""}));
    QCOMPARE(tab.m_OutputRows.at(0)->m_pComboSource->itemData(1, Qt::ToolTipRole).toString(), QString("Direct"));
    QCOMPARE(checked(tab, &OutputRow::m_pCBInvert), (QList<bool>{false, true, false}));
    QCOMPARE(checked(tab, &OutputRow::m_pCBStatus), (QList<bool>{true, false, false}));
    QCOMPARE(enabled(tab, &OutputRow::m_pCBStatus), (QList<bool>{true, false, false}));
    QCOMPARE(checked(tab, &OutputRow::m_pCBUserValue), (QList<bool>{false, true, false}));
    QCOMPARE(enabled(tab, &OutputRow::m_pCBUserValue), (QList<bool>{false, true, false}));

    // Camera-side changes reach the rows through the refresh.
    cam.setWritable("LineStatus", false);
    cam.setAt("LineInverter", "Line3", true);
    cam.setAt("LineStatus", "Line1", false);
    tab.refresh({"LineStatus"});
    QCOMPARE(enabled(tab, &OutputRow::m_pCBStatus), (QList<bool>{false, false, false}));
    QCOMPARE(checked(tab, &OutputRow::m_pCBStatus), (QList<bool>{false, false, false}));
    QCOMPARE(checked(tab, &OutputRow::m_pCBInvert), (QList<bool>{false, true, true}));
}

void tst_OutputEdits::invertRefreshRestores_data()
{
    QTest::addColumn<int>("family");
    QTest::addColumn<QStringList>("journal");
    QTest::newRow("line family, once at the end")
        << int(LineFamily)
        << QStringList{"LineSelector=Line1", "LineSelector=Line2", "LineSelector=Line3", "LineSelector=Line0"};
    QTest::newRow("sync-out family, after every row")
        << int(SyncOutFamily)
        << QStringList{"SyncOutSelector=SyncOut1", "SyncOutSelector=SyncOut1", "SyncOutSelector=SyncOut2",
                       "SyncOutSelector=SyncOut1", "SyncOutSelector=SyncOut3", "SyncOutSelector=SyncOut1"};
}

void tst_OutputEdits::invertRefreshRestores()
{
    QFETCH(int, family);
    QFETCH(QStringList, journal);
    TestCamera cam;
    build(cam, family);
    TabAccess tab(cam.features(), nullptr);
    cam.setAt(family == LineFamily ? "LineInverter" : "SyncOutPolarity", family == LineFamily ? "Line3" : "SyncOut3",
              family == LineFamily ? QVariant(true) : QVariant("Invert"));
    cam.clearJournal();

    tab.refresh({family == LineFamily ? "LineInverter" : "SyncOutPolarity"});
    QCOMPARE(cam.journal(), journal);
    QCOMPARE(checked(tab, &OutputRow::m_pCBInvert), (QList<bool>{false, false, true}));
}

void tst_OutputEdits::sourceEditLineFamily()
{
    TestCamera cam;
    build(cam, LineFamily);
    cam.setAt("LineSource", "Line1", "Direct");
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();

    tab.m_OutputRows.at(1)->m_pComboSource->setCurrentText("UserOutput1");
    QCOMPARE(cam.journal(),
             (QStringList{"LineSelector=Line1", "LineSelector=Line2", "LineSource=UserOutput1", "LineSelector=Line3",
                          "LineSelector=Line0", "UserOutputSelector=UserOutput1", "UserOutputSelector=UserOutput0"}));
    QCOMPARE(cam.valueAt("LineSource", "Line2"), QString("UserOutput1"));
    QCOMPARE(tab.m_OutputRows.at(1)->m_pComboUserOutSelector->currentText(), QString("UserOutput1"));
    QCOMPARE(enabled(tab, &OutputRow::m_pCBUserValue), (QList<bool>{false, true, false}));
    QCOMPARE(enabled(tab, &OutputRow::m_pCBStatus), (QList<bool>{true, false, false}));

    // Back to "Direct": now two rows show it and both are written.
    cam.clearJournal();
    tab.m_OutputRows.at(1)->m_pComboSource->setCurrentText("Direct");
    QCOMPARE(cam.journal().mid(0, 5), (QStringList{"LineSelector=Line1", "LineSource=Direct", "LineSelector=Line2",
                                                   "LineSource=Direct", "LineSelector=Line3"}));
    QCOMPARE(cam.value("LineSelector"), QString("Line0"));
    QCOMPARE(cam.value("UserOutputSelector"), QString("UserOutput0"));
}

void tst_OutputEdits::sameSourceWritesEveryRow_data()
{
    QTest::addColumn<int>("family");
    QTest::newRow("SyncOut names") << int(SyncOutFamily);
    QTest::newRow("LineOut names") << int(LineOutFamily);
}

void tst_OutputEdits::sameSourceWritesEveryRow()
{
    QFETCH(int, family);
    const QString p = prefix(family);
    TestCamera cam;
    build(cam, family);
    cam.setAt(p + "Source", "SyncOut1", "GPO");
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();

    tab.m_OutputRows.at(1)->m_pComboSource->setCurrentText("GPO");
    QCOMPARE(cam.journal(), (QStringList{p + "Selector=SyncOut1", p + "Source=GPO", p + "Selector=SyncOut2",
                                         p + "Source=GPO", p + "Selector=SyncOut3", p + "Selector=SyncOut1"}));
    QCOMPARE(cam.valueAt(p + "Source", "SyncOut2"), QString("GPO"));
    QCOMPARE(enabled(tab, &OutputRow::m_pCBStatus), (QList<bool>{true, true, false}));
}

void tst_OutputEdits::invertEditWritesEveryRow_data()
{
    QTest::addColumn<int>("family");
    QTest::addColumn<QStringList>("journal");
    QTest::newRow("line family") << int(LineFamily)
                                 << QStringList{"LineSelector=Line1", "LineInverter=false", "LineSelector=Line2",
                                                "LineInverter=true", "LineSelector=Line3", "LineInverter=false",
                                                "LineSelector=Line0",
                                                // the state refresh that follows
                                                "LineSelector=Line1", "LineSelector=Line2", "LineSelector=Line3",
                                                "LineSelector=Line0"};
    QTest::newRow("sync-out family") << int(SyncOutFamily)
                                     << QStringList{"SyncOutSelector=SyncOut1", "SyncOutPolarity=Normal",
                                                    "SyncOutSelector=SyncOut2", "SyncOutPolarity=Invert",
                                                    "SyncOutSelector=SyncOut3", "SyncOutPolarity=Normal",
                                                    "SyncOutSelector=SyncOut1"};
}

void tst_OutputEdits::invertEditWritesEveryRow()
{
    QFETCH(int, family);
    QFETCH(QStringList, journal);
    TestCamera cam;
    build(cam, family);
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();

    OutputCams::MessageLog log;
    tab.m_OutputRows.at(1)->m_pCBInvert->setChecked(true);
    QCOMPARE(cam.journal(), journal);
    for (const QString& line : OutputCams::MessageLog::lines)
        QVERIFY2(!line.contains("retValue == ''"), qPrintable(line));
    // The observer is back on every feature it had.
    QCOMPARE(cam.observerCount(family == LineFamily ? "LineInverter" : "SyncOutPolarity"), 1);
}

void tst_OutputEdits::statusEditLineFamily()
{
    TestCamera cam;
    build(cam, LineFamily);
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();

    tab.m_OutputRows.at(2)->m_pCBStatus->setChecked(true);
    QCOMPARE(cam.journal().mid(0, 7),
             (QStringList{"LineSelector=Line1", "LineStatus=false", "LineSelector=Line2", "LineStatus=false",
                          "LineSelector=Line3", "LineStatus=true", "LineSelector=Line0"}));
    QCOMPARE(cam.valueAt("LineStatus", "Line3"), QString("true"));
    QCOMPARE(cam.value("LineSelector"), QString("Line0"));
}

void tst_OutputEdits::statusEditBuildsMask()
{
    TestCamera cam;
    build(cam, SyncOutFamily);
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();

    tab.m_OutputRows.at(0)->m_pCBStatus->setChecked(true);
    tab.m_OutputRows.at(2)->m_pCBStatus->setChecked(true);
    // No selector is moved for the mask.
    QCOMPARE(cam.journal(), (QStringList{"SyncOutLevels=1", "SyncOutLevels=5"}));
    QCOMPARE(tab.m_pEditSyncLevels->text(), QString("5"));
    QCOMPARE(cam.value("SyncOutLevels"), QString("5"));
}

void tst_OutputEdits::maskBitWrapsAt32()
{
    TestCamera cam;
    OutputCams::syncOutFamily(cam, 33);
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(tab.m_OutputRows.size(), 33);
    cam.clearJournal();

    tab.m_OutputRows.at(32)->m_pCBStatus->setChecked(true);
    QCOMPARE(cam.journal(), QStringList{"SyncOutLevels=1"});
    QCOMPARE(tab.m_pEditSyncLevels->text(), QString("1"));
}

void tst_OutputEdits::syncLevelsRefresh_data()
{
    QTest::addColumn<int>("family");
    QTest::addColumn<QString>("changed");
    QTest::addColumn<int>("levels");
    QTest::addColumn<QList<bool>>("states");
    QTest::addColumn<QString>("shown");
    QTest::newRow("6") << int(SyncOutFamily) << "SyncOutLevels" << 6 << QList<bool>{false, true, true} << "6";
    QTest::newRow("unreadable") << int(SyncOutFamily) << "SyncOutLevels" << -1 << QList<bool>{true, false, false}
                                << "1";
    // Only "SyncOutLevels" refreshes the mask; a change of "LineOutLevels" alone does not.
    QTest::newRow("LineOutLevels alone") << int(LineOutFamily) << "LineOutLevels" << 6
                                         << QList<bool>{true, false, false} << "1";
    QTest::newRow("LineOutLevels via SyncOutLevels")
        << int(LineOutFamily) << "SyncOutLevels" << 6 << QList<bool>{false, true, true} << "6";
}

void tst_OutputEdits::syncLevelsRefresh()
{
    QFETCH(int, family);
    QFETCH(QString, changed);
    QFETCH(int, levels);
    QFETCH(QList<bool>, states);
    QFETCH(QString, shown);
    const QString p = prefix(family);
    TestCamera cam;
    build(cam, family);
    cam.set(p + "Levels", 1);
    cam.setAt(p + "Source", "SyncOut2", "GPO");
    TabAccess tab(cam.features(), nullptr);
    QCOMPARE(tab.m_pEditSyncLevels->text(), QString("1"));

    cam.set(p + "Levels", levels);
    tab.refresh({changed});
    QCOMPARE(checked(tab, &OutputRow::m_pCBStatus), states);
    QCOMPARE(tab.m_pEditSyncLevels->text(), shown);
    // Only a "GPO" row with a writable mask can be edited.
    QCOMPARE(enabled(tab, &OutputRow::m_pCBStatus), (QList<bool>{false, true, false}));
}

void tst_OutputEdits::sharedUserOutputWrittenTogether()
{
    TestCamera cam;
    OutputCams::lineFamily(cam, {"Output", "Output", "Output"});
    cam.setAt("LineSource", "Line0", "UserOutput1");
    cam.setAt("LineSource", "Line1", "Direct");
    cam.setAt("LineSource", "Line2", "UserOutput1");
    cam.set("UserOutputSelector", "UserOutput2");
    TabAccess tab(cam.features(), nullptr);
    cam.clearJournal();

    tab.m_OutputRows.at(0)->m_pCBUserValue->setChecked(true);
    const QStringList once{"UserOutputSelector=UserOutput1", "UserOutputValue=true", "UserOutputSelector=UserOutput2"};
    const QStringList statusRefresh{"LineSelector=Line0", "LineSelector=Line1", "LineSelector=Line2",
                                    "LineSelector=Line0"};
    QCOMPARE(cam.journal(), once + once + statusRefresh);
    QCOMPARE(checked(tab, &OutputRow::m_pCBUserValue), (QList<bool>{true, false, true}));
    QCOMPARE(cam.valueAt("UserOutputValue", "UserOutput1"), QString("true"));
    QCOMPARE(cam.observerCount("UserOutputValue"), 1);

    // Unchecking the other row of the pair clears both.
    cam.clearJournal();
    tab.m_OutputRows.at(2)->m_pCBUserValue->setChecked(false);
    QCOMPARE(cam.journal().mid(0, 6), (QStringList{"UserOutputSelector=UserOutput1", "UserOutputValue=false",
                                                   "UserOutputSelector=UserOutput2", "UserOutputSelector=UserOutput1",
                                                   "UserOutputValue=false", "UserOutputSelector=UserOutput2"}));
    QCOMPARE(checked(tab, &OutputRow::m_pCBUserValue), (QList<bool>{false, false, false}));
}

QTEST_MAIN(tst_OutputEdits)
#include "tst_OutputEdits.moc"
