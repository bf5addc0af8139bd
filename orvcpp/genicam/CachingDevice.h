#ifndef CACHINGDEVICE_H
#define CACHINGDEVICE_H

// Aravis (gio) before Qt: gio uses "signals" as a name, Qt as a keyword.
#include <arv.h>

class RegisterCache;

// An Aravis device of a type of our own that the backend builds the GenICam
// node tree over: every register access of the tree goes through it to a
// RegisterCache, which forwards it to the camera's own device (or answers from
// what the burst has read). Streams, the heartbeat and control stay with the
// camera's own device; this one has no stream.
//
// The camera's own device's GigE Vision quirk is kept: with a description of
// schema 1.0 (and a few named models), Aravis reads and writes a 4-byte
// register with READREG/WRITEREG in big-endian order instead of READMEM.
class CachingDevice
{
public:
    // The derived type (of ArvDevice), registered on first use.
    static GType type();

    // A new caching device over the camera's device (whose description it
    // copies and builds a node tree from, with Aravis's own register cache
    // off): its accesses go to cache, which must outlive it. Null when the
    // camera's device has no description.
    static ArvDevice* create(ArvDevice* camera, RegisterCache* cache);
};

#endif
