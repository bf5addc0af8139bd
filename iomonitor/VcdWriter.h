#ifndef VCDWRITER_H
#define VCDWRITER_H

#include <QByteArray>
#include <QDateTime>
#include <QVector>

class SignalTrace;

// Writes traces as a Value Change Dump (IEEE 1364), which GTKWave, PulseView
// and sigrok-cli open: one 1-bit wire per trace, named after it, a time stamp
// (in milliseconds from the start of the dump) for every sample taken, the
// value after it where it changed, "x" where the read failed and where the
// trace was not sampled (a stamp at which it has no sample), as the page
// draws no level there.
class VcdWriter
{
public:
    // The samples between fromMs and toMs, each trace starting with the level
    // it had at fromMs.
    static QByteArray dump(const QVector<const SignalTrace*>& traces, qint64 fromMs, qint64 toMs,
                           const QDateTime& taken);

    // A name VCD takes as one identifier: letters, digits and "_", not
    // starting with a digit.
    static QByteArray wireName(const QString& name);
    // One distinct wire name per trace, in order: the trace's own name where
    // it is an identifier, else wireName() with a suffix where that is taken.
    static QVector<QByteArray> wireNames(const QVector<const SignalTrace*>& traces);
};

#endif
