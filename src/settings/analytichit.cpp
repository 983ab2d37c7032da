// Builds the analytics event of one setting change.
#include "analytichit.h"

QJsonObject settingChangeHit(const QString &settingName, const QVariant &newValue, const QString &sessionId)
{
    return {
        {QStringLiteral("settingName"), settingName},
        {QStringLiteral("newValue"), newValue.toString()},
        {QStringLiteral("eventType"), QStringLiteral("Setting_Change")},
        {QStringLiteral("sessionId"), sessionId},
    };
}
