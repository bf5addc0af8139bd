// Aravis (through GLib) before Qt: it uses words that Qt defines as keywords.
#include "FakeGigEServer.h"

#include "BenchTab.h"
#include "GvcpLink.h"
#include "IOMonitorWidget.h"
#include "MemoryCamera.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>

// What the Trigger IO tab and the GenICam backend cost the camera's link:
// wall time and GigE Vision control packets by thread for each step of a
// tab's life, on the three demo models over loopback GigE Vision and on the
// in-process fake device, and the tab's own cost on in-memory cameras of
// 100 to 10,000 features.
//
//   triggerio-bench [--idle SECONDS] [--only gige|fake|memory|walk|figures] [--models line,syncout,routing]
//                   [--seeds N]
//
// --only figures: the table of docs/performance.md: each step of the tab
// through an emulated link (1.5 ms round trip) at 0% and 1% loss, N seeds
// each (default 10), with the register cache on and off.
//
// Run it under `flock /tmp/triggerio-gige.lock` when other programs use the
// loopback GigE Vision port.

namespace
{

QTextStream out(stdout);

struct Sample
{
    double ms = 0.0;
    double cpuMs = 0.0; // the GUI thread's own CPU time
    GvcpLink::Counts packets;
    long distinctReads = 0; // different registers among the GUI thread's reads
    QString note;
};

Sample measure(const std::function<void()>& step)
{
    // Each step is a burst of its own, as each event of a GUI is.
    QCoreApplication::processEvents();
    const GvcpLink::Counts before = GvcpLink::counts();
    GvcpLink::forgetGuiReads();
    QElapsedTimer timer;
    timespec cpuBefore{}, cpuAfter{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &cpuBefore);
    timer.start();
    step();
    Sample sample;
    sample.ms = double(timer.nsecsElapsed()) / 1e6;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &cpuAfter);
    sample.cpuMs =
        double(cpuAfter.tv_sec - cpuBefore.tv_sec) * 1e3 + double(cpuAfter.tv_nsec - cpuBefore.tv_nsec) / 1e6;
    sample.packets = GvcpLink::counts() - before;
    sample.distinctReads = GvcpLink::distinctGuiReads();
    return sample;
}

