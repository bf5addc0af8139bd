#include "VcdWriter.h"

#include "SignalTrace.h"

#include <QMap>

namespace
{

// Short identifier codes, made of the printable characters "!" to "~".
QByteArray code(int index)
{
    QByteArray text;
    do
    {
        text.append(char('!' + index % 94));
        index /= 94;
    } while (index > 0);
    return text;
}

char value(int level)
{
    return level == SignalTrace::Unknown ? 'x' : level ? '1' : '0';
}

} // namespace

QByteArray VcdWriter::wireName(const QString& name)
{
    QByteArray text = name.toLatin1();
    for (char& c : text)
    {
        if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')))
            c = '_';
    }
    return text.isEmpty() ? QByteArray("_") : text;
}

QByteArray VcdWriter::dump(const QVector<const SignalTrace*>& traces, qint64 fromMs, qint64 toMs,
                           const QDateTime& taken)
{
    QByteArray out;
    out += "$date " + taken.toString(Qt::ISODate).toLatin1() + " $end\n";
    out += "$version Trigger IO viewer, I/O Monitor $end\n";
    out += "$timescale 1ms $end\n";
    out += "$scope module camera $end\n";
    for (int i = 0; i < traces.size(); ++i)
        out += "$var wire 1 " + code(i) + ' ' + wireName(traces.at(i)->name()) + " $end\n";
    out += "$upscope $end\n$enddefinitions $end\n";

    // Each trace's level at the start, and every later sample by time.
    QVector<int> last(traces.size(), SignalTrace::Unknown);
    QMap<qint64, QVector<QPair<int, int>>> later;
    for (int i = 0; i < traces.size(); ++i)
    {
        for (const SignalTrace::Sample& sample : traces.at(i)->samples())
        {
            if (sample.ms <= fromMs)
                last[i] = sample.level;
            else if (sample.ms <= toMs)
                later[sample.ms].append(qMakePair(i, sample.level));
        }
    }
    out += "#0\n$dumpvars\n";
    for (int i = 0; i < traces.size(); ++i)
        out += value(last.at(i)) + code(i) + '\n';
    out += "$end\n";
    qint64 end = fromMs;
    for (auto it = later.cbegin(); it != later.cend(); ++it)
    {
        out += '#' + QByteArray::number(it.key() - fromMs) + '\n';
        for (const QPair<int, int>& change : it.value())
        {
            if (last.at(change.first) == change.second)
                continue;
            last[change.first] = change.second;
            out += value(change.second) + code(change.first) + '\n';
        }
        end = it.key();
    }
    if (toMs > end)
        out += '#' + QByteArray::number(toMs - fromMs) + '\n';
    return out;
}
