#include "GenICamFeature.h"

#include "FeaturePoller.h"
#include "GenICamDevice.h"
#include "RegisterCache.h"

#include <arv.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <cstdio>
#include <limits>
#include <set>
#include <vector>

namespace
{

OrvFeatureDataType typeOf(ArvGcFeatureNode* node)
{
    // Order matters: an enumeration is also an integer and a string, an
    // IntReg is also a register, a StringReg is also a register.
    if (ARV_IS_GC_ENUMERATION(node))
        return OrvFeatureDataEnum;
    if (ARV_IS_GC_COMMAND(node))
        return OrvFeatureDataCommand;
    if (ARV_IS_GC_BOOLEAN(node))
        return OrvFeatureDataBool;
    if (ARV_IS_GC_STRING(node))
        return OrvFeatureDataString;
    if (ARV_IS_GC_INTEGER(node))
        return OrvFeatureDataInt;
    if (ARV_IS_GC_FLOAT(node))
        return OrvFeatureDataFloat;
    if (ARV_IS_GC_REGISTER(node))
        return OrvFeatureDataRaw;
    return OrvFeatureDataUnknown;
}

std::string toHex(const std::vector<unsigned char>& bytes)
{
    static const char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (unsigned char byte : bytes)
    {
        text += digits[byte >> 4];
        text += digits[byte & 0x0f];
    }
    return text;
}

bool fromHex(const char* text, std::vector<unsigned char>& bytes)
{
    auto nibble = [](char c) -> int
    {
        if (c >= '0' && c <= '9')
            return c - '0';
        if (c >= 'a' && c <= 'f')
            return c - 'a' + 10;
        if (c >= 'A' && c <= 'F')
            return c - 'A' + 10;
        return -1;
    };
    bytes.clear();
    for (const char* p = text; *p; p += 2)
    {
        const int high = nibble(p[0]);
        const int low = p[1] ? nibble(p[1]) : -1;
        if (high < 0 || low < 0)
            return false;
        bytes.push_back(static_cast<unsigned char>(high << 4 | low));
    }
    return true;
}

std::string formatDouble(double value)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.15g", value);
    return buffer;
}

} // namespace

GenICamFeature::GenICamFeature(std::shared_ptr<GenICamDevice> device, ArvGcFeatureNode* node,
                               const std::string& category)
    : m_device(std::move(device))
    , m_node(node)
    , m_type(typeOf(node))
    , m_category(category)
{
    const char* name = arv_gc_feature_node_get_name(node);
    m_name = name ? name : "";
    const char* displayName = arv_gc_feature_node_get_display_name(node);
    m_displayName = displayName && *displayName ? displayName : m_name;
}

GenICamFeature::~GenICamFeature() = default;

template <typename Result, typename Call>
OrvErrorType GenICamFeature::aravis(Result& out, Call call, bool value)
{
    // Found lost earlier in this same call: not one more wait for the link.
    if (m_device->isLost())
        return OrvErrorDeviceLost;
    GError* error = nullptr;
    const auto started = std::chrono::steady_clock::now();
    Result result = call(&error);
    if (error)
        return m_device->takeError(error, std::chrono::steady_clock::now() - started);
    // A value that lives in a register came over the link: the device answers.
    if (value && touchesLink())
        m_device->answered();
    out = result;
    return OrvErrorSuccess;
}

bool GenICamFeature::touchesLink()
{
    if (!m_dependenciesKnown)
        findDependencies();
    return !m_registers.empty();
}

template <typename Call> OrvErrorType GenICamFeature::withDevice(Call call)
{
    if (m_device->isLost())
        return OrvErrorDeviceLost;
    m_device->cache().enterCall();
    std::lock_guard<std::mutex> lock(m_device->lock());
    if (m_device->isLost())
    {
        m_device->letGoIfLost();
        return OrvErrorDeviceLost;
    }
    if (!m_dependenciesKnown)
        findDependencies();
    // A command's write always goes to the camera, as do all accesses of a
    // feature with a volatile register below it.
    m_device->cache().setReader(&m_name, m_uncached || m_type == OrvFeatureDataCommand, m_selector);
    const OrvErrorType code = call();
    m_device->cache().setReader(nullptr, false, false);
    m_device->letGoIfLost(); // lost during this call
    return code;
}

