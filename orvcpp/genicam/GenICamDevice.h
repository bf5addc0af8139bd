#ifndef GENICAMDEVICE_H
#define GENICAMDEVICE_H

#include <OrvC/OrvCTypes.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <set>
#include <string>

typedef struct _ArvDevice ArvDevice;
typedef struct _ArvGc ArvGc;
typedef struct _GError GError;

class FeaturePoller;

// One opened Aravis device, shared by the camera object and all its features.
//
// Every call into Aravis for this device is made with lock() held: the GenICam
// node tree of a device is not thread-safe. Once the device is found gone
// (a transport timeout, a lost control channel) it stays lost and every
// feature call returns OrvErrorDeviceLost without touching Aravis again.
class GenICamDevice
{
public:
    // Takes over the reference to device.
    GenICamDevice(ArvDevice* device, const std::string& id);
    ~GenICamDevice();

    GenICamDevice(const GenICamDevice&) = delete;
    GenICamDevice& operator=(const GenICamDevice&) = delete;

    const std::string& id() const
    {
        return m_id;
    }
    std::mutex& lock()
    {
        return m_lock;
    }
    ArvDevice* device() const
    {
        return m_device;
    }
    ArvGc* genicam() const
    {
        return m_genicam;
    }
    FeaturePoller& poller()
    {
        return *m_poller;
    }

    bool isLost() const
    {
        return m_lost.load();
    }
    void markLost()
    {
        m_lost.store(true);
    }

    // Names of the nodes whose value may change by itself (IsVolatile Yes,
    // Cachable NoCache or a PollingTime in the device's GenICam description).
    // Read from the description at the first call; expects lock() held.
    const std::set<std::string>& volatileNodes();

    // Maps an Aravis error to the camera API's code and frees it; marks the
    // device lost when the error says the device no longer answers.
    // A null error maps to OrvErrorSuccess.
    OrvErrorType takeError(GError* error);

private:
    ArvDevice* m_device;
    ArvGc* m_genicam;
    std::string m_id;
    std::mutex m_lock;
    std::atomic<bool> m_lost{false};
    unsigned long m_controlLostHandler = 0;
    std::unique_ptr<FeaturePoller> m_poller;
    std::unique_ptr<std::set<std::string>> m_volatileNodes;
};

#endif
