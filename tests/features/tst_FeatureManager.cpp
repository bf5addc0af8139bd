#include "FeatureManager.h"
#include "ReviewedRecord.h"
#include "TestCamera.h"

#include <QtTest>

#include <functional>

using TestCam::TestCamera;

// FeatureManager against a camera with one feature of every kind: each call's
// result, the writes the camera received and the diagnostics, compared with the
// reviewed record in feature-manager.txt.
class tst_FeatureManager : public QObject
{
    Q_OBJECT

private slots:
    void call_data();
    void call();

private:
    ReviewedRecord m_record{TRIGGERIO_TESTS_DIR "/features/feature-manager.txt"};
};

namespace
{

QStringList g_messages;

QString text(double v)
{
    return QString::number(v, 'g', 12);
}
QString text(bool v)
{
    return v ? "true" : "false";
}
QString text(const QString& v)
{
    return '"' + v + '"';
}
QString text(const QStringList& v)
{
    return '[' + v.join(',') + ']';
}

// A range read as "value writable [minimum, maximum] step increment".
QString range(const FeatureManager& m, const char* name)
{
    bool writable = false;
    double minimum = -2, maximum = -2, increment = -2;
    const double value = m.GetValueIsWritableRangeIncrement(name, &writable, &minimum, &maximum, &increment);
    return QString("%1 %2 [%3, %4] step %5")
        .arg(text(value), text(writable), text(minimum), text(maximum), text(increment));
}

struct Call
{
    QString expression;
    QString faultFeature;
    QString faultOp;
    std::function<QString(const FeatureManager&)> run;
};

#define CALL(expr)                                                                                                     \
    {                                                                                                                  \
#expr, QString(), QString(), [](const FeatureManager& m) { return text(m.expr); }                              \
    }
#define FAULT(feature, op, expr)                                                                                       \
    {                                                                                                                  \
#expr " with " feature " " #op " failing", feature, #op, [](const FeatureManager& m) { return text(m.expr); }  \
    }
#define RANGE_ROW(tag, feature, op, name)                                                                              \
    {                                                                                                                  \
        tag, feature, #op, [](const FeatureManager& m) { return range(m, name); }                                      \
    }
#define RANGE(name) RANGE_ROW("range of " name, QString(), GetName, name)
#define RANGE_FAULT(name, op) RANGE_ROW("range of " name " with " #op " failing", name, op, name)

const QList<Call>& calls()
{
    static const QList<Call> list{
        // Lookup by alternatives: the first existing name wins, an empty one is skipped.
        CALL(GetIsFeatureAvailable("Missing")),
        CALL(GetIsFeatureAvailable("Missing", "Enum")),
        CALL(GetIsFeatureAvailable("Missing", "", "Bool")),
        CALL(GetFeatureName({"Missing", "String", "Enum"})),
        CALL(GetDisplayName("Missing", "Enum")),
        CALL(GetDisplayName("Bool", "", "Enum")),

        CALL(GetIsFeatureWritable("ReadOnlyInt")),
        CALL(GetIsWritable("Missing", "", "Bool")),
        FAULT("IntStep10", IsWritable, GetIsWritable("IntStep10")),
        CALL(GetIsFloatFeature("Missing", "FloatStep05")),
        CALL(GetIsFloatFeature("IntStep10")),
        // Reads give neutral values when they fail.
        CALL(GetValue("IntStep10")),
        CALL(GetValue("FloatStep05")),
        CALL(GetValue("Bool")),
        CALL(GetValue("Enum")),
        CALL(GetValue("Missing")),
        FAULT("IntStep10", GetInt, GetValue("IntStep10")),
        FAULT("IntStep10", GetDataType, GetValue("IntStep10")),
        CALL(GetStringValue("Enum")),
        CALL(GetStringValue("IntStep10")),
        CALL(GetStringValue("Command")),
        CALL(GetStringValue("Missing", "String")),
        FAULT("Enum", GetString, GetStringValue("Enum")),
        CALL(GetIncrement("IntStep10")),
        CALL(GetIncrement("IntNoStep")),
        CALL(GetIncrement("FloatStep05")),
        CALL(GetIncrement("Enum")),
        CALL(GetAvailableEnumEntries("Enum")),
        CALL(GetAvailableEnumEntries("Missing", "ReadOnlyEnum")),
        FAULT("Enum", GetValues, GetAvailableEnumEntries("Enum")),
        CALL(GetIsFeatureValueAvailable("Enum", "Once")),
        CALL(GetWritableEnumValue("Enum")),
        CALL(GetWritableEnumValue("ReadOnlyEnum")),
        // Ranges: a maximum off the increment grid drops onto it; without an
        // increment editors get 1 or 0.01.
        RANGE("IntStep10"),
        RANGE("IntStep3"),
        RANGE("IntNoStep"),
        RANGE("FloatStep05"),
        RANGE("FloatNoStep"),
        RANGE("FloatTenth"),
        RANGE("ReadOnlyInt"),
        RANGE("Enum"),
        RANGE("Missing"),
        RANGE_FAULT("IntStep10", GetRangeInt),
        RANGE_FAULT("FloatStep05", GetIncrementDouble),
        // Numeric writes are fitted into range and onto the grid, then read back.
        CALL(SetValue("IntStep10", 57.9)),
        CALL(SetValue("IntStep10", 1000.0)),
        CALL(SetValue("IntStep10", -5.0)),
        CALL(SetValue("IntStep3", 1000.0)),
        CALL(SetValue("IntSigned", -3.5)),
        CALL(SetValue("IntNoStep", 57.9)),
        CALL(SetValue("IntSignedNoStep", -3.5)),
        CALL(SetValue("FloatStep05", 333.3)),
        CALL(SetValue("FloatStep05", 2000.0)),
        CALL(SetValue("FloatNoStep", 12.345)),
        CALL(SetValue("FloatTenth", 0.3)),
        CALL(SetValue("Bool", 0.5)),
        CALL(SetValue("Bool", -1.0)),
        CALL(SetValue("Enum", 1.0)),
        CALL(SetValue("Missing", 42.0)),
        CALL(SetValue("ReadOnlyInt", 50.0)),
        CALL(SetValue("ReadOnlyBool", 1.0)),
        CALL(SetValue("Missing", "", "IntStep10", 57.9)),
        FAULT("IntStep10", IsWritable, SetValue("IntStep10", 50.0)),
        FAULT("IntStep10", GetInt, SetValue("IntStep10", 50.0)),
        FAULT("IntStep10", SetInt, SetValue("Width", "IntStep10", 57.9)),
        FAULT("FloatStep05", SetDouble, SetValue("FloatStep05", 333.3)),
        FAULT("Bool", SetBool, SetValue("Bool", 0.0)),
        FAULT("FloatStep05", GetRangeDouble, SetValue("FloatStep05", 333.3)),
        // Text writes go to the camera as they are; the camera decides.
        CALL(SetValue("Enum", QString("Off"))),
        CALL(SetValue("String", QString())),
        CALL(SetValue("ReadOnlyEnum", QString("Off"))),
        CALL(SetValue("Enum", QString("Once"))),
        CALL(SetValue("IntStep10", QString("50"))),
        CALL(SetValue("Missing", "", "Enum", QString("Off"))),
        CALL(SetValue("Missing", QString("Off"))),
        // Commands report an error as true.
        CALL(RunCommand("Command")),
        CALL(RunCommand("IntStep10")),
        CALL(RunCommand("Missing")),
        FAULT("Command", RunCommand, RunCommand("Command")),
        {"static grid maximums", QString(), QString(),
         [](const FeatureManager&)
         {
             QStringList out;
             for (const QVector<double>& r : QVector<QVector<double>>{{0, 100, 3},
                                                                      {0, 100, 10},
                                                                      {1, 100, 10},
                                                                      {0, 0.3, 0.1},
                                                                      {-10, -3.5, 1},
                                                                      {10, 5, 0.5},
                                                                      {0, 10, 0},
                                                                      {0, 57.9, -1}})
                 out << text(FeatureManager::GetMaxValuefromIncrement(r[0], r[1], r[2]));
             return out.join(' ');
         }},
    };
    return list;
}

} // namespace

