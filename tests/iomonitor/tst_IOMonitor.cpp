#include "IOMonitorWidget.h"
#include "SignalTrace.h"
#include "TabExtensionInterface.h"
#include "TestCamera.h"
#include "VcdWriter.h"

#include <OrvCPP/ExclusiveAccess.h>

#include <QCheckBox>
#include <QLabel>
#include <QPluginLoader>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using TestCam::TestCamera;

namespace
{

// Three lines read in one of the ways the monitor knows. The line family
// stands on Line1, so that a walk has a line before and after it; the
// LineStatusAll camera (Line1 to Line3, LineStatus too) also has two states.
std::unique_ptr<TestCamera> camera(const QString& source)
{
    std::unique_ptr<TestCamera> cam(new TestCamera);
    const QStringList lines = QStringList{"Line0", "Line1", "Line2", "Line3"}.mid(source == "all", 3);
    if (source == "masks")
    {
        cam->addEnum("SyncOutSelector", {"SyncOut1", "SyncOut2", "SyncOut3"}, "SyncOut1");
        cam->add("SyncOutLevels", OrvFeatureDataInt, 0, 0, 7);
        return cam;
    }
    cam->addEnum("LineSelector", lines, "Line1");
    cam->addEnum("LineMode", {"Input", "Output"}, "Input").selectedBy("LineSelector");
    cam->set("LineMode", "Output", lines.at(2));
    cam->add("LineStatus", OrvFeatureDataBool, false).selectedBy("LineSelector");
    if (source == "all")
    {
        cam->add("LineStatusAll", OrvFeatureDataInt, 0, 0, 15).writable(false);
        cam->addEnum("AcquisitionStatusSelector", {"FrameTriggerWait", "AcquisitionActive"}, "AcquisitionActive");
        cam->add("AcquisitionStatus", OrvFeatureDataBool, false).selectedBy("AcquisitionStatusSelector");
    }
    return cam;
}

// Puts the levels of one step ("1x0|10|1": lines | camera states | the
// viewer's acquisition) into the camera; "x" makes that read fail once.
void apply(TestCamera& cam, IOMonitorWidget& page, const QString& source, const QString& step)
{
    const QStringList parts = step.split('|');
    const QString lines = parts.at(0);
    long long mask = 0;
    for (int i = 0; i < lines.size(); ++i)
    {
        if (source == "walk" && lines.at(i) != 'x')
            cam.set("LineStatus", lines.at(i) == '1', "Line" + QString::number(i));
        mask |= (lines.at(i) == '1' ? 1LL : 0LL) << (i + (source == "all"));
    }
    if (source == "all")
        cam.set("LineStatusAll", mask);
    if (source == "masks")
        cam.set("SyncOutLevels", mask);
    if (lines.contains('x'))
        cam.fail(source == "walk" ? "LineStatus" : source == "all" ? "LineStatusAll" : "SyncOutLevels",
                 source == "walk" ? "GetBool" : "GetInt", OrvErrorTimeout, 1);
    const QString states = parts.value(1);
    for (int i = 0; i < states.size(); ++i)
        cam.set("AcquisitionStatus", states.at(i) == '1', i ? "AcquisitionActive" : "FrameTriggerWait");
    page.camIsStreaming(parts.value(2) == "1");
}

// The page's lines found, and one sample taken, on its sampler's thread.
bool found(IOMonitorWidget& page)
{
    return QTest::qWaitFor([&] { return !page.traces().isEmpty(); });
}

bool sample(IOMonitorWidget& page)
{
    QSignalSpy sampled(&page, &IOMonitorWidget::sampled);
    return page.sampleNow(), sampled.wait(10000);
}

QString levelsOf(const SignalTrace& trace)
{
    QString text;
    for (const SignalTrace::Sample& sample : trace.samples())
        text += sample.level == SignalTrace::Unknown ? QChar('x') : QChar('0' + sample.level);
    return text;
}

} // namespace

class tst_IOMonitor : public QObject
{
    Q_OBJECT

private slots:
    void scriptedLevelsGiveTraces_data();
    void scriptedLevelsGiveTraces();
    void triggerSentence_data();
    void triggerSentence();
    void vcdRoundTrips();
    void savedDumpAsSigrokReadsIt();
    void moduleServesOnlyCamerasWithLines();
};

