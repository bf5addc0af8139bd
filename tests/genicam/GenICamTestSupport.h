#ifndef GENICAMTESTSUPPORT_H
#define GENICAMTESTSUPPORT_H

#include "GenICamCamera.h"

#include <QElapsedTimer>
#include <QStringList>
#include <QThread>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

inline QString modelPath(const QString& file)
{
    return QStringLiteral(TRIGGERIO_CAMERAS_DIR "/") + file;
}

inline OrvCPP::shared_ptr<OrvCPP::Feature> featureNamed(const FeatureList& list, const std::string& name)
{
    for (const auto& feature : *list)
    {
        std::string n;
        if (feature->GetName(n) == OrvErrorSuccess && n == name)
            return feature;
    }
    return {};
}

inline std::string textOf(const OrvCPP::shared_ptr<OrvCPP::Feature>& feature)
{
    std::string value;
    if (feature)
        feature->GetValue(value);
    return value;
}

// Records every FeatureChanged call: the feature's name, its value read back
// inside the call, and the calling thread. (std::mutex rather than QMutex:
// ThreadSanitizer sees through the standard one.)
class RecordingObserver : public OrvCPP::IFeatureObserver
{
public:
    void FeatureChanged(const OrvCPP::shared_ptr<OrvCPP::Feature>& feature) override
    {
        std::string name;
        std::string value;
        feature->GetName(name);
        feature->GetValue(value); // calling back into the feature must be fine
        std::lock_guard<std::mutex> locker(m_mutex);
        m_names << QString::fromStdString(name);
        m_values << QString::fromStdString(value);
        m_threads << QThread::currentThread();
        m_changed.notify_all();
    }

    // Waits until name has been reported; returns the elapsed milliseconds or -1.
    qint64 waitFor(const QString& name, int timeoutMs)
    {
        QElapsedTimer timer;
        timer.start();
        std::unique_lock<std::mutex> locker(m_mutex);
        const bool seen =
            m_changed.wait_for(locker, std::chrono::milliseconds(timeoutMs), [&] { return m_names.contains(name); });
        return seen ? timer.elapsed() : -1;
    }

    QStringList names() const
    {
        std::lock_guard<std::mutex> locker(m_mutex);
        return m_names;
    }
    QStringList values() const
    {
        std::lock_guard<std::mutex> locker(m_mutex);
        return m_values;
    }
    QList<QThread*> threads() const
    {
        std::lock_guard<std::mutex> locker(m_mutex);
        return m_threads;
    }
    void clear()
    {
        std::lock_guard<std::mutex> locker(m_mutex);
        m_names.clear();
        m_values.clear();
        m_threads.clear();
    }

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    QStringList m_names;
    QStringList m_values;
    QList<QThread*> m_threads;
};

#endif
