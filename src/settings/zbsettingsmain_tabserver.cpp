// The local socket of ZBSettingsMain, through which another process selects a tab.
#include "zbsettingsmain.h"

#include "tabmessage.h"
#include "zbsettingsmain_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDebug>
#include <QtNetwork/QLocalServer>
#include <QtNetwork/QLocalSocket>

void ZBSettingsMain::startLocalServer()
{
    const QString name = QCoreApplication::applicationName();
    QLocalServer::removeServer(name);
    d->localServer = new QLocalServer(this);
    if (!d->localServer->listen(name)) {
        qDebug() << "Cannot start server: " << d->localServer->fullServerName();
        return;
    }
    qDebug() << "QLocalServer Started Successfully on " << d->localServer->fullServerName();
    connect(d->localServer, &QLocalServer::newConnection, this, &ZBSettingsMain::newClientConnection);
}

void ZBSettingsMain::newClientConnection()
{
    // Every connection leaves one unused socket behind as a child of this object, and only the newest
    // connection is read from, whichever has sent something. Programs of the device count on the latter.
    d->currentClient = new QLocalSocket(this);
    QLocalSocket *const connection = d->localServer ? d->localServer->nextPendingConnection() : nullptr;
    if (!connection)
        return;
    d->currentClient = connection;
    connect(d->currentClient, &QLocalSocket::readyRead, this, &ZBSettingsMain::localSocketDataReceived);
}

void ZBSettingsMain::localSocketDataReceived()
{
    const uint tabIndex = tabIndexFromMessage(d->currentClient ? d->currentClient->readAll() : QByteArray());
    Q_EMIT tabEnumChanged(static_cast<int>(tabIndex));
}
