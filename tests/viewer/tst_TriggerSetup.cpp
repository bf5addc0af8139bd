#include "GenICamCamera.h"
#include "TriggerSetup.h"
#include "TriggerSetupActions.h"

#include <QtTest>

#include <future>

using OrvCPP::Feature;
using OrvCPP::shared_ptr;

namespace
{

// A camera's feature, every write also noted in a journal as "Name=value".
class JournalFeature : public Feature
{
public:
    JournalFeature(shared_ptr<Feature> inner, QStringList* journal) : m_in(std::move(inner)), m_journal(journal)
    {
        std::string name;
        m_in->GetName(name);
        m_name = QString::fromStdString(name);
    }
    OrvErrorType GetName(std::string& v) override { return m_in->GetName(v); }
    OrvErrorType GetDisplayName(std::string& v) override { return m_in->GetDisplayName(v); }
    OrvErrorType GetCategory(std::string& v) override { return m_in->GetCategory(v); }
    OrvErrorType GetDataType(OrvFeatureDataType& v) override { return m_in->GetDataType(v); }
    OrvErrorType IsWritable(bool& v) override { return m_in->IsWritable(v); }
    OrvErrorType IsValueAvailable(const char* e, bool& v) override { return m_in->IsValueAvailable(e, v); }
    OrvErrorType GetValues(std::vector<std::string>& v) override { return m_in->GetValues(v); }
    OrvErrorType GetValue(std::string& v) override { return m_in->GetValue(v); }
    OrvErrorType GetValue(double& v) override { return m_in->GetValue(v); }
    OrvErrorType GetValue(long long& v) override { return m_in->GetValue(v); }
    OrvErrorType GetValue(bool& v) override { return m_in->GetValue(v); }
    OrvErrorType GetRange(double& a, double& b) override { return m_in->GetRange(a, b); }
    OrvErrorType GetRange(long long& a, long long& b) override { return m_in->GetRange(a, b); }
    OrvErrorType GetIncrement(double& v) override { return m_in->GetIncrement(v); }
    OrvErrorType GetIncrement(long long& v) override { return m_in->GetIncrement(v); }
    OrvErrorType SetValue(double v) override { return note(QString::number(v), m_in->SetValue(v)); }
    OrvErrorType SetValue(long long v) override { return note(QString::number(v), m_in->SetValue(v)); }
    OrvErrorType SetValue(bool v) override { return note(QString::number(v), m_in->SetValue(v)); }
    OrvErrorType SetValue(const char* v) override { return note(v, m_in->SetValue(v)); }
    OrvErrorType RunCommand() override { return m_in->RunCommand(); }
    OrvErrorType RegisterObserver(const shared_ptr<OrvCPP::IFeatureObserver>& o) override { return m_in->RegisterObserver(o); }
    OrvErrorType UnregisterObserver(const shared_ptr<OrvCPP::IFeatureObserver>& o) override { return m_in->UnregisterObserver(o); }

private:
    OrvErrorType note(const QString& value, OrvErrorType error)
    {
        *m_journal << m_name + "=" + value;
        return error;
    }
    shared_ptr<Feature> m_in;
    QStringList* m_journal;
    QString m_name;
};

// A demo model on Aravis's fake device; its features journaled when journal is given.
struct Camera
{
    GenICamCamera camera;
    FeatureList features;
    Camera(const char* model, QStringList* journal = nullptr)
    {
        if (camera.open(QString("fake:" TRIGGERIO_CAMERAS_DIR "/") + model) != OrvErrorSuccess)
            return;
        features = camera.features();
        if (journal)
            for (auto& feature : *features)
                feature = std::make_shared<JournalFeature>(feature, journal);
    }
    shared_ptr<Feature> at(const QString& name) const
    {
        for (const auto& feature : *features)
        {
            std::string n;
            if (feature->GetName(n) == OrvErrorSuccess && QString::fromStdString(n) == name)
                return feature;
        }
        return nullptr;
    }
    QString get(const QString& name) const
    {
        const auto feature = at(name);
        OrvFeatureDataType type = OrvFeatureDataUnknown;
        std::string text;
        long long number = 0;
        bool flag = false;
        if (!feature || feature->GetDataType(type) != OrvErrorSuccess)
            return "(none)";
        if (type == OrvFeatureDataEnum)
            return feature->GetValue(text) == OrvErrorSuccess ? QString::fromStdString(text) : "(unreadable)";
        if (type == OrvFeatureDataBool)
            return feature->GetValue(flag) == OrvErrorSuccess ? QString::number(flag) : "(unreadable)";
        return feature->GetValue(number) == OrvErrorSuccess ? QString::number(number) : "(unreadable)";
    }
    // Writes "Name=value" pairs in order; the first the camera refuses, or nothing.
    QString set(const QStringList& pairs)
    {
        for (const QString& pair : pairs)
        {
            const QString name = pair.section('=', 0, 0), value = pair.section('=', 1);
            const auto feature = at(name);
            OrvFeatureDataType type = OrvFeatureDataUnknown;
            if (!feature || feature->GetDataType(type) != OrvErrorSuccess)
                return pair;
            const OrvErrorType error = type == OrvFeatureDataEnum ? feature->SetValue(value.toStdString().c_str())
                                       : type == OrvFeatureDataBool ? feature->SetValue(value == "1")
                                                                    : feature->SetValue(value.toLongLong());
            if (error != OrvErrorSuccess)
                return pair;
        }
        return QString();
    }
};

const QStringList selectors = {"TriggerSelector", "LineSelector", "UserOutputSelector"};
const QStringList sourceEdits = {
    "TriggerSelector=AcquisitionStart", "TriggerActivation=LevelHigh",
    "TriggerSelector=FrameStart", "TriggerMode=On", "TriggerSource=Line2", "TriggerActivation=FallingEdge",
    "AcquisitionMode=MultiFrame", "AcquisitionFrameCount=7", "ExposureAuto=Continuous",
    "LineSelector=Line2", "LineMode=Output", "LineSource=UserOutput1", "LineInverter=1",
    "UserOutputSelector=UserOutput1", "UserOutputValue=1",
    "TriggerSelector=AcquisitionStart", "LineSelector=Line3", "UserOutputSelector=UserOutput2"};
// The second camera before the load: a trigger on with another source, and
// Line3 an output that the setup turns back into an input.
const QStringList targetEdits = {
    "TriggerSelector=FrameStart", "TriggerMode=On", "TriggerSource=Line0",
    "LineSelector=Line3", "LineMode=Output", "LineSource=ExposureActive", "LineInverter=1",
    "LineSelector=Line1", "UserOutputSelector=UserOutput0"};

QStringList positions(const Camera& camera)
{
    QStringList out;
    for (const QString& selector : selectors)
        out << camera.get(selector);
    return out;
}

// Every setup feature's value under every selector entry, read through the camera API.
QStringList everything(Camera& camera)
{
    const QList<QPair<QString, QStringList>> table = {
        {"TriggerSelector", {"TriggerMode", "TriggerSource", "TriggerActivation"}},
        {"", {"AcquisitionMode", "AcquisitionFrameCount", "ExposureAuto"}},
        {"LineSelector", {"LineMode", "LineSource", "LineInverter"}},
        {"UserOutputSelector", {"UserOutputValue"}}};
    QStringList out;
    for (const auto& group : table)
    {
        std::vector<std::string> entries{""};
        if (!group.first.isEmpty())
            camera.at(group.first)->GetValues(entries);
        for (const std::string& entry : entries)
        {
            if (!group.first.isEmpty() && !camera.set({group.first + "=" + QString::fromStdString(entry)}).isEmpty())
                out << group.first + " cannot select " + QString::fromStdString(entry);
            for (const QString& name : group.second)
                out << QString::fromStdString(entry) + ":" + name + "=" + camera.get(name);
        }
    }
    return out;
}

} // namespace

