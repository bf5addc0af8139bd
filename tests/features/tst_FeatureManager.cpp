#include "FeatureManager.h"
#include "TestCamera.h"

#include <QtTest>

#include <memory>

using TestCam::Op;
using TestCam::TestCamera;
using Names = QStringList;

namespace
{

const int NoFault = -1;
const OrvErrorType Fault = OrvErrorTimeout;

QStringList g_messages;

void captureMessage(QtMsgType, const QMessageLogContext&, const QString& message)
{
    g_messages << message;
}

// Collects the debug lines written while it lives.
struct MessageCapture
{
    MessageCapture()
    {
        g_messages.clear();
        previous = qInstallMessageHandler(captureMessage);
    }
    ~MessageCapture()
    {
        qInstallMessageHandler(previous);
    }
    QtMessageHandler previous;
};

// Calls the one-, two- or three-name form of an operation, as many names as given.
template <int MaxNames = 3, typename F> auto withNames(const Names& names, F f)
{
    if (names.size() == 1)
        return f(names[0]);
    if constexpr (MaxNames == 3)
        if (names.size() == 3)
            return f(names[0], names[1], names[2]);
    return f(names[0], names[1]);
}

int valueReads(const TestCamera& cam, const QString& name)
{
    int reads = 0;
    for (Op op : {Op::GetString, Op::GetDouble, Op::GetInt, Op::GetBool})
        reads += cam.calls(name, op);
    return reads;
}

} // namespace

// Most tables name the feature by one to three alternatives and may inject a
// fault; the fault always hits the last name, the one that exists.
#define FETCH_NAMES()                                                                                                  \
    QFETCH(Names, names);                                                                                              \
    QFETCH(int, fault);                                                                                                \
    if (fault != NoFault)                                                                                              \
        m_cam->fail(names.last(), static_cast<Op>(fault), Fault);

class tst_FeatureManager : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestCamera> m_cam;
    std::unique_ptr<FeatureManager> m_fm;

    static void nameColumns()
    {
        QTest::addColumn<Names>("names");
        QTest::addColumn<int>("fault");
    }