template <typename Call> OrvErrorType GenICamFeature::write(Call call)
{
    m_device->poller().beforeWrite();
    std::vector<const void*> registers;
    bool reached = false;
    const OrvErrorType code = withDevice(
        [&]() -> OrvErrorType
        {
            const OrvErrorType access = checkWritable();
            if (access != OrvErrorSuccess)
                return access;
            if (!m_dependenciesKnown)
                findDependencies();
            registers = m_registers;
            reached = true;
            const OrvErrorType written = call();
            invalidateAfterWrite();
            return written;
        });
    // A write may change other features too (selectors, locks): the change
    // poller looks at the observed features that share a register with this
    // one (all of them for a feature without registers), once writes pause.
    if (reached)
        m_device->poller().afterWrite(registers.empty() ? nullptr : &registers, this);
    return code;
}

OrvErrorType GenICamFeature::accessOf(ArvGcFeatureNode* node, bool withLock, bool& usable)
{
    bool available = false, implemented = false, locked = false;
    OrvErrorType code = aravis(available, [&](GError** e) { return arv_gc_feature_node_is_available(node, e); });
    if (code == OrvErrorSuccess)
        code = aravis(implemented, [&](GError** e) { return arv_gc_feature_node_is_implemented(node, e); });
    // Aravis does not enforce pIsLocked: this check is the only guard.
    if (code == OrvErrorSuccess && withLock)
        code = aravis(locked, [&](GError** e) { return arv_gc_feature_node_is_locked(node, e); });
    usable = available && implemented && !locked;
    return code;
}

OrvErrorType GenICamFeature::checkReadable()
{
    if (arv_gc_feature_node_get_actual_access_mode(m_node) == ARV_GC_ACCESS_MODE_WO)
        return OrvErrorInvalidAccess;
    bool usable = false;
    const OrvErrorType code = accessOf(m_node, false, usable);
    return code != OrvErrorSuccess ? code : usable ? OrvErrorSuccess : OrvErrorInvalidAccess;
}

OrvErrorType GenICamFeature::checkWritable()
{
    const ArvGcAccessMode mode = arv_gc_feature_node_get_actual_access_mode(m_node);
    if (mode != ARV_GC_ACCESS_MODE_RW && mode != ARV_GC_ACCESS_MODE_WO)
        return OrvErrorInvalidAccess;
    bool usable = false;
    const OrvErrorType code = accessOf(m_node, true, usable);
    return code != OrvErrorSuccess ? code : usable ? OrvErrorSuccess : OrvErrorInvalidAccess;
}

bool GenICamFeature::writableNow()
{
    return checkWritable() == OrvErrorSuccess;
}

OrvErrorType GenICamFeature::GetName(std::string& name)
{
    name = m_name;
    return OrvErrorSuccess;
}

OrvErrorType GenICamFeature::GetDisplayName(std::string& displayName)
{
    displayName = m_displayName;
    return OrvErrorSuccess;
}

OrvErrorType GenICamFeature::GetCategory(std::string& category)
{
    category = m_category;
    return OrvErrorSuccess;
}

OrvErrorType GenICamFeature::GetDataType(OrvFeatureDataType& dataType)
{
    dataType = m_type;
    return OrvErrorSuccess;
}

OrvErrorType GenICamFeature::IsWritable(bool& writable)
{
    return withDevice(
        [&]() -> OrvErrorType
        {
            const OrvErrorType code = checkWritable();
            if (code != OrvErrorSuccess && code != OrvErrorInvalidAccess)
                return code;
            writable = code == OrvErrorSuccess;
            return OrvErrorSuccess;
        });
}

