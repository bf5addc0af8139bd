#include "IOTriggerWidget.h"

void IOTriggerWidget::OnEdgeMode()
{
}

void IOTriggerWidget::OnLevelMode()
{
}

void IOTriggerWidget::OnBulkMode()
{
}
