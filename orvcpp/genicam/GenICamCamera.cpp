// Aravis (gio) before Qt: gio uses "signals" as a name, Qt as a keyword.
#include <arv.h>

#include "GenICamCamera.h"

#include "BackgroundJobs.h"
#include "FeaturePoller.h"
#include "GenICamDevice.h"
#include "GenICamFeature.h"
#include "GenICamReferenceGraph.h"
#include "GuardedFakeDevice.h"
#include "RegisterCache.h"

#include <QAtomicInt>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>
#include <mutex>
#include <set>
#include <tuple>

namespace
{

// Aravis's device list and the fake camera's file name are process-wide.
std::mutex& aravisGlobalLock()
{
    static std::mutex lock;
    return lock;
}

// GigE Vision bootstrap register: the serial number, 16 characters.
constexpr guint64 GvSerialNumberRegister = 0xd8;

QString serialOf(ArvDevice* device)
{
    if (ARV_IS_GV_DEVICE(device))
    {
        char serial[17] = {};
        if (!arv_device_read_memory(device, GvSerialNumberRegister, 16, serial, nullptr))
            return QString();
        return QString::fromLatin1(serial).trimmed();
    }
    if (ARV_IS_FAKE_DEVICE(device) || !arv_device_get_feature(device, "DeviceSerialNumber"))
        return QString();
    GError* error = nullptr;
    const char* serial = arv_device_get_string_feature_value(device, "DeviceSerialNumber", &error);
    const QString text = error || !serial ? QString() : QString::fromUtf8(serial).trimmed();
    g_clear_error(&error);
    return text;
}

QString messageOf(GError* error)
{
    return error && error->message ? QString::fromUtf8(error->message) : QString();
}

// The next feature a category lists after child (from its first child when
// null), or null. Aravis's own list of a category's features is built anew
// at every call by appending each name to the end of a list: a walk per
// feature.
ArvDomNode* nextListed(ArvDomNode* category, ArvDomNode* child, ArvGcNode*& feature)
{
    for (child = child ? arv_dom_node_get_next_sibling(child) : arv_dom_node_get_first_child(category); child;
         child = arv_dom_node_get_next_sibling(child))
    {
        if (!ARV_IS_GC_PROPERTY_NODE(child) ||
            arv_gc_property_node_get_node_type(ARV_GC_PROPERTY_NODE(child)) != ARV_GC_PROPERTY_NODE_TYPE_P_FEATURE)
            continue;
        feature = arv_gc_property_node_get_linked_node(ARV_GC_PROPERTY_NODE(child));
        if (ARV_IS_GC_FEATURE_NODE(feature) && arv_gc_feature_node_get_name(ARV_GC_FEATURE_NODE(feature)))
            return child;
    }
    return nullptr;
}

// The feature nodes below the root category, depth first as the XML lists
// them, without recursion. A category listed twice is walked once, a category
// loop ends there. Returns the categories nested deeper than the reference
// chains allowed (the features are then incomplete), or an empty list.
QStringList collectFeatures(const std::shared_ptr<GenICamDevice>& device,
                            QVector<OrvCPP::shared_ptr<OrvCPP::Feature>>& out)
{
    std::set<std::string> seen, visitedCategories{"Root"};
    ArvDomNode* root = ARV_DOM_NODE(arv_gc_get_node(device->genicam(), "Root"));
    std::vector<std::tuple<std::string, ArvDomNode*, ArvDomNode*>> path{
        {"Root", root, nullptr}}; // name, category, child
    while (!path.empty())
    {
        auto& [category, node, child] = path.back();
        ArvGcNode* feature = nullptr;
        child = nextListed(node, child, feature);
        if (!child)
        {
            path.pop_back();
            continue;
        }
        const std::string name = arv_gc_feature_node_get_name(ARV_GC_FEATURE_NODE(feature));
        if (ARV_IS_GC_CATEGORY(feature) && visitedCategories.insert(name).second)
        {
            path.emplace_back(name, ARV_DOM_NODE(feature), nullptr);
            if (path.size() > size_t(GenICamReferenceGraph::MaxChainLength) + 1)
            {
                QStringList names;
                for (const auto& nested : path)
                    names << QString::fromStdString(std::get<0>(nested));
                return names;
            }
        }
        else if (!ARV_IS_GC_CATEGORY(feature) && seen.insert(name).second)
            out.append(std::make_shared<GenICamFeature>(device, ARV_GC_FEATURE_NODE(feature), category));
    }
    return {};
}

} // namespace