OrvErrorType GenICamFeature::findEntry(const char* value, ArvGcFeatureNode*& entry)
{
    // The enumeration's own entries by name, gathered at the first lookup (the
    // entries never change): one walk, not one per name asked for. Of two
    // equally named entries the first in Aravis's list counts, the one
    // Aravis itself writes. Entry names are not unique across enumerations
    // (Line0 of LineSelector and of TriggerSource): the document's index of
    // names is no help here.
    if (!m_entriesKnown)
    {
        for (const GSList* item = arv_gc_enumeration_get_entries(ARV_GC_ENUMERATION(m_node)); item; item = item->next)
        {
            auto* node = static_cast<ArvGcFeatureNode*>(item->data);
            if (const char* name = arv_gc_feature_node_get_name(node))
                m_entries.emplace(name, node);
        }
        m_entriesKnown = true;
    }
    const auto found = m_entries.find(value);
    if (found == m_entries.end())
        return OrvErrorInvalidValue;
    entry = found->second;
    return OrvErrorSuccess;
}

OrvErrorType GenICamFeature::IsValueAvailable(const char* value, bool& available)
{
    if (!value)
        return OrvErrorBadParameter;
    if (m_type != OrvFeatureDataEnum)
        return OrvErrorWrongType;
    return withDevice(
        [&]() -> OrvErrorType
        {
            ArvGcFeatureNode* entry = nullptr;
            OrvErrorType code = findEntry(value, entry);
            if (code == OrvErrorSuccess)
                code = accessOf(entry, false, available);
            return code;
        });
}

OrvErrorType GenICamFeature::GetEntryValue(const char* entry, long long& value)
{
    if (!entry)
        return OrvErrorBadParameter;
    if (m_type != OrvFeatureDataEnum)
        return OrvErrorWrongType;
    return withDevice(
        [&]() -> OrvErrorType
        {
            ArvGcFeatureNode* node = nullptr;
            OrvErrorType code = findEntry(entry, node);
            gint64 number = 0;
            if (code == OrvErrorSuccess)
                code =
                    aravis(number, [&](GError** e) { return arv_gc_enum_entry_get_value(ARV_GC_ENUM_ENTRY(node), e); });
            if (code == OrvErrorSuccess)
                value = number;
            return code;
        });
}

OrvErrorType GenICamFeature::GetValues(std::vector<std::string>& values)
{
    if (m_type != OrvFeatureDataEnum)
        return OrvErrorWrongType;
    return withDevice(
        [&]() -> OrvErrorType
        {
            // Aravis keeps the entries in reverse order of the XML.
            std::vector<std::string> names;
            for (const GSList* item = arv_gc_enumeration_get_entries(ARV_GC_ENUMERATION(m_node)); item;
                 item = item->next)
            {
                const char* name = arv_gc_feature_node_get_name(static_cast<ArvGcFeatureNode*>(item->data));
                names.emplace_back(name ? name : "");
            }
            std::reverse(names.begin(), names.end());
            values.swap(names);
            return OrvErrorSuccess;
        });
}

OrvErrorType GenICamFeature::readText(std::string& value)
{
    OrvErrorType code = checkReadable();
    if (code != OrvErrorSuccess)
        return code;
    std::string text;
    switch (m_type)
    {
    case OrvFeatureDataEnum:
    case OrvFeatureDataString:
    {
        const char* string = nullptr;
        code = aravis(
            string,
            [&](GError** e)
            {
                return m_type == OrvFeatureDataEnum ? arv_gc_enumeration_get_string_value(ARV_GC_ENUMERATION(m_node), e)
                                                    : arv_gc_string_get_value(ARV_GC_STRING(m_node), e);
            },
            true);
        text = string ? string : "";
        break;
    }
    case OrvFeatureDataInt:
    {
        long long number = 0;
        code = readInteger(number, false);
        text = std::to_string(number);
        break;
    }
    case OrvFeatureDataFloat:
    {
        double number = 0.0;
        code = readNumber(number, false);
        text = formatDouble(number);
        break;
    }
    case OrvFeatureDataBool:
    {
        bool flag = false;
        code = readFlag(flag, false);
        text = flag ? "true" : "false";
        break;
    }
    case OrvFeatureDataRaw:
    {
        guint64 length = 0;
        code = aravis(length, [&](GError** e) { return arv_gc_register_get_length(ARV_GC_REGISTER(m_node), e); });
        if (code != OrvErrorSuccess)
            break;
        if (length > 1024 * 1024)
            return OrvErrorNotImplemented;
        std::vector<unsigned char> bytes(static_cast<size_t>(length));
        bool read = false;
        code = aravis(
            read,
            [&](GError** e)
            {
                arv_gc_register_get(ARV_GC_REGISTER(m_node), bytes.data(), length, e);
                return true;
            },
            true);
        text = toHex(bytes);
        break;
    }
    default:
        return OrvErrorWrongType;
    }
    if (code == OrvErrorSuccess)
        value = text;
    return code;
}

