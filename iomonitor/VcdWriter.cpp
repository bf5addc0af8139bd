#include "VcdWriter.h"

#include "SignalTrace.h"

#include <QMap>
#include <QSet>

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

// In the levels of one time stamp: the trace has no sample there.
constexpr int NotSampled = -2;

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
        if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_'))
            c = '_';
    }
    return text.isEmpty() || (text.at(0) >= '0' && text.at(0) <= '9') ? "_" + text : text;
}

QVector<QByteArray> VcdWriter::wireNames(const QVector<const SignalTrace*>& traces)
{
    // Names that are identifiers already keep them; the others, cleaned, get a
    // suffix where a name is taken ("Line 0" beside "Line_0" is "Line_0_2").
    QVector<QByteArray> names(traces.size());
    QSet<QByteArray> taken;
    for (int i = 0; i < traces.size(); ++i)
    {
        const QByteArray name = wireName(traces.at(i)->name());
        if (name == traces.at(i)->name().toLatin1() && !taken.contains(name))
            taken.insert(names[i] = name);
    }
    for (int i = 0; i < traces.size(); ++i)
    {
        if (!names.at(i).isEmpty())
            continue;
        QByteArray tried = wireName(traces.at(i)->name());
        for (int n = 2; taken.contains(tried); ++n)
            tried = wireName(traces.at(i)->name()) + '_' + QByteArray::number(n);
        taken.insert(names[i] = tried);
    }
    return names;
}

QByteArray VcdWriter::dump(const QVector<const SignalTrace*>& traces, qint64 fromMs, qint64 toMs,
                           const QDateTime& taken)
{
    QByteArray out;
    out += "$date " + taken.toString(Qt::ISODate).toLatin1() + " $end\n";
    out += "$version Trigger IO viewer, I/O Monitor $end\n";
    out += "$timescale 1ms $end\n";
    out += "$scope module camera $end\n";
    const QVector<QByteArray> names = wireNames(traces);
    for (int i = 0; i < traces.size(); ++i)
        out += "$var wire 1 " + code(i) + ' ' + names.at(i) + " $end\n";
    out += "$upscope $end\n$enddefinitions $end\n";

    // Each trace's level at the start, and its samples by time. A trace holds
    // a level from its sample to the next time stamp only: at a stamp where
    // other traces were sampled and it was not, it was not read ("x").
    QVector<int> last(traces.size(), SignalTrace::Unknown);
    QMap<qint64, QVector<int>> later;
    for (int i = 0; i < traces.size(); ++i)
    {
        for (const SignalTrace::Sample& sample : traces.at(i)->samples())
        {
            if (sample.ms <= fromMs)
                last[i] = sample.level;
            else if (sample.ms <= toMs)
            {
                auto at = later.find(sample.ms);
                if (at == later.end())
                    at = later.insert(sample.ms, QVector<int>(traces.size(), NotSampled));
                (*at)[i] = sample.level;
            }
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
        for (int i = 0; i < traces.size(); ++i)
        {
            const int level = it.value().at(i) == NotSampled ? SignalTrace::Unknown : it.value().at(i);
            if (last.at(i) == level)
                continue;
            last[i] = level;
            out += value(level) + code(i) + '\n';
        }
        end = it.key();
    }
    if (toMs > end)
        out += '#' + QByteArray::number(toMs - fromMs) + '\n';
    return out;
}
