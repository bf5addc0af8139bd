#ifndef FAKEGIGESERVER_H
#define FAKEGIGESERVER_H

#include "GenICamCamera.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

// A GenICam model served by Aravis's fake GigE Vision camera on 127.0.0.1.
// The server is stopped when this object goes, whatever the test did.
class FakeGigEServer
{
public:
    static QString program()
    {
        return QStandardPaths::findExecutable("arv-fake-gv-camera-0.8");
    }

    ~FakeGigEServer()
    {
        stop();
    }

    // Starts the server and opens the camera over GigE Vision; false (and the
    // camera's reason in error) when either fails within a few seconds.
    bool startAndOpen(const QString& model, GenICamCamera& camera, QString* error = nullptr)
    {
        m_process.setProgram(program());
        m_process.setArguments({"-i", "127.0.0.1", "-g", model});
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start();
        if (!m_process.waitForStarted(3000))
        {
            if (error)
                *error = m_process.errorString();
            return false;
        }
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 5000)
        {
            // A server that cannot bind the port (another one is running) ends at once.
            if (m_process.state() == QProcess::NotRunning)
            {
                if (error)
                    *error = "arv-fake-gv-camera-0.8 ended: is another one running on 127.0.0.1?";
                return false;
            }
            if (camera.open("127.0.0.1") == OrvErrorSuccess)
                return true;
            QThread::msleep(100);
        }
        if (error)
            *error = camera.errorString();
        return false;
    }

    void stop()
    {
        if (m_process.state() != QProcess::NotRunning)
        {
            m_process.kill();
            m_process.waitForFinished(3000);
        }
    }

private:
    QProcess m_process;
};

#endif
