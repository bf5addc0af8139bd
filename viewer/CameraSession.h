#ifndef CAMERASESSION_H
#define CAMERASESSION_H

#include "FeatureList.h"

#include <QHash>
#include <QVariant>
#include <QWidget>

#include <memory>

class CameraFinder;
class CameraStream;
class GenICamCamera;
class QLabel;
class QPushButton;
class QTabWidget;
class QTimer;
class TabExtensionInterface;

// One camera open in the viewer: its live image with a frame counter and an
// "Acquire" toggle, the tab pages that the plug-ins give for it, its
// acquisition and its own reconnect. The viewer's window holds one per camera
// open; what one session does never waits on another's camera.
//
// The GUI thread never waits on the camera for the session's own calls:
// acquisition start and stop, the stream and the software trigger run in the
// backend's background (CameraStream), and so does letting go of a camera
// that another one replaces or that is closed. What the tab pages call is theirs.
//
// A camera that stops answering is shown as lost: the status says so, the
// image is gone, the pages are disabled and "Acquire" is off. The session
// then looks for the same camera every few seconds and, once it answers,
// opens it anew and builds the pages afresh from its new features ("back").
// Every change of the camera's status is also written as one line on
// standard error, "triggerio-viewer: " first, for scripts to follow.
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
class CameraSession : public QWidget
{
    Q_OBJECT

public:
    enum Status
    {
        Closed,
        Open,
        Lost,
        Back // found again after a loss, its pages built anew
    };

    // camera is used, not owned: the session opens, adopts and closes what
    // it holds. A session made for a camera chosen later owns its camera.
    explicit CameraSession(GenICamCamera* camera, QWidget* parent = nullptr);
    CameraSession(std::unique_ptr<GenICamCamera> owned, QWidget* parent = nullptr);
    // A camera the session owns is let go of in the background.
    ~CameraSession() override;

    // The plug-ins asked for pages.
    void setPlugins(const QList<TabExtensionInterface*>& plugins);
    // One page per plug-in that serves the camera's features; carried holds,
    // by plug-in, what the pages before offered their successors.
    int buildPages(const QHash<TabExtensionInterface*, QVariant>& carried = {});

    GenICamCamera* camera() const;
    // The open camera's features (null while none is open).
    FeatureList features() const;
    Status status() const;
    // The status as the camera list shows it.
    QString statusText() const;
    // How the camera list names the camera.
    QString name() const;

    // The page with this title, in English or in the language shown; -1 when none.
    int pageIndex(const QString& title) const;
    // Makes the page with this title current once a camera is adopted.
    void showPageWhenOpen(const QString& title);

    QTabWidget* tabs() const;
    QPushButton* acquireButton() const;
    int frameCount() const;
    // Whether frames are being received.
    bool isStreaming() const;
    // Whether the camera is lost (and being looked for).
    bool isCameraLost() const;
    // The acquisition state the session last told of.
    bool isAcquiring() const;

    // Stops the acquisition, releases the pages and lets go of the camera in
    // the background; nothing else is touched.
    void closeCamera();
    // Tells that the camera the session was made with is open.
    void reportOpen();

public slots:
    // Runs the camera's "TriggerSoftware" command, as the tab's "SW Trigger" does.
    void triggerSoftware();
    // The camera lost answers again.
    void onCameraFound(std::shared_ptr<GenICamCamera> camera);
    // A camera opened in the chooser, to take the place of this one.
    void onCameraChosen(std::shared_ptr<GenICamCamera> camera);

signals:
    // The camera's acquisition state, as the tab plug-ins receive it.
    void acquisitionChanged(bool acquiring);
    // A line for the status bar; status is true for a change of the camera's status.
    void message(const QString& text, bool status);
    void statusChanged();
    // Why a plug-in offers no page for this camera.
    void problem(const QString& text);
    // A camera chosen that no plug-in serves: it is closed again.
    void noTab(const QString& id);

private slots:
    void onAcquireToggled(bool on);
    void onFrame(const QImage& image, int frameCount);
    void checkCamera();
    // Builds the pages anew on the camera found once no modal dialog or popup is open.
    void rebuildWhenSafe();

private:
    void report(const QString& text);
    void announceAcquiring(bool acquiring);
    void setStatus(Status status, const QString& text);
    void releasePages();

    std::unique_ptr<GenICamCamera> m_owned;
    GenICamCamera* m_camera;
    FeatureList m_features;
    QList<TabExtensionInterface*> m_plugins;
    QHash<QWidget*, TabExtensionInterface*> m_pagePlugins; // which plug-in built each page
    CameraStream* m_stream;
    CameraFinder* m_finder;
    Status m_status;
    std::shared_ptr<GenICamCamera> m_found; // open, waiting until the pages can be rebuilt
    bool m_foundAgain = false;              // m_found is the camera lost, not one chosen
    bool m_announced = false;               // acquiring, as told
    QString m_firstPage;                    // made current once a camera is adopted
    QTimer* m_retry;
    QTabWidget* m_tabs;
    QLabel* m_image;
    QLabel* m_counter;
    QPushButton* m_acquire;
};

#endif
