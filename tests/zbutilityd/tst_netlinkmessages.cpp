// What the daemon reads out of the kernel's messages, and that rubbish does it no harm.
#include "netlinkmessages.h"

#include <QtTest/QtTest>

#include <net/if.h>
#include <random>

#include <linux/rtnetlink.h>

Q_DECLARE_METATYPE(DumpState)

namespace {

constexpr quint32 sequence = 7;
constexpr int loopback = 1;
constexpr int wired = 2;
constexpr int wireless = 3;

template <typename Record> QByteArray bytesOf(const Record &record)
{
    return QByteArray(reinterpret_cast<const char *>(&record), sizeof(Record));
}

QByteArray padded(QByteArray bytes)
{
    return bytes.append(QByteArray((4 - bytes.size() % 4) % 4, '\0'));
}

QByteArray message(quint16 type, const QByteArray &content, quint16 flags = NLM_F_MULTI,
                   quint32 number = sequence)
{
    nlmsghdr header{};
    header.nlmsg_len = static_cast<quint32>(sizeof(header)) + static_cast<quint32>(content.size());
    header.nlmsg_type = type;
    header.nlmsg_flags = flags;
    header.nlmsg_seq = number;
    return padded(bytesOf(header) + content);
}

QByteArray attribute(quint16 type, const QByteArray &content)
{
    rtattr header{};
    header.rta_len = static_cast<quint16>(sizeof(header) + static_cast<size_t>(content.size()));
    header.rta_type = type;
    return padded(bytesOf(header) + content);
}

QByteArray numberAttribute(quint16 type, quint32 number)
{
    return attribute(type, bytesOf(number));
}

QByteArray nextHop(int interface)
{
    rtnexthop hop{};
    hop.rtnh_len = sizeof(hop) + 8;
    hop.rtnh_ifindex = interface;
    return bytesOf(hop) + attribute(RTA_GATEWAY, QByteArray("\xc0\x00\x02\x01", 4));
}

QByteArray link(int index, uint flags)
{
    ifinfomsg content{};
    content.ifi_index = index;
    content.ifi_flags = flags;
    return message(RTM_NEWLINK, bytesOf(content) + attribute(IFLA_IFNAME, QByteArray("eth\0", 4)));
}

struct Route
{
    quint8 family = AF_INET;
    quint8 prefixLength = 0;
    quint8 table = RT_TABLE_MAIN;
    quint8 type = RTN_UNICAST;
    uint flags = 0;
};

QByteArray route(const Route &fields, const QByteArray &attributes)
{
    rtmsg content{};
    content.rtm_family = fields.family;
    content.rtm_dst_len = fields.prefixLength;
    content.rtm_table = fields.table;
    content.rtm_type = fields.type;
    content.rtm_flags = fields.flags;
    return message(RTM_NEWROUTE, bytesOf(content) + attributes);
}

QByteArray done(qint32 error = 0)
{
    return message(NLMSG_DONE, bytesOf(error));
}

/// The loopback, a wired interface with its cable and a wireless one without a network.
QByteArray usualLinks()
{
    return link(loopback, IFF_UP | IFF_RUNNING | IFF_LOOPBACK)
        + link(wired, IFF_UP | IFF_RUNNING | IFF_BROADCAST) + link(wireless, IFF_UP | IFF_BROADCAST);
}

QByteArray through(int interface)
{
    return numberAttribute(RTA_OIF, static_cast<quint32>(interface));
}

} // namespace

class NetlinkMessagesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void routesDecide_data();
    void routesDecide();
    void interfacesDecide_data();
    void interfacesDecide();
    void theEndOfAnAnswerIsSeen_data();
    void theEndOfAnAnswerIsSeen();
    void messagesOfAnotherRequestDoNotCount();
    void improperMessagesFail_data();
    void improperMessagesFail();
    void anAnswerCutAnywhereIsNeverTakenAsWhole();
    void rubbishDoesNoHarm();
};

