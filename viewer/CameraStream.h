#ifndef CAMERASTREAM_H
#define CAMERASTREAM_H

#include <QImage>
#include <QObject>
#include <QTimer>

class GenICamCamera;
typedef struct _ArvStream ArvStream;

// Runs a camera's acquisition and hands over every complete frame as an image.
// Buffers are collected from the GUI thread by a short timer.
class CameraStream : public QObject
{
    Q_OBJECT

public:
    explicit CameraStream(GenICamCamera* camera, QObject* parent = nullptr);
    ~CameraStream() override;

    // Starts the stream and "AcquisitionStart"; false with a reason on failure.
    bool start(QString* error);
    // "AcquisitionStop" and the stream closed; safe to call when not running.
    // On a lost camera nothing is sent, and the stream is let go of in the
    // backend's background (closing it may wait for the silent link).
    void stop();
    bool isRunning() const;
    int frameCount() const;

signals:
    void frameReceived(const QImage& image, int frameCount);

private slots:
    void collect();

private:
    GenICamCamera* m_camera;
    ArvStream* m_stream = nullptr;
    QTimer m_timer;
    int m_frames = 0;
};

#endif