void tst_FeatureManager::call_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < calls().size(); ++i)
        QTest::newRow(qPrintable(calls().at(i).expression)) << i;
}

void tst_FeatureManager::call()
{
    QFETCH(int, index);
    const Call& c = calls().at(index);
    TestCamera cam;
    cam.add("IntStep10", OrvFeatureDataInt, 30, 0, 100, 10);
    cam.add("IntStep3", OrvFeatureDataInt, 30, 0, 100, 3);
    cam.add("IntNoStep", OrvFeatureDataInt, 30, 0, 100, 0);
    cam.add("IntSigned", OrvFeatureDataInt, 0, -10, 10, 1);
    cam.add("IntSignedNoStep", OrvFeatureDataInt, 0, -10, 10, 0);
    cam.add("ReadOnlyInt", OrvFeatureDataInt, 30, 0, 100, 10).writable(false);
    cam.add("FloatStep05", OrvFeatureDataFloat, 100.0, 10.0, 999.9, 0.5);
    cam.add("FloatNoStep", OrvFeatureDataFloat, 12.5, 0.0, 1000.0, 0);
    cam.add("FloatTenth", OrvFeatureDataFloat, 0.1, 0.0, 0.3, 0.1);
    cam.add("Bool", OrvFeatureDataBool, true).displayName("Boolean");
    cam.add("ReadOnlyBool", OrvFeatureDataBool, false).writable(false);
    cam.addEnum("Enum", {"On", "Once", "Off"}, "On").unavailable({"Once"}).displayName("Enumeration");
    cam.addEnum("ReadOnlyEnum", {"On", "Off"}, "On").writable(false);
    cam.add("String", OrvFeatureDataString, "Cam 1");
    cam.add("Command", OrvFeatureDataCommand);
    if (!c.faultFeature.isEmpty())
        cam.fail(c.faultFeature, c.faultOp, OrvErrorTimeout);
    const FeatureManager manager(cam.features());

    g_messages.clear();
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& m) { g_messages << m; });
    QStringList lines{c.run(manager)};
    qInstallMessageHandler(previous);
    for (const QString& write : cam.takeJournal())
        lines << "> " + write;
    for (const QString& message : qAsConst(g_messages))
        lines << "log " + message;
    QCOMPARE(lines, m_record.take(c.expression, lines));
}

QTEST_GUILESS_MAIN(tst_FeatureManager)
#include "tst_FeatureManager.moc"