// Lets the event loop run: queued notifications arrive, timers tick.
void runEvents(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

QString number(double value, int decimals = 1)
{
    return QString::number(value, 'f', decimals);
}

struct Row
{
    QString what;
    Sample sample;
};

void printTable(const QString& title, const QVector<Row>& rows, bool packets)
{
    out << "\n### " << title << "\n\n";
    if (packets)
    {
        out << "| what | ms | GVCP packets, GUI thread | (different registers) | poller | heartbeat | notes |\n";
        out << "|---|---:|---:|---:|---:|---:|---|\n";
    }
    else
    {
        out << "| what | ms | notes |\n|---|---:|---|\n";
    }
    for (const Row& row : rows)
    {
        out << "| " << row.what << " | " << number(row.sample.ms, 2);
        if (packets)
            out << " | " << row.sample.packets.gui << " | " << row.sample.distinctReads << " | "
                << row.sample.packets.other << " | " << row.sample.packets.heartbeat;
        out << " | " << row.sample.note << " |\n";
    }
    out.flush();
}

QString echoNote(const QStringList& names)
{
    return names.isEmpty() ? QStringLiteral("changed list empty")
                           : QStringLiteral("echo: %1 names (%2)").arg(names.size()).arg(names.join(' '));
}

// Waits for the backend's follow-up look after the last write and runs the tick that follows.
Row tickAfter(BenchTab& tab, const QString& what)
{
    runEvents(1600);
    const QStringList echo = tab.changed();
    Row row{what, measure([&] { tab.updateTimer(); })};
    row.sample.note = echoNote(echo);
    return row;
}

// Every step of the tab's life on one opened camera.
QVector<Row> tabSteps(GenICamCamera& camera, int idleSeconds)
{
    QVector<Row> rows;
    std::unique_ptr<BenchTab> tab;
    const FeatureList features = camera.features();
    rows.append({"tab build and show", measure(
                                           [&]
                                           {
                                               tab.reset(new BenchTab(features, nullptr));
                                               tab->show();
                                               tab->stopTimer();
                                           })});
    rows.append({"first tick", measure([&] { tab->updateTimer(); })});
    rows.append(tickAfter(*tab, "next tick after build"));
    tab->markAllChanged();
    rows.append({"full tick (all observed names changed)", measure([&] { tab->updateTimer(); })});
    rows.append(tickAfter(*tab, "next tick after a full tick"));
    tab->clearChanged();
    rows.append({"idle tick (nothing changed)", measure([&] { tab->updateTimer(); })});

    QComboBox* activation = tab->m_pComboTriggerActivation;
    if (activation && activation->isEnabled() && activation->count() > 1)
    {
        Row edit{"one edit (trigger activation)",
                 measure([&] { activation->setCurrentIndex((activation->currentIndex() + 1) % activation->count()); })};
        rows.append(edit);
        Row after{"after the edit, 1.6 s", measure([&] { runEvents(1600); })};
        const QStringList echo = tab->changed();
        after.sample.note = echoNote(echo);
        rows.append(after);
        rows.append({"next tick after the edit", measure([&] { tab->updateTimer(); })});
    }

    const QVector<QPair<QString, void (IOTriggerWidget::*)()>> presets{{"preset Edge", &IOTriggerWidget::OnEdgeMode},
                                                                       {"preset Level", &IOTriggerWidget::OnLevelMode},
                                                                       {"preset Bulk", &IOTriggerWidget::OnBulkMode}};
    for (const auto& preset : presets)
    {
        rows.append({preset.first, measure([&] { (tab.get()->*preset.second)(); })});
        tab->stopTimer();
        rows.append(tickAfter(*tab, "next tick after " + preset.first));
    }

    tab->clearChanged();
    tab->startTimer();
    runEvents(1500);
    Row shown{"idle, tab shown, per second", measure([&] { runEvents(idleSeconds * 1000); })};
    tab->hide();
    runEvents(1500);
    Row hidden{"idle, tab hidden, per second", measure([&] { runEvents(idleSeconds * 1000); })};
    for (Row* row : {&shown, &hidden})
    {
        row->sample.note = QStringLiteral("%1 packets in %2 s").arg(row->sample.packets.total()).arg(idleSeconds);
        row->sample.ms /= idleSeconds;
        row->sample.packets.gui /= idleSeconds;
        row->sample.packets.other /= idleSeconds;
        row->sample.packets.heartbeat /= idleSeconds;
        rows.append(*row);
    }
    tab.reset();
    return rows;
}

// The I/O Monitor page on its own: what it costs hidden, per sample, and shown
// at its default rate.
QVector<Row> monitorSteps(GenICamCamera& camera)
{
    QVector<Row> rows;
    std::unique_ptr<IOMonitorWidget> page;
    rows.append({"I/O Monitor: build (hidden)", measure([&] { page.reset(new IOMonitorWidget(camera.features(), nullptr)); })});
    Row hidden{"I/O Monitor hidden, 2 s", measure([&] { runEvents(2000); })};
    hidden.sample.note = QStringLiteral("sampling: %1").arg(page->isSampling() ? "on" : "off");
    rows.append(hidden);
    const int samples = 50;
    Row sample{QStringLiteral("I/O Monitor: one sample (mean of %1)").arg(samples),
               measure([&] {
                   for (int i = 0; i < samples; ++i)
                       page->sampleNow();
               })};
    sample.sample.note = QStringLiteral("%1 GUI-thread packets per sample, %2 traces")
                             .arg(double(sample.sample.packets.gui) / samples)
                             .arg(page->traces().size());
    sample.sample.ms /= samples;
    rows.append(sample);
    page->show();
    runEvents(500);
    Row shown{"I/O Monitor shown, 10 samples a second, per second", measure([&] { runEvents(3000); })};
    shown.sample.ms /= 3;
    shown.sample.packets.gui /= 3;
    shown.sample.packets.other /= 3;
    shown.sample.packets.heartbeat /= 3;
    rows.append(shown);
    return rows;
}

// One feature read through the backend and the same read straight through Aravis.
QVector<Row> singleReads(GenICamCamera& camera)
{
    QVector<Row> rows;
    // Through an emulated link, with its lost packets, a handful: each read costs its round trips.
    const bool slowLink = GvcpLink::emulation().isOn();
    const int reads = slowLink ? 20 : 300;
    const int rounds = slowLink ? 1 : 15;
    const FeatureList features = camera.features();
    for (const char* name : {"TriggerSource", "AcquisitionFrameCount", "LineInverter", "LineSource"})
    {
        OrvCPP::shared_ptr<OrvCPP::Feature> feature;
        for (const auto& candidate : *features)
        {
            std::string featureName;
            if (candidate->GetName(featureName) == OrvErrorSuccess && featureName == name)
                feature = candidate;
        }
        if (!feature)
            continue;
        OrvFeatureDataType type = OrvFeatureDataUnknown;
        feature->GetDataType(type);
        auto readThroughBackend = [&]
        {
            for (int i = 0; i < reads; ++i)
            {
                std::string value;
                feature->GetValue(value);
            }
        };
        auto readThroughAravis = [&]
        {
            camera.withAravisDevice(
                [&](ArvDevice* device)
                {
                    ArvGcNode* node = arv_device_get_feature(device, name);
                    for (int i = 0; i < reads; ++i)
                    {
                        GError* error = nullptr;
                        if (type == OrvFeatureDataEnum)
                            arv_gc_enumeration_get_string_value(ARV_GC_ENUMERATION(node), &error);
                        else if (type == OrvFeatureDataBool)
                            arv_gc_boolean_get_value(ARV_GC_BOOLEAN(node), &error);
                        else
                            arv_gc_integer_get_value(ARV_GC_INTEGER(node), &error);
                        if (error)
                            g_error_free(error);
                    }
                });
        };
        // Alternating rounds, the fastest of each kept: the loopback's noise is
        // larger than the difference looked for.
        Row backend{QStringLiteral("read %1 through the backend (%2 reads)").arg(name).arg(reads), {}};
        Row direct{QStringLiteral("read %1 straight through Aravis (%2 reads)").arg(name).arg(reads), {}};
        for (int round = 0; round < rounds; ++round)
        {
            const Sample viaBackend = measure(readThroughBackend);
            const Sample viaAravis = measure(readThroughAravis);
            if (round == 0 || viaBackend.ms < backend.sample.ms)
                backend.sample = viaBackend;
            if (round == 0 || viaAravis.ms < direct.sample.ms)
                direct.sample = viaAravis;
        }
        for (Row* row : {&backend, &direct})
            row->sample.note = QStringLiteral("%1 ms and %2 packets per read")
                                   .arg(number(row->sample.ms / reads, 3))
                                   .arg(double(row->sample.packets.gui) / reads);
        backend.sample.note +=
            QStringLiteral(", time ratio %1").arg(number(backend.sample.ms / std::max(direct.sample.ms, 1e-9), 2));
        rows << backend << direct;
    }
    return rows;
}

// One register read straight through Aravis while the emulated link drops
// everything: how long Aravis keeps asking before it gives up, and how often.
Row deadLinkRead(GenICamCamera& camera)
{
    QString outcome;
    auto read = [&](ArvDevice* device)
    {
        GError* error = nullptr;
        arv_device_get_integer_feature_value(device, "AcquisitionFrameCount", &error);
        outcome = error ? QString::fromUtf8(error->message) : QStringLiteral("no error");
        g_clear_error(&error);
    };
    GvcpLink::cut(60000);
    Row row{"one register read (AcquisitionFrameCount) on a cut link", measure([&] { camera.withAravisDevice(read); })};
    GvcpLink::cut(0);
    row.sample.note = QStringLiteral("%1 ms per attempt; \"%2\"")
                          .arg(number(row.sample.ms / std::max(1L, row.sample.packets.gui), 1))
                          .arg(outcome);
    return row;
}

void runModel(const QString& model, bool gige, int idleSeconds)
{
    const QString path = QStringLiteral(TRIGGERIO_CAMERAS_DIR) + "/" + model;
    GenICamCamera camera;
    FakeGigEServer server;
    QString id = GenICamCamera::FakePrefix + path;
    if (gige)
    {
        QString error;
        if (!server.startAndOpen(path, camera, &error))
        {
            out << "\n" << model << " over loopback GigE Vision: not run (" << error << ")\n";
            return;
        }
        camera.close();
        id = QStringLiteral("127.0.0.1");
    }
    QVector<Row> rows;
    rows.append({"open", measure([&] { camera.open(id); })});
    if (gige && camera.serialNumber() != QString::fromLatin1(server.serial()))
    {
        out << "\n" << model << ": another program's camera answered on 127.0.0.1; not run\n";
        return;
    }
    // Small frames, as for a viewer on the loopback interface.
    for (const auto& feature : *camera.features())
    {
        std::string name;
        feature->GetName(name);
        if (name == "Width" || name == "Height")
            feature->SetValue(64LL);
    }
    runEvents(200);
    rows += tabSteps(camera, idleSeconds);
    rows += monitorSteps(camera);
    if (gige && model == "line-camera.xml")
        rows += singleReads(camera);
    if (gige && model == "line-camera.xml" && GvcpLink::emulation().isOn())
        rows += deadLinkRead(camera);
    printTable(model + (gige ? " over loopback GigE Vision" : " on the in-process fake device"), rows, gige);
}

// How soon a change on the camera shows on the Trigger IO tab while the I/O
// Monitor samples a camera without LineStatusAll (it walks LineSelector, a
// write and a write back, ten times a second): the line model without
// LineStatusAll, the tab shown (it ticks once a second) beside the monitor. The
// change is TriggerMode, written straight through Aravis at a random moment.
void runWalkNotification(bool gige)
{
    QFile model(QStringLiteral(TRIGGERIO_CAMERAS_DIR) + "/line-camera.xml");
    QTemporaryDir dir;
    const QString path = dir.filePath("walk-camera.xml");
    QFile walk(path);
    if (!model.open(QIODevice::ReadOnly) || !walk.open(QIODevice::WriteOnly) ||
        walk.write(model.readAll().replace("<pFeature>LineStatusAll</pFeature>", "")) < 0)
        return;
    walk.close();
    GenICamCamera camera;
    FakeGigEServer server;
    QString error;
    if (gige ? !server.startAndOpen(path, camera, &error)
             : camera.open(GenICamCamera::FakePrefix + path) != OrvErrorSuccess)
    {
        out << "\nwalk notification: not run (" << (gige ? error : camera.errorString()) << ")\n";
        return;
    }
    // Both pages shown, as two windows would show them.
    BenchTab tab(camera.features(), nullptr);
    IOMonitorWidget monitor(camera.features(), nullptr);
    tab.show();
    monitor.show();
    runEvents(1500);
    QVector<double> took;
    for (int round = 0; round < 8; ++round)
    {
        runEvents(300 + int(QRandomGenerator::global()->bounded(1000)));
        const QString wanted = tab.m_pComboTriggerMode->currentText() == "On" ? "Off" : "On";
        QElapsedTimer timer;
        timer.start();
        camera.withAravisDevice([&](ArvDevice* device)
                                { arv_device_set_string_feature_value(device, "TriggerMode", qPrintable(wanted), nullptr); });
        while (tab.m_pComboTriggerMode->currentText() != wanted && timer.elapsed() < 5000)
            runEvents(10);
        took << double(timer.elapsed());
    }
    std::sort(took.begin(), took.end());
    out << "\nCamera-side change shown by the Trigger IO tab, I/O Monitor walking LineSelector 10 times a second ("
        << (gige ? "loopback GigE Vision" : "in-process fake device") << (monitor.isSampling() ? "" : ", NOT sampling")
        << "): median " << number(took[took.size() / 2], 0) << " ms, worst " << number(took.last(), 0) << " ms of "
        << took.size() << "\n";
}

QString callsText(const MemoryCamera::Calls& after, const MemoryCamera::Calls& before)
{
    QStringList parts;
    long total = 0;
    for (int i = 0; i < MemoryCamera::OperationCount; ++i)
    {
        const long calls = after[size_t(i)] - before[size_t(i)];
        total += calls;
        if (calls)
            parts << QStringLiteral("%1 %2").arg(MemoryCamera::operationName(i)).arg(calls);
    }
    return QStringLiteral("%1 calls: %2").arg(total).arg(parts.join(", "));
}

void runMemory()
{
    QVector<Row> rows;
    {
        // Qt's first widgets (fonts, styles) are not the tab's cost.
        MemoryCamera warmUp(100);
        BenchTab tab(warmUp.features(), nullptr);
        tab.show();
    }
    {
        // What the camera's own calls cost: a GetName, the most frequent one.
        MemoryCamera camera(1000);
        const auto feature = camera.features()->at(500);
        const int calls = 1000000;
        Row row{"1000 features: the camera's own cost of one GetName call", measure(
                                                                                [&]
                                                                                {
                                                                                    std::string name;
                                                                                    for (int i = 0; i < calls; ++i)
                                                                                        feature->GetName(name);
                                                                                })};
        row.sample.note = QStringLiteral("%1 ns per call").arg(number(row.sample.ms * 1e6 / calls, 1));
        row.sample.ms /= calls;
        rows.append(row);
    }
    {
        // One I/O Monitor sample: the lines through LineStatusAll, one call.
        MemoryCamera camera(1000);
        IOMonitorWidget page(camera.features(), nullptr);
        const int samples = 10000;
        const MemoryCamera::Calls before = camera.calls();
        Row row{"1000 features: one I/O Monitor sample", measure([&] {
                    for (int i = 0; i < samples; ++i)
                        page.sampleNow();
                })};
        row.sample.note = QStringLiteral("%1 us per sample (mean of %2); %3")
                              .arg(number(row.sample.ms * 1000 / samples, 2))
                              .arg(samples)
                              .arg(callsText(camera.calls(), before));
        row.sample.ms /= samples;
        rows.append(row);
    }
    for (int size : {100, 1000, 10000})
    {
        MemoryCamera camera(size);
        std::unique_ptr<BenchTab> tab;
        // The fastest of five: the machine's other work only ever adds time.
        auto step = [&](const QString& what, const std::function<void()>& prepare, const std::function<void()>& call)
        {
            Row row{QStringLiteral("%1 features: %2 (fastest of 5)").arg(size).arg(what), {}};
            for (int round = 0; round < 5; ++round)
            {
                prepare();
                const MemoryCamera::Calls before = camera.calls();
                const Sample sample = measure(call);
                if (round == 0 || sample.ms < row.sample.ms)
                    row.sample = sample;
                row.sample.note = callsText(camera.calls(), before);
            }
            rows.append(row);
        };
        step(
            "build, show and first refresh", [&] { tab.reset(); },
            [&]
            {
                tab.reset(new BenchTab(camera.features(), nullptr));
                tab->show();
                tab->stopTimer();
            });
        step(
            "full tick", [&] { tab->markAllChanged(); }, [&] { tab->updateTimer(); });
        step(
            "idle tick", [] {}, [&] { tab->updateTimer(); });
    }
    printTable("In-memory camera (constant cost per call)", rows, false);
}

} // namespace

