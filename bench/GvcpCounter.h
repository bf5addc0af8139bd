#ifndef GVCPCOUNTER_H
#define GVCPCOUNTER_H

#include <cstddef>

// Counts the GigE Vision control packets (UDP datagrams to port 3956) this
// process sends, per thread.
//
// The program defines its own sendto, sendmsg and send: the dynamic linker
// binds the calls that GLib's sockets make to them (the executable comes first
// in the lookup order), and they hand every call on to the C library's
// function found with dlsym(RTLD_NEXT). Nothing is preloaded; only datagrams
// whose destination port is 3956 are counted, each one exactly once.
class GvcpCounter
{
public:
    struct Counts
    {
        long gui = 0;       // the thread that called markGuiThread()
        long heartbeat = 0; // Aravis's GigE Vision heartbeat (its register read)
        long other = 0;     // every other thread (the backend's change poller)
        long total() const
        {
            return gui + heartbeat + other;
        }
        Counts operator-(const Counts& before) const
        {
            return {gui - before.gui, heartbeat - before.heartbeat, other - before.other};
        }
    };

    // The calling thread is the GUI thread from now on.
    static void markGuiThread();
    static Counts counts();
    // How many different registers (address and length) the GUI thread has
    // read since forgetGuiReads(): what a perfect register cache would send.
    static void forgetGuiReads();
    static long distinctGuiReads();
    // Called by the wrappers for every datagram sent to the control port.
    static void count(const void* data, size_t length);
};

#endif
