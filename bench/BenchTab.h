#ifndef BENCHTAB_H
#define BENCHTAB_H

#include "IOTriggerWidget.h"

#include <QMutexLocker>
#include <QTimer>

// The Trigger IO tab as the benchmark drives it: the refresh timer is run by
// hand so that every tick is measured on its own.
class BenchTab : public IOTriggerWidget
{
public:
    using IOTriggerWidget::IOTriggerWidget;
    using IOTriggerWidget::m_pComboTriggerActivation;
    using IOTriggerWidget::m_pComboTriggerMode;

    void stopTimer()
    {
        m_pUpdateTimer->stop();
    }
    void startTimer()
    {
        m_pUpdateTimer->start(1000);
    }
    QStringList changed() const
    {
        QMutexLocker lock(m_pMutex);
        return *m_pChangedFeatures;
    }
    void markAllChanged()
    {
        QMutexLocker lock(m_pMutex);
        *m_pChangedFeatures = m_ObservedFeatures;
    }
    void clearChanged()
    {
        QMutexLocker lock(m_pMutex);
        m_pChangedFeatures->clear();
    }
};

#endif