void NetlinkMessagesTest::routesDecide_data()
{
    QTest::addColumn<QByteArray>("routes");
    QTest::addColumn<bool>("isConnected");

    QTest::newRow("none") << QByteArray() << false;
    QTest::newRow("IPv4") << route({}, through(wired)) << true;
    QTest::newRow("IPv6") << route({AF_INET6}, through(wired)) << true;
    QTest::newRow("with a gateway") << route(
        {}, attribute(RTA_GATEWAY, QByteArray("\xc0\x00\x02\x01", 4)) + through(wired))
                                    << true;
    QTest::newRow("through an interface without link") << route({}, through(wireless)) << false;
    QTest::newRow("through the loopback") << route({}, through(loopback)) << false;
    QTest::newRow("through an unknown interface") << route({}, through(99)) << false;
    QTest::newRow("through no interface") << route({}, {}) << false;
    QTest::newRow("another address family") << route({AF_BRIDGE}, through(wired)) << false;
    QTest::newRow("of a subnet") << route({AF_INET, 24}, through(wired)) << false;
    QTest::newRow("of half the addresses") << route({AF_INET, 1}, through(wired)) << false;
    QTest::newRow("another table") << route({AF_INET, 0, 100}, through(wired)) << false;
    QTest::newRow("local table") << route({AF_INET, 0, RT_TABLE_LOCAL}, through(wired)) << false;
    QTest::newRow("the attribute names another table")
        << route({}, numberAttribute(RTA_TABLE, 1000) + through(wired)) << false;
    QTest::newRow("the attribute names the main table")
        << route({AF_INET, 0, RT_TABLE_COMPAT}, numberAttribute(RTA_TABLE, 254) + through(wired)) << true;
    QTest::newRow("unreachable") << route({AF_INET, 0, RT_TABLE_MAIN, RTN_UNREACHABLE}, through(wired))
                                 << false;
    QTest::newRow("blackhole") << route({AF_INET, 0, RT_TABLE_MAIN, RTN_BLACKHOLE}, through(wired)) << false;
    QTest::newRow("prohibit") << route({AF_INET6, 0, RT_TABLE_MAIN, RTN_PROHIBIT}, through(wired)) << false;
    QTest::newRow("throw") << route({AF_INET, 0, RT_TABLE_MAIN, RTN_THROW}, through(wired)) << false;
    QTest::newRow("cached") << route({AF_INET6, 0, RT_TABLE_MAIN, RTN_UNICAST, RTM_F_CLONED}, through(wired))
                            << false;
    QTest::newRow("several next hops, one usable")
        << route({}, attribute(RTA_MULTIPATH, nextHop(wireless) + nextHop(wired))) << true;
    QTest::newRow("several next hops, none usable")
        << route({}, attribute(RTA_MULTIPATH, nextHop(wireless) + nextHop(loopback))) << false;
    QTest::newRow("the second of two")
        << route({AF_INET, 24}, through(wired)) + route({AF_INET6}, through(wired)) << true;
    QTest::newRow("a bad and a good one")
        << route({AF_INET6, 0, RT_TABLE_MAIN, RTN_UNREACHABLE}, through(loopback)) + route({}, through(wired))
        << true;
}

void NetlinkMessagesTest::routesDecide()
{
    QFETCH(QByteArray, routes);
    NetworkTables tables;
    QCOMPARE(readNetlinkMessages(usualLinks() + done(), sequence, tables), DumpState::Finished);
    QCOMPARE(readNetlinkMessages(routes + done(), sequence, tables), DumpState::Finished);
    QTEST(hasWayToInternet(tables), "isConnected");
}

void NetlinkMessagesTest::interfacesDecide_data()
{
    QTest::addColumn<uint>("flags");
    QTest::addColumn<bool>("isConnected");
    QTest::newRow("down") << 0U << false;
    QTest::newRow("up, unplugged") << uint(IFF_UP) << false;
    QTest::newRow("up, plugged in") << uint(IFF_UP | IFF_RUNNING) << true;
    QTest::newRow("down, plugged in") << uint(IFF_RUNNING) << false;
    QTest::newRow("a loopback") << uint(IFF_UP | IFF_RUNNING | IFF_LOOPBACK) << false;
    QTest::newRow("point to point") << uint(IFF_UP | IFF_RUNNING | IFF_POINTOPOINT | IFF_NOARP) << true;
}

void NetlinkMessagesTest::interfacesDecide()
{
    QFETCH(uint, flags);
    NetworkTables tables;
    QCOMPARE(readNetlinkMessages(link(wired, flags) + done(), sequence, tables), DumpState::Finished);
    QCOMPARE(readNetlinkMessages(route({}, through(wired)) + done(), sequence, tables), DumpState::Finished);
    QTEST(hasWayToInternet(tables), "isConnected");
}

void NetlinkMessagesTest::theEndOfAnAnswerIsSeen_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<DumpState>("state");
    const QByteArray interrupted = message(RTM_NEWLINK, bytesOf(ifinfomsg{}), NLM_F_MULTI | NLM_F_DUMP_INTR);
    const nlmsgerr refused{-EPERM, {}};
    const nlmsgerr accepted{};
    QTest::newRow("nothing") << QByteArray() << DumpState::Unfinished;
    QTest::newRow("no end yet") << usualLinks() << DumpState::Unfinished;
    QTest::newRow("end") << usualLinks() + done() << DumpState::Finished;
    QTest::newRow("end with an error") << usualLinks() + done(-ENOMEM) << DumpState::Failed;
    QTest::newRow("end without a number") << message(NLMSG_DONE, {}) << DumpState::Failed;
    QTest::newRow("refusal") << message(NLMSG_ERROR, bytesOf(refused), 0) << DumpState::Failed;
    QTest::newRow("confirmation") << message(NLMSG_ERROR, bytesOf(accepted), 0) << DumpState::Finished;
    QTest::newRow("tables changed, no end yet") << interrupted << DumpState::Interrupted;
    QTest::newRow("tables changed") << interrupted + done() << DumpState::Interrupted;
    QTest::newRow("tables changed, said at the end")
        << message(NLMSG_DONE, bytesOf(qint32(0)), NLM_F_MULTI | NLM_F_DUMP_INTR) << DumpState::Interrupted;
    QTest::newRow("messages of other kinds")
        << message(NLMSG_NOOP, {}) + message(RTM_NEWNEIGH, "abc") + done() << DumpState::Finished;
}