GenICamCamera::GenICamCamera()
    : m_pollPeriod(FeaturePoller::DefaultPeriodMs)
{
}

GenICamCamera::~GenICamCamera()
{
    close();
}

QStringList GenICamCamera::deviceIds()
{
    std::lock_guard<std::mutex> lock(aravisGlobalLock());
    arv_update_device_list();
    QStringList ids;
    const unsigned int count = arv_get_n_devices();
    for (unsigned int i = 0; i < count; ++i)
    {
        const char* id = arv_get_device_id(i);
        if (id)
            ids << QString::fromUtf8(id);
    }
    return ids;
}

QList<GenICamCamera::DeviceInfo> GenICamCamera::devices()
{
    std::lock_guard<std::mutex> lock(aravisGlobalLock());
    arv_update_device_list();
    QList<DeviceInfo> devices;
    auto text = [](const char* value) { return value ? QString::fromUtf8(value).trimmed() : QString(); };
    for (unsigned int i = 0; i < arv_get_n_devices(); ++i)
    {
        if (arv_get_device_id(i))
            devices.append({text(arv_get_device_id(i)), text(arv_get_device_vendor(i)), text(arv_get_device_model(i)),
                            text(arv_get_device_serial_nbr(i)), text(arv_get_device_address(i)),
                            text(arv_get_device_protocol(i))});
    }
    return devices;
}

OrvErrorType GenICamCamera::fail(OrvErrorType code, const QString& message)
{
    m_error = message;
    return code;
}

OrvErrorType GenICamCamera::openFake(const QString& path, ArvDevice*& device)
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists())
        return fail(OrvErrorNotFound, QStringLiteral("GenICam file not found: '%1'").arg(path));
    QFile file(info.absoluteFilePath());
    if (!file.open(QIODevice::ReadOnly))
        return fail(OrvErrorInvalidAccess,
                    QStringLiteral("GenICam file cannot be read: '%1' (%2)").arg(path, file.errorString()));
    const QByteArray xml = file.readAll();

    // Well-formed XML first: Aravis's parser reports broken XML only as log
    // criticals, and a clear line and column helps whoever edits the file.
    QXmlStreamReader reader(xml);
    while (!reader.atEnd())
        reader.readNext();
    if (reader.hasError() || xml.trimmed().isEmpty())
        return fail(OrvErrorInvalidValue,
                    QStringLiteral("GenICam file is not well-formed XML: '%1' (line %2, column %3: %4)")
                        .arg(path)
                        .arg(reader.lineNumber())
                        .arg(reader.columnNumber())
                        .arg(xml.trimmed().isEmpty() ? QStringLiteral("empty file") : reader.errorString()));

    // Let Aravis parse it once on its own first: the fake device does not
    // report a broken description, it would run without features.
    ArvGc* check = xml.isEmpty() ? nullptr : arv_gc_new(nullptr, xml.constData(), size_t(xml.size()));
    const bool valid = check && ARV_IS_GC_CATEGORY(arv_gc_get_node(check, "Root"));
    if (check)
        g_object_unref(check);
    if (!valid)
        return fail(OrvErrorInvalidValue,
                    QStringLiteral("Not a valid GenICam description (no 'Root' category): '%1'").arg(path));

    static QAtomicInt serial;
    const QByteArray serialNumber = "TRIGGERIO" + QByteArray::number(serial.fetchAndAddRelaxed(1) + 1);
    const QByteArray fileName = QFile::encodeName(info.absoluteFilePath());
    GError* error = nullptr;
    {
        std::lock_guard<std::mutex> lock(aravisGlobalLock());
        arv_set_fake_camera_genicam_filename(fileName.constData());
        device = GuardedFakeDevice::create(serialNumber.constData(), &error);
        arv_set_fake_camera_genicam_filename(nullptr);
    }
    if (!device)
    {
        const QString reason = messageOf(error);
        if (error)
            g_error_free(error);
        return fail(OrvErrorInternalFault,
                    QStringLiteral("Aravis fake device could not load '%1': %2").arg(path, reason));
    }
    if (error)
        g_error_free(error);
    return OrvErrorSuccess;
}

