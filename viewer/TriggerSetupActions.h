#ifndef TRIGGERSETUPACTIONS_H
#define TRIGGERSETUPACTIONS_H

#include "FeatureList.h"

#include <QObject>

#include <functional>

class QMenu;
class QWidget;

// "Save trigger setup..." and "Load trigger setup..." in a menu: the current
// camera's setup saved to a file, a file's setup applied to the current camera
// with a report of what was written, refused and skipped.
class TriggerSetupActions : public QObject
{
    Q_OBJECT

public:
    // current gives the features of the camera the actions work on (null or
    // empty when no camera is open); dialogs are parented to window.
    TriggerSetupActions(QMenu* menu, std::function<FeatureList()> current, QWidget* window);

    // Saves the current camera's setup to path; false with a message in error.
    bool save(const QString& path, QString* error) const;
    // Applies the file to the current camera; the report's text, or false
    // with a message (nothing written) in result.
    bool load(const QString& path, QString* result) const;

private slots:
    void onSave();
    void onLoad();

private:
    std::function<FeatureList()> m_current;
    QWidget* m_window;
};

#endif
