#include "IOTriggerWidget.h"

int IOTriggerWidget::GetOutputs(QStringList*)
{
    return 0;
}

QList<int> IOTriggerWidget::DetermineOutsIndex()
{
    return QList<int>();
}

void IOTriggerWidget::createOutputLabels()
{
}

void IOTriggerWidget::createOutput()
{
}

void IOTriggerWidget::updateOutSource()
{
}

void IOTriggerWidget::updateOutInvert()
{
}

void IOTriggerWidget::updateOutStatus()
{
}

void IOTriggerWidget::OnComboOutSourceChanged(QString)
{
}

void IOTriggerWidget::OnCBOutInvertChanged(int)
{
}

void IOTriggerWidget::OnCBOutStatusChanged(int)
{
}
