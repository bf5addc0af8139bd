#include "LineSampler.h"

#include "SelectorWalk.h"

#include <OrvCPP/EnumEntryValues.h>

#include <QRegularExpression>

namespace
{

// The bits of lines in the bit fields that hold every line's level
// ("LineStatusAll", the level masks): the integer value the camera's
// description gives the selector entry (EnumEntry <Value>), when every line
// has a distinct one from 0 to 63. Where the description gives none, the
// number a name ends in ("Line3" is bit 3; byNumber) when every line has a
// distinct one, else the line's position in the selector.
QVector<int> lineBits(const FeatureManager::FeaturePtr& selector, const QStringList& names, bool byNumber)
{
    QVector<int> bits;
    auto* values = dynamic_cast<OrvCPP::EnumEntryValues*>(selector.get());
    for (const QString& name : names)
    {
        long long value = -1;
        if (!values || values->GetEntryValue(name.toStdString().c_str(), value) != OrvErrorSuccess || value < 0 ||
            value > 63 || bits.contains(int(value)))
            break;
        bits << int(value);
    }
    if (bits.size() == names.size())
        return bits;
    bits.clear();
    static const QRegularExpression trailingNumber("(\\d+)$");
    for (const QString& name : names)
    {
        const QRegularExpressionMatch match = trailingNumber.match(name);
        const int bit = match.hasMatch() ? match.captured(1).toInt() : -1;
        if (!byNumber || bit < 0 || bit > 63 || bits.contains(bit))
        {
            bits.clear();
            for (int i = 0; i < names.size(); ++i)
                bits << i;
            return bits;
        }
        bits << bit;
    }
    return bits;
}

} // namespace

LineSampler::LineSampler(const FeatureList& features)
    : m_features(features)
{
    m_statusAll = m_features.GetFeatureByName(QString("LineStatusAll"));
    const QStringList lineNames = m_features.GetAvailableEnumEntries("LineSelector");
    if (!lineNames.isEmpty())
    {
        m_selector = m_features.GetFeatureByName(QString("LineSelector"));
        m_names = lineNames;
        m_status = m_features.GetFeatureByName(QString("LineStatus"));
        m_mode = m_features.GetFeatureByName(QString("LineMode"));
        const QVector<int> bits = lineBits(m_selector, lineNames, true);
        for (int i = 0; i < lineNames.size(); ++i)
            m_lines.append(Line{lineNames.at(i), QString(), bits.at(i), false});
        m_source = m_statusAll ? StatusAll : m_status ? StatusWalk : NoLevels;
        readDirections();
        return;
    }

    // The sync-out family: every entry of the output selector is an output,
    // every entry of the input selector an input; each has its level mask.
    const QStringList outputs = m_features.GetAvailableEnumEntries("LineOutSelector", "SyncOutSelector");
    const QStringList inputs = m_features.GetAvailableEnumEntries("LineInSelector", "SyncInSelector");
    m_outLevels = m_features.GetFeatureByName("LineOutLevels", "SyncOutLevels");
    m_inLevels = m_features.GetFeatureByName("LineInLevels", "SyncInLevels");
    const QVector<int> outBits =
        lineBits(m_features.GetFeatureByName("LineOutSelector", "SyncOutSelector"), outputs, m_statusAll != nullptr);
    const QVector<int> inBits =
        lineBits(m_features.GetFeatureByName("LineInSelector", "SyncInSelector"), inputs, false);
    for (int i = 0; i < outputs.size(); ++i)
        m_lines.append(Line{outputs.at(i), QString("Output"), outBits.at(i), false});
    for (int i = 0; i < inputs.size(); ++i)
        m_lines.append(Line{inputs.at(i), QString("Input"), inBits.at(i), true});
    if (m_lines.isEmpty())
        m_source = NoLevels;
    else if (m_statusAll && inputs.isEmpty())
        m_source = StatusAll;
    else if (m_outLevels || m_inLevels)
        m_source = LevelMasks;
}

LineSampler::Source LineSampler::source() const
{
    return m_source;
}

const QVector<LineSampler::Line>& LineSampler::lines() const
{
    return m_lines;
}

void LineSampler::readDirections()
{
    if (!m_selector || !m_mode)
        return;
    SelectorWalk::walk(m_selector, m_names, [this](int i) {
        std::string mode;
        m_lines[i].direction = m_mode->GetValue(mode) == OrvErrorSuccess ? QString::fromStdString(mode) : QString();
    });
}

QVector<int> LineSampler::sample()
{
    switch (m_source)
    {
    case StatusAll:
        return sampleStatusAll();
    case StatusWalk:
        return sampleStatusWalk();
    case LevelMasks:
        return sampleMasks();
    case NoLevels:
        break;
    }
    return QVector<int>(m_lines.size(), Unknown);
}

QVector<int> LineSampler::sampleStatusAll()
{
    QVector<int> levels(m_lines.size(), Unknown);
    long long all = 0;
    if (!readInteger(m_statusAll, &all))
        return levels;
    for (int i = 0; i < m_lines.size(); ++i)
        levels[i] = int((quint64(all) >> m_lines.at(i).bit) & 1);
    return levels;
}

QVector<int> LineSampler::sampleStatusWalk()
{
    QVector<int> levels(m_lines.size(), Unknown);
    SelectorWalk::walk(m_selector, m_names, [&](int i) {
        bool high = false;
        if (m_status->GetValue(high) == OrvErrorSuccess)
            levels[i] = high ? 1 : 0;
    });
    return levels;
}

QVector<int> LineSampler::sampleMasks()
{
    QVector<int> levels(m_lines.size(), Unknown);
    long long outputs = 0;
    long long inputs = 0;
    const bool outputsRead = m_outLevels && readInteger(m_outLevels, &outputs);
    const bool inputsRead = m_inLevels && readInteger(m_inLevels, &inputs);
    for (int i = 0; i < m_lines.size(); ++i)
    {
        const Line& line = m_lines.at(i);
        if (line.inputMask ? inputsRead : outputsRead)
            levels[i] = int((quint64(line.inputMask ? inputs : outputs) >> (line.bit % 64)) & 1);
    }
    return levels;
}

bool LineSampler::readInteger(const FeatureManager::FeaturePtr& feature, long long* value)
{
    return feature && feature->GetValue(*value) == OrvErrorSuccess;
}
