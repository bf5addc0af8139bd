#include "GenICamDevice.h"

#include "BackgroundJobs.h"
#include "CachingDevice.h"
#include "FeaturePoller.h"
#include "RegisterCache.h"

#include <arv.h>

#include <QXmlStreamReader>

#include <thread>
#include <vector>

namespace
{

using WeakDevice = std::weak_ptr<GenICamDevice>;

// "control-lost" is emitted by Aravis's heartbeat thread of a GigE Vision
// device when the camera no longer counts us as its controller. The handler
// holds the device weakly (GLib keeps its data alive while a call runs, also
// when the device is disconnecting meanwhile) and never takes a reference to
// it on Aravis's thread: dropping the last one there would join that thread.
void onControlLost(ArvDevice*, gpointer userData)
{
    GenICamDevice::controlLost(*static_cast<WeakDevice*>(userData));
}

void forgetDevice(gpointer userData, GClosure*)
{
    delete static_cast<WeakDevice*>(userData);
}

// Aravis raises "control-lost" before it clears its own controller flag; it
// is asked for control again only after that, else the flag would end false
// and Aravis's heartbeat would stop.
constexpr auto FlagClearedWait = std::chrono::seconds(1);

// GigE Vision bootstrap register: heartbeat timeout in milliseconds.
constexpr guint64 HeartbeatTimeoutRegister = 0x0938;
constexpr int DefaultPatienceMs = 3000;

int heartbeatTimeoutMs(ArvDevice* device)
{
    guint32 value = 0;
    if (ARV_IS_GV_DEVICE(device) && arv_device_read_register(device, HeartbeatTimeoutRegister, &value, nullptr) &&
        value >= 500 && value <= 60000)
        return int(value);
    return DefaultPatienceMs;
}

} // namespace

GenICamDevice::GenICamDevice(ArvDevice* device, const std::string& id)
    : m_device(device)
    , m_cache(std::make_shared<RegisterCache>(device))
    , m_caching(CachingDevice::create(device, m_cache.get()))
    , m_genicam(arv_device_get_genicam(m_caching ? m_caching : device))
    , m_id(id)
    , m_patience(std::chrono::milliseconds(heartbeatTimeoutMs(device)))
    , m_poller(new FeaturePoller)
{
    // Aravis refuses writes to read-only features and values outside the range
    // for us, and its own register cache stays off: it would keep a register
    // across a write of its selector (the features' node tree has the same
    // policies, and the cache of one burst below it).
    arv_device_set_access_check_policy(m_device, ARV_ACCESS_CHECK_POLICY_ENABLE);
    arv_device_set_range_check_policy(m_device, ARV_RANGE_CHECK_POLICY_ENABLE);
    arv_device_set_register_cache_policy(m_device, ARV_REGISTER_CACHE_POLICY_DISABLE);
}

void GenICamDevice::watchControl()
{
    if (m_device && !m_controlLostHandler)
        m_controlLostHandler = g_signal_connect_data(m_device, "control-lost", G_CALLBACK(onControlLost),
                                                     new WeakDevice(weak_from_this()), forgetDevice, GConnectFlags(0));
}

void GenICamDevice::setLostHandler(std::function<void()> handler)
{
    {
        std::lock_guard<std::mutex> lock(m_handlerLock);
        m_lostHandler = std::move(handler);
    }
    if (isLost())
        reportLost();
}

void GenICamDevice::reportLost()
{
    std::lock_guard<std::mutex> lock(m_handlerLock);
    if (m_lostHandler)
        std::exchange(m_lostHandler, nullptr)();
}

GenICamDevice::~GenICamDevice()
{
    setLostHandler(nullptr);
    // Stop notifications before the node tree goes away.
    m_poller.reset();
    letGoIfLost();
    if (m_caching)
        g_object_unref(m_caching);
    if (!m_device)
        return;
    m_cache->setDevice(nullptr);
    if (m_controlLostHandler)
        g_signal_handler_disconnect(m_device, m_controlLostHandler);
    g_object_unref(m_device);
}

