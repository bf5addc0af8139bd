#ifndef TABEXTENSIONPLUGIN_H
#define TABEXTENSIONPLUGIN_H

#include "TabExtensionInterface.h"

// What the host gets from the module: a Trigger IO tab for each camera window
// that asks for one, and the host's acquisition on/off passed on to all of them.
class TabExtensionPlugin : public TabExtensionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "TabExtensionInterface")
    Q_INTERFACES(TabExtensionInterface)

public:
    TabExtensionResult get(const FeatureList& features, QWidget& parent, QMap<QString, QVariant>* settings) override;
    bool connectToResetFps(QObject* receiver, const char* slot) override;
    bool connectFromAcquire(QObject* sender, const char* signal) override;

signals:
    void camStreaming(bool streaming);

public slots:
    void OnCamIsStreaming(bool streaming);
};

#endif