// A trigger setup saved from one demo camera and loaded onto others (Aravis's
// fake device in process): values, selectors, order of writes, refusals.
class tst_TriggerSetup : public QObject
{
    Q_OBJECT

private slots:
    void lineToLine()
    {
        Camera source("line-camera.xml"), target("line-camera.xml", &m_journal);
        QVERIFY(source.features && target.features);
        QCOMPARE(source.set(sourceEdits), QString());
        QCOMPARE(target.set(targetEdits), QString());
        const QStringList sourceAt = positions(source), targetAt = positions(target);
        // Saved off the GUI thread, as the viewer does (the GUI thread's run ends
        // when its event loop runs), twice: the second finds the camera free again.
        QString file;
        for (int round = 0; round < 2; ++round)
        {
            auto saving = std::async(std::launch::async, [&source] { return TriggerSetup::capture(source.features).text(); });
            QTRY_VERIFY_WITH_TIMEOUT(saving.wait_for(std::chrono::seconds(0)) == std::future_status::ready, 10000);
            const QString saved = saving.get();
            QVERIFY2(round == 0 || saved == file, qPrintable(saved));
            file = saved;
        }
        QCOMPARE(positions(source), sourceAt);
        QVERIFY2(file.contains("TriggerSelector\tFrameStart\nTriggerMode\tOn\nTriggerSource\tLine2\n"), qPrintable(file));

        TriggerSetup setup;
        QString error;
        QVERIFY2(setup.parse(file, &error), qPrintable(error));
        m_journal.clear();
        const TriggerSetup::Report report = setup.applyTo(target.features);
        QVERIFY2(report.refused.isEmpty() && report.missing.isEmpty(), qPrintable(report.text()));
        QCOMPARE(positions(target), targetAt);
        // The trigger is off while its source changes, and on again last.
        const int off = m_journal.indexOf("TriggerMode=Off"), src = m_journal.indexOf("TriggerSource=Line2");
        QVERIFY2(off >= 0 && off < src && src < m_journal.indexOf("TriggerMode=On"), qPrintable(m_journal.join(' ')));
        // Only what differed was written: of the lines not inverted on the source, Line3 alone.
        QCOMPARE(m_journal.filter("LineInverter=0").size(), 1);
        QCOMPARE(TriggerSetup::capture(target.features).text(), file);

        m_journal.clear();
        const TriggerSetup::Report again = setup.applyTo(target.features);
        QVERIFY2(again.written.isEmpty(), qPrintable(again.text()));
        for (const QString& write : m_journal)
            QVERIFY2(selectors.contains(write.section('=', 0, 0)), qPrintable(write));
        QCOMPARE(positions(target), targetAt);
        QCOMPARE(everything(target), everything(source));
    }

