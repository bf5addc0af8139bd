// Aravis (gio) before Qt: gio uses "signals" as a name, Qt as a keyword.
#include <arv.h>

#include "RegisterCache.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

std::atomic<long> mismatchCount{0};

bool onGuiThread()
{
    const QCoreApplication* app = QCoreApplication::instance();
    return app && app->thread() == QThread::currentThread();
}

std::string hexOf(const unsigned char* bytes, uint32_t size, bool asRegister)
{
    char digits[3];
    std::string text = "0x";
    if (asRegister && size == 4)
    {
        guint32 value = 0;
        std::memcpy(&value, bytes, 4);
        char word[16];
        std::snprintf(word, sizeof word, "%08x", value);
        return text + word;
    }
    for (uint32_t i = 0; i < size; ++i)
    {
        std::snprintf(digits, sizeof digits, "%02x", bytes[i]);
        text += digits;
    }
    return text;
}

} // namespace

RegisterCache::Mode RegisterCache::modeFromEnvironment()
{
    const char* value = std::getenv("TRIGGERIO_REGISTER_CACHE");
    if (value && std::strcmp(value, "off") == 0)
        return Mode::Off;
    if (value && std::strcmp(value, "verify") == 0)
        return Mode::Verify;
    if (value && *value && std::strcmp(value, "on") != 0)
        std::fprintf(stderr, "triggerio: TRIGGERIO_REGISTER_CACHE=%s is not on, off or verify; the cache is on\n",
                     value);
    return Mode::On;
}

long RegisterCache::mismatches()
{
    return mismatchCount.load();
}

RegisterCache::RegisterCache(ArvDevice* device)
    : m_mode(modeFromEnvironment())
    , m_device(device)
{
}

RegisterCache::~RegisterCache() = default;

void RegisterCache::setMode(Mode mode)
{
    clear();
    m_mode = mode;
}

void RegisterCache::setDevice(ArvDevice* device)
{
    m_device = device;
    clear();
}

void RegisterCache::setReader(const std::string* name, bool bypass, bool keepWrites)
{
    m_reader = name;
    m_bypass = bypass;
    m_keepWrites = keepWrites;
}

bool RegisterCache::cachesForThisThread() const
{
    return m_mode != Mode::Off && !m_bypass && m_owner.load() == std::this_thread::get_id();
}

void RegisterCache::enterCall()
{
    if (!onGuiThread())
        return;
    const std::thread::id self = std::this_thread::get_id();
    std::unique_lock<std::mutex> lock(m_stateLock);
    if (m_owner.load() != self)
    {
        m_released.wait(lock, [&] { return m_owner.load() == std::thread::id(); });
        m_owner = self;
    }
    if (m_guiBurst)
        return;
    // The burst ends at the next pass of the event loop (a nested one too).
    m_guiBurst = true;
    const unsigned generation = ++m_generation;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [weak = std::weak_ptr<RegisterCache>(shared_from_this()), generation]
        {
            if (const auto self = weak.lock())
                self->endGuiBurst(generation);
        },
        Qt::QueuedConnection);
}

void RegisterCache::endGuiBurst(unsigned generation)
{
    std::unique_lock<std::mutex> lock(m_stateLock);
    if (!m_guiBurst || generation != m_generation)
        return;
    m_guiBurst = false;
    if (m_depth == 0)
        release(lock);
}

bool RegisterCache::begin(int timeoutMs)
{
    const std::thread::id self = std::this_thread::get_id();
    std::unique_lock<std::mutex> lock(m_stateLock);
    if (m_owner.load() != self)
    {
        if (!m_released.wait_for(lock, std::chrono::milliseconds(std::max(0, timeoutMs)),
                                 [&] { return m_owner.load() == std::thread::id(); }))
            return false;
        m_owner = self;
    }
    ++m_depth;
    return true;
}

void RegisterCache::end()
{
    std::unique_lock<std::mutex> lock(m_stateLock);
    if (m_owner.load() != std::this_thread::get_id())
        return;
    if (m_depth > 0)
        --m_depth;
    else
        m_guiBurst = false; // the GUI thread ends its burst early
    if (m_depth == 0 && !m_guiBurst)
        release(lock);
}

void RegisterCache::release(std::unique_lock<std::mutex>&)
{
    clear(); // nothing is kept between bursts
    m_owner = std::thread::id();
    m_released.notify_all();
}

bool RegisterCache::readDevice(uint64_t address, uint32_t size, void* buffer, bool asRegister, GError** error)
{
    if (!m_device)
    {
        g_set_error(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_NOT_CONNECTED, "The device has been let go of");
        return false;
    }
    return asRegister ? arv_device_read_register(m_device, address, static_cast<guint32*>(buffer), error)
                      : arv_device_read_memory(m_device, address, size, buffer, error);
}

