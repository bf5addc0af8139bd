#include "MonitorSampler.h"

#include "LineSampler.h"
#include "TriggerMonitor.h"

#include <OrvCPP/ExclusiveAccess.h>

namespace
{

// The slice of a wait for exclusive access after which stop() is looked at.
const int AccessSliceMs = 50;

} // namespace

MonitorSampler::MonitorSampler(const FeatureList& features)
    : m_features(features)
{
    qRegisterMetaType<QVector<int>>(); // sampled() is delivered queued
    if (m_features && !m_features->isEmpty())
        m_access = dynamic_cast<OrvCPP::ExclusiveAccess*>(m_features->first().get());
}

MonitorSampler::~MonitorSampler()
{
    // Destroyed once its thread has ended: taking the turn the last slot run
    // gave back orders this after it, also for ThreadSanitizer, which cannot
    // see QThread::wait().
    m_turn.lock();
    m_turn.unlock();
}

void MonitorSampler::stop()
{
    m_stopped = true;
}

void MonitorSampler::dropBefore(qint64 ms)
{
    m_dropBefore = ms;
}

bool MonitorSampler::begin()
{
    while (!m_stopped)
    {
        // Without the interface the calls just run.
        if (!m_access || m_access->BeginExclusive(AccessSliceMs))
            return true;
    }
    return false;
}

void MonitorSampler::end()
{
    if (m_access)
        m_access->EndExclusive();
}

QStringList MonitorSampler::directions() const
{
    QStringList directions;
    for (const LineSampler::Line& line : m_lines->lines())
        directions << line.direction;
    return directions;
}

void MonitorSampler::find()
{
    const std::lock_guard<std::mutex> turn(m_turn);
    if (!begin())
        return;
    m_lines.reset(new LineSampler(m_features));
    m_trigger.reset(new TriggerMonitor(m_features));
    const QString sentence = m_trigger->sentence();
    end();
    QStringList names;
    for (const LineSampler::Line& line : m_lines->lines())
        names << line.name;
    emit found(names, directions(), m_lines->source(), m_trigger->states(), sentence);
}

void MonitorSampler::sample(qint64 ms, bool states)
{
    const std::lock_guard<std::mutex> turn(m_turn);
    if (!m_lines || ms < m_dropBefore || !begin())
        return;
    QVector<int> levels = m_lines->sample();
    if (states)
        levels += m_trigger->sample();
    end();
    emit sampled(ms, levels);
}

void MonitorSampler::reread()
{
    const std::lock_guard<std::mutex> turn(m_turn);
    if (!m_lines || !begin())
        return;
    m_lines->readDirections();
    const QString sentence = m_trigger->sentence();
    end();
    emit directionsRead(directions(), sentence);
}
