// triggerio-viewer: hosts the tab plug-ins for one camera.
//
//   triggerio-viewer [--camera ID] [--list] [--screenshot FILE [--after MS]]
//
// ID is an Aravis device id or "fake:FILE.xml" (a GenICam model on the
// in-process fake device); without one the line-family demo model is opened.

#include "GenICamCamera.h"
#include "ViewerWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QTabWidget>
#include <QTimer>

#include <cstdio>

namespace
{

// The plug-ins install a message handler that swallows Qt's messages, so the
// viewer writes its own messages straight to the terminal.
void say(FILE* stream, const QString& text)
{
    std::fprintf(stream, "%s\n", qPrintable(text));
    std::fflush(stream);
}

// Demo models sit next to the binary (build tree) or under share/ (installed).
QString demoCameraFolder(const QString& appDir)
{
    for (const QString& candidate : {appDir + "/cameras", appDir + "/../share/triggerio/cameras"})
    {
        if (QFileInfo(candidate + "/line-camera.xml").exists())
            return QDir(candidate).canonicalPath();
    }
    return appDir + "/cameras";
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName("triggerio-viewer");

    QCommandLineParser parser;
    parser.setApplicationDescription("Hosts the Trigger IO tab for a camera.");
    parser.addHelpOption();
    QCommandLineOption cameraOption("camera", "Aravis device id, or fake:FILE.xml for a GenICam model.", "ID");
    QCommandLineOption listOption("list", "List the cameras that can be opened.");
    QCommandLineOption screenshotOption("screenshot", "Render the window to a PNG file and exit.", "FILE");
    QCommandLineOption afterOption("after", "Milliseconds before the screenshot (default 1500).", "MS", "1500");
    parser.addOptions({cameraOption, listOption, screenshotOption, afterOption});
    parser.process(app);

    const QString appDir = QApplication::applicationDirPath();
    const QString cameras = demoCameraFolder(appDir);

    if (parser.isSet(listOption))
    {
        for (const QString& id : GenICamCamera::deviceIds())
            say(stdout, id);
        for (const QString& model : QDir(cameras).entryList({"*.xml"}, QDir::Files, QDir::Name))
            say(stdout, "fake:" + QDir(cameras).absoluteFilePath(model));
        return 0;
    }

    // Relative paths are the user's; resolve them before moving to the binary's folder.
    QString id = parser.value(cameraOption);
    if (id.isEmpty())
        id = "fake:" + cameras + "/line-camera.xml";
    else if (id.startsWith(GenICamCamera::FakePrefix))
        id = GenICamCamera::FakePrefix + QFileInfo(id.mid(int(qstrlen(GenICamCamera::FakePrefix)))).absoluteFilePath();
    const QString screenshot =
        parser.isSet(screenshotOption) ? QFileInfo(parser.value(screenshotOption)).absoluteFilePath() : QString();
    bool afterOk = false;
    const int after = parser.value(afterOption).toInt(&afterOk);
    if (!afterOk || after < 0)
    {
        say(stderr, "triggerio-viewer: --after takes a number of milliseconds");
        return 2;
    }

    GenICamCamera camera;
    if (camera.open(id) != OrvErrorSuccess)
    {
        say(stderr, QString("triggerio-viewer: cannot open camera %1: %2").arg(id, camera.errorString()));
        return 2;
    }

    // The tab finds its translations under "plugins/", relative to the working folder.
    QDir::setCurrent(appDir);

    ViewerWindow window(&camera);
    if (window.addTabs(appDir + "/plugins") == 0)
    {
        say(stderr, "triggerio-viewer: no tab for this camera: " + window.problems().join("; "));
        return 3;
    }
    for (const QString& problem : window.problems())
        say(stderr, "triggerio-viewer: " + problem);
    window.resize(1100, 900);
    window.show();

    if (!screenshot.isEmpty())
    {
        QTimer::singleShot(after, &window,
                           [&window, &screenshot]()
                           {
                               const bool saved = window.grab().save(screenshot, "PNG");
                               if (saved)
                                   say(stdout, "Screenshot written to " + screenshot);
                               else
                                   say(stderr, "triggerio-viewer: cannot write " + screenshot);
                               QApplication::exit(saved ? 0 : 4);
                           });
    }
    return app.exec();
}
