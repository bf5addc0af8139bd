#ifndef MONITORSAMPLER_H
#define MONITORSAMPLER_H

#include "FeatureList.h"

#include <QObject>
#include <QStringList>
#include <QVector>

#include <atomic>
#include <memory>
#include <mutex>

class LineSampler;
class TriggerMonitor;

namespace OrvCPP
{
class ExclusiveAccess;
}

// Every camera call of the I/O Monitor page, on a thread of its own (the
// page's), so that a camera that does not answer never holds up the GUI:
// finding the lines and the acquisition states, reading directions, the
// trigger sentence and samples. Asked by queued calls of its slots, it
// answers by signals, which reach the page queued on the GUI thread.
//
// Each run of calls (a sample with its selector walks and their restore)
// is bracketed with the camera's ExclusiveAccess where it offers one, so it
// never comes between the Trigger IO tab's calls on the GUI thread; waiting
// for it gives way to stop() at once, so the page can join the thread from
// the GUI thread whatever the GUI thread holds.
class MonitorSampler : public QObject
{
    Q_OBJECT

public:
    explicit MonitorSampler(const FeatureList& features);
    ~MonitorSampler() override;

    // From any thread: runs not yet begun are dropped, a wait for the
    // camera's exclusive access ends.
    void stop();
    // From any thread: samples asked for before ms are not taken.
    void dropBefore(qint64 ms);

public slots:
    // Finds the lines and states; answers with found().
    void find();
    // One sample of the lines (and of the states when asked); answers with sampled().
    void sample(qint64 ms, bool states);
    // Reads the directions and the trigger sentence again; answers with directionsRead().
    void reread();

signals:
    // lines and directions in the order of the rows; source: LineSampler::Source.
    void found(const QStringList& lines, const QStringList& directions, int source, const QStringList& states,
               const QString& sentence);
    // levels: one per line, then one per state (none when not asked), 0, 1 or -1 (unknown).
    void sampled(qint64 ms, const QVector<int>& levels);
    void directionsRead(const QStringList& directions, const QString& sentence);

private:
    // Begins a run that no other thread's calls come between; false when stopped meanwhile.
    bool begin();
    void end();
    QStringList directions() const;

    FeatureList m_features;
    OrvCPP::ExclusiveAccess* m_access = nullptr;
    std::unique_ptr<LineSampler> m_lines;
    std::unique_ptr<TriggerMonitor> m_trigger;
    std::atomic<bool> m_stopped{false};
    std::atomic<qint64> m_dropBefore{0};
    std::mutex m_turn; // held by a slot while it runs
};

#endif
