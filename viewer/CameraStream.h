#ifndef CAMERASTREAM_H
#define CAMERASTREAM_H

#include "OrvCPP/OrvCPP.h"

#include <QImage>
#include <QObject>
#include <QTimer>

#include <memory>

class GenICamCamera;
// Runs a camera's acquisition and hands over every complete frame as an image.
//
// The GUI thread never waits on the camera: starting (the stream set up,
// "AcquisitionStart") and stopping ("AcquisitionStop", the stream closed) run
// in the backend's background, one after the other in the order asked for,
// and their results come back by queued calls. Aravis's stream thread fills
// the buffers, which the GUI thread collects by a short timer without waiting.
class CameraStream : public QObject
{
    Q_OBJECT

public:
    explicit CameraStream(GenICamCamera* camera, QObject* parent = nullptr);
    // A running acquisition is stopped in the background.
    ~CameraStream() override;

    // Asks for the acquisition on the camera open now: started() or
    // failed() follows. Nothing happens when it runs or is asked for already.
    void start();
    // Asks for the acquisition to stop; safe to call when not running. On a
    // lost camera nothing is sent and the stream is only let go of.
    void stop();
    // Whether frames are being received (started, and no stop asked for since).
    bool isRunning() const;
    // Whether a start or stop is still under way.
    bool isBusy() const;
    int frameCount() const;
    // Runs a command of the camera (its software trigger) in the background;
    // commandRun() follows with the camera's answer.
    void runCommand(const OrvCPP::shared_ptr<OrvCPP::Feature>& command);

signals:
    void frameReceived(const QImage& image, int frameCount);
    void started();
    void failed(const QString& reason);
    // The acquisition asked to stop has stopped (or was never started).
    void stopped();
    void commandRun(int result);

private slots:
    void collect();

private:
    struct Shared;
    struct Acquisition;
    // The next step toward what was asked for last, unless one runs.
    void next();
    void onStarted(const std::shared_ptr<Acquisition>& acquisition, const QString& reason);
    void onStopped();

    GenICamCamera* m_camera;
    std::shared_ptr<Shared> m_shared;
    std::shared_ptr<Acquisition> m_running;
    bool m_wanted = false; // what was asked for last
    bool m_busy = false;   // a start or stop runs in the background
    QTimer m_timer;
    int m_frames = 0;
};

#endif
