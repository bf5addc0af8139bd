// Aravis (through GLib) uses the words Qt defines as keywords: include it first.
#include <arv.h>

#include "CameraStream.h"

#include "GenICamCamera.h"

#include <functional>
#include <mutex>

namespace
{

const int BufferCount = 8;

QString takeMessage(GError* error)
{
    const QString message = error ? QString::fromUtf8(error->message) : QString();
    if (error)
        g_error_free(error);
    return message;
}

} // namespace

// What the background steps and the stream share: the stream, as long as it lives.
struct CameraStream::Shared
{
    std::mutex mutex;
    CameraStream* owner = nullptr;

    // Hands call to the stream's thread, unless the stream is gone.
    void post(const std::function<void(CameraStream*)>& call)
    {
        std::lock_guard<std::mutex> lock(mutex);
        if (CameraStream* stream = owner)
            QMetaObject::invokeMethod(stream, [stream, call] { call(stream); }, Qt::QueuedConnection);
    }
};

// An acquisition on one device. Whoever lets go of it last, the stream or a
// queued call that never ran, leaves it running no longer: it is stopped in
// the background.
struct CameraStream::Acquisition
{
    std::shared_ptr<const GenICamCamera> device;
    ArvStream* stream = nullptr;

    ~Acquisition()
    {
        if (stream)
            GenICamCamera::runInBackground([device = device, stream = stream] { Acquisition{device, stream}.stop(); });
    }

    // The stream and "AcquisitionStart"; the reason when that fails.
    QString start()
    {
        QString reason = QStringLiteral("no camera open");
        if (!device)
            return reason;
        device->withAravisDevice(
            [&](ArvDevice* arv)
            {
                GError* gerror = nullptr;
                // Over loopback the packet socket sees nothing; small frames avoid packet loss.
                if (ARV_IS_GV_DEVICE(arv))
                    arv_gv_device_set_stream_options(ARV_GV_DEVICE(arv), ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
                const gint64 payload = arv_device_get_integer_feature_value(arv, "PayloadSize", &gerror);
                if (gerror || payload <= 0)
                {
                    reason = QStringLiteral("no payload size: ") + takeMessage(gerror);
                    return;
                }
                stream = arv_device_create_stream(arv, nullptr, nullptr, &gerror);
                if (!stream)
                {
                    reason = QStringLiteral("no stream: ") + takeMessage(gerror);
                    return;
                }
                for (int i = 0; i < BufferCount; ++i)
                    arv_stream_push_buffer(stream, arv_buffer_new(static_cast<size_t>(payload), nullptr));
                arv_device_execute_command(arv, "AcquisitionStart", &gerror);
                if (gerror)
                {
                    reason = QStringLiteral("AcquisitionStart failed: ") + takeMessage(gerror);
                    g_clear_object(&stream);
                }
            });
        return stream ? QString() : reason;
    }

    // "AcquisitionStop" (nothing is sent to a lost camera) and the stream closed.
    void stop()
    {
        if (!stream)
            return;
        device->withAravisDevice(
            [](ArvDevice* arv)
            {
                GError* error = nullptr;
                arv_device_execute_command(arv, "AcquisitionStop", &error);
                g_clear_error(&error);
            });
        g_clear_object(&stream);
    }
};

CameraStream::CameraStream(GenICamCamera* camera, QObject* parent)
    : QObject(parent)
    , m_camera(camera)
    , m_shared(std::make_shared<Shared>())
{
    m_shared->owner = this;
    m_timer.setInterval(20);
    connect(&m_timer, &QTimer::timeout, this, &CameraStream::collect);
}

CameraStream::~CameraStream()
{
    std::lock_guard<std::mutex> lock(m_shared->mutex);
    m_shared->owner = nullptr;
}

void CameraStream::start()
{
    if (!m_wanted)
        m_frames = 0; // frames of the acquisition asked for
    m_wanted = true;
    next();
}

void CameraStream::stop()
{
    m_wanted = false;
    m_timer.stop();
    next();
}

void CameraStream::next()
{
    if (m_busy || m_wanted == bool(m_running))
        return;
    m_busy = true;
    if (m_wanted)
    {
        GenICamCamera::runInBackground(
            [shared = m_shared, device = m_camera->handle()]
            {
                auto acquisition = std::make_shared<Acquisition>();
                acquisition->device = device;
                const QString reason = acquisition->start();
                shared->post([acquisition, reason](CameraStream* stream) { stream->onStarted(acquisition, reason); });
            });
    }
    else
    {
        GenICamCamera::runInBackground(
            [shared = m_shared, acquisition = std::move(m_running)]
            {
                acquisition->stop();
                shared->post([](CameraStream* stream) { stream->onStopped(); });
            });
        m_running.reset();
    }
}

void CameraStream::onStarted(const std::shared_ptr<Acquisition>& acquisition, const QString& reason)
{
    m_busy = false;
    if (!reason.isEmpty())
    {
        m_wanted = false;
        emit failed(reason);
        return;
    }
    m_running = acquisition;
    if (m_wanted)
    {
        m_timer.start();
        emit started();
    }
    next(); // stopped again when a stop was asked for meanwhile
}

void CameraStream::onStopped()
{
    m_busy = false;
    if (!m_wanted)
        emit stopped();
    next();
}

bool CameraStream::isRunning() const
{
    return m_running != nullptr;
}

bool CameraStream::isBusy() const
{
    return m_busy;
}

int CameraStream::frameCount() const
{
    return m_frames;
}

void CameraStream::runCommand(const OrvCPP::shared_ptr<OrvCPP::Feature>& command)
{
    GenICamCamera::runInBackground(
        [shared = m_shared, command]
        {
            const OrvErrorType result = command->RunCommand();
            shared->post([result](CameraStream* stream) { emit stream->commandRun(int(result)); });
        });
}

void CameraStream::collect()
{
    ArvStream* stream = m_running ? m_running->stream : nullptr;
    while (ArvBuffer* buffer = stream ? arv_stream_try_pop_buffer(stream) : nullptr)
    {
        if (arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SUCCESS)
        {
            ++m_frames;
            size_t size = 0;
            const void* data = arv_buffer_get_image_data(buffer, &size);
            const int width = arv_buffer_get_image_width(buffer);
            const int height = arv_buffer_get_image_height(buffer);
            QImage image;
            // Shown as 8-bit grey; other formats still count as frames.
            if (data && width > 0 && height > 0 && size >= static_cast<size_t>(width) * height)
                image = QImage(static_cast<const uchar*>(data), width, height, width, QImage::Format_Grayscale8).copy();
            emit frameReceived(image, m_frames);
        }
        arv_stream_push_buffer(stream, buffer);
    }
}