OrvErrorType GenICamCamera::openAravis(const QString& id, ArvDevice*& device)
{
    if (id.isEmpty())
        return fail(OrvErrorBadParameter, QStringLiteral("No device id given"));
    GError* error = nullptr;
    {
        std::lock_guard<std::mutex> lock(aravisGlobalLock());
        device = arv_open_device(id.toUtf8().constData(), &error);
    }
    if (device)
    {
        if (error)
            g_error_free(error);
        // Aravis opens a GigE Vision camera that another program controls in
        // monitor mode; its writes would time out. Refuse it instead.
        if (ARV_IS_GV_DEVICE(device) && !arv_gv_device_is_controller(ARV_GV_DEVICE(device)))
        {
            g_object_unref(device);
            device = nullptr;
            return fail(OrvErrorInvalidAccess,
                        QStringLiteral("Device '%1' is in use by another program (no control access)").arg(id));
        }
        return OrvErrorSuccess;
    }
    const QString reason = messageOf(error);
    const bool inUse = error && error->domain == ARV_DEVICE_ERROR &&
                       (error->code == ARV_DEVICE_ERROR_NOT_CONTROLLER ||
                        error->code == ARV_DEVICE_ERROR_PROTOCOL_ERROR_ACCESS_DENIED ||
                        error->code == ARV_DEVICE_ERROR_PROTOCOL_ERROR_BUSY);
    const bool notFound = !error || (error->domain == ARV_DEVICE_ERROR && error->code == ARV_DEVICE_ERROR_NOT_FOUND);
    if (error)
        g_error_free(error);
    if (inUse)
        return fail(OrvErrorInvalidAccess,
                    QStringLiteral("Device '%1' is in use by another program: %2").arg(id, reason));
    if (notFound)
        return fail(OrvErrorNotFound,
                    QStringLiteral("No device with id '%1'%2").arg(id, reason.isEmpty() ? QString() : ": " + reason));
    return fail(OrvErrorInternalFault, QStringLiteral("Device '%1' could not be opened: %2").arg(id, reason));
}

OrvErrorType GenICamCamera::open(const QString& id)
{
    close();
    m_error.clear();

    // One opening at a time in the process: two cameras opened at once on two
    // threads (a rig chosen together) left Aravis's description trees broken
    // ("self is not a ArvDomNode"); opening takes a fraction of a second.
    static std::mutex opening;
    const std::lock_guard<std::mutex> oneAtATime(opening);
    ArvDevice* device = nullptr;
    const OrvErrorType code = id.startsWith(QLatin1String(FakePrefix))
                                  ? openFake(id.mid(int(qstrlen(FakePrefix))), device)
                                  : openAravis(id, device);
    if (code != OrvErrorSuccess)
        return code;

    if (!arv_device_get_genicam(device))
    {
        g_object_unref(device);
        return fail(OrvErrorInvalidValue, QStringLiteral("Device '%1' has no GenICam description").arg(id));
    }
    // Before any feature is read: Aravis would follow a loop, or a very long
    // chain, until the stack overflows, or evaluate a wide fan for ever.
    const GenICamReferenceGraph graph(arv_device_get_genicam(device));
    const QStringList loop = graph.findLoop();
    const GenICamReferenceGraph::Overload overload =
        loop.isEmpty() ? graph.findOverload() : GenICamReferenceGraph::Overload();
    if (!loop.isEmpty() || !overload.path.isEmpty())
    {
        g_object_unref(device);
        const QString problem = !loop.isEmpty() ? QStringLiteral("Reference loop")
                                : overload.tooDeep
                                    ? QStringLiteral("Reference chain too deep")
                                    : QStringLiteral("Reference fan-out too wide (a read of %1 evaluates "
                                                     "nodes over %2 times)")
                                          .arg(overload.path.first())
                                          .arg(GenICamReferenceGraph::MaxEvaluations);
        return fail(OrvErrorInvalidValue,
                    QStringLiteral("%1 in the camera description: %2")
                        .arg(problem, GenICamReferenceGraph::describe(loop.isEmpty() ? overload.path : loop)));
    }
    auto shared = std::make_shared<GenICamDevice>(device, id.toStdString());
    shared->watchControl();
    ArvGcNode* root = arv_gc_get_node(shared->genicam(), "Root");
    if (!ARV_IS_GC_CATEGORY(root))
        return fail(OrvErrorInvalidValue,
                    QStringLiteral("The GenICam description of '%1' has no 'Root' category").arg(id));

    FeatureList features(new QVector<OrvCPP::shared_ptr<OrvCPP::Feature>>);
    const QStringList nesting = collectFeatures(shared, *features);
    if (!nesting.isEmpty())
        return fail(OrvErrorInvalidValue, QStringLiteral("Categories nested too deep in the camera description: %1")
                                              .arg(GenICamReferenceGraph::describe(nesting)));

    m_device = shared;
    m_features = features;
    m_id = id;
    m_serial = serialOf(device);
    applySettings();
    return OrvErrorSuccess;
}

