// See section 5.4 of RFC 3996 for what the scheduler sends to the notifier, and notifier/ for what that
// passes on.
#include "cupsnotifications.h"

#include <QtCore/QList>
#include <QtCore/QUuid>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int longestEvent = 200;

} // namespace

bool CupsEvent::read(const QByteArray &datagram, CupsEvent *event)
{
    const QList<QByteArray> words = datagram.split(' ');
    if (words.size() != 4)
        return false;
    int *const numbers[] = {&event->subscription, &event->sequence, &event->job};
    for (int index = 0; index < 3; ++index) {
        bool isNumber = false;
        *numbers[index] = words.at(index).toInt(&isNumber);
        if (!isNumber || *numbers[index] < 0)
            return false;
    }
    event->token = words.at(3);
    return true;
}

CupsNotifications::CupsNotifications(QObject *parent)
    : QObject(parent)
{
}

CupsNotifications::~CupsNotifications()
{
    close();
}

bool CupsNotifications::listen(const QString &path)
{
    close();
    m_path = path.toLocal8Bit();
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    // In the recipient's address some characters would mean something else.
    if (!m_path.startsWith('/') || size_t(m_path.size()) >= sizeof address.sun_path
        || m_path.toPercentEncoding("/") != m_path)
        return false;
    std::copy(m_path.cbegin(), m_path.cend(), &address.sun_path[0]);
    m_socket = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_socket < 0)
        return false;
    struct stat status = {};
    if (lstat(m_path.constData(), &status) == 0 && S_ISSOCK(status.st_mode))
        unlink(m_path.constData());
    if (bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        ::close(m_socket);
        m_socket = -1;
        return false;
    }
    chmod(m_path.constData(), S_IRUSR | S_IWUSR | S_IWGRP | S_IWOTH);
    m_token = QUuid::createUuid().toByteArray(QUuid::Id128);
    m_notifier = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &CupsNotifications::receive);
    return true;
}

QByteArray CupsNotifications::recipient() const
{
    return "bracken:" + m_path;
}

void CupsNotifications::receive()
{
    char bytes[longestEvent];
    ssize_t size = 0;
    while (m_socket >= 0 && (size = recv(m_socket, bytes, sizeof bytes, 0)) >= 0) {
        CupsEvent event;
        if (CupsEvent::read(QByteArray(bytes, int(size)), &event) && event.token == m_token.toBase64())
            Q_EMIT received(event);
    }
}

void CupsNotifications::close()
{
    m_notifier.reset();
    if (m_socket < 0)
        return;
    ::close(m_socket);
    unlink(m_path.constData());
    m_socket = -1;
}
