#ifndef TABMESSAGEHANDLER_H
#define TABMESSAGEHANDLER_H

#include <QtGlobal>

class QMessageLogContext;
class QString;

// Discards every message: the tab's diagnostics stay out of the user's way
// unless the host installs its own handler again.
void TABMessageHandler(QtMsgType type, const QMessageLogContext& context, const QString& message);

#endif
