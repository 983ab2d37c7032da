// Calls a daemon and logs what failed.
#include "daemoncall.h"

#include <QtCore/QDebug>
#include <QtDBus/QDBusError>

QDBusMessage callDaemon(QDBusInterface &daemon, const QString &method, const char *failureText,
                        const QVariantList &arguments)
{
    const QDBusMessage reply = daemon.callWithArgumentList(QDBus::AutoDetect, method, arguments);
    logFailure(failureText, QDBusError(reply));
    return reply;
}

void logFailure(const char *failureText, const QDBusError &error)
{
    if (error.isValid())
        qDebug() << failureText << error;
}
