#include "TriggerSetup.h"

#include <OrvCPP/ExclusiveAccess.h>

#include <QCoreApplication>
#include <QHash>
#include <QThread>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <functional>

using OrvCPP::Feature;
using OrvCPP::shared_ptr;

namespace
{

// The setup's features in the order they are written: a selector (or none)
// and the features it selects. A line's mode comes before its routing and
// source here; applying reorders a line's features by the direction it takes.
struct Group
{
    const char* selector;
    QStringList features;
};

const QVector<Group>& groups()
{
    static const QVector<Group> all = {
        {"TriggerSelector", {"TriggerMode", "TriggerSource", "TriggerActivation"}},
        {"", {"AcquisitionMode", "AcquisitionFrameCount", "ExposureMode", "ExposureAuto"}},
        {"LineSelector", {"LineMode", "LineRouting", "LineSource", "LineInverter"}},
        {"LineOutSelector", {"LineOutSource", "LineOutPolarity"}},
        {"SyncOutSelector", {"SyncOutSource", "SyncOutPolarity"}},
        {"UserOutputSelector", {"UserOutputValue"}},
        {"", {"LineOutLevels", "SyncOutLevels"}},
    };
    return all;
}

bool isSelector(const QString& name)
{
    for (const Group& group : groups())
        if (name == QLatin1String(group.selector) && !name.isEmpty())
            return true;
    return false;
}

typedef QHash<QString, shared_ptr<Feature>> FeatureMap;

// Runs work on a camera's features; off the GUI thread as one run that no
// other thread's calls come between, on cameras that offer it, so that a
// selector moved here is not seen moved by a page's refresh (the GUI thread's
// own calls form such a run). False, work not run, when another thread kept
// the camera busy.
bool exclusively(const FeatureList& features, const std::function<void()>& work)
{
    const QCoreApplication* app = QCoreApplication::instance();
    OrvCPP::ExclusiveAccess* access = nullptr;
    if (features && !features->isEmpty() && !(app && QThread::currentThread() == app->thread()))
        access = dynamic_cast<OrvCPP::ExclusiveAccess*>(features->first().get());
    if (access && !access->BeginExclusive(5000))
        return false;
    work();
    if (access)
        access->EndExclusive();
    return true;
}

FeatureMap byName(const FeatureList& features)
{
    FeatureMap map;
    if (!features)
        return map;
    for (const shared_ptr<Feature>& feature : *features)
    {
        std::string name;
        if (feature && feature->GetName(name) == OrvErrorSuccess && !map.contains(QString::fromStdString(name)))
            map.insert(QString::fromStdString(name), feature);
    }
    return map;
}

QString errorText(OrvErrorType error)
{
    switch (error)
    {
    case OrvErrorNotFound: return QStringLiteral("not found");
    case OrvErrorWrongType: return QStringLiteral("wrong type");
    case OrvErrorInvalidAccess: return QStringLiteral("not writable now");
    case OrvErrorInvalidValue: return QStringLiteral("value out of range or not available");
    case OrvErrorTimeout: return QStringLiteral("the camera did not answer in time");
    case OrvErrorDeviceLost: return QStringLiteral("the camera is lost");
    case OrvErrorNotImplemented: return QStringLiteral("not supported");
    default: return QStringLiteral("error %1").arg(error);
    }
}

// The feature's value as the file writes it: an entry's name, an integer in
// decimal, a boolean as 1 or 0, a float with all its digits.
bool readText(Feature& feature, QString* text)
{
    OrvFeatureDataType type = OrvFeatureDataUnknown;
    if (feature.GetDataType(type) != OrvErrorSuccess)
        return false;
    switch (type)
    {
    case OrvFeatureDataEnum:
    case OrvFeatureDataString: {
        std::string value;
        if (feature.GetValue(value) != OrvErrorSuccess)
            return false;
        *text = QString::fromStdString(value);
        return true;
    }
    case OrvFeatureDataInt: {
        long long value = 0;
        if (feature.GetValue(value) != OrvErrorSuccess)
            return false;
        *text = QString::number(value);
        return true;
    }
    case OrvFeatureDataBool: {
        bool value = false;
        if (feature.GetValue(value) != OrvErrorSuccess)
            return false;
        *text = value ? QStringLiteral("1") : QStringLiteral("0");
        return true;
    }
    case OrvFeatureDataFloat: {
        double value = 0;
        if (feature.GetValue(value) != OrvErrorSuccess)
            return false;
        *text = QString::number(value, 'g', 17);
        return true;
    }
    default:
        return false;
    }
}

// A file's value in the form readText gives for a feature of this type.
bool canonical(OrvFeatureDataType type, const QString& text, QString* out)
{
    bool ok = true;
    switch (type)
    {
    case OrvFeatureDataInt:
        *out = QString::number(text.toLongLong(&ok));
        return ok;
    case OrvFeatureDataFloat:
        *out = QString::number(text.toDouble(&ok), 'g', 17);
        return ok;
    case OrvFeatureDataBool:
        if (text == "1" || text.compare("true", Qt::CaseInsensitive) == 0)
            *out = QStringLiteral("1");
        else if (text == "0" || text.compare("false", Qt::CaseInsensitive) == 0)
            *out = QStringLiteral("0");
        else
            return false;
        return true;
    case OrvFeatureDataEnum:
    case OrvFeatureDataString:
        *out = text;
        return true;
    default:
        return false;
    }
}

OrvErrorType writeText(Feature& feature, OrvFeatureDataType type, const QString& text)
{
    switch (type)
    {
    case OrvFeatureDataInt: return feature.SetValue(text.toLongLong());
    case OrvFeatureDataFloat: return feature.SetValue(text.toDouble());
    case OrvFeatureDataBool: return feature.SetValue(text == "1");
    default: return feature.SetValue(text.toStdString().c_str());
    }
}

// One selector position (or none) and the file's values under it.
struct Step
{
    QString selector;
    QString entry;
    QVector<TriggerSetup::Value> values;
};

class Applier
{
public:
    Applier(const FeatureList& features, TriggerSetup::Report& report) : m_map(byName(features)), m_report(report) {}