bool RegisterCache::read(uint64_t address, uint32_t size, void* buffer, bool asRegister, GError** error)
{
    if (!cachesForThisThread())
    {
        const bool read = readDevice(address, size, buffer, asRegister, error);
        if (m_bypass)
            invalidate(address, size); // what others kept of a volatile register is old now
        return read;
    }
    std::unique_lock<std::mutex> lock(m_entriesLock);
    const auto kept = m_entries.find(Key(address, size, asRegister));
    if (kept == m_entries.end())
    {
        lock.unlock();
        if (!readDevice(address, size, buffer, asRegister, error))
            return false;
        keep(address, size, asRegister, buffer);
        return true;
    }
    std::memcpy(buffer, kept->second.data(), size);
    if (m_mode != Mode::Verify)
        return true;
    const Entry entry{address, size, asRegister, kept->second};
    lock.unlock();
    std::vector<unsigned char> camera(size);
    GError* verifyError = nullptr;
    if (!readDevice(address, size, camera.data(), asRegister, &verifyError))
    {
        g_propagate_error(error, verifyError);
        return false;
    }
    if (camera != entry.bytes)
    {
        report(entry, camera.data());
        std::memcpy(buffer, camera.data(), size);
        invalidate(address, size);
    }
    return true;
}

void RegisterCache::keep(uint64_t address, uint32_t size, bool asRegister, const void* bytes)
{
    const auto* first = static_cast<const unsigned char*>(bytes);
    std::lock_guard<std::mutex> lock(m_entriesLock);
    m_entries[Key(address, size, asRegister)].assign(first, first + size);
    m_largest = std::max(m_largest, size);
}

bool RegisterCache::write(uint64_t address, uint32_t size, const void* buffer, bool asRegister, GError** error)
{
    // A selector's write of what its register is known to hold within this
    // burst does not go over the link (a selector put back where it was): the
    // camera has it already. Other registers are always written: a camera may
    // act on a write of the value it holds. Verify mode reads it to make sure.
    if (m_keepWrites && cachesForThisThread())
    {
        std::unique_lock<std::mutex> lock(m_entriesLock);
        const auto* bytes = static_cast<const unsigned char*>(buffer);
        const auto kept = m_entries.find(Key(address, size, asRegister));
        if (kept != m_entries.end() && std::equal(kept->second.begin(), kept->second.end(), bytes))
        {
            lock.unlock();
            std::vector<unsigned char> camera(size);
            if (m_mode != Mode::Verify || (readDevice(address, size, camera.data(), asRegister, nullptr) &&
                                           std::equal(camera.begin(), camera.end(), bytes)))
                return true;
            report({address, size, asRegister, std::vector<unsigned char>(bytes, bytes + size)}, camera.data());
        }
    }
    bool written = false;
    if (!m_device)
        g_set_error(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_NOT_CONNECTED, "The device has been let go of");
    else if (asRegister)
        written = arv_device_write_register(m_device, address, *static_cast<const guint32*>(buffer), error);
    else
        written = arv_device_write_memory(m_device, address, size, const_cast<void*>(buffer), error);
    // Also when it failed: the camera may have taken part of it.
    invalidate(address, size);
    if (written && m_keepWrites && cachesForThisThread())
        keep(address, size, asRegister, buffer);
    return written;
}

void RegisterCache::invalidate(uint64_t address, uint64_t size)
{
    std::lock_guard<std::mutex> lock(m_entriesLock);
    // Only entries that start less than the largest size before it can overlap.
    auto entry = m_entries.lower_bound(Key(address > m_largest ? address - m_largest : 0, 0, false));
    while (entry != m_entries.end() && std::get<0>(entry->first) < address + size)
    {
        const uint64_t start = std::get<0>(entry->first);
        entry = address < start + std::get<1>(entry->first) ? m_entries.erase(entry) : std::next(entry);
    }
}

void RegisterCache::clear()
{
    std::lock_guard<std::mutex> lock(m_entriesLock);
    m_entries.clear();
}

void RegisterCache::report(const Entry& entry, const void* camera)
{
    ++mismatchCount;
    std::fprintf(stderr, "triggerio: register cache mismatch at 0x%llx (%u bytes), read by %s: cached %s, camera %s\n",
                 static_cast<unsigned long long>(entry.address), entry.size,
                 m_reader && !m_reader->empty() ? m_reader->c_str() : "(no feature)",
                 hexOf(entry.bytes.data(), entry.size, entry.asRegister).c_str(),
                 hexOf(static_cast<const unsigned char*>(camera), entry.size, entry.asRegister).c_str());
    std::fflush(stderr);
    const char* fatal = std::getenv("TRIGGERIO_REGISTER_CACHE_FATAL");
    if (fatal && std::strcmp(fatal, "1") == 0)
        std::abort();
}