void GenICamDevice::letGoIfLost()
{
    if (!isLost() || !m_device)
        return;
    if (m_controlLostHandler)
        g_signal_handler_disconnect(m_device, m_controlLostHandler);
    m_controlLostHandler = 0;
    m_cache->setDevice(nullptr);
    BackgroundJobs::start([device = m_device] { g_object_unref(device); });
    m_device = nullptr;
    m_genicam = nullptr;
}

void GenICamDevice::controlLost(const std::weak_ptr<GenICamDevice>& weak)
{
    // Not on Aravis's heartbeat thread: asking for control waits for the
    // link, and letting go of the device there would wait for that very thread.
    BackgroundJobs::start(
        [weak]
        {
            const auto until = std::chrono::steady_clock::now() + FlagClearedWait;
            for (;; std::this_thread::sleep_for(std::chrono::milliseconds(2)))
            {
                const std::shared_ptr<GenICamDevice> self = weak.lock();
                if (!self)
                    return;
                std::lock_guard<std::mutex> lock(self->m_lock);
                if (self->isLost() || !self->m_device)
                    return;
                ArvGvDevice* device = ARV_IS_GV_DEVICE(self->m_device) ? ARV_GV_DEVICE(self->m_device) : nullptr;
                if (device && arv_gv_device_is_controller(device) && std::chrono::steady_clock::now() < until)
                    continue; // Aravis has not noted the loss yet
                GError* error = nullptr;
                // Only a GigE Vision camera can be asked for control again.
                if (device && arv_gv_device_take_control(device, &error) && arv_gv_device_is_controller(device))
                    return; // ours again: Aravis's heartbeat runs on
                self->markLost(std::string("the camera's heartbeat failed, control lost") +
                               (error && error->message ? std::string(": ") + error->message : std::string()));
                g_clear_error(&error);
                self->letGoIfLost();
                return;
            }
        });
}

std::string GenICamDevice::lostReason() const
{
    std::lock_guard<std::mutex> lock(m_reasonLock);
    return m_lostReason;
}

void GenICamDevice::markLost(const std::string& reason)
{
    {
        std::lock_guard<std::mutex> lock(m_reasonLock);
        if (m_lost.load())
            return; // the first reason stays
        m_lostReason = reason;
        m_lost = true;
    }
    reportLost();
}

OrvErrorType GenICamDevice::takeError(GError* error, Duration took)
{
    if (!error)
        return OrvErrorSuccess;

    OrvErrorType code = OrvErrorInternalFault;
    if (error->domain == ARV_DEVICE_ERROR)
    {
        switch (error->code)
        {
        case ARV_DEVICE_ERROR_NOT_CONNECTED:
            markLost(error->message ? error->message : "not connected");
            code = OrvErrorDeviceLost;
            break;
        case ARV_DEVICE_ERROR_TRANSFER_ERROR:
        case ARV_DEVICE_ERROR_TIMEOUT:
            // Aravis has retried and given up on this one call. Only timeouts
            // that go on for longer than the camera itself waits for us mean
            // that it is gone.
            m_timedOut += took;
            code = OrvErrorTimeout;
            if (m_timedOut > m_patience)
            {
                markLost(std::string(error->message ? error->message : "timeout") + ", no answer for " +
                         std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(m_timedOut).count()) +
                         " ms");
                code = OrvErrorDeviceLost;
            }
            break;
        case ARV_DEVICE_ERROR_WRONG_FEATURE:
            code = OrvErrorWrongType;
            break;
        case ARV_DEVICE_ERROR_FEATURE_NOT_FOUND:
        case ARV_DEVICE_ERROR_NOT_FOUND:
            code = OrvErrorNotFound;
            break;
        case ARV_DEVICE_ERROR_NOT_CONTROLLER:
        case ARV_DEVICE_ERROR_PROTOCOL_ERROR_WRITE_PROTECT:
        case ARV_DEVICE_ERROR_PROTOCOL_ERROR_ACCESS_DENIED:
        case ARV_DEVICE_ERROR_PROTOCOL_ERROR_BUSY:
            code = OrvErrorInvalidAccess;
            break;
        case ARV_DEVICE_ERROR_PROTOCOL_ERROR_NOT_IMPLEMENTED:
            code = OrvErrorNotImplemented;
            break;
        case ARV_DEVICE_ERROR_INVALID_PARAMETER:
        case ARV_DEVICE_ERROR_PROTOCOL_ERROR_INVALID_PARAMETER:
        case ARV_DEVICE_ERROR_PROTOCOL_ERROR_INVALID_ADDRESS:
        case ARV_DEVICE_ERROR_PROTOCOL_ERROR_BAD_ALIGNMENT:
            code = OrvErrorBadParameter;
            break;
        default:
            code = OrvErrorInternalFault;
        }
    }
    else if (error->domain == ARV_GC_ERROR)
    {
        switch (error->code)
        {
        case ARV_GC_ERROR_OUT_OF_RANGE:
        case ARV_GC_ERROR_ENUM_ENTRY_NOT_FOUND:
        case ARV_GC_ERROR_INVALID_SYNTAX:
        case ARV_GC_ERROR_INVALID_LENGTH:
        case ARV_GC_ERROR_EMPTY_ENUMERATION:
            code = OrvErrorInvalidValue;
            break;
        case ARV_GC_ERROR_READ_ONLY:
            code = OrvErrorInvalidAccess;
            break;
        case ARV_GC_ERROR_NODE_NOT_FOUND:
            code = OrvErrorNotFound;
            break;
        case ARV_GC_ERROR_SET_FROM_STRING_UNDEFINED:
        case ARV_GC_ERROR_GET_AS_STRING_UNDEFINED:
            code = OrvErrorWrongType;
            break;
        case ARV_GC_ERROR_NO_EVENT_IMPLEMENTATION:
            code = OrvErrorNotImplemented;
            break;
        default:
            // Includes chunk data read without a received buffer.
            code = OrvErrorInvalidAccess;
        }
    }
    else
    {
        // Chunk parser and other library errors: the value cannot be read now.
        code = OrvErrorInvalidAccess;
    }
    g_error_free(error);
    return code;
}

