#include "IOMonitorWidget.h"
#include "ui_IOMonitorWidget.h"

#include "LineSampler.h"
#include "MonitorSampler.h"
#include "TabExtensionInterface.h"
#include "TraceStrip.h"
#include "VcdWriter.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QMutexLocker>
#include <QSaveFile>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>
#include <QTranslator>

// The traces of a deleted page, with the start of the clock their times count
// from (msecsSinceReference() of its QElapsedTimer), and the page's settings.
struct IOMonitorWidget::History
{
    std::vector<SignalTrace> traces;
    qint64 clockStart = 0;
    int rate = 0; // samples a second; 0 until the page is deleted
    int seconds = 0;
    bool states = false;
    bool paused = false;
};
Q_DECLARE_METATYPE(std::shared_ptr<IOMonitorWidget::History>)

namespace
{

// The parent's dynamic property on which a page hands its history on to its successor.
const char* const CarryOverProperty = "triggerioCarryOver";

// The setting that keeps the folder the traces were saved to last.
const char* const SaveFolderKey = "IOMonitor/saveFolder";

// Samples are kept this long, the longest window the page shows.
const qint64 KeptMs = 60000;

// A sample not answered for this long (or a sampling period, if longer) is a
// gap in the traces.
const qint64 NoAnswerMs = 150;

const char* lampStyle(int level)
{
    if (level == SignalTrace::Unknown)
        return "border: 1px solid gray; border-radius: 7px;";
    return level ? "background-color: rgb(80, 220, 120); border-radius: 7px;"
                 : "background-color: rgb(60, 66, 72); border-radius: 7px;";
}

void installTranslationOnce(QTranslator* translator)
{
    static bool installed = false;
    if (installed || translator->isEmpty())
    {
        delete translator;
        return;
    }
    installed = QApplication::installTranslator(translator);
}

} // namespace

IOMonitorWidget::IOMonitorWidget(const FeatureList& features, QWidget* parent)
    : BaseTabPluginWidget(features, parent)
    , ui(new Ui::IOMonitorWidget)
    , m_sampler(new MonitorSampler(features))
    , m_history(std::make_shared<History>())
{
    // Whether the camera has lines at all, from the names of its features
    // alone: the lines themselves are found on the sampler's thread.
    const FeatureManager names(features);
    if (!names.GetFeatureByName("LineSelector", "LineOutSelector", "SyncOutSelector") &&
        !names.GetFeatureByName("LineInSelector", "SyncInSelector"))
        throw TENotSupported("IOMonitorWidget", "No lines to monitor, widget not constructed");
    installTranslationOnce(GetTranslator("tabextensioniomonitor"));
    if (parent)
        parent->setAccessibleName(tr("I/O Monitor"));
    setAccessibleName(tr("I/O Monitor"));

    ui->setupUi(this);
    ui->cb_States->setVisible(false);
    ui->grid_Lines->setColumnStretch(3, 1);
    m_pSampleTimer = new QTimer(this);
    connect(m_pSampleTimer, &QTimer::timeout, this, &IOMonitorWidget::OnTick);
    connect(ui->sb_Rate, SIGNAL(valueChanged(int)), this, SLOT(OnRateChanged(int)));
    connect(ui->sb_Window, SIGNAL(valueChanged(int)), this, SLOT(OnWindowChanged(int)));
    connect(ui->pb_Pause, SIGNAL(toggled(bool)), this, SLOT(OnPauseToggled(bool)));
    connect(ui->pb_Reset, SIGNAL(clicked()), this, SLOT(OnResetClicked()));
    connect(ui->pb_Save, SIGNAL(clicked()), this, SLOT(OnSaveClicked()));
    connect(ui->cb_States, &QCheckBox::toggled, this, &IOMonitorWidget::OnStatesToggled);
    m_clock.start();
    if (parent)
    {
        m_before = parent->property(CarryOverProperty).value<std::shared_ptr<History>>();
        parent->setProperty(CarryOverProperty, QVariant::fromValue(m_history));
    }
    // The predecessor's settings at once, its traces once the rows are there.
    if (m_before && m_before != m_history && m_before->rate != 0)
    {
        ui->sb_Rate->setValue(m_before->rate);
        ui->sb_Window->setValue(m_before->seconds);
        ui->cb_States->setChecked(m_before->states);
        ui->pb_Pause->setChecked(m_before->paused);
    }

    connect(m_sampler.get(), &MonitorSampler::found, this, &IOMonitorWidget::OnFound);
    connect(m_sampler.get(), &MonitorSampler::sampled, this, &IOMonitorWidget::OnSampled);
    connect(m_sampler.get(), &MonitorSampler::directionsRead, this, &IOMonitorWidget::OnDirectionsRead);
    m_thread.setObjectName("iomonitor-sampler");
    m_sampler->moveToThread(&m_thread);
    m_thread.start();
    // Calls to the sampler's thread go by name: Qt then queues the call and its
    // arguments itself, which ThreadSanitizer sees handed over in order.
    QMetaObject::invokeMethod(m_sampler.get(), "find", Qt::QueuedConnection);

    m_ObservedFeatures << QStringList{"LineMode", "TriggerSelector", "TriggerMode", "TriggerSource",
                                      "TriggerActivation"};
    RegisterFeatureObserver(true);
}

