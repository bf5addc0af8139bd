#ifndef GENICAMDEVICE_H
#define GENICAMDEVICE_H

#include <OrvC/OrvCTypes.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

typedef struct _ArvDevice ArvDevice;
typedef struct _ArvDomNode ArvDomNode;
typedef struct _ArvGc ArvGc;
typedef struct _GError GError;

class FeaturePoller;
class RegisterCache;

// One opened Aravis device, shared by the camera object and all its features.
//
// Every call into Aravis for this device is made with lock() held: the GenICam
// node tree of a device is not thread-safe.
//
// A call the device did not answer (Aravis has retried and given up) is a
// timeout, not a lost device: a busy link misses an answer now and then. The
// device counts as lost when Aravis reports that it lost control of it (its
// GigE Vision heartbeat failed), or when timeouts follow each other, with no
// answer in between, for longer than the camera's heartbeat timeout: by then
// the camera has given up on us too. Once lost it stays lost, and every
// feature call returns OrvErrorDeviceLost at once without touching the link.
// The loss is reported once, to the handler set with setLostHandler().
class GenICamDevice : public std::enable_shared_from_this<GenICamDevice>
{
public:
    using Duration = std::chrono::steady_clock::duration;

    // Takes over the reference to device.
    GenICamDevice(ArvDevice* device, const std::string& id);
    ~GenICamDevice();

    // Starts listening to Aravis's "control-lost" signal; once, after the
    // device is owned by a shared pointer.
    void watchControl();
    // Called once when the device is found lost (at once when it is lost
    // already), on whichever thread found it, possibly with lock() held: it
    // must return quickly and call nothing of the device. Replacing or
    // clearing it waits for a call in progress.
    void setLostHandler(std::function<void()> handler);

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
    // Null once the device is lost and let go of (see letGoIfLost).
    ArvDevice* device() const
    {
        return m_device;
    }
    // The node tree the features read: built over a CachingDevice, so that
    // its register accesses go through cache(). Null once let go of.
    ArvGc* genicam() const
    {
        return m_genicam;
    }
    RegisterCache& cache()
    {
        return *m_cache;
    }
    FeaturePoller& poller()
    {
        return *m_poller;
    }

    bool isLost() const
    {
        return m_lost.load();
    }
    // Why the device was found lost, in Aravis's words where it gave any.
    std::string lostReason() const;
    void markLost(const std::string& reason);
    // Aravis's heartbeat found that the camera no longer counts us as its
    // controller (a link cut for two seconds can do that): in the background,
    // once Aravis has noted it, control is asked for again. The device is then
    // ours again, with Aravis's heartbeat running, or it is lost.
    static void controlLost(const std::weak_ptr<GenICamDevice>& weak);
    // Once lost, lets go of the Aravis device in the background: Aravis
    // says goodbye to the camera (a register write that waits for its whole
    // timeout on a silent link) and stops its heartbeat, which would
    // otherwise keep claiming the camera when it comes back, so that it could
    // not be opened anew. The node tree goes with it: callers check isLost()
    // under lock() before they touch a node. Expects lock() held.
    void letGoIfLost();

    // How long timeouts in a row may last before the device counts as lost:
    // the camera's heartbeat timeout (GigE Vision), else three seconds.
    Duration patience() const
    {
        return m_patience;
    }

    // Names of the nodes whose value may change by itself (IsVolatile Yes,
    // Cachable NoCache or a PollingTime in the device's GenICam description).
    // Read from the description at the first call; expects lock() held.
    const std::set<std::string>& volatileNodes();

    // The register nodes below a node whose value may change by itself (see
    // volatileNodes): reads of them are never kept. Expects lock() held.
    const std::set<ArvDomNode*>& volatileRegisters();
    // The nodes whose pInvalidator names node. Expects lock() held.
    const std::vector<ArvDomNode*>& invalidatedBy(ArvDomNode* node);
    // The register nodes that hold a selector's value: below a node that has
    // a pSelected or that a pIndex or pAddress names. Expects lock() held.
    const std::set<ArvDomNode*>& selectorRegisters();
    // node and the nodes its value is taken from or written to (pValue,
    // pVariable and their kin, a structure entry's structure), depth first.
    static std::vector<ArvDomNode*> valueNodes(ArvDomNode* node);

    // The property children of a structure register, gathered at the first
    // call, once for all its entries (its other children). Expects lock() held.
    const std::vector<ArvDomNode*>& structureProperties(ArvDomNode* structure);

    // Maps an Aravis error to the camera API's code and frees it. A transport
    // failure is a timeout (OrvErrorTimeout) until the timeouts in a row,
    // timed by took, outlast patience(); then the device is lost. A null error
    // maps to OrvErrorSuccess. Expects lock() held.
    OrvErrorType takeError(GError* error, Duration took = Duration::zero());
    // The device answered a call that went over the link: timeouts start
    // counting afresh. Expects lock() held.
    void answered()
    {
        m_timedOut = Duration::zero();
    }

private:
    void reportLost();

    ArvDevice* m_device;
    std::shared_ptr<RegisterCache> m_cache;
    ArvDevice* m_caching;
    ArvGc* m_genicam;
    std::string m_id;
    std::mutex m_lock;
    std::atomic<bool> m_lost{false};
    mutable std::mutex m_reasonLock; // the reason is set from Aravis's heartbeat thread too
    std::string m_lostReason;
    Duration m_patience;
    Duration m_timedOut = Duration::zero(); // timeouts in a row, under m_lock
    unsigned long m_controlLostHandler = 0;
    std::mutex m_handlerLock; // held while the lost handler runs
    std::function<void()> m_lostHandler;
    std::unique_ptr<FeaturePoller> m_poller;
    std::unique_ptr<std::set<std::string>> m_volatileNodes;
    std::unordered_map<ArvDomNode*, std::vector<ArvDomNode*>> m_structureProperties;
    std::unique_ptr<std::set<ArvDomNode*>> m_volatileRegisters;
    void indexDescription();
    std::unique_ptr<std::unordered_map<ArvDomNode*, std::vector<ArvDomNode*>>> m_invalidatedBy;
    std::set<ArvDomNode*> m_selectorRegisters;
};

#endif
