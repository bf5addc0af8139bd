#ifndef VIEWERWINDOW_H
#define VIEWERWINDOW_H

#include <QMainWindow>
#include <QStringList>

#include <memory>

class CameraChooser;
class CameraSession;
class GenICamCamera;
class PluginHost;
class QLocale;
class QPushButton;
class QStackedWidget;
class QTabWidget;
class QTreeWidget;
class TabExtensionInterface;

// The viewer's window: one or several cameras, each a CameraSession (its live
// image, its tab pages, its status and its reconnect), and beside them the
// camera list (name, serial number, status) that switches between them, shown
// while more than one camera is open.
// Opened on a camera that is not open, it shows the camera chooser. "Camera >
// Open..." brings the chooser back, and the first camera opened there takes
// the place of the one shown (its pages built anew, nothing carried over);
// "Camera > Add..." opens the cameras chosen beside those open, and so does a
// chooser in which several cameras are opened at once. "Camera > Close"
// releases the camera shown and nothing else.
//
// The plug-ins hear one acquisition state (the interface has one signal per
// plug-in, not one per page): that of the camera shown, told again whenever
// another one is shown.
class ViewerWindow : public QMainWindow
{
    Q_OBJECT

public:
    // camera is the window's for good (a camera chosen to replace the first
    // one is adopted into it); one not open yet makes the window open on the chooser.
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

    // Opens a camera opened elsewhere beside those open, with its own pages
    // (once the plug-ins are loaded), and shows it.
    CameraSession* addCamera(const std::shared_ptr<GenICamCamera>& camera);
    // Releases one camera and its pages, nothing else; the last one closed
    // leaves the chooser shown.
    void closeCamera(CameraSession* session);
    QList<CameraSession*> sessions() const;
    // The camera shown.
    CameraSession* currentSession() const;
    void showSession(CameraSession* session);
    QTreeWidget* cameraList() const;

    // The page with this title on the camera shown, in English or in the language shown; -1 when none.
    int pageIndex(const QString& title) const;
    // Makes the page with this title current once a camera chosen is open.
    void showPageWhenOpen(const QString& title);

    // The camera shown's pages, button and state.
    QTabWidget* tabs() const;
    QPushButton* acquireButton() const;
    int frameCount() const;
    bool isStreaming() const;
    bool isCameraLost() const;
    CameraChooser* chooser() const;

public slots:
    // Runs the software trigger of the camera shown.
    void triggerSoftware();
    // Shows the camera chooser: a camera opened there replaces the one shown.
    void showChooser();
    // Shows the camera chooser: the cameras opened there come beside those open.
    void showChooserToAdd();
    void closeCurrentCamera();

signals:
    // The acquisition state of the camera shown, as the tab plug-ins receive it.
    void acquisitionChanged(bool acquiring);

private slots:
    // The camera shown, lost, answers again.
    void onCameraFound(std::shared_ptr<GenICamCamera> camera);
    // A camera opened in the chooser.
    void onCameraChosen(std::shared_ptr<GenICamCamera> camera);

private:
    void report(const QString& message);
    void announceAcquiring(bool acquiring);
    void showCameraView();
    CameraSession* makeSession(CameraSession* session);
    void onNoTab(CameraSession* session, const QString& id);
    // The camera list's rows anew, the camera shown selected; the title too.
    void refreshList();
    QList<CameraSession*> openSessions() const;

    PluginHost* m_host;
    QList<TabExtensionInterface*> m_plugins;
    QList<CameraSession*> m_sessions; // never empty; only a sole one may have no camera
    bool m_replace = false;           // the next camera chosen replaces the one shown
    bool m_announced = false;         // acquiring, as the plug-ins were told
    CameraChooser* m_chooser;
    QStackedWidget* m_views;
    QWidget* m_cameraView;
    QTreeWidget* m_list;
    QWidget* m_side; // the list and its buttons
    QStackedWidget* m_pages; // one session each
    QStringList m_problems;
};

#endif
