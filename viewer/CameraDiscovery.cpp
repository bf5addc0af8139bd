#include "CameraDiscovery.h"

#include <QDir>
#include <QFileInfo>
#include <QtEndian>

#include <mutex>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

// GigE Vision control: the port, READREG's command and acknowledge codes, and
// the control channel privilege register (its two low bits: exclusive, control).
const quint16 GvcpPort = 3956;
const quint16 ReadRegisterCommand = 0x0080;
const quint16 ReadRegisterAck = 0x0081;
const quint32 PrivilegeRegister = 0x0a00;
// How long a camera gets to answer, and how often it is asked.
const int AnswerWaitMs = 150;
const int Attempts = 2;

} // namespace

// What a discovery's thread and the object that started it share: the object, as long as it lives.
struct CameraDiscovery::Shared
{
    std::mutex mutex;
    CameraDiscovery* owner = nullptr;
};

CameraDiscovery::CameraDiscovery(QObject* parent)
    : QObject(parent)
    , m_shared(std::make_shared<Shared>())
{
    qRegisterMetaType<QList<CameraDiscovery::Entry>>();
    m_shared->owner = this;
}

CameraDiscovery::~CameraDiscovery()
{
    std::lock_guard<std::mutex> lock(m_shared->mutex);
    m_shared->owner = nullptr;
}

void CameraDiscovery::setDemoFolder(const QString& folder)
{
    m_demoFolder = folder;
}

bool CameraDiscovery::isRunning() const
{
    return m_running;
}

void CameraDiscovery::refresh()
{
    if (m_running)
        return;
    m_running = true;
    GenICamCamera::runInBackground(
        [shared = m_shared, folder = m_demoFolder]
        {
            const QList<Entry> entries = discover(folder);
            std::lock_guard<std::mutex> lock(shared->mutex);
            if (CameraDiscovery* discovery = shared->owner)
                QMetaObject::invokeMethod(
                    discovery,
                    [discovery, entries]
                    {
                        discovery->m_running = false;
                        emit discovery->listed(entries);
                    },
                    Qt::QueuedConnection);
        });
}

QList<CameraDiscovery::Entry> CameraDiscovery::discover(const QString& demoFolder)
{
    QList<Entry> entries;
    for (const GenICamCamera::DeviceInfo& device : GenICamCamera::devices())
    {
        const bool gige = device.protocol.contains("GigE", Qt::CaseInsensitive);
        entries.append({device, gige ? controlOf(device.address) : Control::Unknown, false});
    }
    const QDir folder(demoFolder);
    for (const QFileInfo& model : folder.entryInfoList({"*.xml"}, QDir::Files, QDir::Name))
    {
        Entry entry;
        entry.device.id = GenICamCamera::FakePrefix + model.absoluteFilePath();
        entry.device.model = model.completeBaseName();
        entry.device.address = model.absoluteFilePath();
        entry.control = Control::Free; // every opening runs a device of its own
        entry.demo = true;
        entries.append(entry);
    }
    return entries;
}

CameraDiscovery::Control CameraDiscovery::controlOf(const QString& address)
{
    sockaddr_in camera = {};
    camera.sin_family = AF_INET;
    camera.sin_port = htons(GvcpPort);
    if (inet_pton(AF_INET, address.toLatin1().constData(), &camera.sin_addr) != 1)
        return Control::Unknown;
    const int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return Control::Unknown;
    Control control = Control::Unknown;
    for (quint16 id = 1; id <= Attempts && control == Control::Unknown; ++id)
    {
        // Header (key 0x42, "acknowledge", command, length, request id), then the address.
        uchar command[12] = {0x42, 0x01};
        qToBigEndian(ReadRegisterCommand, command + 2);
        qToBigEndian(quint16(4), command + 4);
        qToBigEndian(id, command + 6);
        qToBigEndian(PrivilegeRegister, command + 8);
        if (::sendto(fd, command, sizeof command, 0, reinterpret_cast<const sockaddr*>(&camera), sizeof camera) !=
            ssize_t(sizeof command))
            break;
        pollfd wait = {fd, POLLIN, 0};
        uchar answer[64];
        while (control == Control::Unknown && ::poll(&wait, 1, AnswerWaitMs) > 0)
        {
            const ssize_t size = ::recv(fd, answer, sizeof answer, 0);
            // Status 0 (success), the acknowledge of this request, one register value.
            if (size >= 12 && qFromBigEndian<quint16>(answer) == 0 &&
                qFromBigEndian<quint16>(answer + 2) == ReadRegisterAck && qFromBigEndian<quint16>(answer + 6) == id)
                control = (qFromBigEndian<quint32>(answer + 8) & 0x3) ? Control::Elsewhere : Control::Free;
        }
    }
    ::close(fd);
    return control;
}
