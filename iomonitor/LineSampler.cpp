#include "LineSampler.h"

#include "SelectorWalk.h"

#include <QRegularExpression>

namespace
{

// The line numbers that "LineStatusAll" uses: the number a name ends in
// ("Line3" is bit 3) when every line has a distinct one, else the line's
// position in the selector.
QVector<int> statusBits(const QStringList& names)
{
    static const QRegularExpression trailingNumber("(\\d+)$");
    QVector<int> bits;
    for (const QString& name : names)
    {
        const QRegularExpressionMatch match = trailingNumber.match(name);
        const int bit = match.hasMatch() ? match.captured(1).toInt() : -1;
        if (bit < 0 || bit > 63 || bits.contains(bit))
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
        const QVector<int> bits = statusBits(lineNames);
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
    const QVector<int> bits = statusBits(outputs);
    for (int i = 0; i < outputs.size(); ++i)
        m_lines.append(Line{outputs.at(i), QString("Output"), m_statusAll ? bits.at(i) : i, false});
    for (int i = 0; i < inputs.size(); ++i)
        m_lines.append(Line{inputs.at(i), QString("Input"), i, true});
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
