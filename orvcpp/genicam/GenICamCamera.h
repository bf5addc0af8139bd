#ifndef GENICAMCAMERA_H
#define GENICAMCAMERA_H

#include "FeatureList.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class GenICamDevice;
typedef struct _ArvDevice ArvDevice;

// A GenICam camera opened through Aravis, as the host's feature list.
//
//   GenICamCamera camera;
//   if (camera.open("fake:/path/to/model.xml") != OrvErrorSuccess)   // or an Aravis device id
//       qWarning() << camera.errorString();
//   FeatureList features = camera.features();
//
// Ids: an Aravis device id as listed by deviceIds() or arv-tool-0.8 (for a
// GigE Vision camera also its IP address), or "fake:" followed by the path of
// a GenICam XML file, which opens an in-process Aravis fake device running
// that description. The features hold the device: it stays open as long as
// the feature list or the camera object lives.
class GenICamCamera
{
public:
    static constexpr const char* FakePrefix = "fake:";

    GenICamCamera();
    ~GenICamCamera();

    GenICamCamera(const GenICamCamera&) = delete;
    GenICamCamera& operator=(const GenICamCamera&) = delete;

    // Ids of the devices Aravis finds now (discovery on all interfaces).
    static QStringList deviceIds();
    // What Aravis's discovery tells of a device, without opening it.
    struct DeviceInfo
    {
        QString id;       // to open it with
        QString vendor;
        QString model;
        QString serial;
        QString address;  // GigE Vision: its IP address; USB3 Vision: Aravis's bus address
        QString protocol; // "GigEVision", "USB3Vision", ...
    };
    // The devices Aravis finds now, as deviceIds() but with what discovery tells of each.
    static QList<DeviceInfo> devices();

    // Opens a device, closing the one opened before. On failure errorString()
    // tells why: OrvErrorNotFound (unknown id, missing file), OrvErrorInvalidAccess
    // (unreadable file, device in use by another program), OrvErrorInvalidValue
    // (not a valid GenICam description, or one with a reference loop), OrvErrorInternalFault
    // (anything else).
    OrvErrorType open(const QString& id);
    // Forgets the device; features already handed out keep working until dropped.
    void close();

    // Takes over the device that other has open (closing this one first);
    // other is closed afterwards. Lets a host open a camera on a worker
    // thread and hand it to the object its window uses. This camera's poll
    // period and lost handler stay and apply to the device taken over.
    void adopt(GenICamCamera& other);

    bool isOpen() const;
    QString id() const;
    QString errorString() const;
    // The serial number the device reports (GigE Vision: its bootstrap
    // registers; otherwise its "DeviceSerialNumber"), read at opening; empty
    // when it has none. Tells whether a camera found again is the same one.
    QString serialNumber() const;

    // One feature per GenICam feature node reachable from the root category,
    // in category order (depth first, as the XML lists them). Empty when not open.
    FeatureList features() const;

    // Period of the change notifications (default 1000 ms), for this device
    // and every one opened or adopted later.
    void setPollPeriod(int milliseconds);
    int pollPeriod() const;

    // Whether the open device no longer answers (see GenICamDevice): its
    // features then return OrvErrorDeviceLost at once. For good: open the
    // camera anew once it answers again.
    bool isDeviceLost() const;
    // Why it was found lost, in Aravis's words where it gave any.
    QString lostReason() const;
    // Called once when the open device is found lost, for this device and
    // every one opened or adopted later: on a thread of the backend (or of
    // the caller that found it), so it should only hand the news on, for
    // example with a queued call. Null stops the calls; it waits for a call
    // in progress, and so does closing or destroying the camera.
    void setLostHandler(std::function<void()> handler);

    // Runs job on a background thread that the backend owns and joins (see
    // waitForBackgroundWork): for work a host must not wait for on its GUI
    // thread, such as opening a camera.
    static void runInBackground(std::function<void()> job);
    // Waits, at most milliseconds, until the backend's background threads
    // (change notifications, lost devices let go of, jobs of the host) have
    // ended; true when none runs. A host calls it before main() returns, once
    // its cameras are closed.
    static bool waitForBackgroundWork(int milliseconds);

    // Runs code on the Aravis device with the device lock held (for example
    // to read a register back, or to stream). Returns false, without running
    // it, when not open or when the device is lost.
    bool withAravisDevice(const std::function<void(ArvDevice*)>& call) const;
    // Another handle on the device open now, for calls from a thread of the
    // host's own (withAravisDevice, isDeviceLost): it keeps that device open
    // while this object opens, adopts or closes another, and leaves this
    // camera's lost handler and settings alone. Null when nothing is open.
    std::shared_ptr<const GenICamCamera> handle() const;

private:
    OrvErrorType fail(OrvErrorType code, const QString& message);
    OrvErrorType openFake(const QString& path, ArvDevice*& device);
    OrvErrorType openAravis(const QString& id, ArvDevice*& device);

    // Hands this camera's settings to the device it now holds.
    void applySettings();

    std::shared_ptr<GenICamDevice> m_device;
    std::function<void()> m_lostHandler;
    int m_pollPeriod;
    FeatureList m_features;
    QString m_id;
    QString m_serial;
    QString m_error;
};

#endif