OrvErrorType GenICamFeature::GetValue(std::string& value)
{
    if (m_type == OrvFeatureDataCommand || m_type == OrvFeatureDataUnknown)
        return OrvErrorWrongType;
    return withDevice([&]() -> OrvErrorType { return readText(value); });
}

OrvErrorType GenICamFeature::readNumber(double& value, bool check)
{
    const OrvErrorType code = check ? checkReadable() : OrvErrorSuccess;
    if (code != OrvErrorSuccess)
        return code;
    return aravis(
        value,
        [&](GError** e)
        {
            return m_type == OrvFeatureDataInt ? double(arv_gc_integer_get_value(ARV_GC_INTEGER(m_node), e))
                                               : arv_gc_float_get_value(ARV_GC_FLOAT(m_node), e);
        },
        true);
}

OrvErrorType GenICamFeature::readInteger(long long& value, bool check)
{
    const OrvErrorType code = check ? checkReadable() : OrvErrorSuccess;
    if (code != OrvErrorSuccess)
        return code;
    return aravis(
        value,
        [&](GError** e)
        {
            return m_type == OrvFeatureDataInt ? (long long)arv_gc_integer_get_value(ARV_GC_INTEGER(m_node), e)
                                               : std::llround(arv_gc_float_get_value(ARV_GC_FLOAT(m_node), e));
        },
        true);
}

OrvErrorType GenICamFeature::readFlag(bool& value, bool check)
{
    const OrvErrorType code = check ? checkReadable() : OrvErrorSuccess;
    if (code != OrvErrorSuccess)
        return code;
    return aravis(
        value, [&](GError** e) -> bool { return arv_gc_boolean_get_value(ARV_GC_BOOLEAN(m_node), e); }, true);
}

OrvErrorType GenICamFeature::GetValue(double& value)
{
    if (m_type != OrvFeatureDataInt && m_type != OrvFeatureDataFloat)
        return OrvErrorWrongType;
    return withDevice([&]() -> OrvErrorType { return readNumber(value, true); });
}

OrvErrorType GenICamFeature::GetValue(long long& value)
{
    if (m_type != OrvFeatureDataInt && m_type != OrvFeatureDataFloat)
        return OrvErrorWrongType;
    return withDevice([&]() -> OrvErrorType { return readInteger(value, true); });
}

OrvErrorType GenICamFeature::GetValue(bool& value)
{
    if (m_type != OrvFeatureDataBool)
        return OrvErrorWrongType;
    return withDevice([&]() -> OrvErrorType { return readFlag(value, true); });
}

OrvErrorType GenICamFeature::integerLimits(long long& minimum, long long& maximum, long long* increment)
{
    auto* node = ARV_GC_INTEGER(m_node);
    gint64 lo = 0, hi = 0, step = 1;
    OrvErrorType code = aravis(lo, [&](GError** e) { return arv_gc_integer_get_min(node, e); });
    if (code == OrvErrorSuccess)
        code = aravis(hi, [&](GError** e) { return arv_gc_integer_get_max(node, e); });
    if (code == OrvErrorSuccess && increment)
        code = aravis(step, [&](GError** e) { return arv_gc_integer_get_inc(node, e); });
    if (code != OrvErrorSuccess)
        return code;
    minimum = lo;
    maximum = hi;
    if (increment)
        *increment = step;
    return OrvErrorSuccess;
}