void tst_IOMonitor::scriptedLevelsGiveTraces_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QStringList>("steps");
    // One entry per trace: the levels sampled, then the rising/falling edges counted.
    QTest::addColumn<QStringList>("traces");
    QTest::addColumn<QStringList>("writesPerSample");

    QTest::newRow("LineStatusAll, one read") << "all" << QStringList{"010|10|1", "110|01|1", "xxx|01|0", "011|11|1"}
                                             << QStringList{"01x0 1/1", "11x1 0/0", "00x1 1/0", "1001 1/1", "0111 1/0",
                                                            "1101 1/1"}
                                             << QStringList{"AcquisitionStatusSelector=FrameTriggerWait",
                                                            "AcquisitionStatusSelector=AcquisitionActive"};
    // The walk reads Line1 first (the selector stands there) and a failed read
    // of it leaves only Line1 unknown.
    QTest::newRow("LineStatus, line by line")
        << "walk" << QStringList{"000||0", "1x0||1", "101||1", "001||0"}
        << QStringList{"0110 1/1", "0x00 0/0", "0011 1/0", "0110 1/1"}
        << QStringList{"LineSelector=Line0", "LineSelector=Line2", "LineSelector=Line1"};
    QTest::newRow("sync-out level masks") << "masks" << QStringList{"100||0", "xxx||0", "011||1"}
                                          << QStringList{"1x0 0/1", "0x1 1/0", "0x1 1/0", "001 1/0"} << QStringList{};
}

// A scripted sequence of levels gives, for each way of reading them, the
// traces (a failed read is a gap, never a level), the edge counts, and the
// camera sees nothing but the selector walks, which end where they began.
void tst_IOMonitor::scriptedLevelsGiveTraces()
{
    QFETCH(QString, source);
    QFETCH(QStringList, steps);
    QFETCH(QStringList, traces);
    QFETCH(QStringList, writesPerSample);
    std::unique_ptr<TestCamera> cam = camera(source);
    QWidget parent;
    IOMonitorWidget page(cam->features(), &parent);
    QCheckBox* states = page.findChild<QCheckBox*>("cb_States");
    states->setChecked(true);
    QVERIFY(found(page));
    cam->takeJournal();
    for (const QString& step : steps)
    {
        apply(*cam, page, source, step);
        QVERIFY(sample(page));
        QCOMPARE(cam->takeJournal(), writesPerSample);
    }
    QCOMPARE(page.traces().size(), traces.size());
    for (int i = 0; i < traces.size(); ++i)
    {
        const SignalTrace& trace = *page.traces().at(i);
        QCOMPARE(levelsOf(trace) + QString(" %1/%2").arg(trace.rising()).arg(trace.falling()), traces.at(i));
    }
    QCOMPARE(cam->value("LineSelector"), source == "masks" ? QString() : QString("Line1"));
    QCOMPARE(page.traces().at(2)->kind(), QString("Output"));
    page.findChild<QPushButton*>("pb_Reset")->click();
    QCOMPARE(page.traces().at(0)->rising() + page.traces().at(0)->falling(), 0);
    // Unless asked for, the states are not read: LineStatusAll is then the one call of a sample.
    states->setChecked(false);
    QVERIFY(sample(page));
    QCOMPARE(cam->takeJournal(), source == "walk" ? writesPerSample : QStringList());
    QCOMPARE(page.traces().at(3)->samples().size(), steps.size() + (source == "all" ? 0 : 1));
    auto* run = dynamic_cast<OrvCPP::ExclusiveAccess*>(cam->features()->first().get()); // another run (the test's)
    const int taken = page.traces().last()->samples().size();
    QVERIFY(run->BeginExclusive(0) && (page.sampleNow(), QTest::qWait(100), true));
    QCOMPARE(page.traces().last()->samples().size(), taken); // a sample never comes between: it waits
    run->EndExclusive();
    QTRY_COMPARE(page.traces().last()->samples().size(), taken + 1);
}

