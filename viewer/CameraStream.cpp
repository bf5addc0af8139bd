// Aravis (through GLib) uses the words Qt defines as keywords: include it first.
#include <arv.h>

#include "CameraStream.h"

#include "GenICamCamera.h"

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

CameraStream::CameraStream(GenICamCamera* camera, QObject* parent)
    : QObject(parent)
    , m_camera(camera)
{
    m_timer.setInterval(20);
    connect(&m_timer, &QTimer::timeout, this, &CameraStream::collect);
}

CameraStream::~CameraStream()
{
    stop();
}

bool CameraStream::start(QString* error)
{
    if (m_stream)
        return true;
    QString reason;
    const bool open = m_camera->withAravisDevice(
        [&](ArvDevice* device)
        {
            GError* gerror = nullptr;
            // Over loopback the packet socket sees nothing; small frames avoid packet loss.
            if (ARV_IS_GV_DEVICE(device))
                arv_gv_device_set_stream_options(ARV_GV_DEVICE(device), ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
            const gint64 payload = arv_device_get_integer_feature_value(device, "PayloadSize", &gerror);
            if (gerror || payload <= 0)
            {
                reason = QStringLiteral("no payload size: ") + takeMessage(gerror);
                return;
            }
            m_stream = arv_device_create_stream(device, nullptr, nullptr, &gerror);
            if (!m_stream)
            {
                reason = QStringLiteral("no stream: ") + takeMessage(gerror);
                return;
            }
            for (int i = 0; i < BufferCount; ++i)
                arv_stream_push_buffer(m_stream, arv_buffer_new(static_cast<size_t>(payload), nullptr));
            arv_device_execute_command(device, "AcquisitionStart", &gerror);
            if (gerror)
            {
                reason = QStringLiteral("AcquisitionStart failed: ") + takeMessage(gerror);
                g_clear_object(&m_stream);
            }
        });
    if (!open)
        reason = QStringLiteral("no camera open");
    if (!m_stream)
    {
        if (error)
            *error = reason;
        return false;
    }
    m_frames = 0;
    m_timer.start();
    return true;
}

void CameraStream::stop()
{
    m_timer.stop();
    if (!m_stream)
        return;
    const bool sent = m_camera->withAravisDevice(
        [](ArvDevice* device)
        {
            GError* error = nullptr;
            arv_device_execute_command(device, "AcquisitionStop", &error);
            g_clear_error(&error);
        });
    if (sent)
        g_clear_object(&m_stream);
    else
        GenICamCamera::runInBackground([stream = m_stream] { g_object_unref(stream); });
    m_stream = nullptr;
}

bool CameraStream::isRunning() const
{
    return m_stream != nullptr;
}

int CameraStream::frameCount() const
{
    return m_frames;
}

void CameraStream::collect()
{
    while (ArvBuffer* buffer = m_stream ? arv_stream_try_pop_buffer(m_stream) : nullptr)
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
        arv_stream_push_buffer(m_stream, buffer);
    }
}