void NetlinkMessagesTest::theEndOfAnAnswerIsSeen()
{
    QFETCH(QByteArray, bytes);
    NetworkTables tables;
    QTEST(readNetlinkMessages(bytes, sequence, tables), "state");
}

void NetlinkMessagesTest::messagesOfAnotherRequestDoNotCount()
{
    rtmsg content{};
    content.rtm_family = AF_INET;
    content.rtm_table = RT_TABLE_MAIN;
    content.rtm_type = RTN_UNICAST;
    const QByteArray foreign = message(RTM_NEWROUTE, bytesOf(content) + through(wired), 0, sequence + 1)
        + message(NLMSG_DONE, bytesOf(qint32(0)), NLM_F_MULTI, sequence + 1);
    NetworkTables tables;
    QCOMPARE(readNetlinkMessages(usualLinks() + foreign, sequence, tables), DumpState::Unfinished);
    QVERIFY(!hasWayToInternet(tables));
}

void NetlinkMessagesTest::improperMessagesFail_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto withLength = [](QByteArray bytes, quint32 length) {
        return bytes.replace(0, 4, bytesOf(length));
    };
    // Attributes start with their length, after the header of the message and the fixed part of the route.
    const auto withAttributeLength = [](QByteArray bytes, quint16 length) {
        return bytes.replace(int(sizeof(nlmsghdr) + sizeof(rtmsg)), 2, bytesOf(length));
    };
    const QByteArray good = route({}, through(wired));
    QTest::newRow("no whole header") << good.left(15);
    QTest::newRow("length zero") << withLength(good, 0);
    QTest::newRow("shorter than its header") << withLength(good, 15);
    QTest::newRow("longer than what is there") << withLength(good, quint32(good.size()) + 1);
    QTest::newRow("longest length") << withLength(good, UINT_MAX);
    QTest::newRow("route without its fixed part") << message(RTM_NEWROUTE, QByteArray(11, '\0'));
    QTest::newRow("interface without its fixed part") << message(RTM_NEWLINK, QByteArray(15, '\0'));
    QTest::newRow("attribute of length zero") << withAttributeLength(good, 0);
    QTest::newRow("attribute shorter than its header") << withAttributeLength(good, 3);
    QTest::newRow("attribute longer than the message") << withAttributeLength(good, 100);
    QTest::newRow("attribute of the longest length") << withAttributeLength(good, 65535);
    QTest::newRow("interface number too short") << route({}, attribute(RTA_OIF, QByteArray(3, '\1')));
    QTest::newRow("table number missing") << route({}, attribute(RTA_TABLE, {}));
    QTest::newRow("next hop cut") << route({}, attribute(RTA_MULTIPATH, nextHop(wired).left(7)));
    QTest::newRow("next hop of length zero") << route({}, attribute(RTA_MULTIPATH, QByteArray(8, '\0')));
}

void NetlinkMessagesTest::improperMessagesFail()
{
    QFETCH(QByteArray, bytes);
    NetworkTables tables;
    QCOMPARE(readNetlinkMessages(bytes, sequence, tables), DumpState::Failed);
}

void NetlinkMessagesTest::anAnswerCutAnywhereIsNeverTakenAsWhole()
{
    const QByteArray whole =
        usualLinks() + route({}, attribute(RTA_MULTIPATH, nextHop(wireless) + nextHop(wired))) + done();
    for (int length = 0; length < whole.size(); ++length) {
        // A copy of its own, so that a sanitizer sees a read beyond its end.
        const QByteArray cut(whole.constData(), length);
        NetworkTables tables;
        QVERIFY(readNetlinkMessages(cut, sequence, tables) != DumpState::Finished);
    }
}

void NetlinkMessagesTest::rubbishDoesNoHarm()
{
    std::mt19937 random(20);
    const QByteArray whole =
        usualLinks() + route({}, attribute(RTA_MULTIPATH, nextHop(wireless) + nextHop(wired))) + done();
    const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<uint>(limit)); };
    for (int round = 0; round < 20000; ++round) {
        QByteArray bytes = whole;
        const int changes = 1 + below(8);
        for (int change = 0; change < changes; ++change)
            bytes[below(bytes.size())] = static_cast<char>(random());
        NetworkTables tables;
        readNetlinkMessages(bytes, sequence, tables);
        hasWayToInternet(tables);
    }
    for (int round = 0; round < 2000; ++round) {
        QByteArray bytes(below(256), '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(random());
        NetworkTables tables;
        readNetlinkMessages(bytes, sequence, tables);
    }
}

QTEST_GUILESS_MAIN(NetlinkMessagesTest)
#include "tst_netlinkmessages.moc"
