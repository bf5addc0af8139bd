#ifndef GENICAMTESTSUPPORT_H
#define GENICAMTESTSUPPORT_H

#include "GenICamCamera.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QStringList>
#include <QThread>
#include <QWaitCondition>

#include <string>

inline QString modelPath(const QString& file)
{
    return QStringLiteral(TRIGGERIO_CAMERAS_DIR "/") + file;
}

inline OrvCPP::shared_ptr<OrvCPP::Feature> featureNamed(const FeatureList& list, const std::string& name)
{
    for (const auto& feature : *list) {
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
// inside the call, and the calling thread.
class RecordingObserver : public OrvCPP::IFeatureObserver
{
public:
    void FeatureChanged(const OrvCPP::shared_ptr<OrvCPP::Feature>& feature) override
    {
        std::string name;
        std::string value;
        feature->GetName(name);
        feature->GetValue(value); // calling back into the feature must be fine
        QMutexLocker locker(&m_mutex);
        m_names << QString::fromStdString(name);
        m_values << QString::fromStdString(value);
        m_threads << QThread::currentThread();
        m_changed.wakeAll();
    }

    // Waits until name has been reported; returns the elapsed milliseconds or -1.
    qint64 waitFor(const QString& name, int timeoutMs)
    {
        QElapsedTimer timer;
        timer.start();
        QMutexLocker locker(&m_mutex);
        while (!m_names.contains(name)) {
            const qint64 left = timeoutMs - timer.elapsed();
            if (left <= 0)
                return -1;
            m_changed.wait(&m_mutex, static_cast<unsigned long>(left));
        }
        return timer.elapsed();
    }

    QStringList names() const
    {
        QMutexLocker locker(&m_mutex);
        return m_names;
    }
    QStringList values() const
    {
        QMutexLocker locker(&m_mutex);
        return m_values;
    }
    QList<QThread*> threads() const
    {
        QMutexLocker locker(&m_mutex);
        return m_threads;
    }
    void clear()
    {
        QMutexLocker locker(&m_mutex);
        m_names.clear();
        m_values.clear();
        m_threads.clear();
    }

private:
    mutable QMutex m_mutex;
    QWaitCondition m_changed;
    QStringList m_names;
    QStringList m_values;
    QList<QThread*> m_threads;
};

#endif
