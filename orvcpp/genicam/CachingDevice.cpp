#include "CachingDevice.h"

#include "RegisterCache.h"

#include <algorithm>
#include <cstring>

namespace
{

struct Instance
{
    ArvDevice parent;
    RegisterCache* cache;
    ArvGc* genicam;
    char* xml;
    size_t xmlSize;
    gboolean legacyRegisters;
};

GObjectClass* parentClass = nullptr;

Instance* instanceOf(ArvDevice* device)
{
    return reinterpret_cast<Instance*>(device);
}

// Aravis's own list of the GigE Vision models with the old register order
// (arvgcport.c), for descriptions of schema 1.1 and later.
bool legacyModel(const char* vendor, const char* model)
{
    static const char* const models[][2] = {{"Imperx", "IpxGEVCamera"},
                                            {"KowaOptronics", "SC130ET3"},
                                            {"PleoraTechnologiesInc", "iPORTCLGigE"},
                                            {"PleoraTechnologiesInc", "NTxGigE"},
                                            {"Sony", "XCG_CGSeries"}};
    for (const auto& entry : models)
        if (vendor && model && g_pattern_match_simple(entry[0], vendor) && g_pattern_match_simple(entry[1], model))
            return true;
    return false;
}

gboolean readMemory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError** error)
{
    Instance* self = instanceOf(device);
    if (self->legacyRegisters && size == 4)
    {
        guint32 value = 0;
        const bool read = self->cache->read(address, 4, &value, true, error);
        value = GUINT32_TO_BE(value);
        std::memcpy(buffer, &value, 4);
        return read;
    }
    return self->cache->read(address, size, buffer, false, error);
}

gboolean writeMemory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError** error)
{
    Instance* self = instanceOf(device);
    if (self->legacyRegisters && size == 4)
    {
        guint32 value = 0;
        std::memcpy(&value, buffer, 4);
        value = GUINT32_FROM_BE(value);
        return self->cache->write(address, 4, &value, true, error);
    }
    return self->cache->write(address, size, buffer, false, error);
}

gboolean readRegister(ArvDevice* device, guint64 address, guint32* value, GError** error)
{
    return instanceOf(device)->cache->read(address, 4, value, true, error);
}

gboolean writeRegister(ArvDevice* device, guint64 address, guint32 value, GError** error)
{
    return instanceOf(device)->cache->write(address, 4, &value, true, error);
}

ArvGc* genicamOf(ArvDevice* device)
{
    return instanceOf(device)->genicam;
}

const char* xmlOf(ArvDevice* device, size_t* size)
{
    *size = instanceOf(device)->xmlSize;
    return instanceOf(device)->xml;
}

ArvStream* noStream(ArvDevice*, ArvStreamCallback, void*, GDestroyNotify, GError** error)
{
    g_set_error(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_NO_STREAM_CHANNEL,
                "Streams go through the camera's own device");
    return nullptr;
}

void finalize(GObject* object)
{
    Instance* self = instanceOf(ARV_DEVICE(object));
    g_clear_object(&self->genicam);
    g_free(self->xml);
    parentClass->finalize(object);
}

void classInit(gpointer deviceClass, gpointer)
{
    parentClass = G_OBJECT_CLASS(g_type_class_peek_parent(deviceClass));
    G_OBJECT_CLASS(deviceClass)->finalize = finalize;
    ArvDeviceClass* caching = ARV_DEVICE_CLASS(deviceClass);
    caching->create_stream = noStream;
    caching->get_genicam_xml = xmlOf;
    caching->get_genicam = genicamOf;
    caching->read_memory = readMemory;
    caching->write_memory = writeMemory;
    caching->read_register = readRegister;
    caching->write_register = writeRegister;
}

} // namespace

GType CachingDevice::type()
{
    static const GType caching = []
    {
        GTypeQuery query{};
        g_type_query(ARV_TYPE_DEVICE, &query);
        GTypeInfo info{};
        info.class_size = guint16(query.class_size);
        info.class_init = classInit;
        info.instance_size = guint16(std::max<size_t>(query.instance_size, sizeof(Instance)));
        return g_type_register_static(ARV_TYPE_DEVICE, "TriggerIOCachingDevice", &info, GTypeFlags(0));
    }();
    return caching;
}

ArvDevice* CachingDevice::create(ArvDevice* camera, RegisterCache* cache)
{
    size_t size = 0;
    const char* xml = arv_device_get_genicam_xml(camera, &size);
    if (!xml || !size)
        return nullptr;
    auto* device = static_cast<ArvDevice*>(g_object_new(type(), nullptr));
    Instance* self = instanceOf(device);
    self->cache = cache;
    self->xml = static_cast<char*>(g_memdup2(xml, size));
    self->xmlSize = size;
    self->genicam = arv_gc_new(device, self->xml, size);
    arv_gc_set_register_cache_policy(self->genicam, ARV_REGISTER_CACHE_POLICY_DISABLE);
    arv_gc_set_access_check_policy(self->genicam, ARV_ACCESS_CHECK_POLICY_ENABLE);
    arv_gc_set_range_check_policy(self->genicam, ARV_RANGE_CHECK_POLICY_ENABLE);
    if (ARV_IS_GV_DEVICE(camera))
    {
        auto* description = ARV_GC_REGISTER_DESCRIPTION_NODE(
            arv_dom_document_get_document_element(ARV_DOM_DOCUMENT(arv_device_get_genicam(camera))));
        self->legacyRegisters = arv_gc_register_description_node_compare_schema_version(description, 1, 1, 0) < 0 ||
                                legacyModel(arv_gc_register_description_node_get_vendor_name(description),
                                            arv_gc_register_description_node_get_model_name(description));
    }
    return device;
}
