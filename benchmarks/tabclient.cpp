// Connects, writes, closes.
#include "tabclient.h"

#include <QtCore/QFile>

#include <algorithm>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

TabClient::TabClient(const QString &path)
    : m_socket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    if (size_t(name.size()) >= sizeof address.sun_path)
        qFatal("%s is too long for a local socket", name.constData());
    std::copy(name.begin(), name.end(), address.sun_path);
    if (connect(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        qFatal("Cannot connect to %s", name.constData());
}

TabClient::~TabClient()
{
    close(m_socket);
}

void TabClient::send(const QByteArray &message) const
{
    if (write(m_socket, message.constData(), size_t(message.size())) != message.size())
        qFatal("Cannot write a tab message");
}
