#ifndef VIEWERFOLDERS_H
#define VIEWERFOLDERS_H

#include <QString>

// Where the viewer finds what it loads: in the build tree everything lies
// beside the binary (bin/plugins/, bin/cameras/, bin/translations/); installed,
// the plug-ins lie in the library folder's triggerio/plugins/ and the rest in
// share/triggerio/, both found relative to the binary.
struct ViewerFolders
{
    QString plugins;      // the tab plug-in modules
    QString cameras;      // the demo camera models
    QString translations; // the viewer's own .qm files
    // The working folder: the tab looks for its translations in "plugins/"
    // relative to it.
    QString working;

    static ViewerFolders find(const QString& appDir);
};

#endif
