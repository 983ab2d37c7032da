// Reads the kernel's messages about network interfaces and routes, as they come out of a netlink socket, and
// decides from them whether there is a way to the internet. No socket here: bytes in, facts out.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QSet>
#include <QtCore/QVector>

/// What the kernel told about interfaces and routes so far.
struct NetworkTables
{
    /// Indices of the interfaces that can carry traffic: up, with a link, and not the loopback.
    QSet<int> usableInterfaces;
    /// For each default route the indices of the interfaces through which it leads.
    QVector<QVector<int>> defaultRoutes;
};

/// How the answer to a request stands after the messages read so far.
enum class DumpState {
    Unfinished, ///< more messages follow
    Finished,
    Interrupted, ///< the kernel's tables changed meanwhile, so the answer is no true picture: ask again
    Failed, ///< refused by the kernel, or not readable
};

/**
 * Reads the messages in \a bytes, which is what one read from the socket gave, into \a tables.
 *
 * Messages with another number than \a sequence belong to another request and are skipped, as are messages of
 * other kinds. Bytes that are no proper messages give Failed, whatever they are. The layout is that of
 * netlink(7) and rtnetlink(7).
 *
 * A default route counts if it is one of IPv4 or IPv6 in the main routing table that forwards packets (an
 * "unreachable", "blackhole" or "prohibit" route does not). A route with several next hops leads through all
 * of their interfaces.
 */
DumpState readNetlinkMessages(const QByteArray &bytes, quint32 sequence, NetworkTables &tables);

/// Whether one of the default routes leads through an interface that can carry traffic.
bool hasWayToInternet(const NetworkTables &tables);