const std::set<std::string>& GenICamDevice::volatileNodes()
{
    if (m_volatileNodes)
        return *m_volatileNodes;
    m_volatileNodes.reset(new std::set<std::string>);
    size_t size = 0;
    const char* xml = arv_device_get_genicam_xml(m_device, &size);
    if (!xml)
        return *m_volatileNodes;
    // The nodes are the elements with a Name; their properties are child elements.
    QXmlStreamReader reader(QByteArray::fromRawData(xml, int(size)));
    std::vector<std::string> names;
    while (!reader.atEnd())
    {
        reader.readNext();
        if (reader.isStartElement())
        {
            const QStringRef element = reader.name();
            const bool volatileMark = element == QLatin1String("IsVolatile") || element == QLatin1String("Cachable") ||
                                      element == QLatin1String("PollingTime");
            if (volatileMark && !names.empty() && !names.back().empty())
            {
                const QString text = reader.readElementText().trimmed();
                if (element == QLatin1String("PollingTime") || text == QLatin1String("Yes") ||
                    text == QLatin1String("NoCache"))
                    m_volatileNodes->insert(names.back());
                continue; // readElementText has consumed the end element
            }
            names.push_back(reader.attributes().value(QLatin1String("Name")).toString().toStdString());
        }
        else if (reader.isEndElement() && !names.empty())
        {
            names.pop_back();
        }
    }
    return *m_volatileNodes;
}

const std::vector<ArvDomNode*>& GenICamDevice::structureProperties(ArvDomNode* structure)
{
    const auto known = m_structureProperties.find(structure);
    if (known != m_structureProperties.end())
        return known->second;
    std::vector<ArvDomNode*>& properties = m_structureProperties[structure];
    for (ArvDomNode* child = arv_dom_node_get_first_child(structure); child;
         child = arv_dom_node_get_next_sibling(child))
        if (ARV_IS_GC_PROPERTY_NODE(child))
            properties.push_back(child);
    return properties;
}