private slots:
    // One feature of every kind; the rows address them by name.
    void init()
    {
        m_cam.reset(new TestCamera);
        TestCamera& cam = *m_cam;
        cam.addInt("IntStep10", 30, 0, 100, 10).category("/ImageFormat");
        cam.addInt("IntStep3", 30, 0, 100, 3);
        cam.addInt("IntNoStep", 30, 0, 100, 0);
        cam.addInt("IntSigned", 0, -10, 10, 1);
        cam.addInt("IntSignedNoStep", 0, -10, 10, 0);
        cam.addInt("IntMinusOne", -1, -5, 5, 1);
        cam.addInt("ReadOnlyInt", 30, 0, 100, 10).writable(false);
        cam.addFloat("FloatStep05", 100.0, 10.0, 999.9, 0.5);
        cam.addFloat("FloatNoStep", 12.5, 0.0, 1000.0);
        cam.addFloat("FloatTenth", 0.1, 0.0, 0.3, 0.1);
        cam.addFloat("ReadOnlyFloat", 12.5, 0.0, 1000.0).writable(false);
        cam.addBool("Bool", true);
        cam.addBool("ReadOnlyBool", false).writable(false);
        cam.addEnum("Enum", {"On", "Once", "Off"}, "On").unavailable({"Once"});
        cam.addEnum("ReadOnlyEnum", {"On", "Off"}, "On").writable(false);
        cam.addString("String", "Cam 1");
        cam.addCommand("Command");
        m_fm.reset(new FeatureManager(cam.features()));
    }

    void cleanup()
    {
        m_fm.reset();
        m_cam.reset();
    }

    void lookup_data()
    {
        QTest::addColumn<Names>("camera");
        QTest::addColumn<Names>("names");
        QTest::addColumn<int>("found"); // index in the camera's list, -1 for none
        auto row = [](const char* tag, const Names& camera, const Names& names, int found)
        { QTest::newRow(tag) << camera << names << found; };
        const Names outs{"LineOutSelector", "SyncOutSelector"};
        row("first alternative wins", {"SyncOutSelector", "LineOutSelector"}, outs, 1);
        row("second alternative", {"SyncOutSelector"}, outs, 0);
        row("no alternative", {"Gain"}, outs, -1);
        row("third", {"Gain", "ExposureTime"}, {"ExposureTimeAbs", "ExposureTimeRaw", "ExposureTime"}, 1);
        row("empty second skipped", {"Gain", "ExposureTime"}, {"ExposureTimeAbs", "", "ExposureTime"}, 1);
        row("empty alternatives not searched", {"", "Gain"}, {"Missing", "", ""}, -1);
        row("empty alternative not searched", {"", "Gain"}, {"Missing", ""}, -1);
        row("first of two same names", {"Gain", "Gain"}, {"Gain"}, 0);
        row("case-sensitive", {"gain", "GAIN"}, {"Gain"}, -1);
        row("no trimming", {"Gain "}, {"Gain"}, -1);
    }

    void lookup()
    {
        QFETCH(Names, camera);
        QFETCH(Names, names);
        QFETCH(int, found);
        TestCamera cam;
        for (const QString& name : camera)
            cam.addInt(name, 1);
        const FeatureList list = cam.features();
        FeatureManager fm(list);
        const FeatureManager::FeaturePtr expected = found < 0 ? nullptr : list->at(found);

        QCOMPARE(withNames(names, [&](const auto&... n) { return fm.GetFeatureByName(n...); }), expected);
        QCOMPARE(withNames(names, [&](const auto&... n) { return fm.GetIsFeatureAvailable(n...); }), found >= 0);
        if (names.size() == 1)
            QCOMPARE(fm.GetFeatureByName(names[0].toStdString()), expected);
    }

    void lookupQueriesNamesAfresh()
    {
        m_cam->resetCalls();
        QVERIFY(!m_fm->GetFeatureByName("A", "B", "C"));
        // A, B, B once more, C: four walks of the whole list, nothing cached.
        QCOMPARE(m_cam->calls("IntStep10", Op::GetName), 4);
        QCOMPARE(m_cam->calls("Command", Op::GetName), 4);

        m_cam->resetCalls();
        QVERIFY(m_fm->GetFeatureByName(QString("IntStep3")));
        QCOMPARE(m_cam->calls("IntStep3", Op::GetName), 1);
        QCOMPARE(m_cam->calls("IntNoStep", Op::GetName), 0);

        // A handle whose name cannot be read is passed over.
        m_cam->fail("IntStep10", Op::GetName, Fault);
        QVERIFY(!m_fm->GetFeatureByName(QString("IntStep10")));
        QCOMPARE(m_fm->GetFeatureByName(QString("IntStep3")), m_cam->feature("IntStep3"));
    }

    void writability_data()
    {
        nameColumns();
        QTest::addColumn<bool>("expected");
        QTest::newRow("writable") << Names{"IntStep10"} << NoFault << true;
        QTest::newRow("read-only") << Names{"ReadOnlyInt"} << NoFault << false;
        QTest::newRow("query fails") << Names{"IntStep10"} << int(Op::IsWritable) << false;
        QTest::newRow("missing") << Names{"Missing"} << NoFault << false;
        QTest::newRow("second name") << Names{"Missing", "Enum"} << NoFault << true;
        QTest::newRow("third name read-only") << Names{"Missing", "", "ReadOnlyEnum"} << NoFault << false;
        QTest::newRow("third name") << Names{"Missing", "Other", "Bool"} << NoFault << true;
    }

    void writability()
    {
        FETCH_NAMES();
        QFETCH(bool, expected);
        QCOMPARE(withNames(names, [&](const auto&... n) { return m_fm->GetIsFeatureWritable(n...); }), expected);
        QCOMPARE(withNames(names, [&](const auto&... n) { return m_fm->GetIsWritable(n...); }), expected);
        if (const auto feature = m_cam->feature(names.last()))
            QCOMPARE(FeatureManager::GetIsWritable(feature), expected);
    }

    void valueAvailabilityAndCategory()
    {
        QVERIFY(m_fm->GetIsFeatureValueAvailable("Enum", "Off"));
        QVERIFY(!m_fm->GetIsFeatureValueAvailable("Enum", "Once"));
        QVERIFY(!m_fm->GetIsFeatureValueAvailable("Enum", "off"));
        QVERIFY(!m_fm->GetIsFeatureValueAvailable("Missing", "Off"));
        QVERIFY(!m_fm->GetIsFeatureValueAvailable("IntStep10", "30"));
        QCOMPARE(m_fm->GetCategory("IntStep10"), QString("/ImageFormat"));
        QCOMPARE(m_fm->GetCategory("Missing"), QString());

        m_cam->fail("Enum", Op::IsValueAvailable, Fault);
        m_cam->fail("IntStep10", Op::GetCategory, Fault);
        QVERIFY(!m_fm->GetIsFeatureValueAvailable("Enum", "Off"));
        QCOMPARE(m_fm->GetCategory("IntStep10"), QString());
    }

    void handleHelpers()
    {
        const QList<QPair<QString, OrvFeatureDataType>> types{
            {"IntStep10", OrvFeatureDataInt}, {"FloatNoStep", OrvFeatureDataFloat}, {"Enum", OrvFeatureDataEnum},
            {"String", OrvFeatureDataString}, {"Bool", OrvFeatureDataBool},         {"Command", OrvFeatureDataCommand}};
        for (const auto& type : types)
            QCOMPARE(FeatureManager::GetDataType(m_cam->feature(type.first)), type.second);

        const auto enumeration = m_cam->feature("Enum");
        QCOMPARE(FeatureManager::GetEnumEntries(enumeration), (Names{"On", "Once", "Off"}));
        QCOMPARE(FeatureManager::GetEnumEntries(m_cam->feature("IntStep10")), Names());
        QVERIFY(FeatureManager::GetIsValueAvailable(enumeration, "Off"));
        QVERIFY(!FeatureManager::GetIsValueAvailable(enumeration, "Once"));
        QVERIFY(!FeatureManager::GetIsValueAvailable(enumeration, "Bogus"));
        QCOMPARE(FeatureManager::GetStringValue(enumeration), QString("On"));
        QCOMPARE(FeatureManager::GetStringValue(m_cam->feature("String")), QString("Cam 1"));
        QCOMPARE(FeatureManager::GetStringValue(FeatureManager::FeaturePtr()), QString());

        m_cam->fail("Enum", Op::GetDataType, Fault);
        m_cam->fail("Enum", Op::GetValues, Fault);
        m_cam->fail("Enum", Op::GetString, Fault);
        QCOMPARE(FeatureManager::GetDataType(enumeration), OrvFeatureDataUnknown);
        QCOMPARE(FeatureManager::GetEnumEntries(enumeration), Names());
        QCOMPARE(FeatureManager::GetStringValue(enumeration), QString());
    }

    void getValue_data()
    {
        nameColumns();
        QTest::addColumn<double>("expected");
        QTest::addColumn<int>("reads"); // typed value reads made
        auto row = [](const char* tag, const Names& names, int fault, double expected, int reads)
        { QTest::newRow(tag) << names << fault << expected << reads; };
        row("int", {"IntStep10"}, NoFault, 30.0, 1);
        row("int holding -1", {"IntMinusOne"}, NoFault, -1.0, 1);
        row("int read fails", {"IntStep10"}, int(Op::GetInt), -1.0, 1);
        row("float", {"FloatNoStep"}, NoFault, 12.5, 1);
        row("float read fails", {"FloatNoStep"}, int(Op::GetDouble), -1.0, 1);
        row("bool true", {"Bool"}, NoFault, 1.0, 1);
        row("bool false", {"ReadOnlyBool"}, NoFault, 0.0, 1);
        row("bool read fails", {"Bool"}, int(Op::GetBool), 0.0, 1);
        row("enum", {"Enum"}, NoFault, -1.0, 0);
        row("string", {"String"}, NoFault, -1.0, 0);
        row("command", {"Command"}, NoFault, -1.0, 0);
        row("type read fails", {"IntStep10"}, int(Op::GetDataType), -1.0, 0);
        row("missing", {"Missing"}, NoFault, -1.0, 0);
        row("second name", {"Missing", "IntStep10"}, NoFault, 30.0, 1);
        row("third name", {"Missing", "", "FloatNoStep"}, NoFault, 12.5, 1);
    }

    void getValue()
    {
        FETCH_NAMES();
        QFETCH(double, expected);
        QFETCH(int, reads);
        QCOMPARE(withNames(names, [&](const auto&... n) { return m_fm->GetValue(n...); }), expected);
        QCOMPARE(valueReads(*m_cam, names.last()), reads);
        QVERIFY(m_cam->journal().isEmpty());
    }

    void getStringValue_data()
    {
        nameColumns();
        QTest::addColumn<QString>("expected");
        QTest::newRow("enum entry") << Names{"Enum"} << NoFault << "On";
        QTest::newRow("string") << Names{"String"} << NoFault << "Cam 1";
        QTest::newRow("int passed through") << Names{"IntStep10"} << NoFault << "30";
        QTest::newRow("command") << Names{"Command"} << NoFault << "";
        QTest::newRow("read fails") << Names{"Enum"} << int(Op::GetString) << "";
        QTest::newRow("missing") << Names{"Missing"} << NoFault << "";
        QTest::newRow("second name") << Names{"Missing", "String"} << NoFault << "Cam 1";
    }

    void getStringValue()
    {
        FETCH_NAMES();
        QFETCH(QString, expected);
        QCOMPARE(withNames<2>(names, [&](const auto&... n) { return m_fm->GetStringValue(n...); }), expected);
    }

    void getIncrement_data()
    {
        nameColumns();
        QTest::addColumn<double>("expected");
        QTest::newRow("int") << Names{"IntStep10"} << NoFault << 10.0;
        QTest::newRow("int without") << Names{"IntNoStep"} << NoFault << -1.0;
        QTest::newRow("int read fails") << Names{"IntStep10"} << int(Op::GetIncrementInt) << -1.0;
        QTest::newRow("float") << Names{"FloatStep05"} << NoFault << 0.5;
        QTest::newRow("float without") << Names{"FloatNoStep"} << NoFault << -1.0;
        QTest::newRow("bool") << Names{"Bool"} << NoFault << -1.0;
        QTest::newRow("enum") << Names{"Enum"} << NoFault << -1.0;
        QTest::newRow("type read fails") << Names{"IntStep10"} << int(Op::GetDataType) << -1.0;
        QTest::newRow("missing") << Names{"Missing"} << NoFault << -1.0;
        QTest::newRow("second name") << Names{"Missing", "IntStep3"} << NoFault << 3.0;
    }

    void getIncrement()
    {
        FETCH_NAMES();
        QFETCH(double, expected);
        QCOMPARE(withNames<2>(names, [&](const auto&... n) { return m_fm->GetIncrement(n...); }), expected);
    }

    void featureAndDisplayNames()
    {
        TestCamera cam;
        cam.addEnum("SyncOutSelector", {"SyncOut1"}, "SyncOut1").displayName("Sync Out Selector");
        cam.addEnum("LineSelector", {"Line1"}, "Line1").displayName("Line Selector");
        FeatureManager fm(cam.features());

        QCOMPARE(fm.GetFeatureName({"LineOutSelector", "SyncOutSelector"}), QString("SyncOutSelector"));
        QCOMPARE(fm.GetFeatureName({"LineSelector", "SyncOutSelector"}), QString("LineSelector"));
        QCOMPARE(fm.GetFeatureName({"LineOutSelector", "Missing"}), QString());
        QCOMPARE(fm.GetDisplayName(Names{"LineOutSelector", "SyncOutSelector"}), QString("Sync Out Selector"));
        QCOMPARE(fm.GetDisplayName(Names{"Missing"}), QString());
        QCOMPARE(fm.GetDisplayName("LineSelector"), QString("Line Selector"));
        QCOMPARE(fm.GetDisplayName("LineOutSelector", "SyncOutSelector"), QString("Sync Out Selector"));
        QCOMPARE(fm.GetDisplayName("LineOutSelector", "", "LineSelector"), QString("Line Selector"));
        QCOMPARE(fm.GetDisplayName("Missing"), QString());

        // A failing display name ends the walk: the next alternative is not asked.
        cam.fail("SyncOutSelector", Op::GetDisplayName, Fault);
        cam.resetCalls();
        QCOMPARE(fm.GetDisplayName(Names{"SyncOutSelector", "LineSelector"}), QString());
        QCOMPARE(fm.GetDisplayName("SyncOutSelector", "LineSelector"), QString());
        QCOMPARE(cam.calls("LineSelector", Op::GetDisplayName), 0);
    }

    void rangeReads_data()
    {
        nameColumns();
        QTest::addColumn<double>("value");
        QTest::addColumn<bool>("writable");
        QTest::addColumn<double>("minimum");
        QTest::addColumn<double>("maximum");
        QTest::addColumn<double>("increment");
        auto row = [](const char* tag, const Names& names, int fault, double value, bool writable, double minimum,
                      double maximum, double increment)
        { QTest::newRow(tag) << names << fault << value << writable << minimum << maximum << increment; };
        row("int on grid", {"IntStep10"}, NoFault, 30, true, 0, 100, 10);
        row("int maximum off grid", {"IntStep3"}, NoFault, 30, true, 0, 99, 3);
        row("int without increment", {"IntNoStep"}, NoFault, 30, true, 0, 100, 1.0);
        row("int read-only", {"ReadOnlyInt"}, NoFault, 30, false, 0, 100, 10);
        row("float maximum kept", {"FloatTenth"}, NoFault, 0.1, true, 0, 0.3, 0.1);
        row("float without increment", {"FloatNoStep"}, NoFault, 12.5, true, 0, 1000, 0.01);
        row("float read-only", {"ReadOnlyFloat"}, NoFault, 12.5, false, 0, 1000, 0.01);
        row("writable query fails", {"IntStep10"}, int(Op::IsWritable), 30, false, 0, 100, 10);
        // Each part of the combined read carries its own failure.
        row("value read fails", {"IntStep10"}, int(Op::GetInt), -1, true, 0, 100, 10);
        row("int range read fails", {"IntStep10"}, int(Op::GetRangeInt), 30, true, -1, -1, 10);
        row("float range read fails", {"FloatNoStep"}, int(Op::GetRangeDouble), 12.5, true, -1, -1, 0.01);
        row("enum", {"Enum"}, NoFault, -1, false, -1, -1, -1);
        row("bool", {"Bool"}, NoFault, -1, false, -1, -1, -1);
        row("type read fails", {"IntStep10"}, int(Op::GetDataType), -1, false, -1, -1, -1);
        row("second name", {"Missing", "IntStep3"}, NoFault, 30, true, 0, 99, 3);
        row("third name", {"Missing", "", "FloatTenth"}, NoFault, 0.1, true, 0, 0.3, 0.1);
    }

    // The three combined reads agree on value and range; only the first reports
    // writability, and GetValueRange keeps its increment to itself.
    void rangeReads()
    {
        FETCH_NAMES();
        QFETCH(double, value);
        QFETCH(bool, writable);
        QFETCH(double, minimum);
        QFETCH(double, maximum);
        QFETCH(double, increment);
        bool w = !writable;
        double lo = 555, hi = 555, inc = 555;
        auto all = [&](const auto&... n) { return m_fm->GetValueIsWritableRangeIncrement(n..., &w, &lo, &hi, &inc); };
        QCOMPARE(withNames(names, all), value);
        QCOMPARE(w, writable);
        QCOMPARE(inc, increment);
        QCOMPARE(lo, minimum);
        QCOMPARE(hi, maximum);
        lo = hi = inc = 555;

        auto noFlag = [&](const auto&... n) { return m_fm->GetValueRangeIncrement(n..., &lo, &hi, &inc); };
        QCOMPARE(withNames(names, noFlag), value);
        QCOMPARE(inc, increment);
        QCOMPARE(lo, minimum);
        QCOMPARE(hi, maximum);
        lo = hi = inc = 555;

        QCOMPARE(withNames(names, [&](const auto&... n) { return m_fm->GetValueRange(n..., &lo, &hi); }), value);
        QCOMPARE(lo, minimum);
        QCOMPARE(hi, maximum);
        QVERIFY(m_cam->journal().isEmpty());
    }

    void rangeReadsLeaveOutputsWhenNotFound()
    {
        for (const Names& names : {Names{"Missing"}, Names{"Missing", "Other"}, Names{"Missing", "", "Other"}})
        {
            bool w = true;
            double lo = 7, hi = 8, inc = 9;
            auto all = [&](const auto&... n)
            { return m_fm->GetValueIsWritableRangeIncrement(n..., &w, &lo, &hi, &inc); };
            QCOMPARE(withNames(names, all), -1.0);
            QCOMPARE(
                withNames(names, [&](const auto&... n) { return m_fm->GetValueRangeIncrement(n..., &lo, &hi, &inc); }),
                -1.0);
            QCOMPARE(withNames(names, [&](const auto&... n) { return m_fm->GetValueRange(n..., &lo, &hi); }), -1.0);
            QVERIFY(w);
            QCOMPARE(lo, 7.0);
            QCOMPARE(hi, 8.0);
            QCOMPARE(inc, 9.0);
        }
    }

    void maxValueFromIncrement_data()
    {
        QTest::addColumn<double>("minimum");
        QTest::addColumn<double>("maximum");
        QTest::addColumn<double>("increment");
        QTest::addColumn<double>("expected");
        QTest::newRow("off grid") << 0.0 << 100.0 << 3.0 << 99.0;
        QTest::newRow("on grid") << 0.0 << 100.0 << 10.0 << 100.0;
        QTest::newRow("grid from minimum") << 1.0 << 100.0 << 10.0 << 91.0;
        // 0.3 / 0.1 is 2.9999999999999996; the factor lifts it to 3.
        QTest::newRow("rounding below grid point") << 0.0 << 0.3 << 0.1 << 0.3;
        QTest::newRow("fraction") << 10.0 << 333.3 << 0.5 << 333.0;
        QTest::newRow("below zero") << -10.0 << -3.5 << 1.0 << -4.0;
        QTest::newRow("below minimum") << 10.0 << 5.0 << 0.5 << 4.5;
        QTest::newRow("zero increment") << 0.0 << 10.0 << 0.0 << 10.0;
        QTest::newRow("negative increment") << 0.0 << 57.9 << -1.0 << 57.9;
    }

    void maxValueFromIncrement()
    {
        QFETCH(double, minimum);
        QFETCH(double, maximum);
        QFETCH(double, increment);
        QFETCH(double, expected);
        QCOMPARE(FeatureManager::GetMaxValuefromIncrement(minimum, maximum, increment), expected);
    }

    void enumReads()
    {
        QCOMPARE(m_fm->GetWritableEnumValue("Enum"), QString("On"));
        QCOMPARE(m_fm->GetStringValue("ReadOnlyEnum"), QString("On"));
        QVERIFY(m_fm->GetWritableEnumValue("ReadOnlyEnum").isNull());
        QVERIFY(m_fm->GetWritableEnumValue("Missing").isNull());

        // Camera order kept ("On" before "Off"), the unavailable "Once" dropped.
        QCOMPARE(m_fm->GetAvailableEnumEntries("Enum"), (Names{"On", "Off"}));
        QCOMPARE(m_fm->GetAvailableEnumEntries("Missing", "Enum"), (Names{"On", "Off"}));
        QCOMPARE(m_fm->GetAvailableEnumEntries("Missing"), Names());
        QCOMPARE(m_fm->GetAvailableEnumEntries("IntStep10"), Names());

        // An entry whose availability cannot be read counts as unavailable.
        m_cam->fail("Enum", Op::IsValueAvailable, Fault, 1);
        QCOMPARE(m_fm->GetAvailableEnumEntries("Enum"), Names{"Off"});
        m_cam->fail("Enum", Op::IsWritable, Fault);
        QVERIFY(m_fm->GetWritableEnumValue("Enum").isNull());
    }

    void isFloatFeature()
    {
        QVERIFY(m_fm->GetIsFloatFeature("FloatNoStep"));
        QVERIFY(m_fm->GetIsFloatFeature("Missing", "FloatTenth"));
        QVERIFY(m_fm->GetIsFloatFeature("Missing", "", "FloatTenth"));
        QVERIFY(!m_fm->GetIsFloatFeature("IntStep10"));
        QVERIFY(!m_fm->GetIsFloatFeature("Enum"));
        QVERIFY(!m_fm->GetIsFloatFeature("Missing"));
        m_cam->fail("FloatNoStep", Op::GetDataType, Fault);
        QVERIFY(!m_fm->GetIsFloatFeature("FloatNoStep"));
    }

    void setNumber_data()
    {
        nameColumns();
        QTest::addColumn<double>("value");
        QTest::addColumn<double>("expected");
        QTest::addColumn<Names>("journal");
        QTest::addColumn<Names>("log");
        auto row = [](const char* tag, const Names& names, double value, double expected, const Names& journal,
                      int fault = NoFault, const Names& log = Names())
        { QTest::newRow(tag) << names << fault << value << expected << journal << log; };
        const Names none;
        row("int snapped down", {"IntStep10"}, 57.9, 50, {"IntStep10=50"});
        row("int clamped to maximum", {"IntStep10"}, 1000, 100, {"IntStep10=100"});
        row("int clamped to minimum", {"IntStep10"}, -5, 0, {"IntStep10=0"});
        row("int maximum off grid", {"IntStep3"}, 100, 99, {"IntStep3=99"});
        row("int clamped to maximum off grid", {"IntStep3"}, 1000, 99, {"IntStep3=99"});
        row("int snapped below zero", {"IntSigned"}, -3.5, -4, {"IntSigned=-4"});
        row("int without increment truncated", {"IntNoStep"}, 57.9, 57, {"IntNoStep=57"});
        row("int without increment clamped", {"IntNoStep"}, 1000, 100, {"IntNoStep=100"});
        row("int without increment toward zero", {"IntSignedNoStep"}, -3.5, -3, {"IntSignedNoStep=-3"});
        row("float snapped", {"FloatStep05"}, 333.3, 333, {"FloatStep05=333"});
        row("float clamped to minimum", {"FloatStep05"}, 5, 10, {"FloatStep05=10"});
        row("float clamped to maximum on grid", {"FloatStep05"}, 2000, 999.5, {"FloatStep05=999.5"});
        row("float without increment", {"FloatNoStep"}, 12.345, 12.345, {"FloatNoStep=12.345"});
        row("float maximum on grid", {"FloatTenth"}, 0.3, 0.3, {"FloatTenth=0.3"});
        row("bool half", {"Bool"}, 0.5, 1, {"Bool=true"});
        row("bool minus one", {"Bool"}, -1, 0, {"Bool=false"});
        row("bool not a number", {"Bool"}, qQNaN(), 0, {"Bool=false"});
        row("enum not written", {"Enum"}, 1, 1, none);
        row("string not written", {"String"}, 2, 2, none);
        row("missing", {"Missing"}, 42, 42, none);
        row("type read fails", {"IntStep10"}, 57.9, 57.9, none, int(Op::GetDataType));
        row("read-only int", {"ReadOnlyInt"}, 50, 30, none);
        row("read-only float", {"ReadOnlyFloat"}, 20, 12.5, none);
        row("read-only bool", {"ReadOnlyBool"}, 1, 0, none);
        row("writable query fails", {"IntStep10"}, 50, 30, none, int(Op::IsWritable));
        row("int read-back fails", {"IntStep10"}, 50, -1, {"IntStep10=50"}, int(Op::GetInt));
        row("float read-back fails", {"FloatNoStep"}, 20, -1, {"FloatNoStep=20"}, int(Op::GetDouble));
        row("bool read-back fails", {"Bool"}, 1, 0, {"Bool=true"}, int(Op::GetBool));
        row("second name", {"Missing", "IntStep10"}, 57.9, 50, {"IntStep10=50"});
        row("third name", {"Missing", "", "IntStep10"}, 57.9, 50, {"IntStep10=50"});

        // Refused writes: one debug line each, and the camera's value comes back.
        const char* tag = "Error: FeatureManager::SetValue:";
        row("int refused", {"IntStep10"}, 57.9, 30, {"IntStep10=50 refused -8"}, int(Op::SetInt),
            {tag + QString("Int:  \"IntStep10\"  :  -8")});
        row("float refused", {"FloatStep05"}, 333.3, 100, {"FloatStep05=333 refused -8"}, int(Op::SetDouble),
            {tag + QString("Double:  \"FloatStep05\"  :  -8")});
        row("bool refused", {"Bool"}, 0, 1, {"Bool=false refused -8"}, int(Op::SetBool),
            {tag + QString("Bool:  \"Bool\"  :  -8")});
        row("refused under second name", {"Width", "IntStep10"}, 57.9, 30, {"IntStep10=50 refused -8"}, int(Op::SetInt),
            {tag + QString("Int:  \"Width\"  :  -8")});
        // Without a range both limits are -1, so the value is clamped to -1, which the camera refuses.
        row("float range read fails", {"FloatStep05"}, 333.3, 100, {"FloatStep05=-1 refused -7"},
            int(Op::GetRangeDouble), {tag + QString("Double:  \"FloatStep05\"  :  -7")});
    }

    void setNumber()
    {
        FETCH_NAMES();
        QFETCH(double, value);
        QFETCH(double, expected);
        QFETCH(Names, journal);
        QFETCH(Names, log);
        MessageCapture capture;
        QCOMPARE(withNames(names, [&](const auto&... n) { return m_fm->SetValue(n..., value); }), expected);
        QCOMPARE(m_cam->journal(), journal);
        QCOMPARE(g_messages, log);
    }

    void setText_data()
    {
        QTest::addColumn<Names>("names");
        QTest::addColumn<QString>("value");
        QTest::addColumn<Names>("journal");
        QTest::newRow("enum entry") << Names{"Enum"} << "Off" << Names{"Enum=Off"};
        QTest::newRow("string") << Names{"String"} << "Cam 2" << Names{"String=Cam 2"};
        QTest::newRow("empty text") << Names{"String"} << "" << Names{"String="};
        // No writability or type test: the camera decides.
        QTest::newRow("read-only tried") << Names{"ReadOnlyEnum"} << "Off" << Names{"ReadOnlyEnum=Off refused -6"};
        QTest::newRow("unavailable entry") << Names{"Enum"} << "Once" << Names{"Enum=Once refused -7"};
        QTest::newRow("int feature") << Names{"IntStep10"} << "50" << Names{"IntStep10=50 refused -4"};
        QTest::newRow("missing") << Names{"Missing"} << "Off" << Names();
        QTest::newRow("second name") << Names{"Missing", "Enum"} << "Off" << Names{"Enum=Off"};
        QTest::newRow("third name") << Names{"Missing", "", "Enum"} << "Off" << Names{"Enum=Off"};
    }

    void setText()
    {
        QFETCH(Names, names);
        QFETCH(QString, value);
        QFETCH(Names, journal);
        MessageCapture capture;
        QCOMPARE(withNames(names, [&](const auto&... n) { return m_fm->SetValue(n..., value); }), value);
        QCOMPARE(m_cam->journal(), journal);
        QCOMPARE(g_messages, Names());
    }

    void setTextReadsStringNamedAfterValue()
    {
        m_cam->addString("Off", "text");
        FeatureManager fm(m_cam->features());
        m_cam->resetCalls();
        QCOMPARE(fm.SetValue("Enum", QString("Off")), QString("Off"));
        QCOMPARE(m_cam->calls("Off", Op::GetString), 1);
        QCOMPARE(m_cam->calls("Enum", Op::GetString), 0);
        QCOMPARE(m_cam->journal(), Names{"Enum=Off"});

        m_cam->resetCalls();
        fm.SetValue("Missing", QString("Off"));
        QCOMPARE(m_cam->calls("Off", Op::GetString), 0);
    }

    void selectorStaysAsWritten()
    {
        TestCamera cam;
        cam.addEnum("LineSelector", {"Line0", "Line1"}, "Line0");
        cam.addEnum("LineSource", {"Off", "ExposureActive"}, "Off")
            .selectedBy("LineSelector")
            .setAt("Line1", "ExposureActive");
        FeatureManager fm(cam.features());
        QCOMPARE(fm.GetStringValue("LineSource"), QString("Off"));
        fm.SetValue("LineSelector", QString("Line1"));
        QCOMPARE(fm.GetStringValue("LineSource"), QString("ExposureActive"));
        QCOMPARE(cam.value("LineSelector"), QString("Line1"));
        QCOMPARE(cam.journal(), Names{"LineSelector=Line1"});
    }

    void runCommand_data()
    {
        nameColumns();
        QTest::addColumn<bool>("expected");
        QTest::addColumn<Names>("journal");
        QTest::newRow("success") << Names{"Command"} << NoFault << false << Names{"Command()"};
        QTest::newRow("camera error") << Names{"Command"} << int(Op::RunCommand) << true
                                      << Names{"Command() refused -8"};
        QTest::newRow("not a command") << Names{"IntStep10"} << NoFault << true << Names{"IntStep10() refused -4"};
        QTest::newRow("missing") << Names{"Missing"} << NoFault << false << Names();
    }

    void runCommand()
    {
        FETCH_NAMES();
        QFETCH(bool, expected);
        QFETCH(Names, journal);
        QCOMPARE(m_fm->RunCommand(names[0]), expected);
        QCOMPARE(m_cam->journal(), journal);
    }
};

QTEST_GUILESS_MAIN(tst_FeatureManager)
#include "tst_FeatureManager.moc"
