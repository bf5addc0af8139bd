#ifndef TABMESSAGEHANDLER_H
#define TABMESSAGEHANDLER_H

#include <QtGlobal>

class QMessageLogContext;
class QString;

// Swallows whatever Qt would log. BaseTabPluginWidget installs it, so the
// tab's qDebug chatter stays out of the user's way unless the host puts its
// own handler back.
inline void TABMessageHandler(QtMsgType, const QMessageLogContext&, const QString&) {}

#endif