IOMonitorWidget::~IOMonitorWidget()
{
    // The sampler gives way at once unless it is inside a camera call; what
    // it answers from now on is not delivered.
    m_sampler->stop();
    m_thread.quit();
    m_thread.wait();
    m_sampler.reset();
    // The history goes to whoever holds the offer, the parent's property or a
    // copy of it: the predecessor's when this page found no lines yet.
    if (!m_found)
    {
        if (m_before && m_before != m_history)
            *m_history = std::move(*m_before);
        return;
    }
    if (m_pSampleTimer->isActive())
        markNotSampled(0, int(m_rows.size()) - 1);
    m_history->clockStart = m_clock.msecsSinceReference();
    m_history->rate = ui->sb_Rate->value();
    m_history->seconds = ui->sb_Window->value();
    m_history->states = ui->cb_States->isChecked();
    m_history->paused = ui->pb_Pause->isChecked();
    for (const std::unique_ptr<Row>& row : m_rows)
        m_history->traces.push_back(std::move(row->trace));
}

void IOMonitorWidget::OnFound(const QStringList& lines, const QStringList& directions, int source,
                              const QStringList& states, const QString& sentence)
{
    m_found = true;
    m_lineCount = lines.size();
    m_stateCount = states.size();
    m_source = source;
    for (const QString& line : lines)
        addRow(line, QString());
    updateDirections(directions);
    for (const QString& state : states)
        addRow(state, tr("Camera state"));
    // The viewer's own acquisition on/off costs no read.
    addRow("Acquiring", tr("Viewer"));
    ui->cb_States->setVisible(!states.isEmpty());
    ui->grid_Lines->setRowStretch(int(m_rows.size()), 1);
    ui->l_Trigger->setText(sentence);
    takeOver(m_before);
    m_before.reset();
    updateSamplingNote();
    showRows();
    updateSampling();
}

void IOMonitorWidget::takeOver(const std::shared_ptr<History>& before)
{
    if (!before || before == m_history || before->rate == 0)
        return;
    // The predecessor's sample times, on this page's clock.
    const qint64 shift = before->clockStart - m_clock.msecsSinceReference();
    for (SignalTrace& trace : before->traces)
    {
        for (const std::unique_ptr<Row>& row : m_rows)
        {
            if (row->trace.name() != trace.name() || trace.samples().isEmpty())
                continue;
            const QString kind = row->trace.kind(); // what this camera says now
            row->trace = std::move(trace);
            row->trace.shift(shift);
            row->trace.setKind(kind);
            m_lastSampleMs = qMax(m_lastSampleMs, row->trace.samples().last().ms);
            break;
        }
    }
    before->traces.clear();
}

void IOMonitorWidget::addRow(const QString& name, const QString& kind)
{
    std::unique_ptr<Row> row(new Row{SignalTrace(name), new QLabel(kind), new QLabel, nullptr, new QLabel});
    row->trace.setKind(kind);
    row->strip = new TraceStrip(&row->trace);
    row->lamp->setObjectName(QString("lamp%1").arg(m_rows.size())); // lamp0 for the first row
    row->lamp->setFixedSize(14, 14);
    row->lamp->setStyleSheet(lampStyle(row->lampLevel));
    row->edges->setToolTip(tr("Rising and falling edges seen since the last reset"));
    const int r = int(m_rows.size());
    ui->grid_Lines->addWidget(new QLabel(name), r, 0);
    ui->grid_Lines->addWidget(row->kind, r, 1);
    ui->grid_Lines->addWidget(row->lamp, r, 2);
    ui->grid_Lines->addWidget(row->strip, r, 3);
    ui->grid_Lines->addWidget(row->edges, r, 4);
    m_rows.push_back(std::move(row));
}

