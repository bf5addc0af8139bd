#ifndef VIEWERWINDOW_H
#define VIEWERWINDOW_H

#include "FeatureList.h"

#include <QMainWindow>
#include <QStringList>

class CameraStream;
class GenICamCamera;
class PluginHost;
class QLabel;
class QLocale;
class QPushButton;
class QTabWidget;

// The viewer's camera window: a live image with a frame counter and an
// "Acquire" toggle, and the tab pages that the plug-ins give for the camera.
class ViewerWindow : public QMainWindow
{
    Q_OBJECT

public:
    ViewerWindow(GenICamCamera* camera, QWidget* parent = nullptr);
    ~ViewerWindow() override;

    // Installs the viewer's own translation for the locale's language, from
    // the folder given; false when there is none.
    static bool installTranslation(const QLocale& locale, const QString& folder);

    // Asks every plug-in of the folder for its tab; returns how many were added.
    int addTabs(const QString& pluginFolder);
    // Why plug-ins were skipped, one line each.
    QStringList problems() const;

    QTabWidget* tabs() const;
    QPushButton* acquireButton() const;
    int frameCount() const;

public slots:
    // Runs the camera's "TriggerSoftware" command, as the tab's "SW Trigger" does.
    void triggerSoftware();

signals:
    // The host's acquisition state, as the tab plug-ins receive it.
    void acquisitionChanged(bool acquiring);

private slots:
    void onAcquireToggled(bool on);
    void onFrame(const QImage& image, int frameCount);

private:
    void report(const QString& message);

    GenICamCamera* m_camera;
    FeatureList m_features;
    PluginHost* m_host;
    CameraStream* m_stream;
    QTabWidget* m_tabs;
    QLabel* m_image;
    QLabel* m_counter;
    QPushButton* m_acquire;
    QStringList m_problems;
};

#endif
