// Seeded random GenICam descriptions, each opened on Aravis's fake device: it
// is refused with a message or opens and every feature reads once, without a
// crash, a sanitizer report or a hang. DESCRIPTIONS_SEED and DESCRIPTIONS_COUNT
// replay one seed or run many (see README.md).
#include <arv.h>

#include "GenICamCamera.h"
#include "GenICamReferenceGraph.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <unistd.h>

namespace
{

quint32 currentSeed;

void onAlarm(int)
{
    char text[80];
    const int n = std::snprintf(text, sizeof text, "FAIL: description seed %u took over 60 s\n", currentSeed);
    (void)!write(STDERR_FILENO, text, size_t(n));
    _exit(1);
}

// One random description built on the demo models' Port and registers.
class Description
{
public:
    explicit Description(quint32 seed)
        : m_rng(seed)
        , m_count(2 + int(m_rng.bounded(60)))
    {
    }

    QByteArray xml()
    {
        QByteArray nodes, root;
        const int categories = int(m_rng.bounded(m_rng.bounded(4) ? 4 : 400));
        for (int i = 0; i < categories; ++i) // nested, wide, listed twice, looping
            nodes += "<Category Name=\"C" + QByteArray::number(i) + "\">" + features(3) + "<pFeature>C" +
                     QByteArray::number(pick(5) ? i + 1 : int(m_rng.bounded(categories + 1))) +
                     "</pFeature></Category>";
        for (int i = 0; i < m_count; ++i)
            nodes += node(i);
        root = features(8) + (categories ? "<pFeature>C0</pFeature>" : "");
        return "<RegisterDescription><Category Name=\"Root\">" + root + "</Category>" + nodes +
               "<Port Name=\"Device\"/></RegisterDescription>";
    }

private:
    bool pick(int oneIn)
    {
        return m_rng.bounded(oneIn) == 0;
    }
    template <typename T> T any(std::initializer_list<T> list)
    {
        return list.begin()[m_rng.bounded(int(list.size()))];
    }
    // Mostly the next node (chains), else any (loops, fans) or none (dangling).
    QByteArray ref(int from)
    {
        const int to = pick(30) ? int(m_rng.bounded(m_count)) : from + 1 + int(m_rng.bounded(pick(3) ? 9 : 1));
        return pick(15) ? "Missing" : "N" + QByteArray::number(to);
    }
    QByteArray prop(const char* name, const QByteArray& value, int oneIn = 4)
    {
        return pick(oneIn) ? QByteArray("<") + name + ">" + value + "</" + name + ">" : QByteArray();
    }
    QByteArray number()
    {
        return any<QByteArray>(
            {"0", "1", "-1", "7", "0x7fffffffffffffff", "-9223372036854775808", "1e308", "3.5", "nonsense", ""});
    }
    QByteArray features(int most)
    {
        QByteArray list;
        for (int n = int(m_rng.bounded(most)); n > 0; --n)
            list += "<pFeature>N" + QByteArray::number(m_rng.bounded(m_count + 2)) + "</pFeature>";
        return list;
    }
    QByteArray formula(int depth = 0)
    {
        if (depth > 6 || pick(3))
            return any<QByteArray>({"X", "Y", "Z", "0", "1", "-2", "9223372036854775807", "1.5e300", "(X)"});
        if (pick(12)) // parentheses deeper than any evaluator stack
            return QByteArray(int(m_rng.bounded(300)), '(') + "X" + QByteArray(int(m_rng.bounded(300)), ')');
        return "(" + formula(depth + 1) +
               any<QByteArray>({"+", "-", "*", "/", "%", "**", "&", "|", "^", "<<", ">>", "=", "<>", "&&", "||", "?"}) +
               formula(depth + 1) + (pick(4) ? ":" + formula(depth + 1) : QByteArray()) + ")";
    }
    static QByteArray escaped(const QByteArray& text)
    {
        return QString::fromLatin1(text).toHtmlEscaped().toLatin1();
    }
    QByteArray registerProps(int i)
    {
        return "<Address>" +
               any<QByteArray>({"0x100", "0x104", "0x120", "0x1000", "0x1010", "0x1130", "0x1400", "0xfffe", "0x10000",
                                "0x20000", "0xffffffff", "-4"}) +
               "</Address>" + prop("pAddress", ref(i)) + prop("pIndex", ref(i)) + "<Length>" +
               any<QByteArray>({"4", "4", "8", "2", "0", "3", "100000"}) + "</Length>" +
               prop("AccessMode", any<QByteArray>({"RW", "RO", "WO"})) + "<pPort>Device</pPort>";
    }
    QByteArray node(int i)
    {
        const QByteArray name = "N" + QByteArray::number(i);
        const QByteArray common = prop("pIsAvailable", ref(i), 6) + prop("pIsLocked", ref(i), 6) +
                                  prop("pSelected", pick(2) ? name : ref(i), 6);
        const QByteArray limits = prop("Min", number()) + prop("Max", number()) + prop("pMin", ref(i), 6) +
                                  prop("pMax", ref(i), 6) + prop("Inc", number(), 6) + prop("pInc", ref(i), 8);
        QByteArray body, variables;
        for (const char* v : {"X", "Y", "Z"})
            variables +=
                pick(3) ? QByteArray() : "<pVariable Name=\"" + QByteArray(v) + "\">" + ref(i) + "</pVariable>";
        switch (m_rng.bounded(11))
        {
        case 0:
            return "<Integer Name=\"" + name + "\">" + common +
                   (pick(2) ? prop("pValue", ref(i), 1)
                            : prop("Value", number(), 1) + prop("pIndex", ref(i), 3) + "<pValueIndexed Index=\"1\">" +
                                  ref(i) + "</pValueIndexed>") +
                   limits + "</Integer>";
        case 1:
            return "<Float Name=\"" + name + "\">" + common +
                   (pick(2) ? prop("pValue", ref(i), 1) : prop("Value", number(), 1)) + limits + "</Float>";
        case 2:
        case 3:
        {
            const QByteArray tag = pick(2) ? "IntSwissKnife" : "SwissKnife";
            return "<" + tag + " Name=\"" + name + "\">" + common + variables + "<Formula>" + escaped(formula()) +
                   "</Formula></" + tag + ">";
        }
        case 4:
            return "<IntConverter Name=\"" + name + "\">" + common + variables + "<FormulaTo>" + escaped(formula()) +
                   "</FormulaTo><FormulaFrom>" + escaped(formula()) + "</FormulaFrom><pValue>" + ref(i) +
                   "</pValue></IntConverter>";
        case 5:
            return "<IntReg Name=\"" + name + "\">" + common + registerProps(i) + "</IntReg>";
        case 6:
            return "<MaskedIntReg Name=\"" + name + "\">" + common + registerProps(i) +
                   any<QByteArray>({"<Bit>3</Bit>", "<LSB>0</LSB><MSB>31</MSB>", "<LSB>40</LSB><MSB>2</MSB>", ""}) +
                   "</MaskedIntReg>";
        case 7:
        {
            QByteArray entries;
            for (int n = int(m_rng.bounded(5)); n > 0; --n) // duplicate names and values, unavailable, none
                entries += "<EnumEntry Name=\"E" + QByteArray::number(m_rng.bounded(3)) + "\">" +
                           prop("pIsAvailable", ref(i)) + prop("Value", number(), 1) + "</EnumEntry>";
            return "<Enumeration Name=\"" + name + "\">" + common + entries + prop("pValue", ref(i), 1) +
                   "</Enumeration>";
        }
        case 8:
            return "<Boolean Name=\"" + name + "\">" + common + prop("pValue", ref(i), 1) + prop("OnValue", number()) +
                   "</Boolean>";
        case 9:
            return "<StringReg Name=\"" + name + "\">" + common + registerProps(i) + "</StringReg>";
        default:
            return "<Register Name=\"" + name + "\">" + common + registerProps(i) + "</Register>";
        }
    }

