#include "TriggerMonitor.h"

#include "SelectorWalk.h"

TriggerMonitor::TriggerMonitor(const FeatureList& features)
    : m_features(features)
{
    m_stateSelector = m_features.GetFeatureByName(QString("AcquisitionStatusSelector"));
    m_state = m_features.GetFeatureByName(QString("AcquisitionStatus"));
    if (m_stateSelector && m_state)
        m_states = m_features.GetAvailableEnumEntries("AcquisitionStatusSelector");
}

QString TriggerMonitor::triggerInWords(const QString& selector)
{
    if (selector == "FrameStart")
        return tr("Frame start");
    if (selector == "AcquisitionStart")
        return tr("Acquisition start");
    if (selector == "ExposureStart")
        return tr("Exposure start");
    if (selector == "FrameBurstStart")
        return tr("Frame burst start");
    if (selector.isEmpty())
        return tr("The trigger");
    // Any other selector entry: its words, as the camera spells them.
    QString words;
    for (int i = 0; i < selector.size(); ++i)
    {
        const QChar c = selector.at(i);
        if (i > 0 && c.isUpper() && !selector.at(i - 1).isUpper())
            words += ' ';
        words += i > 0 ? c.toLower() : c;
    }
    return words;
}

QString TriggerMonitor::sentence() const
{
    if (!m_features.GetIsFeatureAvailable("TriggerMode"))
        return tr("Free running (the camera has no trigger)");
    const QString selector = m_features.GetStringValue("TriggerSelector");
    const QString trigger = triggerInWords(selector);
    if (m_features.GetStringValue("TriggerMode") != "On")
    {
        // Only the frame start trigger decides alone whether frames run freely.
        if (selector.isEmpty() || selector == "FrameStart")
            return tr("Free running");
        return tr("%1 trigger off").arg(trigger);
    }
    const QString source = m_features.GetStringValue("TriggerSource");
    if (source == "Software")
        return tr("%1 waits for a software trigger").arg(trigger);
    const QString activation = m_features.GetStringValue("TriggerActivation");
    QString what = tr("a signal");
    if (activation == "RisingEdge")
        what = tr("a rising edge");
    else if (activation == "FallingEdge" || activation == "FallinEdge")
        what = tr("a falling edge");
    else if (activation == "AnyEdge")
        what = tr("any edge");
    else if (activation == "LevelHigh")
        what = tr("a high level");
    else if (activation == "LevelLow")
        what = tr("a low level");
    if (source.isEmpty())
        return tr("%1 waits for %2").arg(trigger, what);
    return tr("%1 waits for %2 on %3").arg(trigger, what, source);
}

const QStringList& TriggerMonitor::states() const
{
    return m_states;
}

QVector<int> TriggerMonitor::sample()
{
    QVector<int> levels(m_states.size(), Unknown);
    if (m_states.isEmpty())
        return levels;
    SelectorWalk::walk(m_stateSelector, m_states, [&](int i) {
        bool on = false;
        if (m_state->GetValue(on) == OrvErrorSuccess)
            levels[i] = on ? 1 : 0;
    });
    return levels;
}