void GenICamCamera::applySettings()
{
    if (!m_device)
        return;
    m_device->poller().setPeriod(m_pollPeriod);
    m_device->setLostHandler(m_lostHandler);
}

void GenICamCamera::close()
{
    // Features handed out keep the device: no more news of it from here on.
    if (m_device)
        m_device->setLostHandler(nullptr);
    m_features.reset();
    m_device.reset();
    m_id.clear();
    m_serial.clear();
}

void GenICamCamera::adopt(GenICamCamera& other)
{
    if (&other == this)
        return;
    close();
    if (other.m_device)
        other.m_device->setLostHandler(nullptr);
    m_device = std::move(other.m_device);
    m_features = std::move(other.m_features);
    m_id = other.m_id;
    m_serial = other.m_serial;
    m_error = other.m_error;
    other.close();
    applySettings();
}

std::shared_ptr<const GenICamCamera> GenICamCamera::handle() const
{
    if (!m_device)
        return nullptr;
    // Its device is let go of without close(), which would take the lost handler off the device.
    std::shared_ptr<GenICamCamera> other(new GenICamCamera,
                                         [](GenICamCamera* camera)
                                         {
                                             camera->m_device.reset();
                                             delete camera;
                                         });
    other->m_device = m_device;
    other->m_features = m_features;
    other->m_id = m_id;
    other->m_serial = m_serial;
    return other;
}

void GenICamCamera::setLostHandler(std::function<void()> handler)
{
    m_lostHandler = std::move(handler);
    applySettings();
}

void GenICamCamera::runInBackground(std::function<void()> job)
{
    BackgroundJobs::start(std::move(job));
}

bool GenICamCamera::waitForBackgroundWork(int milliseconds)
{
    return BackgroundJobs::waitForAll(std::chrono::milliseconds(milliseconds));
}

QString GenICamCamera::serialNumber() const
{
    return m_serial;
}

bool GenICamCamera::isOpen() const
{
    return m_device != nullptr;
}

QString GenICamCamera::id() const
{
    return m_id;
}

QString GenICamCamera::errorString() const
{
    return m_error;
}

FeatureList GenICamCamera::features() const
{
    return m_features ? m_features : FeatureList(new QVector<OrvCPP::shared_ptr<OrvCPP::Feature>>);
}

void GenICamCamera::setPollPeriod(int milliseconds)
{
    m_pollPeriod = std::max(1, milliseconds);
    if (m_device)
        m_device->poller().setPeriod(m_pollPeriod);
}

int GenICamCamera::pollPeriod() const
{
    return m_pollPeriod;
}

bool GenICamCamera::isDeviceLost() const
{
    if (!m_device || !m_device->isLost())
        return false;
    std::lock_guard<std::mutex> lock(m_device->lock());
    m_device->letGoIfLost();
    return true;
}

QString GenICamCamera::lostReason() const
{
    return m_device ? QString::fromStdString(m_device->lostReason()) : QString();
}

bool GenICamCamera::withAravisDevice(const std::function<void(ArvDevice*)>& call) const
{
    if (!m_device || !call || m_device->isLost())
        return false;
    // The call may change the device behind the features' back: the change
    // poller treats it as a write.
    m_device->poller().beforeWrite();
    m_device->cache().enterCall();
    bool ran = false;
    {
        std::lock_guard<std::mutex> lock(m_device->lock());
        if (!m_device->isLost())
        {
            call(m_device->device());
            ran = true;
        }
        // What it changed is not known: the burst reads everything again.
        m_device->cache().clear();
    }
    m_device->poller().afterWrite();
    return ran;
}
