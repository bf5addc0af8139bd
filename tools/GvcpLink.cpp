#include "GvcpLink.h"

#include <dlfcn.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <sstream>
#include <thread>
#include <utility>

namespace
{

constexpr unsigned short GvcpPort = 3956;

std::atomic<long> guiThread{0};
std::atomic<long> guiCount{0};
std::atomic<long> heartbeatCount{0};
std::atomic<long> otherCount{0};
std::atomic<long> guiWriteCount{0};
// What the GUI thread read (register or memory address, and length), touched
// by the GUI thread only.
std::set<std::pair<unsigned long, unsigned>> guiReads;

// The emulated link, read by every sending thread.
std::atomic<long> delayUs{0};
std::atomic<double> dropShare{0.0};
std::atomic<unsigned> dropSeed{1};
std::atomic<std::uint64_t> packetIndex{0};
std::atomic<long long> cutUntilNs{0}; // steady clock
std::atomic<long> droppedCount{0};

long long steadyNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// SplitMix64 of the seed and the packet's index: whether a packet is dropped
// depends on its place in the sequence only, not on the threads' timing.
std::uint64_t mix(std::uint64_t seed, std::uint64_t index)
{
    std::uint64_t z = seed * 0x9e3779b97f4a7c15ULL + index + 0x9e3779b97f4a7c15ULL;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
}

long threadId()
{
    return long(syscall(SYS_gettid));
}

// Aravis's heartbeat: a register read of the control channel privilege
// register (0x0a00), the only register it reads.
unsigned long word(const unsigned char* bytes)
{
    return (unsigned long)bytes[0] << 24 | (unsigned long)bytes[1] << 16 | (unsigned long)bytes[2] << 8 | bytes[3];
}

// Notes the addresses a read command asks for: READREG (0x0080, addresses of
// four bytes) and READMEM (0x0084, one address and a length).
void noteRead(const void* data, size_t length)
{
    const auto* bytes = static_cast<const unsigned char*>(data);
    if (!bytes || length < 12 || bytes[0] != 0x42)
        return;
    const unsigned command = unsigned(bytes[2]) << 8 | bytes[3];
    if (command == 0x0080)
        for (size_t offset = 8; offset + 4 <= length; offset += 4)
            guiReads.insert({word(bytes + offset), 4});
    else if (command == 0x0084 && length >= 16)
        guiReads.insert({word(bytes + 8), unsigned(bytes[14]) << 8 | bytes[15]});
}

bool isHeartbeat(const void* data, size_t length)
{
    const auto* bytes = static_cast<const unsigned char*>(data);
    if (!bytes || length != 12 || bytes[0] != 0x42)
        return false;
    const unsigned command = unsigned(bytes[2]) << 8 | bytes[3];
    const unsigned long address =
        (unsigned long)bytes[8] << 24 | (unsigned long)bytes[9] << 16 | (unsigned long)bytes[10] << 8 | bytes[11];
    return command == 0x0080 && address == 0x0a00;
}

bool toGvcpPort(const sockaddr* address)
{
    if (!address)
        return false;
    if (address->sa_family == AF_INET)
        return ntohs(reinterpret_cast<const sockaddr_in*>(address)->sin_port) == GvcpPort;
    if (address->sa_family == AF_INET6)
        return ntohs(reinterpret_cast<const sockaddr_in6*>(address)->sin6_port) == GvcpPort;
    return false;
}

bool connectedToGvcpPort(int fd)
{
    sockaddr_storage peer{};
    socklen_t length = sizeof peer;
    return getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &length) == 0 &&
           toGvcpPort(reinterpret_cast<const sockaddr*>(&peer));
}

ssize_t messageLength(const msghdr& message)
{
    size_t length = 0;
    for (size_t i = 0; i < size_t(message.msg_iovlen); ++i)
        length += message.msg_iov[i].iov_len;
    return ssize_t(length);
}

// The link of the environment's TRIGGERIO_LINK, set before main() runs.
[[maybe_unused]] const bool linkFromEnvironment = []
{
    const char* text = std::getenv("TRIGGERIO_LINK");
    GvcpLink::Emulation emulation;
    if (text && !GvcpLink::parse(text, emulation))
        std::fprintf(stderr, "TRIGGERIO_LINK=\"%s\" ignored: expected e.g. rtt=1.5,drop=0.05,seed=1\n", text);
    GvcpLink::setEmulation(emulation);
    return true;
}();

template <typename Function> Function next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

void GvcpLink::markGuiThread()
{
    guiThread = threadId();
}

GvcpLink::Counts GvcpLink::counts()
{
    return {guiCount.load(), heartbeatCount.load(), otherCount.load(), guiWriteCount.load()};
}

void GvcpLink::forgetGuiReads()
{
    guiReads.clear();
}

long GvcpLink::distinctGuiReads()
{
    return long(guiReads.size());
}

