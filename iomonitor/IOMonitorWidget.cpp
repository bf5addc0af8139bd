#include "IOMonitorWidget.h"
#include "ui_IOMonitorWidget.h"

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
    , m_lines(features)
    , m_trigger(features)
    , m_history(std::make_shared<History>())
{
    if (m_lines.lines().isEmpty())
        throw TENotSupported("IOMonitorWidget", "No lines to monitor, widget not constructed");
    installTranslationOnce(GetTranslator("tabextensioniomonitor"));
    if (parent)
        parent->setAccessibleName(tr("I/O Monitor"));
    setAccessibleName(tr("I/O Monitor"));

    ui->setupUi(this);
    for (const LineSampler::Line& line : m_lines.lines())
        addRow(line.name, QString());
    updateDirections();
    for (const QString& state : m_trigger.states())
        addRow(state, tr("Camera state"));
    // The viewer's own acquisition on/off costs no read.
    addRow("Acquiring", tr("Viewer"));
    ui->cb_States->setVisible(!m_trigger.states().isEmpty());
    ui->grid_Lines->setColumnStretch(3, 1);
    ui->grid_Lines->setRowStretch(int(m_rows.size()), 1);

    m_pSampleTimer = new QTimer(this);
    connect(m_pSampleTimer, SIGNAL(timeout()), this, SLOT(sampleNow()));
    connect(ui->sb_Rate, SIGNAL(valueChanged(int)), this, SLOT(OnRateChanged(int)));
    connect(ui->sb_Window, SIGNAL(valueChanged(int)), this, SLOT(OnWindowChanged(int)));
    connect(ui->pb_Pause, SIGNAL(toggled(bool)), this, SLOT(OnPauseToggled(bool)));
    connect(ui->pb_Reset, SIGNAL(clicked()), this, SLOT(OnResetClicked()));
    connect(ui->pb_Save, SIGNAL(clicked()), this, SLOT(OnSaveClicked()));
    updateSamplingNote();
    ui->l_Trigger->setText(m_trigger.sentence());
    m_clock.start();
    if (parent)
    {
        takeOver(parent->property(CarryOverProperty).value<std::shared_ptr<History>>());
        parent->setProperty(CarryOverProperty, QVariant::fromValue(m_history));
    }
    showRows();

    m_ObservedFeatures << QStringList{"LineMode", "TriggerSelector", "TriggerMode", "TriggerSource",
                                      "TriggerActivation"};
    RegisterFeatureObserver(true);
}

IOMonitorWidget::~IOMonitorWidget()
{
    // The history goes to whoever holds the offer, the parent's property or a copy of it.
    if (m_pSampleTimer->isActive())
        markNotSampled();
    m_history->clockStart = m_clock.msecsSinceReference();
    m_history->rate = ui->sb_Rate->value();
    m_history->seconds = ui->sb_Window->value();
    m_history->states = ui->cb_States->isChecked();
    m_history->paused = ui->pb_Pause->isChecked();
    for (const std::unique_ptr<Row>& row : m_rows)
        m_history->traces.push_back(std::move(row->trace));
}

void IOMonitorWidget::takeOver(const std::shared_ptr<History>& before)
{
    if (!before || before == m_history || before->rate == 0)
        return;
    ui->sb_Rate->setValue(before->rate);
    ui->sb_Window->setValue(before->seconds);
    ui->cb_States->setChecked(before->states);
    ui->pb_Pause->setChecked(before->paused);
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
    const QStringList& changed = *m_pChangedFeatures;
    if (changed.contains("LineMode"))
    {
        m_lines.readDirections();
        updateDirections();
    }
    for (const char* name : {"TriggerSelector", "TriggerMode", "TriggerSource", "TriggerActivation"})
    {
        if (changed.contains(name))
        {
            ui->l_Trigger->setText(m_trigger.sentence());
            break;
        }
    }
}

void IOMonitorWidget::updateDirections()
{
    const QVector<LineSampler::Line>& lines = m_lines.lines();
    for (int i = 0; i < lines.size(); ++i)
    {
        const QString& direction = lines.at(i).direction;
        m_rows.at(i)->trace.setKind(direction);
        m_rows.at(i)->kind->setText(direction == "Output" ? tr("Output")
                                    : direction == "Input" ? tr("Input")
                                                           : direction);
    }
}

void IOMonitorWidget::updateSamplingNote()
{
    QString source;
    switch (m_lines.source())
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
    ui->l_SamplingNote->setText(tr("%1 samples a second: pulses shorter than %2 ms can be missed. %3 "
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
    const bool on = m_bShown && isEnabled() && !ui->pb_Pause->isChecked();
    m_pSampleTimer->setInterval(1000 / ui->sb_Rate->value());
    if (on && !m_pSampleTimer->isActive())
        m_pSampleTimer->start();
    else if (!on && m_pSampleTimer->isActive())
    {
        m_pSampleTimer->stop();
        markNotSampled();
    }
}

void IOMonitorWidget::markNotSampled()
{
    const qint64 now = m_clock.elapsed();
    for (const std::unique_ptr<Row>& row : m_rows)
    {
        if (row->trace.level() != SignalTrace::Unknown)
            row->trace.append(now, SignalTrace::Unknown);
    }
}

void IOMonitorWidget::sampleNow()
{
    const qint64 now = m_clock.elapsed();
    const QVector<int> levels = m_lines.sample();
    // The states cost a selector walk a sample: read only when asked for.
    const QVector<int> states = ui->cb_States->isChecked() ? m_trigger.sample() : QVector<int>();
    int r = 0;
    for (int level : levels)
        m_rows.at(r++)->trace.append(now, level);
    for (int state : states)
        m_rows.at(r++)->trace.append(now, state);
    m_rows.back()->trace.append(now, m_bAcquiring ? 1 : 0);
    for (const std::unique_ptr<Row>& row : m_rows)
        row->trace.forgetBefore(now - KeptMs);
    m_lastSampleMs = now;
    showRows();
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
    return true;
}

void IOMonitorWidget::OnSaveClicked()
{
    // In the folder saved to last, else in the user's documents folder (or
    // home, without one): never the working folder, which an installed viewer
    // may not write to.
    QSettings settings;
    QString folder = settings.value(SaveFolderKey).toString();
    if (folder.isEmpty() || !QDir(folder).exists())
        folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (!QDir(folder).exists())
        folder = QDir::homePath();
    const QString path = QFileDialog::getSaveFileName(this, tr("Save traces"), QDir(folder).filePath("io-monitor.vcd"),
                                                      tr("Value Change Dump (*.vcd)"));
    if (path.isEmpty())
        return;
    settings.setValue(SaveFolderKey, QFileInfo(path).absolutePath());
    QString error;
    if (!saveVcd(path, &error))
        QMessageBox::warning(this, tr("Save traces"), tr("Could not write %1: %2").arg(path, error));
}
