#ifndef CAMERADISCOVERY_H
#define CAMERADISCOVERY_H

#include "GenICamCamera.h"

#include <QList>
#include <QMetaType>
#include <QObject>

#include <memory>

// Lists the cameras that can be opened: the devices Aravis finds, and the demo
// models (GenICam files run on Aravis's fake device) of a folder. Discovery
// waits for the network, so it runs in the backend's background and the list
// comes back by a queued signal; the GUI thread never waits for it.
class CameraDiscovery : public QObject
{
    Q_OBJECT

public:
    // Whether another application controls a camera, as far as can be told
    // without opening it (GigE Vision: the camera's control channel privilege
    // register, read without asking for control).
    enum class Control
    {
        Unknown,
        Free,
        Elsewhere
    };

    struct Entry
    {
        GenICamCamera::DeviceInfo device; // a demo model: id "fake:FILE", model its file's base name
        Control control = Control::Unknown;
        bool demo = false;
    };

    explicit CameraDiscovery(QObject* parent = nullptr);
    // A discovery still running ends unseen.
    ~CameraDiscovery() override;

    // The folder of the demo models (*.xml), listed after the devices.
    void setDemoFolder(const QString& folder);
    // Starts a discovery unless one runs; listed() follows.
    void refresh();
    bool isRunning() const;

    // What a discovery finds now, on the calling thread (it waits for the network).
    static QList<Entry> discover(const QString& demoFolder);
    // Reads a GigE Vision camera's control channel privilege register over a
    // socket of its own; Unknown when the camera does not answer.
    static Control controlOf(const QString& address);

signals:
    void listed(const QList<CameraDiscovery::Entry>& entries);

private:
    struct Shared;
    std::shared_ptr<Shared> m_shared;
    QString m_demoFolder;
    bool m_running = false;
};

Q_DECLARE_METATYPE(CameraDiscovery::Entry)

#endif
