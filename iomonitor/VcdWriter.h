#ifndef VCDWRITER_H
#define VCDWRITER_H

#include <QByteArray>
#include <QDateTime>
#include <QVector>

class SignalTrace;

// Writes traces as a Value Change Dump (IEEE 1364), which GTKWave and
// PulseView open: one 1-bit wire per trace, a time stamp (in milliseconds from
// the start of the dump) for every sample taken, the value after it where it
// changed, "x" where the read failed.
class VcdWriter
{
public:
    // The samples between fromMs and toMs, each trace starting with the level
    // it had at fromMs.
    static QByteArray dump(const QVector<const SignalTrace*>& traces, qint64 fromMs, qint64 toMs,
                           const QDateTime& taken);

    // A name GTKWave takes as one identifier: letters, digits and "_".
    static QByteArray wireName(const QString& name);
};

#endif