OrvErrorType GenICamFeature::floatLimits(double& minimum, double& maximum)
{
    auto* node = ARV_GC_FLOAT(m_node);
    double lo = 0.0, hi = 0.0;
    OrvErrorType code = aravis(lo, [&](GError** e) { return arv_gc_float_get_min(node, e); });
    if (code == OrvErrorSuccess)
        code = aravis(hi, [&](GError** e) { return arv_gc_float_get_max(node, e); });
    if (code != OrvErrorSuccess)
        return code;
    minimum = lo;
    maximum = hi;
    return OrvErrorSuccess;
}

OrvErrorType GenICamFeature::GetRange(double& minimum, double& maximum)
{
    if (m_type == OrvFeatureDataInt)
    {
        long long lo = 0, hi = 0;
        const OrvErrorType code = GetRange(lo, hi);
        if (code == OrvErrorSuccess)
        {
            minimum = static_cast<double>(lo);
            maximum = static_cast<double>(hi);
        }
        return code;
    }
    if (m_type != OrvFeatureDataFloat)
        return OrvErrorWrongType;
    return withDevice([&]() -> OrvErrorType { return floatLimits(minimum, maximum); });
}

OrvErrorType GenICamFeature::GetRange(long long& minimum, long long& maximum)
{
    if (m_type != OrvFeatureDataInt)
        return OrvErrorWrongType;
    return withDevice([&]() -> OrvErrorType { return integerLimits(minimum, maximum, nullptr); });
}

OrvErrorType GenICamFeature::GetIncrement(double& increment)
{
    if (m_type == OrvFeatureDataInt)
    {
        long long step = 0;
        const OrvErrorType code = GetIncrement(step);
        if (code == OrvErrorSuccess)
            increment = static_cast<double>(step);
        return code;
    }
    if (m_type != OrvFeatureDataFloat)
        return OrvErrorWrongType;
    return withDevice(
        [&]() -> OrvErrorType
        {
            double step = 0.0;
            const OrvErrorType code =
                aravis(step, [&](GError** e) { return arv_gc_float_get_inc(ARV_GC_FLOAT(m_node), e); });
            if (code != OrvErrorSuccess)
                return code;
            // A float without <Inc> has no increment (Aravis answers a tiny number).
            if (!(step > std::numeric_limits<float>::min()))
                return OrvErrorWrongType;
            increment = step;
            return OrvErrorSuccess;
        });
}

OrvErrorType GenICamFeature::GetIncrement(long long& increment)
{
    if (m_type != OrvFeatureDataInt)
        return OrvErrorWrongType;
    return withDevice(
        [&]() -> OrvErrorType
        {
            gint64 step = 0;
            const OrvErrorType code =
                aravis(step, [&](GError** e) { return arv_gc_integer_get_inc(ARV_GC_INTEGER(m_node), e); });
            if (code == OrvErrorSuccess)
                increment = step;
            return code;
        });
}

template <typename Call> OrvErrorType GenICamFeature::store(Call call)
{
    bool done = false;
    return aravis(
        done,
        [&](GError** e)
        {
            call(e);
            return true;
        },
        true);
}

OrvErrorType GenICamFeature::writeInteger(long long value)
{
    long long lo = 0, hi = 0, step = 1;
    const OrvErrorType code = integerLimits(lo, hi, &step);
    if (code != OrvErrorSuccess)
        return code;
    if (value < lo || value > hi || (step > 1 && (value - lo) % step != 0))
        return OrvErrorInvalidValue;
    return store([&](GError** e) { arv_gc_integer_set_value(ARV_GC_INTEGER(m_node), value, e); });
}

