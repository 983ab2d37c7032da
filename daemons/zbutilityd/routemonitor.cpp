// Netlink sockets: one that listens as long as the object lives, and one for each question.
#include "routemonitor.h"

#include "netlinkmessages.h"

#include <QtCore/QDebug>

#include <array>
#include <cerrno>
#include <sys/socket.h>

#include <linux/rtnetlink.h>

namespace {

/// The kernel fills at most 32 KiB in one go.
constexpr int largestRead = 64 * 1024;

/// How often a question is asked again because the tables changed under it. News of that change follow
/// anyway.
constexpr int mostAttempts = 5;

FileDescriptor openSocket(int type, quint32 groups)
{
    FileDescriptor socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | type, NETLINK_ROUTE));
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = groups;
    const bool isBound = socket.get() >= 0
        && ::bind(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0;
    return isBound ? std::move(socket) : FileDescriptor(-1);
}

/// One message of the socket, or nothing, with errno set, if there is none or it is not whole or not the
/// kernel's.
std::optional<QByteArray> receive(const FileDescriptor &socket)
{
    QByteArray bytes(largestRead, Qt::Uninitialized);
    sockaddr_nl sender{};
    socklen_t senderLength = sizeof(sender);
    const ssize_t length = ::recvfrom(socket.get(), bytes.data(), static_cast<size_t>(bytes.size()),
                                      MSG_TRUNC, reinterpret_cast<sockaddr *>(&sender), &senderLength);
    if (length < 0)
        return {};
    if (length > bytes.size() || sender.nl_pid != 0) {
        errno = EBADMSG;
        return {};
    }
    bytes.truncate(static_cast<int>(length));
    return bytes;
}

/// Asks for all entries of a table and reads the whole answer. \a Family is the record that the kernel
/// expects after the header; all zero it means every address family.
template <typename Family> DumpState readTable(quint16 question, NetworkTables &tables)
{
    const FileDescriptor socket = openSocket(0, 0);
    // The kernel answers at once; a limit all the same, since the daemon's callers wait meanwhile.
    const timeval limit{1, 0};
    ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));

    constexpr quint32 sequence = 1;
    struct
    {
        nlmsghdr header;
        Family family;
    } request{};
    request.header.nlmsg_len = sizeof(request);
    request.header.nlmsg_type = question;
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.header.nlmsg_seq = sequence;
    if (::send(socket.get(), &request, sizeof(request), 0) != sizeof(request))
        return DumpState::Failed;

    DumpState state = DumpState::Unfinished;
    while (state == DumpState::Unfinished) {
        const std::optional<QByteArray> bytes = receive(socket);
        if (!bytes)
            return DumpState::Failed;
        state = readNetlinkMessages(*bytes, sequence, tables);
    }
    return state;
}

/// Both tables; the worse of the two states.
DumpState readTables(NetworkTables &tables)
{
    const DumpState interfaces = readTable<ifinfomsg>(RTM_GETLINK, tables);
    return interfaces == DumpState::Finished ? readTable<rtmsg>(RTM_GETROUTE, tables) : interfaces;
}

} // namespace

RouteMonitor::RouteMonitor(QObject *parent)
    : QObject(parent)
    , m_socket(openSocket(SOCK_NONBLOCK, RTMGRP_LINK | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE))
{
    if (m_socket.get() < 0) {
        qWarning().noquote() << "changes of the routes are not followed:" << qt_error_string(errno);
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &RouteMonitor::takeNews);
}

std::optional<bool> RouteMonitor::hasWayToInternet() const
{
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        NetworkTables tables;
        const DumpState state = readTables(tables);
        if (state == DumpState::Finished)
            return ::hasWayToInternet(tables);
        if (state == DumpState::Failed)
            break;
    }
    qWarning().noquote() << "the routes cannot be read:" << qt_error_string(errno);
    return {};
}

/// What the news say is not looked at: the tables are read afresh, so that lost news (ENOBUFS) do no harm
/// either.
void RouteMonitor::takeNews()
{
    bool isEmpty = false;
    while (!isEmpty) {
        errno = 0;
        isEmpty = !receive(m_socket) && errno != ENOBUFS && errno != EBADMSG && errno != EINTR;
    }
    emit changed();
}
