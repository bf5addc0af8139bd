#ifndef IOMONITORWIDGET_H
#define IOMONITORWIDGET_H

#include "BaseTabPluginWidget.h"
#include "SignalTrace.h"

#include <QElapsedTimer>
#include <QThread>
#include <QVector>

#include <memory>

class MonitorSampler;
class QLabel;
class TraceStrip;

namespace Ui
{
class IOMonitorWidget;
}

// The "I/O Monitor" page: what the camera's lines and its trigger are doing,
// over the last seconds. One row per line (name, direction, a lamp for the
// level now, the trace, the edges counted), the trigger told as a sentence,
// and, on the same time axis, the camera's acquisition states (read only when
// the user asks: they cost a selector walk a sample) and the viewer's own
// acquisition on/off.
//
// Every camera call of the page (finding the lines, their directions, the
// trigger sentence, samples) runs on the page's own sampler thread
// (MonitorSampler), which hands the results over by queued signals: the rows
// appear once the lines are found. Samples are asked for at the rate the user
// sets, and only while the page is shown, enabled (the viewer disables its
// pages while the camera is lost) and not paused; while one is not answered
// no other is asked for, and every tick that passes meanwhile is a gap in the
// lines' traces ("no answer"), so a silent camera never holds up the window.
// The page writes nothing to the camera but the selector walks that read
// selector-dependent levels, which put the selector back. Time not sampled
// (the page hidden, paused or disabled, the states unticked) is a gap in the
// traces, as a failed read is, never the last level held.
//
// A page built anew for the same camera (the viewer does so when a lost
// camera answers again) goes on with its predecessor's traces, edge counts
// and settings, the time between them a gap: each page offers its history as
// the dynamic property "triggerioCarryOver" of the parent it is given, filled
// when the page is deleted, and takes over the history it finds there when it
// is built (rows matched by name). A host copies the property from the old
// parent to the new one before get().
class IOMonitorWidget : public BaseTabPluginWidget
{
    Q_OBJECT

public:
    IOMonitorWidget(const FeatureList& features, QWidget* parent);
    ~IOMonitorWidget() override;

    // Re-reads the line directions and the trigger sentence when the camera
    // reports them changed.
    void updateInit() override;

    bool isSampling() const;
    // Lines first, then the acquisition states, in the order of the rows;
    // empty until the sampler has found the lines.
    QVector<const SignalTrace*> traces() const;
    // Writes what the traces show now as a Value Change Dump, and keeps its
    // folder (QSettings) for the next proposedSavePath().
    bool saveVcd(const QString& path, QString* error) const;
    // Where "Save..." proposes to save: io-monitor.vcd in the folder saved to
    // last, else in the documents folder.
    QString proposedSavePath() const;

    // What a page hands on to its successor (see above).
    struct History;

public slots:
    // The host's acquisition on/off.
    void camIsStreaming(bool streaming);
    // Asks the sampler for one sample of every row now; sampled() follows.
    void sampleNow();

signals:
    // A sample, or a gap for one not answered, is in the traces.
    void sampled();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private slots:
    void OnRateChanged(int rate);
    void OnWindowChanged(int seconds);
    void OnPauseToggled(bool paused);
    void OnResetClicked();
    void OnSaveClicked();
    void OnStatesToggled(bool on);
    void OnTick();
    void OnFound(const QStringList& lines, const QStringList& directions, int source, const QStringList& states,
                 const QString& sentence);
    void OnSampled(qint64 ms, const QVector<int>& levels);
    void OnDirectionsRead(const QStringList& directions, const QString& sentence);

private:
    struct Row
    {
        SignalTrace trace;
        QLabel* kind = nullptr;
        QLabel* lamp = nullptr;
        TraceStrip* strip = nullptr;
        QLabel* edges = nullptr;
        int lampLevel = SignalTrace::Unknown; // the level the lamp shows
    };

    void addRow(const QString& name, const QString& kind);
    void updateSampling();
    void request(qint64 now);
    // From now on the rows from first to last (the lines, or the states) are
    // not sampled: a gap in every one that has a level.
    void markNotSampled(int first, int last);
    void takeOver(const std::shared_ptr<History>& before);
    void updateSamplingNote();
    void updateDirections(const QStringList& directions);
    // Lamps, edge counts and the time window of every row.
    void showRows();

    std::unique_ptr<Ui::IOMonitorWidget> ui;
    QThread m_thread;
    std::unique_ptr<MonitorSampler> m_sampler;
    bool m_found = false;
    int m_lineCount = 0;
    int m_stateCount = 0;
    int m_source = 0;  // LineSampler::Source
    int m_pending = 0; // samples asked for and not answered
    qint64 m_pendingSince = 0;
    bool m_noAnswer = false;
    qint64 m_lastAppendedMs = 0;       // a sample answered for an earlier time comes too late
    std::shared_ptr<History> m_before; // the predecessor's, until the rows are there
    std::vector<std::unique_ptr<Row>> m_rows;
    bool m_bAcquiring = false;
    bool m_bShown = false;
    QTimer* m_pSampleTimer = nullptr;
    QElapsedTimer m_clock;
    qint64 m_lastSampleMs = 0;
    std::shared_ptr<History> m_history;
};

#endif