OrvErrorType GenICamFeature::writeFloat(double value)
{
    if (!std::isfinite(value))
        return OrvErrorInvalidValue;
    double lo = 0.0, hi = 0.0;
    const OrvErrorType code = floatLimits(lo, hi);
    if (code != OrvErrorSuccess)
        return code;
    if (value < lo || value > hi)
        return OrvErrorInvalidValue;
    return store([&](GError** e) { arv_gc_float_set_value(ARV_GC_FLOAT(m_node), value, e); });
}

OrvErrorType GenICamFeature::SetValue(double value)
{
    if (m_type == OrvFeatureDataInt)
    {
        if (!std::isfinite(value) || std::fabs(value) > 9.2e18)
            return OrvErrorInvalidValue;
        return write([&]() -> OrvErrorType { return writeInteger(std::llround(value)); });
    }
    if (m_type != OrvFeatureDataFloat)
        return OrvErrorWrongType;
    return write([&]() -> OrvErrorType { return writeFloat(value); });
}

OrvErrorType GenICamFeature::SetValue(long long value)
{
    if (m_type == OrvFeatureDataFloat)
        return write([&]() -> OrvErrorType { return writeFloat(static_cast<double>(value)); });
    if (m_type != OrvFeatureDataInt)
        return OrvErrorWrongType;
    return write([&]() -> OrvErrorType { return writeInteger(value); });
}

OrvErrorType GenICamFeature::SetValue(bool value)
{
    if (m_type != OrvFeatureDataBool)
        return OrvErrorWrongType;
    return write(
        [&]() -> OrvErrorType
        { return store([&](GError** e) { arv_gc_boolean_set_value(ARV_GC_BOOLEAN(m_node), value, e); }); });
}

OrvErrorType GenICamFeature::SetValue(const char* value)
{
    if (!value)
        return OrvErrorBadParameter;
    switch (m_type)
    {
    case OrvFeatureDataEnum:
        return write(
            [&]() -> OrvErrorType
            {
                // An entry that is not available now is refused like an unknown one.
                ArvGcFeatureNode* entry = nullptr;
                bool usable = false;
                OrvErrorType code = findEntry(value, entry);
                if (code == OrvErrorSuccess)
                    code = accessOf(entry, false, usable);
                if (code != OrvErrorSuccess)
                    return code;
                if (!usable)
                    return OrvErrorInvalidValue;
                return store([&](GError** e)
                             { arv_gc_enumeration_set_string_value(ARV_GC_ENUMERATION(m_node), value, e); });
            });
    case OrvFeatureDataString:
        return write(
            [&]() -> OrvErrorType
            {
                gint64 maxLength = 0;
                const OrvErrorType code =
                    aravis(maxLength, [&](GError** e) { return arv_gc_string_get_max_length(ARV_GC_STRING(m_node), e); });
                if (code != OrvErrorSuccess)
                    return code;
                if (maxLength > 0 && static_cast<gint64>(std::strlen(value)) > maxLength)
                    return OrvErrorInvalidValue;
                return store([&](GError** e) { arv_gc_string_set_value(ARV_GC_STRING(m_node), value, e); });
            });
    case OrvFeatureDataRaw:
        return write(
            [&]() -> OrvErrorType
            {
                std::vector<unsigned char> bytes;
                if (!fromHex(value, bytes))
                    return OrvErrorInvalidValue;
                guint64 length = 0;
                const OrvErrorType code =
                    aravis(length, [&](GError** e) { return arv_gc_register_get_length(ARV_GC_REGISTER(m_node), e); });
                if (code != OrvErrorSuccess)
                    return code;
                if (bytes.size() != length)
                    return OrvErrorInvalidValue;
                return store([&](GError** e)
                             { arv_gc_register_set(ARV_GC_REGISTER(m_node), bytes.data(), length, e); });
            });
    default:
        return OrvErrorWrongType;
    }
}

OrvErrorType GenICamFeature::RunCommand()
{
    if (m_type != OrvFeatureDataCommand)
        return OrvErrorWrongType;
    return write([&]() -> OrvErrorType
                 { return store([&](GError** e) { arv_gc_command_execute(ARV_GC_COMMAND(m_node), e); }); });
}

