#ifndef TABACCESS_H
#define TABACCESS_H

#include "IOTriggerWidget.h"

#include <QMutexLocker>

// The Trigger IO tab with its members opened up for tests.
class TabAccess : public IOTriggerWidget
{
public:
    using IOTriggerWidget::IOTriggerWidget;

    using BaseTabPluginWidget::m_ObservedFeatures;
    using BaseTabPluginWidget::m_pChangedFeatures;
    using BaseTabPluginWidget::m_pMutex;
    using BaseTabPluginWidget::m_pUpdateTimer;

    using IOTriggerWidget::m_OptionalOutCombos;
    using IOTriggerWidget::m_OutputRows;
    using IOTriggerWidget::m_Outputs;
    using IOTriggerWidget::m_pButtonBulk;
    using IOTriggerWidget::m_pButtonEdge;
    using IOTriggerWidget::m_pButtonLevel;
    using IOTriggerWidget::m_pButtonSWTrigger;
    using IOTriggerWidget::m_pCBLineRouting;
    using IOTriggerWidget::m_pComboAcquisitionMode;
    using IOTriggerWidget::m_pComboExposureAuto;
    using IOTriggerWidget::m_pComboExposureMode;
    using IOTriggerWidget::m_pComboInputLineSelector;
    using IOTriggerWidget::m_pComboTriggerActivation;
    using IOTriggerWidget::m_pComboTriggerMode;
    using IOTriggerWidget::m_pComboTriggerSelector;
    using IOTriggerWidget::m_pComboTriggerSource;
    using IOTriggerWidget::m_pEditSyncLevels;
    using IOTriggerWidget::m_pLabelOutInvert;
    using IOTriggerWidget::m_pLabelOutSource;
    using IOTriggerWidget::m_pSpinAcquisitionFrameCount;

    // Runs one refresh tick on the given changed names (observers are off during
    // the pass, as on a real tick).
    void refresh(const QStringList& changed)
    {
        {
            QMutexLocker lock(m_pMutex);
            *m_pChangedFeatures = changed;
        }
        updateTimer();
    }
};

#endif
