#ifndef PLUGINHOST_H
#define PLUGINHOST_H

#include <QList>
#include <QObject>
#include <QStringList>

class QPluginLoader;
class TabExtensionInterface;

// Finds the tab plug-ins in a folder and loads them the way a camera viewer
// does: metadata IID "TabExtensionInterface", instance, cast to the interface.
class PluginHost : public QObject
{
    Q_OBJECT

public:
    explicit PluginHost(QObject* parent = nullptr);
    ~PluginHost() override;

    // Loads every library of the folder; what could not be used is in problems().
    QList<TabExtensionInterface*> load(const QString& folder);
    QStringList problems() const;

private:
    QList<QPluginLoader*> m_loaders;
    QStringList m_problems;
};

#endif
