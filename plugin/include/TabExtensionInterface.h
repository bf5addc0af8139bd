#ifndef TABEXTENSIONINTERFACE_H
#define TABEXTENSIONINTERFACE_H

// Everything a host needs to load tab plug-ins: the interface, the result
// codes and the exceptions (FeatureList.h comes with the camera API's headers).
// The tab code includes it too, so host and plug-in agree on one definition.

#include "FeatureList.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>
#include <QWidget>

// Result of TabExtensionInterface::get: 0 success, 4 camera not supported.
typedef int TabExtensionResult;

// A tab's constructor throws this when it cannot build; get() hands the
// carried code back to the host.
class TabExtensionException
{
public:
    TabExtensionException(const char* function, const char* message, TabExtensionResult result)
        : m_Result(result)
    {
        if (function)
            m_Function = function;
        if (message)
            m_Message = message;
    }

    TabExtensionResult Result() const
    {
        return m_Result;
    }

    QString Function() const
    {
        return m_Function;
    }

    QString Message() const
    {
        return m_Message;
    }

private:
    QString m_Function;
    QString m_Message;
    TabExtensionResult m_Result;
};

// The camera lacks what the tab needs.
class TENotSupported : public TabExtensionException
{
public:
    TENotSupported(const char* function, const char* message)
        : TabExtensionException(function, message, 4)
    {
    }
};

// A plug-in that gives the host one tab page per camera window.
class TabExtensionInterface : public QObject
{
public:
    TabExtensionInterface() = default;
    ~TabExtensionInterface() override = default;

    // Builds the tab for the camera into parent; 0 on success.
    virtual TabExtensionResult get(const FeatureList& features, QWidget& parent, QMap<QString, QVariant>* settings) = 0;
    // Connects the tab's frame-rate reset request to the host.
    virtual bool connectToResetFps(QObject* receiver, const char* slot) = 0;
    // Hooks up the host's acquisition signal (a bool, true while the camera acquires).
    virtual bool connectFromAcquire(QObject* sender, const char* signal) = 0;
};

#define TabExtensionInterface_iid "com.orvia.OrvViewer.Plugin.TabExtensionInterface/1.0"
Q_DECLARE_INTERFACE(TabExtensionInterface, TabExtensionInterface_iid)

#endif
