#include "IOTriggerWidget.h"

int IOTriggerWidget::GetOptionalOutputs(QStringList*)
{
    return 0;
}

void IOTriggerWidget::createOptionalOutputs()
{
}

void IOTriggerWidget::updateOptionalOut()
{
}

void IOTriggerWidget::OnComboOptionalOutChanged(QString)
{
}
