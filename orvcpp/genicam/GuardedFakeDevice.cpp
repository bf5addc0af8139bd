#include "GuardedFakeDevice.h"

namespace
{

// Aravis's fake device class: every access the guard lets through goes on to it.
ArvDeviceClass* parentClass = nullptr;

bool allowed(ArvDevice* device, guint64 address, guint32 size, GError** error)
{
    size_t xmlSize = 0;
    arv_fake_camera_get_genicam_xml(arv_fake_device_get_fake_camera(ARV_FAKE_DEVICE(device)), &xmlSize);
    if (GuardedFakeDevice::inside(address, size, xmlSize))
        return true;
    g_set_error(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_PROTOCOL_ERROR_INVALID_ADDRESS,
                "Address 0x%llx (%u bytes) is outside the fake device's memory",
                static_cast<unsigned long long>(address), size);
    return false;
}

gboolean readMemory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError** error)
{
    return allowed(device, address, size, error) && parentClass->read_memory(device, address, size, buffer, error);
}

gboolean writeMemory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError** error)
{
    return allowed(device, address, size, error) && parentClass->write_memory(device, address, size, buffer, error);
}

gboolean readRegister(ArvDevice* device, guint64 address, guint32* value, GError** error)
{
    return allowed(device, address, 4, error) && parentClass->read_register(device, address, value, error);
}

gboolean writeRegister(ArvDevice* device, guint64 address, guint32 value, GError** error)
{
    return allowed(device, address, 4, error) && parentClass->write_register(device, address, value, error);
}

void classInit(gpointer deviceClass, gpointer)
{
    parentClass = ARV_DEVICE_CLASS(g_type_class_peek_parent(deviceClass));
    ArvDeviceClass* guarded = ARV_DEVICE_CLASS(deviceClass);
    guarded->read_memory = readMemory;
    guarded->write_memory = writeMemory;
    guarded->read_register = readRegister;
    guarded->write_register = writeRegister;
}

} // namespace

GType GuardedFakeDevice::type()
{
    // Aravis keeps the fake device's structures to itself: the derived type
    // takes their sizes from the type system, and adds nothing to them.
    static const GType guarded = []
    {
        const GType parent = ARV_TYPE_FAKE_DEVICE;
        GTypeQuery query{};
        g_type_query(parent, &query);
        if (!query.type || G_TYPE_IS_FINAL(parent))
            return GType(0);
        GTypeInfo info{};
        info.class_size = guint16(query.class_size);
        info.class_init = classInit;
        info.instance_size = guint16(query.instance_size);
        return g_type_register_static(parent, "TriggerIOGuardedFakeDevice", &info, GTypeFlags(0));
    }();
    return guarded;
}

ArvDevice* GuardedFakeDevice::create(const char* serialNumber, GError** error)
{
    const GType guarded = type();
    if (!guarded)
    {
        g_set_error(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_UNKNOWN,
                    "Aravis's fake device type cannot be derived from");
        return nullptr;
    }
    return static_cast<ArvDevice*>(g_initable_new(guarded, nullptr, error, "serial-number", serialNumber, nullptr));
}

bool GuardedFakeDevice::inside(guint64 address, guint32 size, size_t xmlSize)
{
    const guint64 end = ARV_FAKE_CAMERA_MEMORY_SIZE + guint64(xmlSize);
    return address <= end && size <= end - address;
}
