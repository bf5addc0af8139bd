// Seeded soak of the Trigger IO tab, with the I/O Monitor sampling beside it
// on the same host: random user edits, camera-side changes
// notified from the camera's thread, show/hide, streaming, refresh ticks,
// injected faults and the tab deleted at random moments (also while a preset
// waits), on cameras of every family and preset variant. After every step the
// invariants below are checked; a broken one names itself, the step and the seed.
//
//   SOAK_SEED=1234 SOAK_STEPS=100000 QT_QPA_PLATFORM=offscreen build/bin/tst_soak
// Aravis (gio) before Qt: gio uses "signals" as a name, Qt as a keyword.
#include <arv.h>

#include "GenICamCamera.h"
#include "GenICamDevice.h"
#include "GenICamFeature.h"
#include "IOMonitorWidget.h"
#include "RegisterCache.h"
#include "TabExtensionInterface.h"
#include "TabAccess.h"
#include "TabCameras.h"

#include <OrvCPP/ExclusiveAccess.h>

#include <QCheckBox>
#include <QComboBox>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QtTest>

#include <cstdio>
#include <random>
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#include <sanitizer/common_interface_defs.h>
#endif

using TestCam::TestCamera;

namespace
{

const QStringList Selectors{"LineSelector", "SyncOutSelector", "LineOutSelector", "UserOutputSelector"};
// What a refresh writes on purpose: selectors moved to each line and back, the
// selectable-output combos (not blocked) writing "LineMode" back when refilled,
// and the status boxes set with live signals after an output rebuild.
const QStringList RefreshWrites = Selectors + QStringList{"LineMode", "LineStatus"};
// Camera-side changes: features and the values the camera may report.
const QStringList CameraSide =
    QString("TriggerSource TriggerActivation TriggerMode AcquisitionMode AcquisitionFrameCount LineMode LineRouting "
            "LineSource LineInverter LineStatus SyncOutSource SyncOutPolarity SyncOutLevels LineOutSource "
            "LineOutLevels UserOutputValue ExposureMode ExposureAuto LineSelector")
        .split(' ');
const QStringList Values =
    QString("On Off Input Output Line0 Line1 Software InputLines FallingEdge Continuous "
            "MultiFrame Timed TriggerWidth Direct GPO UserOutput1 Invert other Trigger bogus 0 1 5")
        .split(' ');
// Faults on any operation but the two a camera needs to let an observer go.
const QStringList FaultOps = QString("GetDisplayName GetCategory GetDataType IsWritable IsValueAvailable GetValues "
                                     "GetString GetDouble GetInt GetBool GetRangeDouble GetRangeInt GetIncrementDouble "
                                     "GetIncrementInt SetDouble SetInt SetBool SetString RunCommand RegisterObserver")
                                 .split(' ');
const QList<OrvErrorType> FaultCodes{OrvErrorInvalidAccess, OrvErrorInvalidValue, OrvErrorDeviceLost,
                                     OrvErrorInvalidCall, OrvErrorTimeout};

enum Kind
{
    Build,
    Edit,
    LineEdit, // the input line selector: moves "LineSelector" on purpose
    Preset,
    CameraChange,
    ShowHide,
    Streaming,
    Refresh,
    Fault,
    Delete,
    Sample, // the monitor reads its lines on its thread: selector walks only (allowed in any step)
    PresetDelete
};
const char* const KindNames[] = {"build",   "edit",  "line edit", "preset", "camera change", "show/hide", "streaming",
                                 "refresh", "fault", "delete",    "sample", "delete in preset"};
const QStringList MonitorWalks{"LineSelector", "AcquisitionStatusSelector"};

// The selectors (and the journal) between two runs of the monitor's calls on its thread.
QMap<QString, QString> settled(TestCamera& cam, QStringList* journal = nullptr)
{
    auto* run = dynamic_cast<OrvCPP::ExclusiveAccess*>(cam.features()->first().get());
    const bool held = run->BeginExclusive(10000);
    QMap<QString, QString> selectors;
    for (const QString& selector : Selectors)
        selectors.insert(selector, cam.value(selector));
    if (journal)
        *journal = cam.takeJournal();
    if (held)
        run->EndExclusive();
    return selectors;
}

// Where the soak is, for the last words of a sanitizer that stops the run.
char whereNow[160];
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
void tellWhere()
{
    std::fprintf(stderr, "soak: stopped %s\n", whereNow);
}
#endif

void deleteAfterPasses(QPointer<QWidget> host, int passes)
{
    QTimer::singleShot(0, host.data(),
                       [host, passes]
                       {
                           if (passes == 0)
                               delete host.data();
                           else
                               deleteAfterPasses(host, passes - 1);
                       });
}

} // namespace

