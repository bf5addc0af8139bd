#ifndef REVIEWEDRECORD_H
#define REVIEWEDRECORD_H

#include <QFile>
#include <QMap>
#include <QStringList>

// The expected results of a data-driven suite, kept in a reviewed text file:
// "== name" opens a case, the lines under it are what the case produced. With
// TRIGGERIO_RECORD=1 in the environment the suite writes the file anew instead
// of comparing (review the diff before committing it).
class ReviewedRecord
{
public:
    explicit ReviewedRecord(const QString& path)
        : m_path(path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            return;
        QString name;
        for (const QString& line : QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts))
        {
            if (line.startsWith("== "))
                name = line.mid(3);
            else
                m_expected[name] << line;
        }
    }

    ~ReviewedRecord()
    {
        QFile file(m_path);
        if (recording() && file.open(QIODevice::WriteOnly | QIODevice::Text))
            for (auto it = m_seen.cbegin(); it != m_seen.cend(); ++it)
                file.write(("== " + it.key() + "\n" + it.value().join('\n') + "\n\n").toUtf8());
    }

    static bool recording()
    {
        return qEnvironmentVariableIsSet("TRIGGERIO_RECORD");
    }

    // What the case produced, and what the record says it should.
    QStringList take(const QString& name, const QStringList& lines)
    {
        m_seen[name] = lines;
        return recording() ? lines : m_expected.value(name, {"(not in " + m_path + ")"});
    }

private:
    QString m_path;
    QMap<QString, QStringList> m_expected;
    QMap<QString, QStringList> m_seen;
};

#endif