void tst_IOMonitor::triggerSentence_data()
{
    QTest::addColumn<QStringList>("settings");
    QTest::addColumn<QString>("sentence");
    // Selector, mode, source and activation ("-": none), then the sentence.
    for (const char* row : {"|Free running (the camera has no trigger)", "FrameStart Off Line0 RisingEdge|Free running",
                            "AcquisitionStart Off Line0 RisingEdge|Acquisition start trigger off",
                            "FrameStart On Software RisingEdge|Frame start waits for a software trigger",
                            "FrameStart On Line0 RisingEdge|Frame start waits for a rising edge on Line0",
                            "ExposureStart On Line2 FallinEdge|Exposure start waits for a falling edge on Line2",
                            "FrameBurstStart On Line1 AnyEdge|Frame burst start waits for any edge on Line1",
                            "AcquisitionStart On Line1 LevelHigh|Acquisition start waits for a high level on Line1",
                            "- On Line3 LevelLow|The trigger waits for a low level on Line3",
                            "LineStartNow On Line0 Strange|Line start now waits for a signal on Line0"})
    {
        const QStringList parts = QString(row).split('|');
        QTest::newRow(row) << parts.at(0).split(' ', Qt::SkipEmptyParts).replaceInStrings("-", "") << parts.at(1);
    }
}

// The trigger told in words, from the selector, mode, source and activation
// the camera reports; the trigger selector is never moved.
void tst_IOMonitor::triggerSentence()
{
    QFETCH(QStringList, settings);
    QFETCH(QString, sentence);
    std::unique_ptr<TestCamera> cam = camera("walk");
    const QStringList names{"TriggerSelector", "TriggerMode", "TriggerSource", "TriggerActivation"};
    for (int i = 0; i < settings.size(); ++i)
    {
        if (!settings.at(i).isEmpty())
            cam->addEnum(names.at(i), {settings.at(i)}, settings.at(i));
    }
    QWidget parent;
    IOMonitorWidget page(cam->features(), &parent);
    QVERIFY(found(page));
    QCOMPARE(page.findChild<QLabel*>("l_Trigger")->text(), sentence);
    for (const QString& write : cam->takeJournal())
        QVERIFY2(write.startsWith("LineSelector="), qPrintable(write));
}

// A dump as written: "x" for a failed read and where a signal was not sampled at a stamp, a stamp for every
// sample (also one that changes nothing) and the end, distinct names, each signal's own where it is an identifier.
void tst_IOMonitor::vcdRoundTrips()
{
    SignalTrace line("Line 0"), state("FrameTriggerWait"), other("Line_0");
    const int samples[][3] = {{900, 1, 0}, {1000, 0, 0}, {1100, 1, 1}, {1200, -1, 9}, {1300, 1, 0}, {1400, 0, 0}};
    for (const int* sample : samples)
        line.append(sample[0], sample[1]), sample[2] == 9 ? void() : state.append(sample[0], sample[2]); // 9: none
    other.append(1000, 1), line.append(1450, 0), state.append(1450, 0);
    const QByteArray dump = VcdWriter::dump({&line, &state, &other}, 1000, 1500, QDateTime::currentDateTime());
    QCOMPARE(
        dump.mid(dump.indexOf("$timescale")),
        "$timescale 1ms $end\n$scope module camera $end\n$var wire 1 ! Line_0_2 $end\n"
        "$var wire 1 \" FrameTriggerWait $end\n$var wire 1 # Line_0 $end\n$upscope $end\n$enddefinitions $end\n"
        "#0\n$dumpvars\n0!\n0\"\n1#\n$end\n#100\n1!\n1\"\nx#\n#200\nx!\nx\"\n#300\n1!\n0\"\n#400\n0!\n#450\n#500\n");
}