class tst_Soak : public QObject
{
    Q_OBJECT

private slots:
    void soak_data();
    void soak();
    void thousandTabs();
    void demoModels();

private:
    QString checkStep(TestCamera& cam, Kind kind, const QMap<QString, QString>& before, bool tabGone);

    std::mt19937 m_random;
    int m_step = 0;
    quint32 m_seed = 0;
    long m_faults = 0;
    long m_checks = 0;
    int pick(int n)
    {
        return n <= 0 ? 0 : std::uniform_int_distribution<int>(0, n - 1)(m_random);
    }
};

void tst_Soak::soak_data()
{
    QTest::addColumn<int>("variant");
    for (int variant = 0; variant < TabCameras::Names.size(); ++variant)
        QTest::newRow(qPrintable(TabCameras::Names.at(variant))) << variant;
}

QString tst_Soak::checkStep(TestCamera& cam, Kind kind, const QMap<QString, QString>& before, bool tabGone)
{
    const QString where = QString(" at step %1 (%2), seed %3").arg(m_step).arg(KindNames[kind]).arg(m_seed);
    QStringList journal;
    const QMap<QString, QString> now = settled(cam, &journal);

    ++m_checks;
    const bool mayWrite = kind == Build || kind == Edit || kind == LineEdit || kind == Preset || kind == PresetDelete;
    const bool refreshes = kind == Refresh || kind == ShowHide;
    for (const QString& entry : journal)
    {
        const QString name = entry.section(QRegularExpression("[=(]"), 0, 0);
        if (!mayWrite && !(refreshes && RefreshWrites.contains(name)) && !MonitorWalks.contains(name))
            return QString(refreshes ? "invariant 'a refresh writes only on purpose'"
                                     : "invariant 'only steps that may write do'") +
                   " broken" + where + ": " + entry;
    }

    for (const QString& selector : Selectors)
    {
        ++m_checks;
        const bool onPurpose =
            selector == "LineSelector" && (kind == Build || kind == LineEdit || kind == Preset || kind == PresetDelete);
        // A refused write of the selector (a failed restore) is the camera's doing.
        const bool refused = !journal.filter(QRegularExpression("^" + selector + "=.* refused")).isEmpty();
        if (!onPurpose && !refused && now.value(selector) != before.value(selector))
            return QString("invariant 'selectors stay' broken") + where + ": " + selector + " moved from " +
                   before.value(selector) + " to " + now.value(selector) + "; last writes " +
                   journal.mid(journal.size() - 8).join(", ");
    }

    if (tabGone)
    {
        ++m_checks;
        if (cam.observerCount() != 0)
            return QString("invariant 'no observer after the tab' broken") + where;
    }
    return QString();
}