    void lineToRouting()
    {
        Camera source("line-camera.xml"), target("routing-camera.xml");
        QCOMPARE(source.set(sourceEdits), QString());
        QCOMPARE(target.set({"TriggerSelector=ExposureStart", "LineSelector=Line1"}), QString());
        const QStringList targetAt = positions(target);
        TriggerSetup setup;
        QString error;
        QVERIFY(setup.parse(TriggerSetup::capture(source.features).text(), &error));
        const TriggerSetup::Report report = setup.applyTo(QVector<FeatureList>{target.features}).value(0);
        QCOMPARE(report.missing, QStringList{"ExposureAuto"});
        const QString refused = report.refused.join('\n');
        QVERIFY2(refused.contains("TriggerSource[TriggerSelector=FrameStart] = Line2: the camera has no such entry"),
                 qPrintable(refused));
        QVERIFY2(refused.contains("UserOutputSelector = UserOutput2: the camera has no such entry"), qPrintable(refused));
        QCOMPARE(positions(target), targetAt);
        QCOMPARE(target.set({"TriggerSelector=FrameStart"}), QString());
        QCOMPARE(target.get("TriggerActivation") + target.get("TriggerMode"), QString("FallingEdgeOn"));
        QCOMPARE(target.set({"LineSelector=Line2"}), QString());
        QCOMPARE(target.get("LineMode") + target.get("LineSource") + target.get("LineInverter"),
                 QString("OutputUserOutput11"));
        QCOMPARE(target.set({"UserOutputSelector=UserOutput1"}), QString());
        QCOMPARE(target.get("UserOutputValue") + target.get("AcquisitionFrameCount"), QString("17"));
    }

    void malformedFileWritesNothing()
    {
        Camera target("line-camera.xml", &m_journal);
        QTemporaryDir dir;
        QFile file(dir.filePath("setup.txt"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("# Trigger setup\nAcquisitionMode\tSingleFrame\nTriggerSelector\tFrameStart\nTriggerMode On\n"
                   "LineMode\tOutput\n");
        file.close();
        m_journal.clear();
        QString result;
        QVERIFY(!TriggerSetupActions::load(target.features, file.fileName(), &result));
        QVERIFY2(result.contains("line 5: LineMode needs a LineSelector line before it"), qPrintable(result));
        QVERIFY(m_journal.isEmpty());
        TriggerSetup setup;
        QString error;
        QVERIFY(!setup.parse("TriggerSelector\tFrameStart\nTriggerMode\n", &error));
        QCOMPARE(error, QString("line 2: expected a feature name, a tab and one value, found \"TriggerMode\""));

        QVERIFY(TriggerSetupActions::save(target.features, file.fileName(), &error));
        QVERIFY(TriggerSetupActions::load(target.features, file.fileName(), &result));
        QVERIFY2(result.startsWith("0 value(s) written"), qPrintable(result));
    }

private:
    QStringList m_journal;
};

QTEST_MAIN(tst_TriggerSetup)
#include "tst_TriggerSetup.moc"
