#include "IOMonitorPlugin.h"

#include "IOMonitorWidget.h"

#include <QVBoxLayout>

TabExtensionResult IOMonitorPlugin::get(const FeatureList& features, QWidget& parent, QMap<QString, QVariant>*)
{
    try
    {
        IOMonitorWidget* page = new IOMonitorWidget(features, &parent);
        connect(this, &IOMonitorPlugin::camStreaming, page, &IOMonitorWidget::camIsStreaming);
        QLayout* layout = parent.layout();
        if (!layout)
            layout = new QVBoxLayout(&parent);
        layout->addWidget(page);
    }
    catch (const TabExtensionException& e)
    {
        return e.Result();
    }
    return 0;
}

bool IOMonitorPlugin::connectToResetFps(QObject*, const char*)
{
    return false; // the monitor never touches the frame rate
}

bool IOMonitorPlugin::connectFromAcquire(QObject* sender, const char* signal)
{
    return static_cast<bool>(connect(sender, signal, this, SIGNAL(camStreaming(bool))));
}