void tst_Soak::soak()
{
    QFETCH(int, variant);
    m_seed = qEnvironmentVariableIsSet("SOAK_SEED") ? qEnvironmentVariable("SOAK_SEED").toUInt() : 20261123u;
    const int steps = qEnvironmentVariableIsSet("SOAK_STEPS") ? qEnvironmentVariableIntValue("SOAK_STEPS") : 2000;
    const int cameras = TabCameras::Names.size();
    const int ownSteps = steps / cameras + (variant < steps % cameras ? 1 : 0);
    m_random.seed(m_seed + static_cast<quint32>(variant));
    m_faults = m_checks = 0;
    std::fprintf(stdout, "soak %s: seed %u, %d steps (replay: SOAK_SEED=%u SOAK_STEPS=%d)\n", QTest::currentDataTag(),
                 m_seed, ownSteps, m_seed, steps);
    std::fflush(stdout);

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    __sanitizer_set_death_callback(tellWhere);
#endif
    TestCamera cam;
    TabCameras::build(cam, TabCameras::Names.at(variant));
    // Every feature of every family (a name a camera lacks takes no fault).
    const QStringList names =
        CameraSide + Selectors + QStringList{"TriggerSelector", "TriggerSoftware", "LineOutPolarity"};
    QPointer<QWidget> host;
    QPointer<TabAccess> tab;
    QPointer<IOMonitorWidget> monitor;
    for (m_step = 0; m_step < ownSteps; ++m_step)
    {
        const QMap<QString, QString> before = settled(cam);
        Kind kind = static_cast<Kind>(1 + pick(10));
        if (!tab)
            kind = Build;
        if (kind == Edit && pick(4) == 0)
            kind = pick(3) == 0 ? PresetDelete : Preset;
        bool tabGone = false;
        std::snprintf(whereNow, sizeof whereNow, "at step %d (%s) of %s, seed %u", m_step, KindNames[kind],
                      QTest::currentDataTag(), m_seed);

        switch (kind)
        {
        case Build:
            delete host;
            host = new QWidget;
            try
            {
                tab = new TabAccess(cam.features(), host);
                monitor = new IOMonitorWidget(cam.features(), host);
            }
            catch (const TabExtensionException&)
            {
                // A camera whose answers hide the tab's features gets no tab;
                // the next step tries again on a camera without faults.
                cam.clearFaults();
            }
            break;
        case Edit:
        case LineEdit:
        {
            QList<QWidget*> controls;
            for (QWidget* w : tab->findChildren<QWidget*>())
            {
                if (w->isEnabled() && w->isVisibleTo(tab) &&
                    (qobject_cast<QComboBox*>(w) || qobject_cast<QCheckBox*>(w) || qobject_cast<QSpinBox*>(w) ||
                     w == tab->m_pButtonSWTrigger))
                    controls << w;
            }
            QWidget* control = controls.value(pick(controls.size()));
            if (control && control == tab->m_pComboInputLineSelector)
                kind = LineEdit;
            if (auto* combo = qobject_cast<QComboBox*>(control))
                combo->setCurrentIndex(pick(combo->count() + 1) - 1);
            else if (auto* check = qobject_cast<QCheckBox*>(control))
                check->click();
            else if (auto* spin = qobject_cast<QSpinBox*>(control))
                spin->setValue(spin->minimum() + pick(spin->maximum() - spin->minimum() + 1));
            else if (auto* button = qobject_cast<QPushButton*>(control))
                button->click();
            break;
        }
        case Preset:
        case PresetDelete:
        {
            QPushButton* presets[] = {tab->m_pButtonEdge, tab->m_pButtonLevel, tab->m_pButtonBulk};
            QPushButton* button = presets[pick(3)];
            // The host deletes the tab after a random number of event-loop passes
            // (so within the preset's first wait, or after a preset without one).
            if (kind == PresetDelete)
                deleteAfterPasses(host, pick(6));
            button->click();
            if (kind == PresetDelete)
            {
                delete host;
                tabGone = true;
            }
            break;
        }
        case CameraChange:
        {
            const QString name = CameraSide.at(pick(CameraSide.size()));
            if (!Selectors.contains(name))
                cam.set(name, Values.at(pick(Values.size())));
            cam.notify(name);
            break;
        }
        case ShowHide:
            host->setVisible(!host->isVisible());
            break;
        case Streaming:
        {
            const bool streaming = pick(2) == 1;
            tab->camIsStreaming(streaming);
            if (monitor)
                monitor->camIsStreaming(streaming);
            break;
        }
        case Sample:
            if (monitor)
                monitor->sampleNow();
            break;
        case Refresh:
            cam.waitForNotifications();
            QCoreApplication::processEvents();
            QMetaObject::invokeMethod(tab, "updateTimer");
            break;
        case Fault:
            ++m_faults;
            if (pick(8) == 0)
                cam.clearFaults();
            else
                cam.fail(names.at(pick(names.size())), FaultOps.at(pick(FaultOps.size())),
                         FaultCodes.at(pick(FaultCodes.size())), pick(2) ? 1 : -1);
            break;
        case Delete:
            delete host;
            tabGone = true;
            break;
        }
        const QString broken = checkStep(cam, kind, before, tabGone);
        if (!broken.isEmpty())
            QFAIL(qPrintable(broken));
    }
    delete host;
    cam.clearFaults();
    cam.waitForNotifications();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(cam.observerCount(), 0);
    std::fprintf(stdout, "soak %s: %d steps, %ld faults injected, %ld invariant checks\n", QTest::currentDataTag(),
                 ownSteps, m_faults, m_checks);
    std::fflush(stdout);
}

