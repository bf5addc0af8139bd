#ifndef TABEXTENSIONPLUGIN_H
#define TABEXTENSIONPLUGIN_H

#include "TabExtensionInterface.h"

// The plug-in object the host loads: builds a Trigger IO tab per camera window
// and forwards the host's acquisition state to every tab it built.
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
