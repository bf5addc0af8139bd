#ifndef GVCPLINK_H
#define GVCPLINK_H

#include <cstddef>
#include <string>

// The GigE Vision control packets (UDP datagrams to port 3956) this process
// sends: counted per thread, and, when asked, sent through an emulated link
// that is slower and less reliable than the loopback interface.
//
// The program defines its own sendto, sendmsg and send: the dynamic linker
// binds the calls that GLib's sockets make to them (the executable comes first
// in the lookup order), and they hand every call on to the C library's
// function found with dlsym(RTLD_NEXT). Nothing is preloaded; only datagrams
// whose destination port is 3956 are counted, each one exactly once. A program
// links the static library `gvcplink` and calls a function of this class (the
// linker takes the wrappers in with it).
//
// The emulated link (off unless set from code or in the environment, e.g.
// TRIGGERIO_LINK="rtt=1.5,drop=0.05,seed=1"):
// - every control packet waits `rtt` milliseconds in the sending thread before
//   it goes out: the camera on the loopback interface answers in microseconds,
//   so a register read then takes about as long as the round trip of a real
//   camera's cable (1.4 to 1.7 ms);
// - a seeded share `drop` of the control packets is not sent but reported as
//   sent, as a datagram lost on a cable shared with image traffic: Aravis waits
//   for the answer and sends again;
// - cut(ms) drops every control packet for that long, as an unplugged cable.
// Dropped packets are counted like sent ones, and in dropped().
class GvcpLink
{
public:
    struct Counts
    {
        long gui = 0;       // the thread that called markGuiThread()
        long heartbeat = 0; // Aravis's GigE Vision heartbeat (its register read)
        long other = 0;     // every other thread (the backend's change poller)
        long guiWrites = 0; // of gui: WRITEREG and WRITEMEM (the rest are reads)
        long total() const
        {
            return gui + heartbeat + other;
        }
        Counts operator-(const Counts& before) const
        {
            return {gui - before.gui, heartbeat - before.heartbeat, other - before.other, guiWrites - before.guiWrites};
        }
    };

    struct Emulation
    {
        double rttMs = 0.0; // delay before each control packet
        double drop = 0.0;  // share of control packets dropped, 0 to 1
        unsigned seed = 1;  // which packets are dropped: the same for the same seed
        bool isOn() const
        {
            return rttMs > 0.0 || drop > 0.0;
        }
    };

    // The calling thread is the GUI thread from now on.
    static void markGuiThread();
    static Counts counts();
    // How many different registers (address and length) the GUI thread has
    // read since forgetGuiReads(): what a perfect register cache would send.
    static void forgetGuiReads();
    static long distinctGuiReads();

    // The link from now on; the drop sequence starts again from its seed, and
    // the count of dropped packets from zero.
    static void setEmulation(const Emulation& emulation);
    static Emulation emulation();
    // "rtt=1.5,drop=0.05,seed=1" (any of them, in any order); false, and the
    // emulation unchanged, for anything else.
    static bool parse(const std::string& text, Emulation& emulation);
    // "rtt 1.5 ms, 5% dropped, seed 1", or "loopback" when off.
    static std::string describe(const Emulation& emulation);
    // Drops every control packet for the next `milliseconds`.
    static void cut(int milliseconds);
    // Control packets dropped since the link was set (by the share and by cuts).
    static long dropped();

    // Called by the wrappers for every datagram to the control port before it
    // is sent: waits out the emulated delay; false when the link drops it.
    static bool pass();
    // Called by the wrappers for every datagram sent (or dropped) to the control port.
    static void count(const void* data, size_t length);
};

#endif