// GUI-thread time and packets of the tab's steps, one run: open, build and
// show, a full tick, an edit, each preset.
QVector<Row> figureRun()
{
    GenICamCamera camera;
    QVector<Row> rows;
    rows.append({"open", measure([&] { camera.open(QStringLiteral("127.0.0.1")); })});
    if (!camera.isOpen())
        return {};
    camera.setPollPeriod(1000);
    std::unique_ptr<BenchTab> tab;
    const FeatureList features = camera.features();
    rows.append({"build and show", measure(
                                       [&]
                                       {
                                           tab.reset(new BenchTab(features, nullptr));
                                           tab->show();
                                           tab->stopTimer();
                                       })});
    // Before each step the change poller's look after the last writes (250 ms
    // after they pause) has ended: the step is the tab's alone.
    runEvents(800);
    tab->markAllChanged();
    rows.append({"full tick", measure([&] { tab->updateTimer(); })});
    runEvents(800);
    QComboBox* activation = tab->m_pComboTriggerActivation;
    if (activation && activation->isEnabled() && activation->count() > 1)
        rows.append(
            {"an edit (trigger activation)",
             measure([&] { activation->setCurrentIndex((activation->currentIndex() + 1) % activation->count()); })});
    const QVector<QPair<QString, void (IOTriggerWidget::*)()>> presets{{"preset Edge", &IOTriggerWidget::OnEdgeMode},
                                                                       {"preset Level", &IOTriggerWidget::OnLevelMode},
                                                                       {"preset Bulk", &IOTriggerWidget::OnBulkMode}};
    for (const auto& preset : presets)
    {
        runEvents(800);
        rows.append({preset.first, measure([&] { (tab.get()->*preset.second)(); })});
        tab->stopTimer();
    }
    tab.reset();
    return rows;
}

