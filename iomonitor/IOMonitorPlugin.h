#ifndef IOMONITORPLUGIN_H
#define IOMONITORPLUGIN_H

#include "TabExtensionInterface.h"

// What the host gets from the module: an I/O Monitor page for each camera
// window that asks for one (result 4 for a camera without lines), and the
// host's acquisition on/off passed on to all of them.
class IOMonitorPlugin : public TabExtensionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "TabExtensionInterface" FILE "IOMonitorPlugin.json")
    Q_INTERFACES(TabExtensionInterface)

public:
    TabExtensionResult get(const FeatureList& features, QWidget& parent, QMap<QString, QVariant>* settings) override;
    bool connectToResetFps(QObject* receiver, const char* slot) override;
    bool connectFromAcquire(QObject* sender, const char* signal) override;

signals:
    void camStreaming(bool streaming);
};

#endif