    QRandomGenerator m_rng;
    const int m_count;
};

// Opens the file and reads every feature once; whether it opened.
bool openAndReadAll(const QString& path)
{
    GenICamCamera camera;
    if (camera.open(GenICamCamera::FakePrefix + path) != OrvErrorSuccess)
        return false;
    for (const auto& feature : *camera.features())
    {
        std::string text;
        bool flag = false;
        long long lo = 0, hi = 0;
        double low = 0, high = 0;
        std::vector<std::string> entries;
        feature->GetValue(text);
        feature->IsWritable(flag);
        feature->GetRange(lo, hi);
        feature->GetIncrement(lo);
        feature->GetRange(low, high);
        feature->GetIncrement(low);
        feature->GetValues(entries);
        for (const std::string& entry : entries)
            feature->IsValueAvailable(entry.c_str(), flag);
    }
    return true;
}

} // namespace

class tst_RandomDescriptions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        for (const char* interfaceId : {"GigEVision", "USB3Vision", "Fake"})
            arv_disable_interface(interfaceId);
        std::signal(SIGALRM, onAlarm);
    }

    // Chains of formulas at the depth limit open and read; one more is refused.
    void chainAtTheLimit()
    {
        const int limit = GenICamReferenceGraph::MaxChainLength;
        for (int hops : {limit, limit + 1})
        {
            QByteArray xml = "<RegisterDescription><Category Name=\"Root\"><pFeature>N0</pFeature></Category>";
            for (int i = 0; i < hops; ++i)
                xml += "<IntSwissKnife Name=\"N" + QByteArray::number(i) + "\"><pVariable Name=\"X\">N" +
                       QByteArray::number(i + 1) + "</pVariable><Formula>X+1</Formula></IntSwissKnife>";
            xml += "<IntReg Name=\"N" + QByteArray::number(hops) +
                   "\"><Address>0x1000</Address><Length>4</Length>"
                   "<pPort>Device</pPort></IntReg><Port Name=\"Device\"/></RegisterDescription>";
            QTemporaryDir dir;
            QFile file(dir.filePath("chain.xml"));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(xml) == xml.size());
            file.close();
            QCOMPARE(openAndReadAll(file.fileName()), hops == limit);
        }
    }

    void randomDescriptions()
    {
        const quint32 first = qEnvironmentVariableIsSet("DESCRIPTIONS_SEED")
                                  ? quint32(qEnvironmentVariableIntValue("DESCRIPTIONS_SEED"))
                                  : 20240601u;
        const int count = qEnvironmentVariableIsSet("DESCRIPTIONS_COUNT")
                              ? qEnvironmentVariableIntValue("DESCRIPTIONS_COUNT")
                          : qEnvironmentVariableIsSet("DESCRIPTIONS_SEED") ? 1
                                                                           : 200;
        QTemporaryDir dir;
        int opened = 0;
        for (int i = 0; i < count; ++i)
        {
            currentSeed = first + quint32(i);
            std::fprintf(stderr, "description seed %u\r", currentSeed); // the last one stays on a crash
            const QByteArray xml = Description(currentSeed).xml();
            QFile file(dir.filePath("random.xml"));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(xml) == xml.size());
            file.close();
            alarm(60);
            opened += openAndReadAll(file.fileName());
            alarm(0);
        }
        qInfo("%d of %d descriptions opened (seeds %u to %u)", opened, count, first, first + quint32(count) - 1);
        QVERIFY(opened > 0 || count < 20); // the generator makes readable cameras too
    }
};

QTEST_GUILESS_MAIN(tst_RandomDescriptions)
#include "tst_RandomDescriptions.moc"
