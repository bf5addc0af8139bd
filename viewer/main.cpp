// triggerio-viewer: hosts the tab plug-ins for one camera or several.
//
//   triggerio-viewer [--camera ID]... [--list] [--acquire | --acquire-after MS] [--trigger-software]
//                    [--page TITLE] [--screenshot FILE [--after MS]]
//
// ID is an Aravis device id or "fake:FILE.xml" (a GenICam model on the
// in-process fake device); without one the window opens on the camera chooser.
// --camera given several times opens every camera, each with its own pages;
// --acquire and --trigger-software then apply to each of them.

#include "CameraChooser.h"
#include "CameraSession.h"
#include "GenICamCamera.h"
#include "ViewerFolders.h"
#include "ViewerWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace
{

// The plug-ins install a message handler that swallows Qt's messages, so the
// viewer writes its own messages straight to the terminal.
void say(FILE* stream, const QString& text)
{
    std::fprintf(stream, "%s\n", qPrintable(text));
    std::fflush(stream);
}

// Options that only print text need no display, so no GUI application.
bool printsOnly(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
    {
        for (const char* option : {"-h", "-?", "--help", "--help-all", "-v", "--version", "--list"})
        {
            if (std::strcmp(argv[i], option) == 0)
                return true;
        }
    }
    return false;
}

// A numeric option's value, or the option's default; false when it is no
// number of milliseconds (what the user gave is said on standard error).
bool milliseconds(const QCommandLineParser& parser, const QCommandLineOption& option, int* value)
{
    if (!parser.isSet(option) && option.defaultValues().isEmpty())
        return true;
    bool ok = false;
    *value = parser.value(option).toInt(&ok);
    if (ok && *value >= 0)
        return true;
    say(stderr, "triggerio-viewer: " + QCoreApplication::translate("main", "--%1 takes a number of milliseconds, not \"%2\"")
                                          .arg(option.names().first(), parser.value(option)));
    return false;
}

// How long a screenshot waits, past --after, for the first frame of a running acquisition.
const int FrameWaitMs = 10000;
// The software trigger follows the start of the acquisition after this pause.
const int TriggerDelayMs = 500;
// How long the viewer waits at exit for the backend's background threads.
const int BackgroundWaitMs = 800;

} // namespace

