#include "IOTriggerWidget.h"

#include <QComboBox>

void IOTriggerWidget::createTriggerInput()
{
}

void IOTriggerWidget::updateTriggerSource()
{
}

void IOTriggerWidget::updateTriggerActivation()
{
}

void IOTriggerWidget::updateTriggerMode()
{
}

void IOTriggerWidget::updateTriggerSelector()
{
}

void IOTriggerWidget::updateAcquisitionFrameCount()
{
}

void IOTriggerWidget::updateAcquisitionMode()
{
}

void IOTriggerWidget::updateLineSelector()
{
}

void IOTriggerWidget::updateLineRouting()
{
}

void IOTriggerWidget::updateExposureMode()
{
}

void IOTriggerWidget::updateExposureAuto()
{
}

void IOTriggerWidget::SetComboBoxValue(QString, QComboBox*)
{
}

QString IOTriggerWidget::GetFirstInput()
{
    return QString();
}

void IOTriggerWidget::OnComboTriggerSourceChanged(QString)
{
}

void IOTriggerWidget::OnComboTriggerActivationChanged(QString)
{
}

void IOTriggerWidget::OnComboTriggerSelectorChanged(QString)
{
}

void IOTriggerWidget::OnComboAcquisitionModeChanged(QString)
{
}

void IOTriggerWidget::OnComboInputLineSelectorChanged(QString)
{
}

void IOTriggerWidget::OnCBLineRoutingChanged(int)
{
}

void IOTriggerWidget::OnComboExposureModeChanged(QString)
{
}

void IOTriggerWidget::OnComboExposureAutoChanged(QString)
{
}

void IOTriggerWidget::OnComboTriggerModeChanged(QString)
{
}

void IOTriggerWidget::OnSWTrigger()
{
}

void IOTriggerWidget::OnSpinAcquisitionFrameCountChanged(int)
{
}
