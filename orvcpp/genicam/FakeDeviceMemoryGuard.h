#ifndef FAKEDEVICEMEMORYGUARD_H
#define FAKEDEVICEMEMORYGUARD_H

// Aravis's fake device copies whatever a description asks for: a register
// past its memory (0x10000 bytes, then its GenICam file) reads or writes out
// of bounds and brings the process down. install() makes every fake device
// refuse such an access with an error, as a camera does.
class FakeDeviceMemoryGuard
{
public:
    // Once per process; every call after the first does nothing.
    static void install();
};

#endif
