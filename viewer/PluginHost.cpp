#include "PluginHost.h"

#include "TabExtensionInterface.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QLibrary>
#include <QVector>

#include <algorithm>
#include <QPluginLoader>

PluginHost::PluginHost(QObject* parent)
    : QObject(parent)
{
}

PluginHost::~PluginHost() = default;

QList<TabExtensionInterface*> PluginHost::load(const QString& folder)
{
    QList<TabExtensionInterface*> plugins;
    const QDir dir(folder);
    if (!dir.exists())
    {
        m_problems << tr("Plug-in folder %1 does not exist").arg(QDir::toNativeSeparators(folder));
        return plugins;
    }
    // Pages come in the order their plug-ins ask for ("PageOrder" in the
    // plug-in's own metadata, 0 without one), then by file name.
    QVector<QPair<int, QPluginLoader*>> ordered;
    for (const QString& file : dir.entryList(QDir::Files, QDir::Name))
    {
        const QString path = dir.absoluteFilePath(file);
        if (!QLibrary::isLibrary(path))
            continue;
        QPluginLoader* loader = new QPluginLoader(path, this);
        const QString iid = loader->metaData().value("IID").toString();
        if (iid != QLatin1String("TabExtensionInterface"))
        {
            m_problems << (iid.isEmpty() ? tr("%1 is not a tab plug-in").arg(file)
                                         : tr("%1 has interface %2, not TabExtensionInterface").arg(file, iid));
            delete loader;
            continue;
        }
        ordered.append({loader->metaData().value("MetaData").toObject().value("PageOrder").toInt(), loader});
    }
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& entry : qAsConst(ordered))
    {
        QPluginLoader* loader = entry.second;
        TabExtensionInterface* plugin = qobject_cast<TabExtensionInterface*>(loader->instance());
        if (!plugin)
        {
            m_problems << tr("%1 could not be loaded: %2").arg(QFileInfo(loader->fileName()).fileName(),
                                                               loader->errorString());
            delete loader;
            continue;
        }
        m_loaders << loader;
        plugins << plugin;
    }
    if (plugins.isEmpty() && m_problems.isEmpty())
        m_problems << tr("No tab plug-in in %1").arg(QDir::toNativeSeparators(folder));
    return plugins;
}

QStringList PluginHost::problems() const
{
    return m_problems;
}