bool GenICamFeature::BeginExclusive(int timeoutMs)
{
    return m_device->cache().begin(timeoutMs);
}

void GenICamFeature::EndExclusive()
{
    m_device->cache().end();
}

void GenICamFeature::invalidateAfterWrite()
{
    RegisterCache& cache = m_device->cache();
    // A command may change anything (a user set loaded, acquisition started).
    if (m_type == OrvFeatureDataCommand || m_device->isLost())
        return cache.clear();
    if (!m_invalidatesKnown)
    {
        std::set<ArvGcNode*> registers;
        for (ArvDomNode* written : GenICamDevice::valueNodes(ARV_DOM_NODE(m_node)))
        {
            std::vector<ArvDomNode*> changed = m_device->invalidatedBy(written);
            for (ArvDomNode* child = arv_dom_node_get_first_child(written); child;
                 child = arv_dom_node_get_next_sibling(child))
                if (ARV_IS_GC_PROPERTY_NODE(child) && arv_gc_property_node_get_node_type(ARV_GC_PROPERTY_NODE(child)) ==
                                                          ARV_GC_PROPERTY_NODE_TYPE_P_SELECTED)
                    changed.push_back(ARV_DOM_NODE(arv_gc_property_node_get_linked_node(ARV_GC_PROPERTY_NODE(child))));
            for (ArvDomNode* node : changed)
                for (ArvDomNode* below : GenICamDevice::valueNodes(node))
                    if (ARV_IS_GC_REGISTER_NODE(below))
                        registers.insert(ARV_GC_NODE(below));
        }
        m_invalidates.assign(registers.begin(), registers.end());
        m_invalidatesKnown = true;
    }
    // At the addresses they have now (a selector's setting may move them).
    for (ArvGcNode* node : m_invalidates)
    {
        GError* error = nullptr;
        const guint64 address = arv_gc_register_get_address(ARV_GC_REGISTER(node), &error);
        const guint64 length = error ? 0 : arv_gc_register_get_length(ARV_GC_REGISTER(node), &error);
        if (error)
        {
            g_error_free(error);
            return cache.clear();
        }
        cache.invalidate(address, length);
    }
}

OrvErrorType GenICamFeature::RegisterObserver(const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer)
{
    return m_device->poller().registerObserver(shared_from_this(), observer);
}

OrvErrorType GenICamFeature::UnregisterObserver(const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer)
{
    return m_device->poller().unregisterObserver(this, observer);
}

