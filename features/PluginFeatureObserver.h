#ifndef PLUGINFEATUREOBSERVER_H
#define PLUGINFEATUREOBSERVER_H

#include <OrvCPP/OrvCPP.h>

#include <QObject>
#include <QString>

Q_DECLARE_INTERFACE(OrvCPP::IFeatureObserver, "OrvCPP::IFeatureObserver")

// Turns the camera's change callbacks, which arrive on the camera API's
// threads, into the Qt signal setChangedFeature. The receiver lives in the GUI
// thread, so the default connection queues the call there.
class PluginFeatureObserver : public QObject, public OrvCPP::IFeatureObserver
{
    Q_OBJECT
    Q_INTERFACES(OrvCPP::IFeatureObserver)

public:
    PluginFeatureObserver();
    ~PluginFeatureObserver() override;

    // A new observer for sharing with the camera API. Its last reference may
    // fall on one of the API's threads; the object is destroyed on the thread
    // it lives in all the same.
    static OrvCPP::shared_ptr<PluginFeatureObserver> create();

    void FeatureChanged(const OrvCPP::shared_ptr<OrvCPP::Feature>& feature) override;

signals:
    void setChangedFeature(QString featureName, QString sValue);
};

#endif