void IOMonitorWidget::updateInit()
{
    // Any of the observed features: directions and the sentence are read again, on the sampler's thread.
    if (!m_pChangedFeatures->isEmpty())
        QMetaObject::invokeMethod(m_sampler.get(), "reread", Qt::QueuedConnection);
}

void IOMonitorWidget::OnDirectionsRead(const QStringList& directions, const QString& sentence)
{
    updateDirections(directions);
    ui->l_Trigger->setText(sentence);
}

void IOMonitorWidget::updateDirections(const QStringList& directions)
{
    for (int i = 0; i < directions.size() && i < m_lineCount; ++i)
    {
        const QString& direction = directions.at(i);
        m_rows.at(i)->trace.setKind(direction);
        m_rows.at(i)->kind->setText(direction == "Output" ? tr("Output")
                                    : direction == "Input" ? tr("Input")
                                                           : direction);
    }
}

void IOMonitorWidget::updateSamplingNote()
{
    QString source;
    switch (m_source)
    {
    case LineSampler::StatusAll:
        source = tr("Line levels from LineStatusAll, one read a sample.");
        break;
    case LineSampler::StatusWalk:
        source = tr("Line levels from LineStatus, read line by line.");
        break;
    case LineSampler::LevelMasks:
        source = tr("Line levels from the camera's level masks.");
        break;
    case LineSampler::NoLevels:
        source = tr("The camera does not report line levels.");
        break;
    }
    const int period = 1000 / ui->sb_Rate->value();
    ui->l_SamplingNote->setText((m_noAnswer ? tr("No answer from the camera: the traces have a gap. ") : QString()) +
                                tr("%1 samples a second: pulses shorter than %2 ms can be missed. %3 "
                                   "Nothing is read while this page is hidden or paused.")
                                    .arg(ui->sb_Rate->value())
                                    .arg(period)
                                    .arg(source));
}

bool IOMonitorWidget::isSampling() const
{
    return m_pSampleTimer->isActive();
}

QVector<const SignalTrace*> IOMonitorWidget::traces() const
{
    QVector<const SignalTrace*> traces;
    for (const std::unique_ptr<Row>& row : m_rows)
        traces << &row->trace;
    return traces;
}

void IOMonitorWidget::updateSampling()
{
    const bool on = m_found && m_bShown && isEnabled() && !ui->pb_Pause->isChecked();
    m_pSampleTimer->setInterval(1000 / ui->sb_Rate->value());
    if (on && !m_pSampleTimer->isActive())
        m_pSampleTimer->start();
    else if (!on && m_pSampleTimer->isActive())
    {
        m_pSampleTimer->stop();
        markNotSampled(0, int(m_rows.size()) - 1);
        // Samples asked for and not begun are not taken: a stopped page reads nothing.
        m_sampler->dropBefore(m_lastAppendedMs + 1);
        m_pending = 0;
    }
}

void IOMonitorWidget::markNotSampled(int first, int last)
{
    const qint64 now = m_clock.elapsed();
    for (int r = first; r <= last; ++r)
    {
        if (m_rows.at(r)->trace.level() != SignalTrace::Unknown)
            m_rows.at(r)->trace.append(now, SignalTrace::Unknown);
    }
    // A sample asked for before comes too late: the gap stands.
    m_lastAppendedMs = now;
}

void IOMonitorWidget::OnStatesToggled(bool on)
{
    if (!on && isSampling())
        markNotSampled(m_lineCount, m_lineCount + m_stateCount - 1);
}

void IOMonitorWidget::OnTick()
{
    const qint64 now = m_clock.elapsed();
    if (m_pending == 0)
    {
        request(now);
        return;
    }
    if (now - m_pendingSince < qMax<qint64>(NoAnswerMs, m_pSampleTimer->interval()))
        return;
    // The camera has not answered the sample asked for: a gap in the lines
    // (and the states), the viewer's acquisition goes on.
    if (!m_noAnswer)
    {
        m_noAnswer = true;
        updateSamplingNote();
    }
    markNotSampled(0, m_lineCount + m_stateCount - 1);
    m_rows.back()->trace.append(now, m_bAcquiring ? 1 : 0);
    m_lastSampleMs = now;
    showRows();
    emit sampled();
}

