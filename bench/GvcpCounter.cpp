#include "GvcpCounter.h"

#include <dlfcn.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <mutex>

namespace
{

constexpr unsigned short GvcpPort = 3956;

std::atomic<long> guiThread{0};
std::atomic<long> guiCount{0};
std::atomic<long> heartbeatCount{0};
std::atomic<long> otherCount{0};

long threadId()
{
    return long(syscall(SYS_gettid));
}

bool isHeartbeatThread()
{
    // Read once per thread: GLib names its threads after their function.
    thread_local int heartbeat = -1;
    if (heartbeat < 0)
    {
        std::ifstream comm("/proc/self/task/" + std::to_string(threadId()) + "/comm");
        std::string name;
        std::getline(comm, name);
        heartbeat = name.find("heartbea") != std::string::npos ? 1 : 0;
    }
    return heartbeat == 1;
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

void GvcpCounter::count()
{
    if (threadId() == guiThread.load())
        ++guiCount;
    else if (isHeartbeatThread())
        ++heartbeatCount;
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
        GvcpCounter::count();
    return sent;
}

extern "C" ssize_t sendmsg(int fd, const msghdr* message, int flags)
{
    using Function = ssize_t (*)(int, const msghdr*, int);
    static const Function real = next<Function>("sendmsg");
    const ssize_t sent = real(fd, message, flags);
    if (sent >= 0 && message &&
        (message->msg_name ? toGvcpPort(static_cast<const sockaddr*>(message->msg_name)) : connectedToGvcpPort(fd)))
        GvcpCounter::count();
    return sent;
}

extern "C" ssize_t send(int fd, const void* buffer, size_t length, int flags)
{
    using Function = ssize_t (*)(int, const void*, size_t, int);
    static const Function real = next<Function>("send");
    const ssize_t sent = real(fd, buffer, length, flags);
    if (sent >= 0 && connectedToGvcpPort(fd))
        GvcpCounter::count();
    return sent;
}
