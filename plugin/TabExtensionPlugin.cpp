#include "TabExtensionPlugin.h"

#include "IOTriggerWidget.h"

#include <QVBoxLayout>

TabExtensionResult TabExtensionPlugin::get(const FeatureList& features, QWidget& parent,
                                           QMap<QString, QVariant>* settings)
{
    Q_UNUSED(settings)
    try
    {
        IOTriggerWidget* tab = new IOTriggerWidget(features, &parent);
        connect(this, SIGNAL(camStreaming(bool)), tab, SLOT(camIsStreaming(bool)));
        // A parent that already has a layout would refuse a second one and leave
        // it without an owner: the tab goes into the parent's own layout instead.
        if (QLayout* existing = parent.layout())
        {
            existing->addWidget(tab);
        }
        else
        {
            QVBoxLayout* layout = new QVBoxLayout;
            layout->addWidget(tab, 0);
            parent.setLayout(layout);
        }
    }
    catch (const TabExtensionException& e)
    {
        return e.Result();
    }
    return 0;
}

bool TabExtensionPlugin::connectToResetFps(QObject* receiver, const char* slot)
{
    // Nothing in the Trigger IO tab touches the frame rate shown by the host,
    // so there is no reset request to hook up.
    Q_UNUSED(receiver)
    Q_UNUSED(slot)
    return false;
}

bool TabExtensionPlugin::connectFromAcquire(QObject* sender, const char* signal)
{
    return static_cast<bool>(connect(sender, signal, this, SLOT(OnCamIsStreaming(bool))));
}

void TabExtensionPlugin::OnCamIsStreaming(bool streaming)
{
    emit camStreaming(streaming);
}
