// Which settings the utility daemon is told about, and how.
#pragma once

#include <QtCore/QString>
#include <QtCore/QVariant>

/// One call of the utility daemon that follows the change of a setting.
struct SettingNotification
{
    const char *key;
    const char *method;
    QVariant (*argument)(const QVariant &value); ///< the argument on the wire, made from the value as given
    const char *failureText;
};

/// The notification for \a key, or nullptr when the daemon is not told.
const SettingNotification *notificationFor(const QString &key);
