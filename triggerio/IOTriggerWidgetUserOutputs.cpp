#include "IOTriggerWidget.h"

void IOTriggerWidget::updateSyncLevels()
{
}

void IOTriggerWidget::updateUserOutSelector()
{
}

void IOTriggerWidget::updateUserOutValue()
{
}

void IOTriggerWidget::SetOnCBOutUserValueChanged(int, int)
{
}

void IOTriggerWidget::OnCBOutUserValueChanged(int, int)
{
}

void IOTriggerWidget::OnCBOutUserValueChanged1(int state)
{
    OnCBOutUserValueChanged(0, state);
}

void IOTriggerWidget::OnCBOutUserValueChanged2(int state)
{
    OnCBOutUserValueChanged(1, state);
}

void IOTriggerWidget::OnCBOutUserValueChanged3(int state)
{
    OnCBOutUserValueChanged(2, state);
}

void IOTriggerWidget::OnCBOutUserValueChanged4(int state)
{
    OnCBOutUserValueChanged(3, state);
}

void IOTriggerWidget::OnCBOutUserValueChanged5(int state)
{
    OnCBOutUserValueChanged(4, state);
}
