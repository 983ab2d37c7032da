// Where the machine allows no namespaces, the whole device says so and counts as skipped, and the device with
// a bus only works.
#include "launch.h"

#include <QtTest/QtTest>

#include <unistd.h>

class ForbiddenDeviceTest : public QObject
{
    Q_OBJECT

private slots:
    void wholeDeviceSaysWhatIsForbidden_data();
    void wholeDeviceSaysWhatIsForbidden();
    void deviceWithBusOnlyWorks_data() { wholeDeviceSaysWhatIsForbidden_data(); }
    void deviceWithBusOnlyWorks();
    void commandOfAForbiddenDeviceNeverRuns();
};

namespace {

// Words before the launcher, which then runs where something is forbidden; empty where the test cannot forbid
// it.
QStringList rootWithout(const char *capability)
{
    if (geteuid() != 0)
        return {};
    return {QStringLiteral("setpriv"), QStringLiteral("--bounding-set"),
            QLatin1Char('-') + QLatin1String(capability)};
}

// As many user namespaces as it takes to get there, as a user that the machine knows and that is not root.
QStringList noUserNamespaces()
{
    const QString user = QString::number(geteuid() == 0 ? 65534 : geteuid());
    const QStringList words = {
        QStringLiteral("unshare"),
        QStringLiteral("--user"),
        QStringLiteral("--map-root-user"),
        QStringLiteral("sh"),
        QStringLiteral("-c"),
        QStringLiteral("echo 1 > /proc/sys/user/max_user_namespaces && exec unshare --user --map-user=%1"
                       " --map-group=%1 \"$@\"")
            .arg(user),
        QStringLiteral("sh")};
    const bool works =
        QProcess::execute(words.first(), words.mid(1) + QStringList{QStringLiteral("true")}) == 0;
    return works ? words : QStringList();
}

} // namespace

void ForbiddenDeviceTest::wholeDeviceSaysWhatIsForbidden_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QByteArray>("forbidden");
    QTest::newRow("root without rights")
        << rootWithout("sys_admin")
        << QByteArray("namespaces for mounts and network (Operation not permitted)");
    QTest::newRow("root who cannot give up rights")
        << rootWithout("setpcap")
        << QByteArray("to give up the right to set the machine's clock (Operation not permitted)");
    QTest::newRow("root who cannot make interfaces")
        << rootWithout("net_admin")
        << QByteArray("a network interface (RTNETLINK answers: Operation not permitted)");
    QTest::newRow("no more user namespaces")
        << noUserNamespaces() << QByteArray("a user namespace (No space left on device)");
}

void ForbiddenDeviceTest::wholeDeviceSaysWhatIsForbidden()
{
    QFETCH(QStringList, words);
    QFETCH(QByteArray, forbidden);
    if (words.isEmpty())
        QSKIP("this user cannot forbid it");
    Launch launch;
    launch.startProgram(words.first(), words.mid(1) + QStringList{launcher(), QStringLiteral("true")});
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.exitStatus(), 77);
    QCOMPARE(launch.readErrors(),
             "zbvirtualdevice: this machine does not allow " + forbidden
                 + ", which a whole device needs; a device with --bus-only does without\n");
    QCOMPARE(launch.readOutput(), QByteArray());
    QCOMPARE(launch.folders(), QStringList());
    QCOMPARE(launch.processes(), QStringList());
}

void ForbiddenDeviceTest::deviceWithBusOnlyWorks()
{
    QFETCH(QStringList, words);
    if (words.isEmpty())
        QSKIP("this user cannot forbid it");
    Launch launch;
    launch.startProgram(
        words.first(),
        words.mid(1)
            + QStringList{launcher(), QStringLiteral("--bus-only"), QStringLiteral("dbus-send"),
                          QStringLiteral("--system"), QStringLiteral("--print-reply=literal"),
                          QStringLiteral("--dest=com.corvanta.zbutility"), QStringLiteral("/"),
                          QStringLiteral("local.ZBUtilityd.UtilityDaemon.getShip")});
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.readErrors(), QByteArray());
    QCOMPARE(launch.exitStatus(), 0);
    QCOMPARE(launch.readOutput().trimmed(), QByteArray("int32 0"));
}

void ForbiddenDeviceTest::commandOfAForbiddenDeviceNeverRuns()
{
    const QStringList words = geteuid() == 0 ? rootWithout("sys_admin") : noUserNamespaces();
    if (words.isEmpty())
        QSKIP("this user cannot forbid it");
    Launch launch;
    launch.startProgram(words.first(),
                        words.mid(1)
                            + QStringList{launcher(), QStringLiteral("echo"), QStringLiteral("never")});
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.readOutput(), QByteArray());
}

QTEST_GUILESS_MAIN(ForbiddenDeviceTest)
#include "tst_forbiddendevice.moc"