// The soak's edits, presets, ticks, samples and camera-side changes on the
// demo models through Aravis, with the register cache verifying every read it
// serves: a burst ends at a random event-loop pass, and no read may differ.
void tst_Soak::demoModels()
{
    m_random.seed(m_seed = qEnvironmentVariableIsSet("SOAK_SEED") ? qEnvironmentVariable("SOAK_SEED").toUInt() : 7u);
    const long before = RegisterCache::mismatches();
    for (const char* model : {"line", "syncout", "routing"})
    {
        GenICamCamera camera;
        QCOMPARE(camera.open(QStringLiteral("fake:" TRIGGERIO_CAMERAS_DIR "/%1-camera.xml").arg(model)),
                 OrvErrorSuccess);
        camera.setPollPeriod(50);
        const FeatureList features = camera.features();
        dynamic_cast<GenICamFeature&>(*features->first()).device()->cache().setMode(RegisterCache::Mode::Verify);
        QWidget host;
        auto* tab = new TabAccess(features, &host);
        auto* monitor = new IOMonitorWidget(features, &host);
        host.show();
        for (m_step = 0; m_step < 150; ++m_step)
        {
            const QList<QComboBox*> combos = tab->findChildren<QComboBox*>();
            QComboBox* combo = combos.value(pick(combos.size()));
            QPushButton* presets[] = {tab->m_pButtonEdge, tab->m_pButtonLevel, tab->m_pButtonBulk};
            switch (pick(6))
            {
            case 0:
                if (combo && combo->isEnabled())
                    combo->setCurrentIndex(pick(combo->count()));
                break;
            case 1:
                presets[pick(3)]->click();
                break;
            case 2:
                QMetaObject::invokeMethod(tab, "updateTimer");
                break;
            case 3:
                monitor->sampleNow();
                break;
            case 4: // a camera-side change
                camera.withAravisDevice(
                    [&](ArvDevice* d)
                    { arv_device_set_boolean_feature_value(d, "UserOutputValue", pick(2), nullptr); });
                break;
            default:
                QTest::qWait(pick(60)); // the burst ends, the poller looks
            }
        }
    }
    QCOMPARE(RegisterCache::mismatches(), before);
}

// Tabs built and destroyed on one camera that outlives them leave nothing behind
// (the sanitizer build reports any leak at exit), not even an observer.
void tst_Soak::thousandTabs()
{
    TestCamera cam;
    TabCameras::build(cam, "syncout");
    for (int i = 0; i < 1000; ++i)
    {
        QWidget host;
        new IOTriggerWidget(cam.features(), &host);
        if (i % 50 == 0)
            cam.notify("TriggerMode"); // delivered while tabs come and go
    }
    cam.waitForNotifications();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(cam.observerCount(), 0);
}

QTEST_MAIN(tst_Soak)
#include "tst_Soak.moc"
