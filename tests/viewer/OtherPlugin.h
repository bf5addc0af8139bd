#ifndef OTHERPLUGIN_H
#define OTHERPLUGIN_H

#include <QObject>

// A Qt plug-in of another kind, which the viewer must skip.
class OtherPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.SomeOtherInterface/1.0")
};

#endif
