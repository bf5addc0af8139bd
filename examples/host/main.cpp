// A host of tab plug-ins: opens one camera with the GenICam backend, loads
// every plug-in from the installed plug-in folder and shows their tabs.
//
//   triggerio-host CAMERA [--quit]
//
// CAMERA is an Aravis device id or "fake:FILE.xml"; --quit ends once the
// window is shown (the tab titles are printed either way).

#include <GenICamCamera.h>
#include <TabExtensionInterface.h>

#include <QApplication>
#include <QDir>
#include <QPluginLoader>
#include <QTabWidget>

#include <cstdio>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() < 2)
    {
        std::fprintf(stderr, "usage: triggerio-host CAMERA [--quit]\n");
        return 2;
    }

    GenICamCamera camera;
    if (camera.open(arguments.at(1)) != OrvErrorSuccess)
    {
        std::fprintf(stderr, "cannot open %s: %s\n", qPrintable(arguments.at(1)), qPrintable(camera.errorString()));
        return 2;
    }
    const FeatureList features = camera.features();

    // A tab looks for its translations in "plugins/" relative to the working folder.
    QDir::setCurrent(DATA_DIR);

    QTabWidget window;
    const QDir plugins(PLUGIN_DIR);
    for (const QString& file : plugins.entryList(QDir::Files, QDir::Name))
    {
        QPluginLoader loader(plugins.absoluteFilePath(file));
        auto* plugin = qobject_cast<TabExtensionInterface*>(loader.instance());
        if (!plugin)
            continue;
        auto* page = new QWidget;
        if (plugin->get(features, *page, nullptr) != 0)
        {
            delete page; // the plug-in has no tab for this camera
            continue;
        }
        window.addTab(page, page->accessibleName()); // a tab names its page
        std::printf("tab: %s\n", qPrintable(page->accessibleName()));
    }
    if (window.count() == 0)
    {
        std::fprintf(stderr, "no tab for this camera in %s\n", PLUGIN_DIR);
        return 3;
    }
    window.resize(1100, 900);
    window.show();
    if (arguments.contains("--quit"))
        QMetaObject::invokeMethod(&app, &QApplication::quit, Qt::QueuedConnection);
    return app.exec();
}
