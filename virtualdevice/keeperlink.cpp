// Messages over a SOCK_SEQPACKET pair: each is one packet, and the kernel reports the end of a killed peer.
#include "keeperlink.h"

#include "failure.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <sys/socket.h>

namespace {

struct Packet
{
    LinkMessage::Kind kind;
    int value;
    std::array<char, PATH_MAX> text;
};

} // namespace

std::pair<KeeperLink, KeeperLink> KeeperLink::makePair()
{
    std::array<int, 2> ends = {};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        throw systemFailure("cannot make a socket pair");
    return {KeeperLink(FileDescriptor(ends[0])), KeeperLink(FileDescriptor(ends[1]))};
}

void KeeperLink::send(const LinkMessage &message) const
{
    Packet packet = {};
    packet.kind = message.kind;
    packet.value = message.value;
    message.text.copy(packet.text.data(), packet.text.size() - 1);
    ::send(m_socket.get(), &packet, sizeof packet, MSG_NOSIGNAL);
}

LinkMessage KeeperLink::receive() const
{
    Packet packet = {};
    ssize_t size = 0;
    do
        size = recv(m_socket.get(), &packet, sizeof packet, 0);
    while (size < 0 && errno == EINTR);
    if (size != sizeof packet)
        return {};
    return {packet.kind, packet.value, packet.text.data()};
}