std::vector<ArvDomNode*> GenICamDevice::valueNodes(ArvDomNode* node)
{
    std::vector<ArvDomNode*> found, pending{node};
    std::set<ArvDomNode*> visited;
    while (!pending.empty())
    {
        ArvDomNode* next = pending.back();
        pending.pop_back();
        if (!next || ARV_IS_GC_PORT(next) || !visited.insert(next).second)
            continue;
        found.push_back(next);
        // A structure entry's register is its structure, whose other
        // children (its entries, maybe thousands) are no value of its own.
        ArvDomNode* structure = ARV_IS_GC_STRUCT_ENTRY_NODE(next) ? arv_dom_node_get_parent_node(next) : nullptr;
        if (structure && visited.insert(structure).second)
            found.push_back(structure);
        for (ArvDomNode* child = arv_dom_node_get_first_child(next); child;
             child = arv_dom_node_get_next_sibling(child))
        {
            if (!ARV_IS_GC_PROPERTY_NODE(child))
                continue;
            switch (arv_gc_property_node_get_node_type(ARV_GC_PROPERTY_NODE(child)))
            {
            case ARV_GC_PROPERTY_NODE_TYPE_P_VALUE:
            case ARV_GC_PROPERTY_NODE_TYPE_P_VARIABLE:
            case ARV_GC_PROPERTY_NODE_TYPE_P_VALUE_INDEXED:
            case ARV_GC_PROPERTY_NODE_TYPE_P_VALUE_DEFAULT:
                pending.push_back(ARV_DOM_NODE(arv_gc_property_node_get_linked_node(ARV_GC_PROPERTY_NODE(child))));
                break;
            default:
                break;
            }
        }
    }
    return found;
}

const std::set<ArvDomNode*>& GenICamDevice::volatileRegisters()
{
    if (m_volatileRegisters)
        return *m_volatileRegisters;
    m_volatileRegisters.reset(new std::set<ArvDomNode*>);
    for (const std::string& name : volatileNodes())
    {
        ArvGcNode* node = m_genicam ? arv_gc_get_node(m_genicam, name.c_str()) : nullptr;
        for (ArvDomNode* below : valueNodes(ARV_DOM_NODE(node)))
            if (ARV_IS_GC_REGISTER_NODE(below))
                m_volatileRegisters->insert(below);
    }
    return *m_volatileRegisters;
}

void GenICamDevice::indexDescription()
{
    m_invalidatedBy.reset(new std::unordered_map<ArvDomNode*, std::vector<ArvDomNode*>>);
    std::set<ArvDomNode*> selectors;
    // Every element of the description, without recursion.
    std::vector<ArvDomNode*> pending;
    if (m_genicam)
        pending.push_back(ARV_DOM_NODE(arv_dom_document_get_document_element(ARV_DOM_DOCUMENT(m_genicam))));
    while (!pending.empty())
    {
        ArvDomNode* element = pending.back();
        pending.pop_back();
        for (ArvDomNode* child = arv_dom_node_get_first_child(element); child;
             child = arv_dom_node_get_next_sibling(child))
        {
            if (!ARV_IS_GC_PROPERTY_NODE(child))
            {
                pending.push_back(child);
                continue;
            }
            auto* property = ARV_GC_PROPERTY_NODE(child);
            switch (arv_gc_property_node_get_node_type(property))
            {
            case ARV_GC_PROPERTY_NODE_TYPE_P_INVALIDATOR:
                (*m_invalidatedBy)[ARV_DOM_NODE(arv_gc_property_node_get_linked_node(property))].push_back(element);
                break;
            case ARV_GC_PROPERTY_NODE_TYPE_P_SELECTED:
                selectors.insert(element);
                break;
            case ARV_GC_PROPERTY_NODE_TYPE_P_INDEX:
            case ARV_GC_PROPERTY_NODE_TYPE_P_ADDRESS:
                selectors.insert(ARV_DOM_NODE(arv_gc_property_node_get_linked_node(property)));
                break;
            default:
                break;
            }
        }
    }
    for (ArvDomNode* selector : selectors)
        for (ArvDomNode* below : valueNodes(selector))
            if (ARV_IS_GC_REGISTER_NODE(below))
                m_selectorRegisters.insert(below);
}

const std::vector<ArvDomNode*>& GenICamDevice::invalidatedBy(ArvDomNode* node)
{
    if (!m_invalidatedBy)
        indexDescription();
    static const std::vector<ArvDomNode*> none;
    const auto found = m_invalidatedBy->find(node);
    return found == m_invalidatedBy->end() ? none : found->second;
}

const std::set<ArvDomNode*>& GenICamDevice::selectorRegisters()
{
    if (!m_invalidatedBy)
        indexDescription();
    return m_selectorRegisters;
}
