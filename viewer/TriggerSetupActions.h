#ifndef TRIGGERSETUPACTIONS_H
#define TRIGGERSETUPACTIONS_H

#include "FeatureList.h"

#include <QObject>
#include <QPair>
#include <QVector>

#include <functional>

class QAction;
class QMenu;
class QWidget;

// "Save trigger setup..." and "Load trigger setup..." in a menu: the current
// camera's setup saved to a file, a file's setup applied to the current camera
// with a report of what was written, refused and skipped. The camera's calls
// run in the backend's background; the window does not wait for them.
class TriggerSetupActions : public QObject
{
    Q_OBJECT

public:
    // current gives the features of the camera the actions work on (null or
    // empty when no camera is open); dialogs are parented to window.
    // every, when given, names every open camera with its features: "Load
    // trigger setup onto every camera..." applies a file to each of them.
    using Cameras = QVector<QPair<QString, FeatureList>>;
    TriggerSetupActions(QMenu* menu, std::function<FeatureList()> current, QWidget* window,
                        std::function<Cameras()> every = nullptr);

    // Saves a camera's setup to path; false with a message in error.
    static bool save(const FeatureList& features, const QString& path, QString* error);
    // Applies the file to a camera; the report's text, or false with a
    // message (nothing written) in result.
    static bool load(const FeatureList& features, const QString& path, QString* result);

private slots:
    void onSave();
    void onLoad();
    void onLoadEvery();

private:
    // The file a load reads, asked of the user; empty when cancelled.
    QString askLoadPath();
    // Runs job in the background with both actions disabled; shows its message.
    void run(const QString& title, const std::function<bool(QString*)>& job);

    QList<QAction*> m_actions;
    std::function<FeatureList()> m_current;
    std::function<Cameras()> m_every;
    QWidget* m_window;
};

#endif