void GenICamFeature::findDependencies()
{
    // Everything the value, the access and the entries hang on: property
    // nodes link to other nodes, enumeration entries are children, and a
    // structure entry's bits live in its structure's register. The DOM is
    // only read; no register is touched.
    const std::set<std::string>& volatileNodes = m_device->volatileNodes();
    std::set<ArvDomNode*> visited;
    std::vector<ArvDomNode*> pending{ARV_DOM_NODE(m_node)};
    m_volatile = false;
    auto note = [&](ArvDomNode* node)
    {
        if (ARV_IS_GC_FEATURE_NODE(node))
        {
            const char* name = arv_gc_feature_node_get_name(ARV_GC_FEATURE_NODE(node));
            if (name && volatileNodes.count(name))
                m_volatile = true;
        }
        if (ARV_IS_GC_REGISTER_NODE(node))
            m_registers.push_back(node);
    };
    auto follow = [&](ArvDomNode* child)
    {
        // The other entries of a structure are features of their own.
        if (!ARV_IS_GC_PROPERTY_NODE(child))
        {
            if (!ARV_IS_GC_STRUCT_ENTRY_NODE(child))
                pending.push_back(child);
            return;
        }
        auto* property = ARV_GC_PROPERTY_NODE(child);
        const ArvGcPropertyNodeType type = arv_gc_property_node_get_node_type(property);
        if (type <= ARV_GC_PROPERTY_NODE_TYPE_P_UNKNONW)
            return;
        ArvGcNode* linked = arv_gc_property_node_get_linked_node(property);
        if ((type == ARV_GC_PROPERTY_NODE_TYPE_P_INDEX || type == ARV_GC_PROPERTY_NODE_TYPE_P_ADDRESS) &&
            ARV_IS_GC_INTEGER(linked) &&
            std::find(m_selectorNodes.begin(), m_selectorNodes.end(), linked) == m_selectorNodes.end())
            m_selectorNodes.push_back(linked);
        pending.push_back(ARV_DOM_NODE(linked));
    };
    while (!pending.empty())
    {
        ArvDomNode* node = pending.back();
        pending.pop_back();
        if (!node || ARV_IS_GC_PORT(node) || !visited.insert(node).second)
            continue;
        note(node);
        // The structure's properties are gathered once for all its entries,
        // not looked for among them by each entry.
        ArvDomNode* structure = ARV_IS_GC_STRUCT_ENTRY_NODE(node) ? arv_dom_node_get_parent_node(node) : nullptr;
        if (structure && visited.insert(structure).second)
        {
            note(structure);
            for (ArvDomNode* child : m_device->structureProperties(structure))
                follow(child);
        }
        for (ArvDomNode* child = arv_dom_node_get_first_child(node); child;
             child = arv_dom_node_get_next_sibling(child))
            follow(child);
    }
    std::sort(m_registers.begin(), m_registers.end());
    const std::set<ArvDomNode*>& volatileRegisters = m_device->volatileRegisters();
    m_uncached = m_volatile ||
                 std::any_of(m_registers.begin(), m_registers.end(),
                             [&](const void* node) {
                                 return volatileRegisters.count(static_cast<ArvDomNode*>(const_cast<void*>(node))) > 0;
                             });
    const std::set<ArvDomNode*>& selectorRegisters = m_device->selectorRegisters();
    for (ArvDomNode* node : GenICamDevice::valueNodes(ARV_DOM_NODE(m_node)))
        m_selector = m_selector || selectorRegisters.count(node) > 0;
    m_dependenciesKnown = true;
}

void GenICamFeature::observe(std::string& setting, std::string& state, bool& isVolatile,
                             std::vector<const void*>& registers)
{
    // The selectors' setting and the value under it in one take of the lock:
    // a write from another thread in between would file the value under the
    // wrong setting.
    setting.clear();
    std::lock_guard<std::mutex> lock(m_device->lock());
    if (m_device->isLost())
    {
        m_device->letGoIfLost();
        isVolatile = false;
        registers.clear();
        state = "!" + std::to_string(OrvErrorDeviceLost);
        return;
    }
    if (!m_dependenciesKnown)
        findDependencies();
    isVolatile = m_volatile;
    registers = m_registers;
    for (ArvGcNode* selector : m_selectorNodes)
    {
        if (m_device->isLost())
            break;
        gint64 value = 0;
        const OrvErrorType code =
            aravis(value, [&](GError** e) { return arv_gc_integer_get_value(ARV_GC_INTEGER(selector), e); });
        setting += (code == OrvErrorSuccess ? std::to_string(static_cast<long long>(value)) : std::string("?")) + ',';
    }
    state = snapshot();
    m_device->letGoIfLost();
}

std::string GenICamFeature::stateSnapshot()
{
    std::lock_guard<std::mutex> lock(m_device->lock());
    const std::string state = snapshot();
    m_device->letGoIfLost();
    return state;
}

std::string GenICamFeature::snapshot()
{
    if (m_device->isLost())
        return "!" + std::to_string(OrvErrorDeviceLost);
    std::string value;
    OrvErrorType read = OrvErrorSuccess;
    if (m_type != OrvFeatureDataCommand)
        read = readText(value);
    if (m_device->isLost())
        return "!" + std::to_string(OrvErrorDeviceLost);
    return (read == OrvErrorSuccess ? "=" + value : "!" + std::to_string(read)) + (writableNow() ? "|w" : "|r");
}