// Samples are read while the page is shown, enabled and not paused, nothing otherwise: a gap. "Save..." proposes
// the documents folder, then the one saved to last. sigrok-cli reads the dump with the levels the page sampled at
// the times it sampled them; it knows no unknown level: a failed read and time not sampled read as 0.
void tst_IOMonitor::savedDumpAsSigrokReadsIt()
{
    QTemporaryDir home, dir;
    qputenv("HOME", home.path().toLocal8Bit()); // its documents folder and settings
    QVERIFY(QDir(home.path()).mkdir("Documents"));
    std::unique_ptr<TestCamera> cam = camera("all");
    QWidget parent;
    IOMonitorWidget* page = new IOMonitorWidget(cam->features(), &parent);
    page->findChild<QSpinBox*>("sb_Rate")->setValue(50);
    page->findChild<QSpinBox*>("sb_Window")->setValue(2);
    QVERIFY(found(*page) && !page->isSampling());
    parent.show();
    QPushButton* pause = page->findChild<QPushButton*>("pb_Pause");
    auto stopsReading = [&](const char* what)
    {
        QVERIFY2(!page->isSampling() && page->traces().at(0)->level() == SignalTrace::Unknown, what);
        QTest::qWait(100); // a sample under way when it stopped ends
        cam->takeJournal();
        const int taken = page->traces().at(0)->samples().size();
        QTest::qWait(100);
        QVERIFY2(cam->takeJournal().isEmpty() && page->traces().at(0)->samples().size() == taken, what);
    };
    for (int step = 0; step < 12; ++step)
    {
        cam->set("LineStatusAll", 14 - step % 3 * 4); // Line1 high, the others change
        if (step == 4)
            cam->fail("LineStatusAll", "GetInt", OrvErrorTimeout, 2);
        if (step == 6)
            pause->click(), stopsReading("paused"), pause->click();
        if (step == 9)
            parent.setEnabled(false), stopsReading("disabled"), parent.setEnabled(true); // as the viewer's, camera lost
        QTest::qWait(50);
    }
    page->hide();
    stopsReading("hidden"); // the traces stay as saved
    QCOMPARE(page->proposedSavePath(), home.path() + "/Documents/io-monitor.vcd");
    QVERIFY(page->saveVcd(dir.filePath("t.vcd"), nullptr));
    QCOMPARE(page->proposedSavePath(), dir.path() + "/io-monitor.vcd");
    QProcess sigrok;
    sigrok.start("sigrok-cli", {"-I", "vcd", "-i", dir.filePath("t.vcd"), "-O", "csv"});
    QVERIFY(sigrok.waitForFinished(60000) && sigrok.exitCode() == 0);
    // One row a millisecond from the start of the dump: "0,1,..." in the order of the rows.
    const QStringList rows = QString(sigrok.readAllStandardOutput()).split('\n').filter(QRegularExpression("^[01]"));
    const qint64 from = page->traces().last()->samples().at(page->traces().last()->samples().size() - 2).ms - 2000;
    QCOMPARE(rows.size(), 2001);
    for (int t = 0; t < page->traces().size(); ++t)
    {
        const QVector<SignalTrace::Sample>& samples = page->traces().at(t)->samples();
        for (int i = 0; i < samples.size(); ++i)
        {
            const int level = qMax(samples.at(i).level, 0),
                      end = i + 1 < samples.size() ? samples.at(i + 1).ms : from + 2001;
            for (qint64 ms = qMax(samples.at(i).ms, from); ms < end && ms <= from + 2000; ++ms)
                QVERIFY2(rows.at(int(ms - from)).split(',').at(t) == QString::number(level),
                         qPrintable(QString::number(ms)));
        }
    }
}

// Loaded as a host loads it: a page titled "I/O Monitor" after the Trigger
// IO tab, result 4 and no page for a camera without lines.
void tst_IOMonitor::moduleServesOnlyCamerasWithLines()
{
    QPluginLoader loader(IOMONITOR_PLUGIN_FILE);
    QCOMPARE(loader.metaData().value("IID").toString(), QString("TabExtensionInterface"));
    QCOMPARE(loader.metaData().value("MetaData").toObject().value("PageOrder").toInt(), 1);
    TabExtensionInterface* plugin = qobject_cast<TabExtensionInterface*>(loader.instance());
    QVERIFY2(plugin, qPrintable(loader.errorString()));

    TestCamera noLines; // no line selector
    QWidget empty;
    QVERIFY(plugin->get(noLines.features(), empty, nullptr) == 4 && empty.findChildren<QWidget*>().isEmpty());

    std::unique_ptr<TestCamera> cam = camera("masks");
    QWidget parent;
    QCOMPARE(plugin->get(cam->features(), parent, nullptr), 0);
    QCOMPARE(parent.accessibleName(), QString("I/O Monitor"));
    QVERIFY(parent.findChild<QWidget*>("sa_Lines"));
}

QTEST_MAIN(tst_IOMonitor)
#include "tst_IOMonitor.moc"
