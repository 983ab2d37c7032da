// ZBSettingsMain's link to the utility daemon (the internet state) and to the analytics library.
#include "zbsettingsmain.h"

#include "analytichit.h"
#include "analyticslibrary.h"
#include "daemoncall.h"
#include "zbsettingsmain_p.h"

#include <QtCore/QDebug>
#include <QtDBus/QDBusReply>

void ZBSettingsMain::linkToUtilityDaemon()
{
    if (!d->utilityDaemon.isValid()) {
        qDebug() << "failed to create the utilityd interface, is it running?";
        return;
    }

    // Connected by name and not through the proxy: a proxy stays silent about a signal that the daemon's
    // introspection data do not list.
    d->utilityDaemon.connection().connect(
        d->utilityDaemon.service(), d->utilityDaemon.path(), d->utilityDaemon.interface(),
        QStringLiteral("onInternetConnectionChanged"), this, SLOT(internetConnectionChanged(bool)));

    const char *const failureText = "DBus Reply(getInternetConnection) is inValid ";
    const QDBusMessage reply =
        callDaemon(d->utilityDaemon, QStringLiteral("getInternetConnection"), failureText);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return;
    const QDBusReply<bool> connected = reply;
    logFailure(failureText, connected.error());
    d->isInternetConnected = connected.isValid() && connected.value();
}

void ZBSettingsMain::internetConnectionChanged(bool isConnected)
{
    d->isInternetConnected = isConnected;
    Q_EMIT isInternetConnectedChanged(isConnected);
}

void ZBSettingsMain::checkInternetConnection()
{
    d->utilityDaemon.call(QDBus::AutoDetect, QStringLiteral("checkInternetConnection"));
}

void ZBSettingsMain::setAnalyticsSessionId(const QString &sessionId)
{
    d->analyticsSessionId = sessionId;
}

void ZBSettingsMain::sendAnalyticHit(QString settingName, QVariant newValue)
{
    AnalyticsLibrary::sendAnalyticHit(AnalyticsLibrary::SettingChange,
                                      settingChangeHit(settingName, newValue, d->analyticsSessionId));
}
