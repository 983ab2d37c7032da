// The one way to call a daemon: wait for the answer, log what failed, go on.
#pragma once

#include <QtCore/QVariant>
#include <QtDBus/QDBusInterface>
#include <QtDBus/QDBusMessage>

/**
 * Calls \a method and waits for the answer, until the D-Bus time-out at the latest. An error is logged as
 * \a failureText and the error.
 *
 * Each argument travels with the D-Bus type of the value that its variant holds. A variant that holds nothing
 * cannot be sent: that is an error like the others.
 */
QDBusMessage callDaemon(QDBusInterface &daemon, const QString &method, const char *failureText,
                        const QVariantList &arguments = {});

/// Logs \a failureText and \a error, if there is one.
void logFailure(const char *failureText, const QDBusError &error);