    void missing(const QString& name)
    {
        if (!m_report.missing.contains(name))
            m_report.missing << name;
    }

    // Remembers a selector's position once, before the first write moves it;
    // false when it cannot be read (and so could not be put back).
    bool keep(const QString& selector)
    {
        QString now;
        if (m_kept.contains(selector))
            return true;
        if (!readText(*m_map.value(selector), &now))
            return false;
        m_kept.insert(selector, now);
        return true;
    }

    void restore()
    {
        for (auto it = m_kept.cbegin(); it != m_kept.cend(); ++it)
        {
            Feature& selector = *m_map.value(it.key());
            QString now;
            if (!readText(selector, &now) || now != it.value())
                selector.SetValue(it.value().toStdString().c_str());
        }
    }

    // Whether the camera's value differs from the file's (false when it cannot tell).
    bool differs(const QString& name, const QString& value)
    {
        const shared_ptr<Feature> feature = m_map.value(name);
        OrvFeatureDataType type = OrvFeatureDataUnknown;
        QString now, wanted;
        return feature && feature->GetDataType(type) == OrvErrorSuccess && readText(*feature, &now)
               && canonical(type, value, &wanted) && wanted != now;
    }

    bool apply(const QString& name, const QString& value, const QString& where)
    {
        const QString label = name + where + " = " + value;
        const shared_ptr<Feature> feature = m_map.value(name);
        if (!feature)
        {
            missing(name);
            return false;
        }
        OrvFeatureDataType type = OrvFeatureDataUnknown;
        QString now, wanted;
        if (feature->GetDataType(type) != OrvErrorSuccess || !readText(*feature, &now))
            return refuse(label, QStringLiteral("cannot be read"));
        if (!canonical(type, value, &wanted))
            return refuse(label, QStringLiteral("not a value of this feature's type"));
        if (wanted == now)
        {
            ++m_report.unchanged;
            return true;
        }
        bool writable = false;
        if (feature->IsWritable(writable) != OrvErrorSuccess || !writable)
            return refuse(label, QStringLiteral("not writable now (locked or read-only)"));
        if (type == OrvFeatureDataEnum)
        {
            std::vector<std::string> entries;
            feature->GetValues(entries);
            bool available = false;
            if (std::find(entries.begin(), entries.end(), wanted.toStdString()) == entries.end())
                return refuse(label, QStringLiteral("the camera has no such entry"));
            if (feature->IsValueAvailable(wanted.toStdString().c_str(), available) != OrvErrorSuccess || !available)
                return refuse(label, QStringLiteral("entry not available now"));
        }
        const OrvErrorType error = writeText(*feature, type, wanted);
        if (error != OrvErrorSuccess)
            return refuse(label, errorText(error));
        if (readText(*feature, &now) && now != wanted)
            return refuse(label, QStringLiteral("the camera reads back %1").arg(now));
        m_report.written << label;
        return true;
    }

    bool refuse(const QString& label, const QString& why)
    {
        m_report.refused << label + ": " + why;
        return false;
    }

