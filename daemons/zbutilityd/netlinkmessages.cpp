// Netlink messages of links and routes.
#include "netlinkmessages.h"

#include <algorithm>
#include <cstring>
#include <net/if.h>
#include <optional>
#include <string_view>

#include <linux/rtnetlink.h>

namespace {

using Bytes = std::string_view;

/// Messages, attributes and next hops all start at multiples of four bytes.
static_assert(NLMSG_ALIGNTO == 4 && RTA_ALIGNTO == 4 && RTNH_ALIGNTO == 4);

size_t aligned(size_t length)
{
    return (length + 3) & ~size_t(3);
}

/// Takes \a length bytes and the padding after them from the front of \a bytes.
Bytes take(Bytes &bytes, size_t length)
{
    const Bytes taken = bytes.substr(0, length);
    bytes.remove_prefix(std::min(aligned(length), bytes.size()));
    return taken;
}

/// The record at the front of \a bytes, which may lie at any address; nothing if there are too few bytes.
template <typename Record> std::optional<Record> recordAt(Bytes bytes)
{
    if (bytes.size() < sizeof(Record))
        return {};
    Record record;
    std::memcpy(&record, bytes.data(), sizeof(Record));
    return record;
}

/**
 * Takes the next item from the front of \a bytes: a \a Header, whose member \a length counts header and
 * content. Nothing if the bytes are no whole item.
 */
template <typename Header, typename Length>
std::optional<std::pair<Header, Bytes>> takeItem(Bytes &bytes, Length Header::*length)
{
    const std::optional<Header> header = recordAt<Header>(bytes);
    if (!header || (*header).*length < sizeof(Header) || (*header).*length > bytes.size())
        return {};
    const Bytes item = take(bytes, (*header).*length);
    return std::make_pair(*header, item.substr(std::min(aligned(sizeof(Header)), item.size())));
}

bool readInterface(Bytes content, NetworkTables &tables)
{
    const auto interface = recordAt<ifinfomsg>(content);
    if (!interface)
        return false;
    // IFF_RUNNING is missing while the cable is unplugged or the radio has no network.
    constexpr uint needed = IFF_UP | IFF_RUNNING;
    if ((interface->ifi_flags & (needed | IFF_LOOPBACK)) == needed)
        tables.usableInterfaces.insert(interface->ifi_index);
    return true;
}

/// Adds the interfaces of a route with several next hops.
bool readNextHops(Bytes content, QVector<int> &interfaces)
{
    while (!content.empty()) {
        const auto hop = takeItem(content, &rtnexthop::rtnh_len);
        if (!hop)
            return false;
        interfaces.append(hop->first.rtnh_ifindex);
    }
    return true;
}

struct RouteAttributes
{
    quint32 table;
    QVector<int> interfaces;
};

bool readRouteAttribute(quint16 type, Bytes content, RouteAttributes &attributes)
{
    if (type == RTA_MULTIPATH)
        return readNextHops(content, attributes.interfaces);
    if (type != RTA_TABLE && type != RTA_OIF)
        return true;
    const auto number = recordAt<quint32>(content);
    if (!number)
        return false;
    if (type == RTA_TABLE)
        attributes.table = *number;
    else
        attributes.interfaces.append(static_cast<int>(*number));
    return true;
}

bool readRoute(Bytes content, NetworkTables &tables)
{
    const auto route = recordAt<rtmsg>(content);
    if (!route)
        return false;
    content.remove_prefix(std::min(aligned(sizeof(rtmsg)), content.size()));

    RouteAttributes attributes{route->rtm_table, {}};
    while (!content.empty()) {
        const auto attribute = takeItem(content, &rtattr::rta_len);
        if (!attribute
            || !readRouteAttribute(attribute->first.rta_type & NLA_TYPE_MASK, attribute->second, attributes))
            return false;
    }
    const bool isInternet = route->rtm_family == AF_INET || route->rtm_family == AF_INET6;
    const bool isCached = route->rtm_flags & RTM_F_CLONED;
    if (isInternet && route->rtm_dst_len == 0 && route->rtm_type == RTN_UNICAST && !isCached
        && attributes.table == RT_TABLE_MAIN)
        tables.defaultRoutes.append(attributes.interfaces);
    return true;
}

/// The end of an answer and a refusal both start with a number, which is negative for an error.
bool hasError(Bytes content)
{
    const auto number = recordAt<qint32>(content);
    return !number || *number < 0;
}

} // namespace

DumpState readNetlinkMessages(const QByteArray &bytes, quint32 sequence, NetworkTables &tables)
{
    Bytes rest(bytes.constData(), static_cast<size_t>(bytes.size()));
    bool isInterrupted = false;
    while (!rest.empty()) {
        const auto message = takeItem(rest, &nlmsghdr::nlmsg_len);
        if (!message)
            return DumpState::Failed;
        const auto &[header, content] = *message;
        if (header.nlmsg_seq != sequence)
            continue;
        isInterrupted |= (header.nlmsg_flags & NLM_F_DUMP_INTR) != 0;

        bool isReadable = true;
        switch (header.nlmsg_type) {
        case NLMSG_DONE:
        case NLMSG_ERROR:
            if (hasError(content))
                return DumpState::Failed;
            return isInterrupted ? DumpState::Interrupted : DumpState::Finished;
        case RTM_NEWLINK:
            isReadable = readInterface(content, tables);
            break;
        case RTM_NEWROUTE:
            isReadable = readRoute(content, tables);
            break;
        default:
            break;
        }
        if (!isReadable)
            return DumpState::Failed;
    }
    return isInterrupted ? DumpState::Interrupted : DumpState::Unfinished;
}

bool hasWayToInternet(const NetworkTables &tables)
{
    const auto isUsable = [&tables](int interface) { return tables.usableInterfaces.contains(interface); };
    return std::any_of(tables.defaultRoutes.cbegin(), tables.defaultRoutes.cend(),
                       [&](const QVector<int> &interfaces) {
                           return std::any_of(interfaces.cbegin(), interfaces.cend(), isUsable);
                       });
}
