#include "GvcpCounter.h"

#include <dlfcn.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <set>
#include <utility>

namespace
{

constexpr unsigned short GvcpPort = 3956;

std::atomic<long> guiThread{0};
std::atomic<long> guiCount{0};
std::atomic<long> heartbeatCount{0};
std::atomic<long> otherCount{0};
// What the GUI thread read (register or memory address, and length), touched
// by the GUI thread only.
std::set<std::pair<unsigned long, unsigned>> guiReads;

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

template <typename Function> Function next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

void GvcpCounter::markGuiThread()
{
    guiThread = threadId();
}

GvcpCounter::Counts GvcpCounter::counts()
{
    return {guiCount.load(), heartbeatCount.load(), otherCount.load()};
}

void GvcpCounter::forgetGuiReads()
{
    guiReads.clear();
}

long GvcpCounter::distinctGuiReads()
{
    return long(guiReads.size());
}

void GvcpCounter::count(const void* data, size_t length)
{
    if (isHeartbeat(data, length))
        ++heartbeatCount;
    else if (threadId() == guiThread.load())
    {
        ++guiCount;
        noteRead(data, length);
    }
    else
        ++otherCount;
}

extern "C" ssize_t sendto(int fd, const void* buffer, size_t length, int flags, const sockaddr* address,
                          socklen_t addressLength)
{
    using Function = ssize_t (*)(int, const void*, size_t, int, const sockaddr*, socklen_t);
    static const Function real = next<Function>("sendto");
    const ssize_t sent = real(fd, buffer, length, flags, address, addressLength);
    if (sent >= 0 && (address ? toGvcpPort(address) : connectedToGvcpPort(fd)))
        GvcpCounter::count(buffer, length);
    return sent;
}

extern "C" ssize_t sendmsg(int fd, const msghdr* message, int flags)
{
    using Function = ssize_t (*)(int, const msghdr*, int);
    static const Function real = next<Function>("sendmsg");
    const ssize_t sent = real(fd, message, flags);
    if (sent >= 0 && message &&
        (message->msg_name ? toGvcpPort(static_cast<const sockaddr*>(message->msg_name)) : connectedToGvcpPort(fd)))
        GvcpCounter::count(message->msg_iovlen ? message->msg_iov[0].iov_base : nullptr,
                           message->msg_iovlen ? message->msg_iov[0].iov_len : 0);
    return sent;
}

extern "C" ssize_t send(int fd, const void* buffer, size_t length, int flags)
{
    using Function = ssize_t (*)(int, const void*, size_t, int);
    static const Function real = next<Function>("send");
    const ssize_t sent = real(fd, buffer, length, flags);
    if (sent >= 0 && connectedToGvcpPort(fd))
        GvcpCounter::count(buffer, length);
    return sent;
}
