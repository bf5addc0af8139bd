#ifndef CAMERAFINDER_H
#define CAMERAFINDER_H

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

class GenICamCamera;

// Looks for a lost camera until it answers again, without blocking the GUI:
// every few seconds one attempt opens the camera's id on a thread of its own.
// The camera found is the same one when the id opens and, where both have one,
// its serial number is the one it had (a GigE Vision id is an address, and
// another camera may have taken it).
class CameraFinder : public QObject
{
    Q_OBJECT

public:
    explicit CameraFinder(QObject* parent = nullptr);
    // An attempt still running is abandoned: it closes what it opened itself.
    ~CameraFinder() override;

    // Starts looking (the first attempt at once); a search already running
    // goes on with the new id and serial number.
    void start(const QString& id, const QString& serialNumber);
    void stop();
    bool isSearching() const;
    // Pause between the end of one attempt and the start of the next (ms).
    void setInterval(int milliseconds);

signals:
    // The camera answers again: camera is open, ready to be adopted.
    void found(std::shared_ptr<GenICamCamera> camera);
    // One attempt failed (the camera's own words).
    void missed(const QString& reason);

private:
    void attempt();
    void arrived(const std::shared_ptr<GenICamCamera>& camera, const QString& reason);

    struct Shared;
    std::shared_ptr<Shared> m_shared;
    QTimer m_next;
    QString m_id;
    QString m_serial;
    bool m_searching = false;
    bool m_running = false; // an attempt is under way
};

#endif
