#ifndef GUARDEDFAKEDEVICE_H
#define GUARDEDFAKEDEVICE_H

// Aravis (gio) before Qt: gio uses "signals" as a name, Qt as a keyword.
#include <arv.h>

// Aravis's fake device copies whatever a description asks for: a register past
// its memory (0x10000 bytes, then its GenICam file) reads or writes out of
// bounds and brings the process down. A guarded fake device is one of a type
// of our own, derived from Aravis's fake device: it refuses such an access with
// an error, as a camera does, and is otherwise Aravis's fake device
// (ARV_IS_FAKE_DEVICE holds, arv_fake_device_get_fake_camera works). Aravis's
// own class stays as it is for the rest of the process.
class GuardedFakeDevice
{
public:
    // The derived type, registered on first use; 0 when Aravis's fake device
    // cannot be derived from.
    static GType type();

    // A new guarded fake device, as arv_fake_device_new() makes Aravis's: it
    // runs the GenICam file given to arv_set_fake_camera_genicam_filename().
    // Null, with the reason in error, when that fails.
    static ArvDevice* create(const char* serialNumber, GError** error);

    // Whether size bytes at address lie inside the memory of a fake camera
    // whose GenICam file has xmlSize bytes.
    static bool inside(guint64 address, guint32 size, size_t xmlSize);
};

#endif