int main(int argc, char** argv)
{
    std::unique_ptr<QCoreApplication> app(printsOnly(argc, argv) ? new QCoreApplication(argc, argv)
                                                                 : new QApplication(argc, argv));
    QCoreApplication::setOrganizationName("triggerio"); // the user's settings: the last camera opened
    QCoreApplication::setApplicationName("triggerio-viewer");
    QCoreApplication::setApplicationVersion(TRIGGERIO_VERSION);
    const ViewerFolders folders = ViewerFolders::find(QCoreApplication::applicationDirPath());

    // The viewer's own texts, in the language of the user's locale.
    ViewerWindow::installTranslation(QLocale::system(), folders.translations);

    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate("main", "Hosts the Trigger IO tab for a camera."));
    parser.addHelpOption();
    parser.addVersionOption();
    QCommandLineOption cameraOption(
        "camera",
        QCoreApplication::translate("main", "Aravis device id, or fake:FILE.xml for a GenICam model (may be repeated)."),
        "ID");
    QCommandLineOption listOption("list", QCoreApplication::translate("main", "List the cameras that can be opened."));
    QCommandLineOption acquireOption(
        "acquire", QCoreApplication::translate("main", "Start the acquisition when the window opens."));
    QCommandLineOption acquireAfterOption(
        "acquire-after", QCoreApplication::translate("main", "Start the acquisition MS milliseconds after the window opens."),
        "MS");
    QCommandLineOption triggerOption(
        "trigger-software",
        QCoreApplication::translate("main", "Run the camera's software trigger once the acquisition has started."));
    QCommandLineOption screenshotOption(
        "screenshot",
        QCoreApplication::translate(
            "main", "Render the window to a PNG file and exit (while acquiring: once a frame is shown)."),
        "FILE");
    QCommandLineOption afterOption(
        "after", QCoreApplication::translate("main", "Milliseconds before the screenshot (default 1500)."), "MS",
        "1500");
    QCommandLineOption pageOption(
        "page", QCoreApplication::translate("main", "Show the page with this title first (\"I/O Monitor\")."), "TITLE");
    parser.addOptions(
        {cameraOption, listOption, acquireOption, acquireAfterOption, triggerOption, screenshotOption, afterOption,
         pageOption});
    parser.process(*app);

    const QString cameras = folders.cameras;

    if (parser.isSet(listOption))
    {
        for (const QString& id : GenICamCamera::deviceIds())
            say(stdout, id);
        for (const QString& model : QDir(cameras).entryList({"*.xml"}, QDir::Files, QDir::Name))
            say(stdout, "fake:" + QDir(cameras).absoluteFilePath(model));
        return 0;
    }
    if (!qobject_cast<QApplication*>(app.get()))
    {
        say(stderr, "triggerio-viewer: " +
                        QCoreApplication::translate("main", "--help, --version and --list take no other options"));
        return 2;
    }

    // Relative paths are the user's; resolve them before moving to the binary's folder.
    QStringList ids = parser.values(cameraOption);
    for (QString& given : ids)
    {
        if (given.startsWith(GenICamCamera::FakePrefix))
            given = GenICamCamera::FakePrefix +
                    QFileInfo(given.mid(int(qstrlen(GenICamCamera::FakePrefix)))).absoluteFilePath();
    }
    const QString id = ids.value(0);
    const QString screenshot =
        parser.isSet(screenshotOption) ? QFileInfo(parser.value(screenshotOption)).absoluteFilePath() : QString();
    int after = 0;
    int acquireAt = 0;
    if (!milliseconds(parser, afterOption, &after) || !milliseconds(parser, acquireAfterOption, &acquireAt))
        return 2;

    // The camera and the window end before main() does, and so does every
    // thread the backend started for them.
    const int code = [&]() -> int
    {
        GenICamCamera camera;
        if (!id.isEmpty() && camera.open(id) != OrvErrorSuccess)
        {
            say(stderr, "triggerio-viewer: " +
                            QCoreApplication::translate("main", "cannot open camera %1: %2").arg(id, camera.errorString()));
            return 2;
        }
        // The other cameras, each opened before the window shows any.
        QList<std::shared_ptr<GenICamCamera>> others;
        for (const QString& other : ids.mid(1))
        {
            others << std::make_shared<GenICamCamera>();
            if (others.last()->open(other) != OrvErrorSuccess)
            {
                say(stderr, "triggerio-viewer: " + QCoreApplication::translate("main", "cannot open camera %1: %2")
                                                       .arg(other, others.last()->errorString()));
                return 2;
            }
        }

        // The tab finds its translations under "plugins/", relative to the working folder.
        QDir::setCurrent(folders.working);

        if (!id.isEmpty())
            CameraChooser::rememberOpened(id);
        ViewerWindow window(&camera);
        window.chooser()->setDemoFolder(cameras);
        if (camera.isOpen() ? window.addTabs(folders.plugins) == 0
                            : (window.addTabs(folders.plugins), !window.hasPlugins()))
        {
            say(stderr, "triggerio-viewer: " +
                            (window.problems().isEmpty()
                                 ? QCoreApplication::translate("main", "no tab for this camera")
                                 : QCoreApplication::translate("main", "no tab for this camera: %1")
                                       .arg(window.problems().join("; "))));
            return 3;
        }
        for (const QString& problem : window.problems())
            say(stderr, "triggerio-viewer: " + problem);
        if (parser.isSet(pageOption) && !camera.isOpen())
            window.showPageWhenOpen(parser.value(pageOption));
        else if (parser.isSet(pageOption))
        {
            const int page = window.pageIndex(parser.value(pageOption));
            if (page < 0)
            {
                say(stderr, "triggerio-viewer: " +
                                QCoreApplication::translate("main", "no page %1").arg(parser.value(pageOption)));
                return 2;
            }
            window.tabs()->setCurrentIndex(page);
        }
        // The first camera stays shown; the others open on the same page.
        CameraSession* first = window.currentSession();
        for (const std::shared_ptr<GenICamCamera>& other : qAsConst(others))
            window.addCamera(other);
        others.clear();
        window.showSession(first);
        window.resize(1100, 900);
        window.show();

        const bool acquire = parser.isSet(acquireOption) || parser.isSet(acquireAfterOption);
        if (acquire)
        {
            for (CameraSession* session : window.sessions())
                QTimer::singleShot(acquireAt, session->acquireButton(), &QPushButton::click);
        }
        // The trigger once the acquisition runs (it starts in the background).
        if (parser.isSet(triggerOption) && acquire)
        {
            for (CameraSession* session : window.sessions())
            {
                auto once = std::make_shared<QMetaObject::Connection>();
                *once = QObject::connect(session, &CameraSession::acquisitionChanged, session,
                                         [session, once](bool acquiring)
                                         {
                                             if (!acquiring)
                                                 return;
                                             QObject::disconnect(*once);
                                             QTimer::singleShot(TriggerDelayMs, session, &CameraSession::triggerSoftware);
                                         });
            }
        }
        else if (parser.isSet(triggerOption))
        {
            for (CameraSession* session : window.sessions())
                QTimer::singleShot(0, session, &CameraSession::triggerSoftware);
        }

        QTimer shot;
        int waited = 0;
        if (!screenshot.isEmpty())
        {
            // Taken after --after, or later while an acquisition waits for its first frame.
            shot.setInterval(100);
            QTimer::singleShot(after, &shot, QOverload<>::of(&QTimer::start));
            QObject::connect(
                &shot, &QTimer::timeout, &window,
                [&]()
                {
                    waited += shot.interval();
                    if (window.acquireButton()->isChecked() && window.frameCount() == 0 && waited < FrameWaitMs)
                        return;
                    shot.stop();
                    if (window.acquireButton()->isChecked() && window.frameCount() == 0)
                        say(stderr, "triggerio-viewer: " + QCoreApplication::translate("main", "no frame arrived"));
                    const bool saved = window.grab().save(screenshot, "PNG");
                    if (saved)
                        say(stdout, QCoreApplication::translate("main", "Screenshot written to %1").arg(screenshot));
                    else
                        say(stderr,
                            "triggerio-viewer: " + QCoreApplication::translate("main", "cannot write %1").arg(screenshot));
                    QCoreApplication::exit(saved ? 0 : 4);
                });
        }
        return QCoreApplication::exec();
    }();
    if (GenICamCamera::waitForBackgroundWork(BackgroundWaitMs))
        return code;
    // A lost camera's goodbye (or an attempt to find it) waits for Aravis's
    // timeouts, seconds on a silent link: the viewer ends without it, and
    // without running static destructors under a thread still inside Aravis.
    say(stderr, "triggerio-viewer: " +
                    QCoreApplication::translate("main", "not waiting for a lost camera's calls to time out"));
    app.reset();
    std::quick_exit(code);
}
