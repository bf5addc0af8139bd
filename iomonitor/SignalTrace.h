#ifndef SIGNALTRACE_H
#define SIGNALTRACE_H

#include <QString>
#include <QVector>

// The recent levels of one signal, as a logic analyzer keeps them: the times
// of the samples (milliseconds on the monitor's clock) with the level read at
// each, Unknown where the read failed (drawn as a gap), and the rising and
// falling edges seen since the last reset. An edge is counted between two
// known levels that differ, also across a gap: the level did change, only
// when is unknown.
class SignalTrace
{
public:
    static constexpr int Unknown = -1;

    struct Sample
    {
        qint64 ms;
        int level;
    };

    explicit SignalTrace(const QString& name = QString());

    QString name() const;
    // "Input", "Output", "State" and so on; shown beside the name.
    QString kind() const;
    void setKind(const QString& kind);

    void append(qint64 ms, int level);
    // Forgets the samples before ms, except the last one of them, which
    // gives the level at ms.
    void forgetBefore(qint64 ms);
    void resetEdges();
    // Moves every sample by ms: another clock's times onto this one's.
    void shift(qint64 ms);

    const QVector<Sample>& samples() const;
    // Level of the last sample; Unknown when there is none.
    int level() const;
    int rising() const;
    int falling() const;

private:
    QString m_name;
    QString m_kind;
    QVector<Sample> m_samples;
    int m_lastKnown = Unknown;
    int m_rising = 0;
    int m_falling = 0;
};

#endif