    // Points a selector at an entry; false (reported) when it cannot.
    bool select(const Step& step)
    {
        const shared_ptr<Feature> selector = m_map.value(step.selector);
        if (!selector)
        {
            missing(step.selector);
            for (const TriggerSetup::Value& value : step.values)
                missing(value.name);
            return false;
        }
        const QString label = step.selector + " = " + step.entry;
        const QString skipped = QStringLiteral("; its %1 value(s) skipped").arg(step.values.size());
        if (!keep(step.selector))
            return refuse(label, QStringLiteral("its position cannot be read to be put back") + skipped);
        std::vector<std::string> entries;
        bool available = false;
        selector->GetValues(entries);
        if (std::find(entries.begin(), entries.end(), step.entry.toStdString()) == entries.end())
            return refuse(label, QStringLiteral("the camera has no such entry") + skipped);
        if (selector->IsValueAvailable(step.entry.toStdString().c_str(), available) != OrvErrorSuccess || !available)
            return refuse(label, QStringLiteral("entry not available now") + skipped);
        const OrvErrorType error = selector->SetValue(step.entry.toStdString().c_str());
        if (error != OrvErrorSuccess)
            return refuse(label, errorText(error) + skipped);
        return true;
    }

    void run(const Step& step)
    {
        if (!step.selector.isEmpty() && !select(step))
            return;
        const QString where = step.selector.isEmpty() ? QString() : "[" + step.selector + "=" + step.entry + "]";
        QVector<TriggerSetup::Value> values = step.values;
        auto take = [&values](const QString& name, QString* value) {
            for (int i = 0; i < values.size(); ++i)
                if (values[i].name == name)
                {
                    *value = values.takeAt(i).value;
                    return true;
                }
            return false;
        };
        if (step.selector == "TriggerSelector")
        {
            // A trigger's source and activation change while the trigger is
            // off; its mode is written last (or put back when the file has none).
            QString mode, original;
            const bool hasMode = take("TriggerMode", &mode);
            bool change = false;
            for (const TriggerSetup::Value& value : values)
                change = change || differs(value.name, value.value);
            const shared_ptr<Feature> feature = m_map.value("TriggerMode");
            if (change && feature && readText(*feature, &original) && original != "Off")
                apply("TriggerMode", "Off", where);
            else
                original.clear();
            for (const TriggerSetup::Value& value : values)
                apply(value.name, value.value, where);
            if (hasMode)
                apply("TriggerMode", mode, where);
            else if (!original.isEmpty())
                apply("TriggerMode", original, where);
            return;
        }
        if (step.selector == "LineSelector")
        {
            // A line that becomes an output is unrouted while still an input and
            // gets its source once an output; one that becomes an input gets its
            // source while still an output and its routing once an input.
            QString mode;
            if (take("LineMode", &mode))
            {
                const QStringList first = mode == "Output" ? QStringList{"LineRouting", "LineInverter"}
                                                           : QStringList{"LineSource", "LineInverter"};
                for (const QString& name : first)
                {
                    QString value;
                    if (take(name, &value))
                        apply(name, value, where);
                }
                apply("LineMode", mode, where);
            }
        }
        for (const TriggerSetup::Value& value : values)
            apply(value.name, value.value, where);
    }

private:
    FeatureMap m_map;
    TriggerSetup::Report& m_report;
    QHash<QString, QString> m_kept;
};

} // namespace

QString TriggerSetup::selectorOf(const QString& name)
{
    for (const Group& group : groups())
        if (group.features.contains(name))
            return QLatin1String(group.selector);
    return QString();
}

bool TriggerSetup::isSetupFeature(const QString& name)
{
    if (isSelector(name))
        return true;
    for (const Group& group : groups())
        if (group.features.contains(name))
            return true;
    return false;
}

TriggerSetup TriggerSetup::capture(const FeatureList& features)
{
    TriggerSetup setup;
    exclusively(features, [&] { setup.captureFrom(features); });
    return setup;
}

void TriggerSetup::captureFrom(const FeatureList& features)
{
    TriggerSetup& setup = *this;
    const FeatureMap map = byName(features);
    QString vendor, model;
    if (map.contains("DeviceVendorName") && map.contains("DeviceModelName")
        && readText(*map.value("DeviceVendorName"), &vendor) && readText(*map.value("DeviceModelName"), &model))
        setup.m_device = vendor + " -- " + model;
    auto readAll = [&map](const QStringList& names, QVector<Value>* out) {
        for (const QString& name : names)
        {
            QString text;
            if (map.contains(name) && readText(*map.value(name), &text))
                out->append({name, text, 0});
        }
    };
    for (const Group& group : groups())
    {
        if (!*group.selector)
        {
            readAll(group.features, &setup.m_values);
            continue;
        }
        const shared_ptr<Feature> selector = map.value(group.selector);
        QString saved;
        std::vector<std::string> entries;
        if (!selector || !readText(*selector, &saved) || selector->GetValues(entries) != OrvErrorSuccess)
            continue;
        for (const std::string& entry : entries)
        {
            bool available = false;
            if (selector->IsValueAvailable(entry.c_str(), available) != OrvErrorSuccess || !available
                || selector->SetValue(entry.c_str()) != OrvErrorSuccess)
                continue;
            QVector<Value> values;
            readAll(group.features, &values);
            if (values.isEmpty())
                continue;
            setup.m_values.append({group.selector, QString::fromStdString(entry), 0});
            setup.m_values += values;
        }
        selector->SetValue(saved.toStdString().c_str());
    }
}

