#include "SignalTrace.h"

SignalTrace::SignalTrace(const QString& name)
    : m_name(name)
{
}

QString SignalTrace::name() const
{
    return m_name;
}

QString SignalTrace::kind() const
{
    return m_kind;
}

void SignalTrace::setKind(const QString& kind)
{
    m_kind = kind;
}

void SignalTrace::append(qint64 ms, int level)
{
    m_samples.append(Sample{ms, level});
    if (level == Unknown)
        return;
    if (m_lastKnown != Unknown && level != m_lastKnown)
        ++(level ? m_rising : m_falling);
    m_lastKnown = level;
}

void SignalTrace::forgetBefore(qint64 ms)
{
    int first = 0;
    while (first + 1 < m_samples.size() && m_samples.at(first + 1).ms <= ms)
        ++first;
    if (first > 0)
        m_samples.remove(0, first);
}

void SignalTrace::resetEdges()
{
    m_rising = 0;
    m_falling = 0;
}

void SignalTrace::shift(qint64 ms)
{
    for (Sample& sample : m_samples)
        sample.ms += ms;
}

const QVector<SignalTrace::Sample>& SignalTrace::samples() const
{
    return m_samples;
}

int SignalTrace::level() const
{
    return m_samples.isEmpty() ? Unknown : m_samples.last().level;
}

int SignalTrace::rising() const
{
    return m_rising;
}

int SignalTrace::falling() const
{
    return m_falling;
}
