// Writes a tab number to the local socket of the running Settings application.
#include "tabselection.h"

#include <QtNetwork/QLocalSocket>

namespace {
constexpr int waitMilliseconds = 2000;
}

QString selectTab(const QString &socketName, int tab)
{
    QLocalSocket socket;
    socket.connectToServer(socketName, QIODevice::WriteOnly);
    if (!socket.waitForConnected(waitMilliseconds))
        return QStringLiteral("No running Settings application was found: %1").arg(socket.errorString());
    socket.write(QByteArray::number(tab));
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(waitMilliseconds))
            return QStringLiteral("The running Settings application cannot be told: %1")
                .arg(socket.errorString());
    }
    socket.disconnectFromServer();
    return QString();
}
