// The analytics event of one setting change.
#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QVariant>

/// The event for \a settingName set to \a newValue in session \a sessionId; every member is text.
QJsonObject settingChangeHit(const QString &settingName, const QVariant &newValue, const QString &sessionId);
