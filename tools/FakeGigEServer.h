#ifndef FAKEGIGESERVER_H
#define FAKEGIGESERVER_H

// Aravis (through GLib) uses words that Qt defines as keywords: include this
// header before any Qt header.
#include <arv.h>

#include "GenICamCamera.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include <signal.h>
#include <sys/prctl.h>

// A GenICam model served by Aravis's fake GigE Vision camera on a loopback
// address (127.0.0.1 unless given; others need a network namespace in which
// the interface has them, see tests/viewer/in-own-network.sh).
// The server is stopped when this object goes, whatever the test did, and
// with the process that started it, should that one end without cleaning up
// (a test that aborts would otherwise leave the port taken).
class FakeGigEServer
{
public:
    static QString program()
    {
        return QStandardPaths::findExecutable("arv-fake-gv-camera-0.8");
    }

    explicit FakeGigEServer(const QString& address = QStringLiteral("127.0.0.1"))
        : m_address(address)
    {
    }

    ~FakeGigEServer()
    {
        stop();
    }

    // Starts the server and opens the camera over GigE Vision; false (and the
    // reason in error) when that fails within 20 s. Another fake camera may
    // share the port for a while (it binds with address reuse): the serial
    // number tells whether ours answered.
    bool startAndOpen(const QString& model, GenICamCamera& camera, QString* error = nullptr)
    {
        static int run = 0;
        m_serial =
            "TIO" + QByteArray::number(QCoreApplication::applicationPid() % 100000) + "-" + QByteArray::number(++run);
        m_process.setProgram(program());
        m_process.setArguments({"-i", m_address, "-s", QString::fromLatin1(m_serial), "-g", model});
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setStandardErrorFile(QProcess::nullDevice());
        if (!startAgain())
        {
            if (error)
                *error = m_process.errorString();
            return false;
        }
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 20000 && m_process.state() == QProcess::Running)
        {
            if (camera.open(m_address) == OrvErrorSuccess)
            {
                if (camera.serialNumber() == QString::fromLatin1(m_serial))
                    return true;
                camera.close();
            }
            QThread::msleep(200);
        }
        if (error)
            *error = "fake camera " + QString::fromLatin1(m_serial) + " not reached: " + camera.errorString();
        return false;
    }

    QByteArray serial() const
    {
        return m_serial;
    }

    // The camera unplugged and plugged in again: the server stopped and continued.
    void pause()
    {
        ::kill(pid_t(m_process.processId()), SIGSTOP);
    }
    void resume()
    {
        ::kill(pid_t(m_process.processId()), SIGCONT);
    }
    // Power-cycled: the server killed (stop) and started again with the same
    // model and serial number, in its power-up state.
    bool startAgain()
    {
        m_process.start();
        return m_process.waitForStarted(3000);
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
    class ServerProcess : public QProcess
    {
    protected:
        void setupChildProcess() override
        {
            ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        }
    };

    QString m_address;
    ServerProcess m_process;
    QByteArray m_serial;
};

#endif