bool TriggerSetup::parse(const QString& text, QString* error)
{
    static const QRegularExpression valueLine("^([A-Za-z_][A-Za-z0-9_]*)[\\t ]+(\\S+)\\s*$");
    QVector<Value> values;
    QString device;
    QSet<QString> selectorsSeen;
    const QStringList lines = text.split('\n');
    for (int i = 0; i < lines.size(); ++i)
    {
        const QString line = lines[i].trimmed();
        const QString at = QStringLiteral("line %1: ").arg(i + 1);
        if (line.isEmpty())
            continue;
        if (line.startsWith('#'))
        {
            if (line.startsWith("# Device = "))
                device = line.mid(11);
            continue;
        }
        const QRegularExpressionMatch match = valueLine.match(line);
        if (!match.hasMatch())
        {
            *error = at + QStringLiteral("expected a feature name, a tab and one value, found \"%1\"").arg(line.left(60));
            return false;
        }
        const QString name = match.captured(1);
        if (!isSetupFeature(name))
        {
            *error = at + QStringLiteral("%1 is not a feature of a trigger setup").arg(name);
            return false;
        }
        const QString selector = selectorOf(name);
        if (!selector.isEmpty() && !selectorsSeen.contains(selector))
        {
            *error = at + QStringLiteral("%1 needs a %2 line before it").arg(name, selector);
            return false;
        }
        if (isSelector(name))
            selectorsSeen.insert(name);
        values.append({name, match.captured(2), i + 1});
    }
    if (values.isEmpty())
    {
        *error = QStringLiteral("the file holds no feature values");
        return false;
    }
    m_values = values;
    m_device = device;
    return true;
}

QString TriggerSetup::text() const
{
    QString out = QStringLiteral("# Trigger setup: GenICam feature persistence, one \"Name<TAB>Value\" a line\n");
    if (!m_device.isEmpty())
        out += "# Device = " + m_device + "\n";
    for (const Value& value : m_values)
        out += value.name + '\t' + value.value + '\n';
    return out;
}

TriggerSetup::Report TriggerSetup::applyTo(const FeatureList& features) const
{
    // The file's values as steps: a selector line opens a step, the values it
    // selects join the step of their selector's last line, every other value
    // is a step of its own.
    QVector<Step> steps;
    QHash<QString, int> open;
    for (const Value& value : m_values)
    {
        const QString selector = selectorOf(value.name);
        if (isSelector(value.name))
        {
            open.insert(value.name, steps.size());
            steps.append({value.name, value.value, {}});
        }
        else if (!selector.isEmpty() && open.contains(selector))
            steps[open.value(selector)].values.append(value);
        else if (selector.isEmpty())
            steps.append({QString(), QString(), {value}});
    }
    Report report;
    const bool ran = exclusively(features, [&] {
        Applier applier(features, report);
        for (const Step& step : steps)
            applier.run(step);
        applier.restore();
    });
    if (!ran)
        report.refused << QStringLiteral("nothing written: another thread kept the camera busy");
    return report;
}

QVector<TriggerSetup::Report> TriggerSetup::applyTo(const QVector<FeatureList>& cameras) const
{
    QVector<Report> reports;
    for (const FeatureList& features : cameras)
        reports.append(applyTo(features));
    return reports;
}

QString TriggerSetup::Report::text() const
{
    QString out = QStringLiteral("%1 value(s) written, %2 already set, %3 refused, %4 feature(s) missing.\n")
                      .arg(written.size())
                      .arg(unchanged)
                      .arg(refused.size())
                      .arg(missing.size());
    if (!written.isEmpty())
        out += "\nWritten:\n  " + written.join("\n  ") + "\n";
    if (!refused.isEmpty())
        out += "\nRefused:\n  " + refused.join("\n  ") + "\n";
    if (!missing.isEmpty())
        out += "\nNot on this camera (skipped):\n  " + missing.join("\n  ") + "\n";
    return out;
}