void GvcpLink::setEmulation(const Emulation& emulation)
{
    delayUs = long(emulation.rttMs * 1000.0 + 0.5);
    dropShare = emulation.drop;
    dropSeed = emulation.seed;
    packetIndex = 0;
    droppedCount = 0;
}

GvcpLink::Emulation GvcpLink::emulation()
{
    return {double(delayUs.load()) / 1000.0, dropShare.load(), dropSeed.load()};
}

bool GvcpLink::parse(const std::string& text, Emulation& emulation)
{
    Emulation parsed = emulation;
    std::istringstream items(text);
    std::string item;
    while (std::getline(items, item, ','))
    {
        const size_t equals = item.find('=');
        if (equals == std::string::npos)
            return false;
        const std::string key = item.substr(0, equals);
        const std::string value = item.substr(equals + 1);
        char* end = nullptr;
        const double number = std::strtod(value.c_str(), &end);
        if (value.empty() || *end != '\0' || number < 0.0)
            return false;
        if (key == "rtt")
            parsed.rttMs = number;
        else if (key == "drop" && number <= 1.0)
            parsed.drop = number;
        else if (key == "seed" && number == double(unsigned(number)))
            parsed.seed = unsigned(number);
        else
            return false;
    }
    emulation = parsed;
    return true;
}

std::string GvcpLink::describe(const Emulation& emulation)
{
    if (!emulation.isOn())
        return "loopback";
    std::ostringstream text;
    text << "rtt " << emulation.rttMs << " ms, " << emulation.drop * 100.0 << "% dropped, seed " << emulation.seed;
    return text.str();
}

void GvcpLink::cut(int milliseconds)
{
    cutUntilNs = steadyNs() + (long long)milliseconds * 1000000;
}

long GvcpLink::dropped()
{
    return droppedCount.load();
}

bool GvcpLink::pass()
{
    if (const long delay = delayUs.load())
        std::this_thread::sleep_for(std::chrono::microseconds(delay));
    bool drop = steadyNs() < cutUntilNs.load();
    const double share = dropShare.load();
    if (!drop && share > 0.0)
    {
        const std::uint64_t threshold =
            share >= 1.0 ? UINT64_MAX : std::uint64_t(share * 18446744073709551616.0 /* 2^64 */);
        drop = mix(dropSeed.load(), packetIndex++) < threshold;
    }
    if (drop)
        ++droppedCount;
    return !drop;
}

void GvcpLink::count(const void* data, size_t length)
{
    if (isHeartbeat(data, length))
        ++heartbeatCount;
    else if (threadId() == guiThread.load())
    {
        ++guiCount;
        noteRead(data, length);
        const auto* bytes = static_cast<const unsigned char*>(data);
        if (bytes && length >= 4 && bytes[0] == 0x42 && bytes[2] == 0 && (bytes[3] == 0x82 || bytes[3] == 0x86))
            ++guiWriteCount; // WRITEREG, WRITEMEM
    }
    else
        ++otherCount;
}

extern "C" ssize_t sendto(int fd, const void* buffer, size_t length, int flags, const sockaddr* address,
                          socklen_t addressLength)
{
    using Function = ssize_t (*)(int, const void*, size_t, int, const sockaddr*, socklen_t);
    static const Function real = next<Function>("sendto");
    const bool control = address ? toGvcpPort(address) : connectedToGvcpPort(fd);
    const ssize_t sent =
        control && !GvcpLink::pass() ? ssize_t(length) : real(fd, buffer, length, flags, address, addressLength);
    if (sent >= 0 && control)
        GvcpLink::count(buffer, length);
    return sent;
}

extern "C" ssize_t sendmsg(int fd, const msghdr* message, int flags)
{
    using Function = ssize_t (*)(int, const msghdr*, int);
    static const Function real = next<Function>("sendmsg");
    const bool control = message && (message->msg_name ? toGvcpPort(static_cast<const sockaddr*>(message->msg_name))
                                                       : connectedToGvcpPort(fd));
    const ssize_t sent = control && !GvcpLink::pass() ? messageLength(*message) : real(fd, message, flags);
    if (sent >= 0 && control)
        GvcpLink::count(message->msg_iovlen ? message->msg_iov[0].iov_base : nullptr,
                        message->msg_iovlen ? message->msg_iov[0].iov_len : 0);
    return sent;
}

extern "C" ssize_t send(int fd, const void* buffer, size_t length, int flags)
{
    using Function = ssize_t (*)(int, const void*, size_t, int);
    static const Function real = next<Function>("send");
    const bool control = connectedToGvcpPort(fd);
    const ssize_t sent = control && !GvcpLink::pass() ? ssize_t(length) : real(fd, buffer, length, flags);
    if (sent >= 0 && control)
        GvcpLink::count(buffer, length);
    return sent;
}
