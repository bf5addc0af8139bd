#ifndef VIEWERWINDOW_H
#define VIEWERWINDOW_H

#include "FeatureList.h"

#include <QHash>
#include <QMainWindow>
#include <QStringList>
#include <QVariant>

#include <memory>

class CameraChooser;
class CameraFinder;
class CameraStream;
class GenICamCamera;
class PluginHost;
class QLabel;
class QLocale;
class QPushButton;
class QStackedWidget;
class QTabWidget;
class QTimer;
class TabExtensionInterface;

// The viewer's camera window: a live image with a frame counter and an
// "Acquire" toggle, and the tab pages that the plug-ins give for the camera.
// Opened on a camera that is not open, it shows the camera chooser; "Camera >
// Open..." brings the chooser back, and a camera opened there takes the place
// of the one shown (its pages built anew, nothing carried over).
//
// The GUI thread never waits on the camera for the window's own calls:
// acquisition start and stop, the stream and the software trigger run in the
// backend's background (CameraStream), and so does letting go of a camera
// that another one replaces. What the tab pages call is theirs.
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
    // camera is the window's for good (a camera chosen later is adopted into
    // it); one not open yet makes the window open on the chooser.
    ViewerWindow(GenICamCamera* camera, QWidget* parent = nullptr);
    ~ViewerWindow() override;

    // Installs the viewer's own translation for the locale's language, from
    // the folder given; false when there is none.
    static bool installTranslation(const QLocale& locale, const QString& folder);

    // Asks every plug-in of the folder for its tab; returns how many were added.
    int addTabs(const QString& pluginFolder);
    // Why plug-ins were skipped, one line each.
    QStringList problems() const;
    // Whether any tab plug-in was loaded.
    bool hasPlugins() const;

    // The page with this title, in English or in the language shown; -1 when none.
    int pageIndex(const QString& title) const;
    // Makes the page with this title current once a camera chosen is open.
    void showPageWhenOpen(const QString& title);

    QTabWidget* tabs() const;
    QPushButton* acquireButton() const;
    int frameCount() const;
    // Whether frames are being received.
    bool isStreaming() const;
    // Whether the camera is lost (and being looked for).
    bool isCameraLost() const;
    CameraChooser* chooser() const;

public slots:
    // Runs the camera's "TriggerSoftware" command, as the tab's "SW Trigger" does.
    void triggerSoftware();
    // Shows the camera chooser in the window.
    void showChooser();

signals:
    // The host's acquisition state, as the tab plug-ins receive it.
    void acquisitionChanged(bool acquiring);

private slots:
    void onAcquireToggled(bool on);
    void onFrame(const QImage& image, int frameCount);
    void checkCamera();
    // The camera lost answers again.
    void onCameraFound(std::shared_ptr<GenICamCamera> camera);
    // A camera opened in the chooser.
    void onCameraChosen(std::shared_ptr<GenICamCamera> camera);
    // Builds the pages anew on the camera found once no modal dialog or popup is open.
    void rebuildWhenSafe();

private:
    void report(const QString& message);
    // The host's acquisition state for the plug-ins, told only when it changes.
    void announceAcquiring(bool acquiring);
    void showCameraView();
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
    bool m_foundAgain = false;              // m_found is the camera lost, not one chosen
    bool m_announced = false;               // acquiring, as the plug-ins were told
    QString m_firstPage;                    // made current once a camera chosen is open
    QTimer* m_retry;
    CameraChooser* m_chooser;
    QStackedWidget* m_views;
    QWidget* m_cameraView;
    QTabWidget* m_tabs;
    QLabel* m_image;
    QLabel* m_counter;
    QPushButton* m_acquire;
    QStringList m_problems;
};

#endif
