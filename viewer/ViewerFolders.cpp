#include "ViewerFolders.h"

#include <QDir>

ViewerFolders ViewerFolders::find(const QString& appDir)
{
    const QDir bin(appDir);
    if (bin.exists("plugins"))
        return {bin.filePath("plugins"), bin.filePath("cameras"), bin.filePath("translations"), appDir};
    const QString data = QDir::cleanPath(bin.filePath(TRIGGERIO_DATA_FROM_BIN));
    return {QDir::cleanPath(bin.filePath(TRIGGERIO_PLUGINS_FROM_BIN)), data + "/cameras", data + "/translations",
            data};
}