// Median and worst of one step's runs: "ms (reads r, writes w)".
QString summary(QVector<Sample> samples)
{
    if (samples.isEmpty())
        return QStringLiteral("-");
    std::sort(samples.begin(), samples.end(), [](const Sample& a, const Sample& b) { return a.ms < b.ms; });
    const Sample& median = samples[samples.size() / 2];
    const Sample& worst = samples.last();
    auto packets = [](const Sample& s)
    { return QStringLiteral("%1 r + %2 w").arg(s.packets.gui - s.packets.guiWrites).arg(s.packets.guiWrites); };
    return QStringLiteral("%1 / %2 ms (CPU %3), %4 / %5")
        .arg(number(median.ms, 0), number(worst.ms, 0), number(median.cpuMs, 0), packets(median), packets(worst));
}

void runFigures(const QStringList& models, int seeds)
{
    out << "\n## Through an emulated link: 1.5 ms round trip; 0% and 1% loss, " << seeds
        << " runs each: GUI-thread time, median / worst (its own CPU time, median), and its packets, reads r "
           "and writes w, in the median / worst run\n";
    for (const QString& model : models)
    {
        const QString path = QStringLiteral(TRIGGERIO_CAMERAS_DIR) + "/" + model;
        FakeGigEServer server;
        GenICamCamera probe;
        QString error;
        if (!server.startAndOpen(path, probe, &error))
        {
            out << "\n" << model << ": not run (" << error << ")\n";
            continue;
        }
        probe.close();
        // step -> column (cache on/off, loss) -> samples
        QStringList steps;
        QMap<QString, QMap<int, QVector<Sample>>> table;
        for (int column = 0; column < 4; ++column)
        {
            qputenv("TRIGGERIO_REGISTER_CACHE", column < 2 ? "on" : "off");
            for (int seed = 1; seed <= seeds; ++seed)
            {
                GvcpLink::setEmulation({1.5, column % 2 ? 0.01 : 0.0, unsigned(seed)});
                for (const Row& row : figureRun())
                {
                    if (!steps.contains(row.what))
                        steps << row.what;
                    table[row.what][column] << row.sample;
                }
            }
        }
        GvcpLink::setEmulation({});
        qunsetenv("TRIGGERIO_REGISTER_CACHE");
        out << "\n### " << model << "\n\n| step | cache on, 0% | cache on, 1% | cache off, 0% | cache off, 1% |\n"
            << "|---|---|---|---|---|\n";
        for (const QString& step : steps)
        {
            out << "| " << step;
            for (int column = 0; column < 4; ++column)
                out << " | " << summary(table[step][column]);
            out << " |\n";
        }
        out.flush();
    }
}

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    GvcpLink::markGuiThread();

    int idleSeconds = 5;
    int seeds = 10;
    QString only;
    QStringList models{"line-camera.xml", "syncout-camera.xml", "routing-camera.xml"};
    const QStringList args = app.arguments();
    for (int i = 1; i + 1 < args.size(); i += 2)
    {
        if (args[i] == "--idle")
            idleSeconds = std::max(1, args[i + 1].toInt());
        else if (args[i] == "--seeds")
            seeds = std::max(1, args[i + 1].toInt());
        else if (args[i] == "--only")
            only = args[i + 1];
        else if (args[i] == "--models")
        {
            models.clear();
            for (const QString& model : args[i + 1].split(','))
                models << model + "-camera.xml";
        }
    }

    out << "# triggerio-bench\n";
    // TRIGGERIO_LINK="rtt=1.5,drop=0.05,seed=1" runs the GigE Vision steps through an emulated link.
    if (GvcpLink::emulation().isOn())
        out << "\nGigE Vision control packets through an emulated link: "
            << QString::fromStdString(GvcpLink::describe(GvcpLink::emulation())) << "\n";
    for (const QString& model : only == "figures" ? QStringList() : models)
    {
        if (only.isEmpty() || only == "gige")
            runModel(model, true, idleSeconds);
        if (only.isEmpty() || only == "fake")
            runModel(model, false, idleSeconds);
    }
    if (only.isEmpty() || only == "walk")
    {
        runWalkNotification(false);
        runWalkNotification(true);
    }
    if (only.isEmpty() || only == "memory")
        runMemory();
    if (only == "figures")
        runFigures(models, seeds);
    return 0;
}
