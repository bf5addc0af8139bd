#ifndef REGISTERCACHE_H
#define REGISTERCACHE_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

typedef struct _ArvDevice ArvDevice;
typedef struct _GError GError;

// The registers one burst of camera calls has read, kept below Aravis's node
// tree (CachingDevice hands every register access of the tree to it), and the
// device's exclusive access, which decides whose burst it is.
//
// A burst is a run of calls that no other thread's calls come between:
// - on the GUI thread (the thread of QCoreApplication::instance()), from its
//   first camera call to the next pass of its event loop (a queued call ends
//   it). Without an application object there is no such burst;
// - on any other thread, the bracket of begin() and end().
// Within its burst a thread reads each register from the camera at most
// once. Any other thread's reads go to the camera and are not kept (the
// change poller's looks), and nothing is kept from one burst to the next.
// A selector's write of what the burst knows its register to hold is not
// sent (a selector walk's restore). What a write can change is dropped: every write drops the bytes it wrote,
// whatever thread made it; GenICamFeature drops what the description says a
// written feature selects or invalidates, and everything after a command or a
// call straight to the Aravis device.
//
// TRIGGERIO_REGISTER_CACHE: "on" (default), "off" (every read goes to the
// camera), "verify" (every read served from the cache is also read from the
// camera and compared; a difference is one line on standard error and counted
// in mismatches(); with TRIGGERIO_REGISTER_CACHE_FATAL=1 the process aborts
// after that line).
class RegisterCache : public std::enable_shared_from_this<RegisterCache>
{
public:
    enum class Mode
    {
        On,
        Off,
        Verify
    };
    static Mode modeFromEnvironment();
    // Mismatches verify mode has found in this process.
    static long mismatches();

    explicit RegisterCache(ArvDevice* device);
    ~RegisterCache();

    RegisterCache(const RegisterCache&) = delete;
    RegisterCache& operator=(const RegisterCache&) = delete;

    Mode mode() const
    {
        return m_mode;
    }
    void setMode(Mode mode);

    // The device every access goes to; null once it is let go of (accesses
    // then fail as not connected). Expects the device lock held.
    void setDevice(ArvDevice* device);

    // Before a camera call (without the device lock held): on the GUI thread,
    // starts its burst, waiting while another thread holds the device.
    void enterCall();
    // Exclusive access (OrvCPP::ExclusiveAccess): waits at most timeoutMs
    // until no other thread holds the device; nests on one thread. On the GUI
    // thread, an end() without a begin() of its own ends its burst at once:
    // a GUI thread about to wait for a thread that may wait in begin() calls
    // it first. A thread that holds the device must not wait for the GUI
    // thread (a blocking queued call): the GUI thread may be waiting for it.
    bool begin(int timeoutMs);
    void end();

    // The accesses of CachingDevice (on the thread that runs the Aravis call,
    // device lock held). asRegister: a 32-bit register access in host order.
    bool read(uint64_t address, uint32_t size, void* buffer, bool asRegister, GError** error);
    bool write(uint64_t address, uint32_t size, const void* buffer, bool asRegister, GError** error);

    // Drops what was kept of size bytes at address, or everything.
    void invalidate(uint64_t address, uint64_t size);
    void clear();

    // For the calls that follow, until set again (device lock held): the name
    // of the feature that reads (named in verify mode's reports), and whether
    // its accesses must bypass the cache (a volatile register below it, a
    // command: every write is sent), and whether what it writes is kept as
    // the register's value (a selector's register).
    void setReader(const std::string* name, bool bypass, bool keepWrites);

private:
    struct Entry
    {
        uint64_t address;
        uint32_t size;
        bool asRegister;
        std::vector<unsigned char> bytes;
    };
    using Key = std::tuple<uint64_t, uint32_t, bool>; // address, size, asRegister

    bool cachesForThisThread() const;
    void endGuiBurst(unsigned generation);
    bool readDevice(uint64_t address, uint32_t size, void* buffer, bool asRegister, GError** error);
    void report(const Entry& entry, const void* camera);
    void keep(uint64_t address, uint32_t size, bool asRegister, const void* bytes);
    void release(std::unique_lock<std::mutex>& lock);

    Mode m_mode;
    ArvDevice* m_device;

    std::mutex m_entriesLock;
    std::map<Key, std::vector<unsigned char>> m_entries;
    uint32_t m_largest = 0; // the largest size kept
    const std::string* m_reader = nullptr;
    bool m_bypass = false;
    bool m_keepWrites = false;

    // Who holds the device: its thread, its brackets, and whether the GUI
    // thread's burst holds it; generation tells bursts apart for the queued
    // call that ends one.
    mutable std::mutex m_stateLock;
    std::condition_variable m_released;
    std::atomic<std::thread::id> m_owner{std::thread::id()};
    int m_depth = 0;
    bool m_guiBurst = false;
    unsigned m_generation = 0;
};

#endif