void IOMonitorWidget::request(qint64 now)
{
    if (m_pending++ == 0)
        m_pendingSince = now;
    const bool states = ui->cb_States->isChecked();
    QMetaObject::invokeMethod(m_sampler.get(), "sample", Qt::QueuedConnection, Q_ARG(qint64, now),
                              Q_ARG(bool, states));
}

void IOMonitorWidget::sampleNow()
{
    if (m_found)
        request(m_clock.elapsed());
}

void IOMonitorWidget::OnSampled(qint64 ms, const QVector<int>& levels)
{
    m_pending = qMax(0, m_pending - 1);
    if (m_pending > 0)
        m_pendingSince = m_clock.elapsed();
    if (ms < m_lastAppendedMs)
        return;
    if (m_noAnswer)
    {
        m_noAnswer = false;
        updateSamplingNote();
    }
    for (int r = 0; r < levels.size() && r + 1 < int(m_rows.size()); ++r)
        m_rows.at(r)->trace.append(ms, levels.at(r));
    m_rows.back()->trace.append(ms, m_bAcquiring ? 1 : 0);
    for (const std::unique_ptr<Row>& row : m_rows)
        row->trace.forgetBefore(ms - KeptMs);
    m_lastSampleMs = m_lastAppendedMs = ms;
    showRows();
    emit sampled();
}

void IOMonitorWidget::showRows()
{
    const qint64 from = m_lastSampleMs - ui->sb_Window->value() * 1000;
    for (const std::unique_ptr<Row>& row : m_rows)
    {
        // A style sheet costs a restyle of the lamp: set only when the level changed.
        if (row->lampLevel != row->trace.level())
        {
            row->lampLevel = row->trace.level();
            row->lamp->setStyleSheet(lampStyle(row->lampLevel));
        }
        row->edges->setText(QString::fromUtf8("\u2191%1 \u2193%2").arg(row->trace.rising()).arg(row->trace.falling()));
        row->strip->setWindow(from, m_lastSampleMs);
    }
}

void IOMonitorWidget::camIsStreaming(bool streaming)
{
    m_bAcquiring = streaming;
}

void IOMonitorWidget::showEvent(QShowEvent* event)
{
    BaseTabPluginWidget::showEvent(event);
    m_bShown = true;
    updateSampling();
}

void IOMonitorWidget::hideEvent(QHideEvent* event)
{
    BaseTabPluginWidget::hideEvent(event);
    m_bShown = false;
    updateSampling();
}

void IOMonitorWidget::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::EnabledChange)
        updateSampling();
    BaseTabPluginWidget::changeEvent(event);
}

void IOMonitorWidget::OnRateChanged(int)
{
    updateSamplingNote();
    updateSampling();
}

void IOMonitorWidget::OnWindowChanged(int)
{
    showRows();
}

void IOMonitorWidget::OnPauseToggled(bool)
{
    updateSampling();
}

void IOMonitorWidget::OnResetClicked()
{
    for (const std::unique_ptr<Row>& row : m_rows)
        row->trace.resetEdges();
    showRows();
}

bool IOMonitorWidget::saveVcd(const QString& path, QString* error) const
{
    QSaveFile file(path);
    const QByteArray dump =
        // To the end of the last sample's millisecond, so that a reader shows its levels too.
        VcdWriter::dump(traces(), m_lastSampleMs - ui->sb_Window->value() * 1000, m_lastSampleMs + 1,
                        QDateTime::currentDateTime());
    if (!file.open(QIODevice::WriteOnly) || file.write(dump) != dump.size() || !file.commit())
    {
        if (error)
            *error = file.errorString();
        return false;
    }
    QSettings().setValue(SaveFolderKey, QFileInfo(path).absolutePath());
    return true;
}

QString IOMonitorWidget::proposedSavePath() const
{
    // In the folder saved to last, else in the user's documents folder (or
    // home, without one): never the working folder, which an installed viewer
    // may not write to.
    QString folder = QSettings().value(SaveFolderKey).toString();
    if (folder.isEmpty() || !QDir(folder).exists())
        folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (!QDir(folder).exists())
        folder = QDir::homePath();
    return QDir(folder).filePath("io-monitor.vcd");
}

void IOMonitorWidget::OnSaveClicked()
{
    const QString path =
        QFileDialog::getSaveFileName(this, tr("Save traces"), proposedSavePath(), tr("Value Change Dump (*.vcd)"));
    QString error;
    if (!path.isEmpty() && !saveVcd(path, &error))
        QMessageBox::warning(this, tr("Save traces"), tr("Could not write %1: %2").arg(path, error));
}
