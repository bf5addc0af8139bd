// Aravis (gio) before Qt: gio uses "signals" as a name, Qt as a keyword.
#include <arv.h>

#include "FakeDeviceMemoryGuard.h"

#include <mutex>

namespace
{

ArvDeviceClass original; // the fake device's own functions

bool inside(ArvDevice* device, guint64 address, guint32 size, GError** error)
{
    size_t xmlSize = 0;
    arv_fake_camera_get_genicam_xml(arv_fake_device_get_fake_camera(ARV_FAKE_DEVICE(device)), &xmlSize);
    if (address + size <= ARV_FAKE_CAMERA_MEMORY_SIZE + xmlSize && address + size >= address)
        return true;
    g_set_error(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_PROTOCOL_ERROR_INVALID_ADDRESS,
                "Address 0x%llx (%u bytes) is outside the fake device's memory",
                static_cast<unsigned long long>(address), size);
    return false;
}

gboolean readMemory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError** error)
{
    return inside(device, address, size, error) && original.read_memory(device, address, size, buffer, error);
}

gboolean writeMemory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError** error)
{
    return inside(device, address, size, error) && original.write_memory(device, address, size, buffer, error);
}

gboolean readRegister(ArvDevice* device, guint64 address, guint32* value, GError** error)
{
    return inside(device, address, 4, error) && original.read_register(device, address, value, error);
}

gboolean writeRegister(ArvDevice* device, guint64 address, guint32 value, GError** error)
{
    return inside(device, address, 4, error) && original.write_register(device, address, value, error);
}

} // namespace

void FakeDeviceMemoryGuard::install()
{
    static std::once_flag once;
    std::call_once(once,
                   []
                   {
                       // The class lives as long as the process: keep its reference.
                       auto* fake = static_cast<ArvDeviceClass*>(g_type_class_ref(ARV_TYPE_FAKE_DEVICE));
                       original = *fake;
                       fake->read_memory = readMemory;
                       fake->write_memory = writeMemory;
                       fake->read_register = readRegister;
                       fake->write_register = writeRegister;
                   });
}
