#include "CameraFinder.h"

#include "GenICamCamera.h"

#include <QMetaObject>

#include <mutex>

// What an attempt's thread and the finder share: the finder, as long as it lives.
struct CameraFinder::Shared
{
    std::mutex mutex;
    CameraFinder* finder = nullptr;
};

CameraFinder::CameraFinder(QObject* parent)
    : QObject(parent)
    , m_shared(std::make_shared<Shared>())
{
    m_shared->finder = this;
    m_next.setSingleShot(true);
    m_next.setInterval(2000);
    connect(&m_next, &QTimer::timeout, this, &CameraFinder::attempt);
}

CameraFinder::~CameraFinder()
{
    std::lock_guard<std::mutex> lock(m_shared->mutex);
    m_shared->finder = nullptr;
}

void CameraFinder::start(const QString& id, const QString& serialNumber)
{
    m_id = id;
    m_serial = serialNumber;
    if (m_searching)
        return;
    m_searching = true;
    if (!m_running)
        attempt();
}

void CameraFinder::stop()
{
    m_searching = false;
    m_next.stop();
}

bool CameraFinder::isSearching() const
{
    return m_searching;
}

void CameraFinder::setInterval(int milliseconds)
{
    m_next.setInterval(milliseconds);
}

void CameraFinder::attempt()
{
    if (!m_searching || m_running)
        return;
    m_running = true;
    // Opening waits for the link (discovery, control, the description): in
    // the backend's background, which the viewer waits for before it ends.
    // A result that comes after the finder is gone is closed there.
    GenICamCamera::runInBackground(
        [shared = m_shared, id = m_id, serial = m_serial]
        {
            auto camera = std::make_shared<GenICamCamera>();
            QString reason;
            if (camera->open(id) != OrvErrorSuccess)
                reason = camera->errorString();
            else if (!serial.isEmpty() && !camera->serialNumber().isEmpty() && camera->serialNumber() != serial)
                reason = QStringLiteral("another camera answers at %1 (serial number %2, not %3)")
                             .arg(id, camera->serialNumber(), serial);
            if (!reason.isEmpty())
                camera.reset();
            std::lock_guard<std::mutex> lock(shared->mutex);
            if (CameraFinder* finder = shared->finder)
                QMetaObject::invokeMethod(
                    finder, [finder, camera, reason] { finder->arrived(camera, reason); }, Qt::QueuedConnection);
        });
}

void CameraFinder::arrived(const std::shared_ptr<GenICamCamera>& camera, const QString& reason)
{
    m_running = false;
    if (!m_searching)
        return; // stopped meanwhile: what was opened is closed with camera
    if (camera)
    {
        m_searching = false;
        emit found(camera);
        return;
    }
    emit missed(reason);
    m_next.start();
}
