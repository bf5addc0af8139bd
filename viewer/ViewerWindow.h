#ifndef VIEWERWINDOW_H
#define VIEWERWINDOW_H

#include "FeatureList.h"

#include <QHash>
#include <QMainWindow>
#include <QStringList>
#include <QVariant>

#include <memory>

class CameraFinder;
class CameraStream;
class GenICamCamera;
class PluginHost;
class QLabel;
class QLocale;
class QPushButton;
class QTabWidget;
class QTimer;
class TabExtensionInterface;

// The viewer's camera window: a live image with a frame counter and an
// "Acquire" toggle, and the tab pages that the plug-ins give for the camera.
//
// A camera that stops answering is shown as lost: the status line says so,
// the image is gone, the pages are disabled and "Acquire" is off. The window
// then looks for the same camera every few seconds and, once it answers,
// opens it anew and builds the pages afresh from its new features. Every
// change of the camera's status is also written as one line on standard
// error, "triggerio-viewer: " first, for scripts to follow.
//
// The pages are never deleted under code of theirs that is still running: a
// camera found while a modal dialog or a popup menu is open (their event
// loops run inside a page's slot, as the I/O Monitor's save dialog does)
// stays open and waits, and the pages are built anew once those are closed.
// (A slot that waits in an event loop of its own without either, or calls
// processEvents(), cannot be seen from outside: such a page has to guard
// itself against being deleted, as the Trigger IO tab's presets do.)
// The page the user was on stays current, found again by its title. Before
// the old pages go, each one's dynamic property "triggerioCarryOver" is
// copied onto the page that the same plug-in builds next, before its get()
// runs: a page hands its history on there (the I/O Monitor its traces, edge
// counts and settings) and takes over its predecessor's.
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
    // Whether the camera is lost (and being looked for).
    bool isCameraLost() const;

public slots:
    // Runs the camera's "TriggerSoftware" command, as the tab's "SW Trigger" does.
    void triggerSoftware();

signals:
    // The host's acquisition state, as the tab plug-ins receive it.
    void acquisitionChanged(bool acquiring);

private slots:
    void onAcquireToggled(bool on);
    void onFrame(const QImage& image, int frameCount);
    void checkCamera();
    void onCameraFound(std::shared_ptr<GenICamCamera> camera);
    // Builds the pages anew on the camera found once no modal dialog or popup is open.
    void rebuildWhenSafe();

private:
    void report(const QString& message);
    // The status line, and the same line on standard error.
    void setCameraStatus(const QString& message);
    // One page per plug-in that serves the camera's features; carried holds,
    // by plug-in, what the pages before offered their successors.
    int buildPages(const QHash<TabExtensionInterface*, QVariant>& carried = {});
    void releasePages();

    GenICamCamera* m_camera;
    FeatureList m_features;
    PluginHost* m_host;
    QList<TabExtensionInterface*> m_plugins;
    QHash<QWidget*, TabExtensionInterface*> m_pagePlugins; // which plug-in built each page
    CameraStream* m_stream;
    CameraFinder* m_finder;
    bool m_lost = false;
    std::shared_ptr<GenICamCamera> m_found; // open, waiting until the pages can be rebuilt
    QTimer* m_retry;
    QTabWidget* m_tabs;
    QLabel* m_image;
    QLabel* m_counter;
    QPushButton* m_acquire;
    QStringList m_problems;
};

#endif
