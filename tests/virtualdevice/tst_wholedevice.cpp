// The whole device as the launcher makes it: what is its own, what it shares, and that nothing of it stays.
#include "launch.h"
#include "processtable.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtTest/QtTest>

#include <csignal>
#include <unistd.h>

class WholeDeviceTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void commandKeepsTheCallersUserAndRights();
    void programsOfTheDeviceHaveNoRightsOfRoot();
    void namespacesAreTheDevicesOwn_data();
    void namespacesAreTheDevicesOwn();
    void namespacesEndWithTheDevice_data();
    void namespacesEndWithTheDevice();
    void addressIsSeenWhereContainersHidePartsOfSys();
    void displaySocketStaysReachable();
    void otherShellsEnterByTheAnnouncedCommand();
    void announcedCommandShowsTheClockThatWasAskedFor_data();
    void announcedCommandShowsTheClockThatWasAskedFor();
    void environmentsOfTwoDevicesDoNotMeet();
    void deviceClockMovesForTheCommand();
    void deviceClockComposesDateAndTime();
    void withoutDeviceClockTheCommandSeesTheMachines();
    void otherPreloadedLibrariesStay();
    void dataPartitionIsARowOfItsOwn();
    void dataPartitionNeedsRoot();
    void temporaryFolderThatTheDeviceHidesIsNotUsed_data();
    void temporaryFolderThatTheDeviceHidesIsNotUsed();
    void unusualTemporaryFolderIsUsed();
    void unusualProgramFolderIsNoHindrance();
    void callersWorkingFolderStays();
    void unreachableWorkingFolderStays();
    void startsInWellUnderASecond();
};

namespace {

QStringList shell(const QString &script)
{
    return {QStringLiteral("--without-daemon"), QStringLiteral("--"), QStringLiteral("/bin/sh"),
            QStringLiteral("-c"), script};
}

QString namespaceOf(const QString &process, const QString &kind)
{
    // A link that leads nowhere: "mnt:[4026531841]".
    return QFile::symLinkTarget(QStringLiteral("/proc/%1/ns/%2").arg(process, kind))
        .section(QLatin1Char('/'), -1);
}

QVector<qint64> processesIn(const QString &mountNamespace)
{
    QVector<qint64> result;
    for (const QString &name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (name.toLongLong() > 0 && namespaceOf(name, QStringLiteral("mnt")) == mountNamespace)
            result.append(name.toLongLong());
    }
    return result;
}

// What the launcher prints for other shells to read.
QByteArray announcement(Launch *launch)
{
    QByteArray text;
    while (!text.endsWith("# The device is ready.\n")) {
        const QByteArray line = launch->readLine();
        if (line.isEmpty())
            return {};
        text += line + '\n';
    }
    return text;
}

// What SCRIPT prints in a shell outside the device that has read TEXT.
QByteArray outputOfOtherShell(const QByteArray &text, const QString &script, const QString &folder)
{
    QProcess shell;
    shell.setWorkingDirectory(folder);
    shell.start(QStringLiteral("/bin/sh"),
                {QStringLiteral("-eu"), QStringLiteral("-c"), QString::fromUtf8(text) + script});
    if (!shell.waitForFinished())
        return "the shell does not end";
    return shell.readAllStandardError() + shell.readAllStandardOutput();
}

} // namespace

void WholeDeviceTest::initTestCase()
{
    SKIP_WHERE_DEVICES_ARE_FORBIDDEN();
}

void WholeDeviceTest::commandKeepsTheCallersUserAndRights()
{
    Launch launch;
    launch.run(shell(QStringLiteral("id -u; id -g; touch $HOME/file; stat -c '%u %g' $HOME/file;"
                                    " grep CapEff /proc/self/status | cut -f2")));
    const QByteArray user = QByteArray::number(geteuid());
    const QByteArray group = QByteArray::number(getegid());
    const QList<QByteArray> lines = launch.readOutput().split('\n');
    QCOMPARE(lines.value(0), user);
    QCOMPARE(lines.value(1), group);
    QCOMPARE(lines.value(2), user + ' ' + group);
    const bool hasRights = lines.value(3).toULongLong(nullptr, 16) != 0;
    QCOMPARE(hasRights, geteuid() == 0);
}

void WholeDeviceTest::programsOfTheDeviceHaveNoRightsOfRoot()
{
    if (geteuid() == 0)
        QSKIP("root's programs have root's rights");
    Launch launch;
    launch.start({QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                  QStringLiteral("timedatectl show >/dev/null; echo $ZBVIRTUALDEVICE_DIRECTORY; read go")});
    const QString directory = QFile::decodeName(launch.readLine());
    const QVector<qint64> programs = processesThatMention(directory);
    int seen = 0;
    for (const qint64 program : programs) {
        QFile status(QStringLiteral("/proc/%1/status").arg(program));
        QVERIFY(status.open(QIODevice::ReadOnly));
        const QByteArray text = status.readAll();
        // COMMAND, the bus, the daemon, the two services of the clock; the keeper has none of the variables.
        QVERIFY2(text.contains("CapEff:\t0000000000000000"), text.constData());
        ++seen;
    }
    QVERIFY2(seen >= 5, qPrintable(QString::number(seen)));
    launch.closeInput();
    QVERIFY(launch.waitForEnd());
}

void WholeDeviceTest::namespacesAreTheDevicesOwn_data()
{
    QTest::addColumn<bool>("own");
    for (const char *const kind : {"mnt", "net", "ipc", "uts"})
        QTest::newRow(kind) << true;
    // Process numbers are the machine's, by which the keeper finds what is left.
    QTest::newRow("pid") << false;
    QTest::newRow("user") << (geteuid() != 0);
}

void WholeDeviceTest::namespacesAreTheDevicesOwn()
{
    QFETCH(bool, own);
    const QString kind = QLatin1String(QTest::currentDataTag());
    Launch launch;
    launch.run(shell(QStringLiteral("readlink /proc/self/ns/%1").arg(kind)));
    const QString inside = QString::fromLatin1(launch.readOutput().trimmed());
    QVERIFY2(inside.startsWith(kind + QStringLiteral(":[")), qPrintable(inside));
    QCOMPARE(inside != namespaceOf(QStringLiteral("self"), kind), own);
}

void WholeDeviceTest::namespacesEndWithTheDevice_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM to launcher") << SIGTERM;
    QTest::newRow("SIGKILL to launcher") << SIGKILL;
    QTest::newRow("SIGKILL to keeper") << 0;
}

void WholeDeviceTest::namespacesEndWithTheDevice()
{
    // A namespace lives as long as a process in it; its mounts and interfaces go with it.
    QFETCH(int, number);
    Launch launch;
    launch.start({QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                  QStringLiteral("(setsid sleep 100 &); timedatectl show >/dev/null;"
                                 " readlink /proc/self/ns/mnt; exec sleep 100")});
    const QString inside = QString::fromLatin1(launch.readLine());
    // Keeper, bus, daemon, the clock's services, COMMAND and what it left in the background.
    QVERIFY(processesIn(inside).size() >= 7);
    if (number != 0)
        launch.sendSignal(number);
    else
        QCOMPARE(::kill(static_cast<pid_t>(childrenOf(launch.processId()).value(0)), SIGKILL), 0);
    QVERIFY(launch.waitForEnd());
    QTRY_COMPARE_WITH_TIMEOUT(processesIn(inside), QVector<qint64>(), 20000);
    QTRY_COMPARE_WITH_TIMEOUT(launch.folders(), QStringList(), 20000);
}

void WholeDeviceTest::addressIsSeenWhereContainersHidePartsOfSys()
{
    // The kernel then lets no user mount a /sys that hides less.
    const QString user = QString::number(geteuid() == 0 ? 65534 : geteuid());
    Launch launch;
    launch.startProgram(
        QStringLiteral("unshare"),
        {QStringLiteral("--user"), QStringLiteral("--map-root-user"), QStringLiteral("--mount"),
         QStringLiteral("sh"), QStringLiteral("-c"),
         QStringLiteral("mount -t tmpfs hidden /sys/kernel && exec unshare --user --map-user=%1"
                        " --map-group=%1 \"$@\"")
             .arg(user),
         QStringLiteral("sh"), QStringLiteral(LAUNCHER), QStringLiteral("--without-daemon"),
         QStringLiteral("sh"), QStringLiteral("-c"),
         QStringLiteral("cat /sys/class/net/wlan0/address; ls /sys/class/net; ls /sys/kernel")});
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.readErrors(), QByteArray());
    QCOMPARE(launch.readOutput(), QByteArray("02:00:5e:10:00:01\nwlan0\n"));
    QCOMPARE(launch.folders(), QStringList());
}

void WholeDeviceTest::displaySocketStaysReachable()
{
    // In a device, /run is ours to put a display's folder in; in the device in it, that folder is the
    // machine's.
    Launch launch;
    launch.run({QStringLiteral("--without-daemon"), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                QStringLiteral("mkdir -p /run/user/7 /run/other && touch /run/user/7/wayland-7 &&"
                               " export XDG_RUNTIME_DIR=/run/user/7 WAYLAND_DISPLAY=wayland-7;"
                               " \"$0\" --without-daemon sh -c 'echo $WAYLAND_DISPLAY;"
                               " test -e $WAYLAND_DISPLAY && echo there; ls /run';"
                               " WAYLAND_DISPLAY=; \"$0\" --without-daemon ls /run"),
                QStringLiteral(LAUNCHER)});
    QCOMPARE(launch.readErrors(), QByteArray());
    QCOMPARE(launch.readOutput(),
             QByteArray("/run/user/7/wayland-7\nthere\n"
                        "cups\ndbus\nlock\nsystemd\nuser\nzbvirtualdevice\n"
                        "cups\ndbus\nlock\nsystemd\nzbvirtualdevice\n"));
}

void WholeDeviceTest::otherShellsEnterByTheAnnouncedCommand()
{
    Launch launch;
    launch.start({});
    const QByteArray text = announcement(&launch);
    QVERIFY2(!text.isEmpty(), launch.readErrors().constData());
    const QList<QByteArray> lines =
        outputOfOtherShell(text,
                           QStringLiteral("in_device sh -c 'pwd; id -u; cat /sys/class/net/wlan0/address;"
                                          " fw_printenv -n ethaddr; timedatectl show --property=CanNTP;"
                                          " grep CapBnd /proc/self/status | cut -f2'"),
                           launch.place())
            .split('\n');
    QCOMPARE(lines.value(0), QFile::encodeName(launch.place()));
    QCOMPARE(lines.value(1), QByteArray::number(geteuid()));
    QCOMPARE(lines.value(2), QByteArray("02:00:5e:10:00:01"));
    QCOMPARE(lines.value(3), QByteArray("02:00:5e:10:00:02"));
    QCOMPARE(lines.value(4), QByteArray("CanNTP=yes"));
    if (geteuid() == 0)
        QVERIFY2(!(lines.value(5).toULongLong(nullptr, 16) & (1ULL << 25)), "may set the machine's clock");
    launch.sendSignal(SIGTERM);
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.exitStatus(), 0);
}

void WholeDeviceTest::announcedCommandShowsTheClockThatWasAskedFor_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("year");
    QTest::newRow("machine's") << QStringList{}
                               << QDate::currentDate().toString(QStringLiteral("yyyy")).toLatin1();
    QTest::newRow("device's") << QStringList{QStringLiteral("--device-clock")} << QByteArray("2001");
}

void WholeDeviceTest::announcedCommandShowsTheClockThatWasAskedFor()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, year);
    Launch launch;
    launch.start(options + QStringList{QStringLiteral("--without-daemon")});
    const QByteArray text = announcement(&launch);
    QVERIFY2(!text.isEmpty(), launch.readErrors().constData());
    // The log is read outside, by the path that was announced.
    const QByteArray output = outputOfOtherShell(
        text,
        QStringLiteral("in_device sh -c 'timedatectl set-ntp 0; sleep 0.3; timedatectl set-time 2001-02-03;"
                       " date +%Y'; cut -d. -f1 \"$ZBVIRTUALDEVICE_CLOCK_LOG\";"
                       " od -An -tu1 -N0 \"$ZBVIRTUALDEVICE_CLOCK_OFFSET\""),
        launch.place());
    QCOMPARE(output, year + "\n981158400\n");
    launch.sendSignal(SIGTERM);
    QVERIFY(launch.waitForEnd());
}

void WholeDeviceTest::environmentsOfTwoDevicesDoNotMeet()
{
    Launch first;
    first.start(shell(QStringLiteral("fw_setenv serialNumber first; echo de > /etc/corvanta/wayland.env;"
                                     " echo ready; read go; fw_printenv -n serialNumber")));
    QCOMPARE(first.readLine(), QByteArray("ready"));
    Launch second;
    second.run(shell(QStringLiteral("fw_printenv -n serialNumber; grep LAYOUT /etc/corvanta/wayland.env;"
                                    " fw_setenv serialNumber second")));
    QCOMPARE(second.readOutput(), QByteArray("BX24460173\nXKB_DEFAULT_LAYOUT=us\n"));
    first.write("go\n");
    QVERIFY(first.waitForEnd());
    QCOMPARE(first.readOutput(), QByteArray("first\n"));
}

void WholeDeviceTest::deviceClockMovesForTheCommand()
{
    // Both ways of setting it, as a program and as a service, and all ways of reading it.
    Launch launch;
    launch.run(
        QStringList{QStringLiteral("--device-clock")}
        + shell(QStringLiteral("timedatectl set-ntp 0; sleep 0.3; timedatectl set-time '2031-05-06 07:08:09';"
                               " date '+%F %H:%M'; timedatectl show --property=TimeUSec | cut -d: -f1;"
                               " date -s '1975-01-02 03:04:05' >/dev/null; date '+%F %H:%M';"
                               " perl -e 'print 1900 + (gmtime(time))[5], \"\\n\"' 2>/dev/null || echo 1975;"
                               " cut -d. -f1 $ZBVIRTUALDEVICE_CLOCK_LOG")));
    QCOMPARE(launch.readErrors(), QByteArray());
    const QList<QByteArray> lines = launch.readOutput().split('\n');
    QCOMPARE(lines.value(0), QByteArray("2031-05-06 07:08"));
    QCOMPARE(lines.value(1), QByteArray("TimeUSec=Tue 2031-05-06 07"));
    QCOMPARE(lines.value(2), QByteArray("1975-01-02 03:04"));
    QCOMPARE(lines.value(3), QByteArray("1975"));
    QCOMPARE(lines.value(4), QByteArray("1935817689"));
    QCOMPARE(lines.value(5), QByteArray("157863845"));
}

void WholeDeviceTest::deviceClockComposesDateAndTime()
{
    // A date alone means midnight, a time alone the day that the device has.
    Launch launch;
    launch.run(
        QStringList{QStringLiteral("--device-clock")}
        + shell(QStringLiteral("timedatectl set-ntp 0; sleep 0.3; timedatectl set-time 2024-02-29;"
                               " timedatectl set-time 09:05; cut -d. -f1 $ZBVIRTUALDEVICE_CLOCK_LOG")));
    QCOMPARE(launch.readErrors(), QByteArray());
    QCOMPARE(launch.readOutput(), QByteArray("1709164800\n1709197500\n"));
}

void WholeDeviceTest::withoutDeviceClockTheCommandSeesTheMachines()
{
    Launch launch;
    launch.run(shell(QStringLiteral("timedatectl set-ntp 0; sleep 0.3; timedatectl set-time 2001-02-03;"
                                    " echo \"<$LD_PRELOAD>\"; date +%s")));
    QCOMPARE(launch.readLine(), QByteArray("<>"));
    QVERIFY(qAbs(launch.readLine().toLongLong() - QDateTime::currentSecsSinceEpoch()) < 60);
}

void WholeDeviceTest::otherPreloadedLibrariesStay()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("a launcher with a sanitizer accepts no other library before it");
#endif
    Launch launch;
    launch.setVariable(QStringLiteral("LD_PRELOAD"), QStringLiteral("libc.so.6"));
    launch.run(QStringList{QStringLiteral("--device-clock")} + shell(QStringLiteral("echo $LD_PRELOAD")));
    QCOMPARE(launch.readOutput(), QByteArray("/run/zbvirtualdevice/deviceclock.so:libc.so.6\n"));
}

void WholeDeviceTest::dataPartitionIsARowOfItsOwn()
{
    if (geteuid() != 0)
        QSKIP("only root can mount ext4");
    Launch launch;
    launch.run(QStringList{QStringLiteral("--with-data-partition")}
               + shell(QStringLiteral("df -t ext4 --output=target,fstype /var/lib/corvanta/data | tail -n 1;"
                                      " touch /var/lib/corvanta/data/file; losetup -n -O BACK-FILE -a")));
    if (launch.exitStatus() == 77)
        QSKIP(launch.readErrors().trimmed().constData());
    QCOMPARE(launch.exitStatus(), 0);
    const QList<QByteArray> lines = launch.readOutput().split('\n');
    QCOMPARE(lines.value(0).simplified(), QByteArray("/var/lib/corvanta/data ext4"));
    QCOMPARE(launch.folders(), QStringList());
    const auto isFreed = [&launch] {
        QProcess devices;
        devices.start(
            QStringLiteral("losetup"),
            {QStringLiteral("--list"), QStringLiteral("--noheadings"), QStringLiteral("--output=BACK-FILE")});
        devices.waitForFinished();
        return !devices.readAllStandardOutput().contains(QFile::encodeName(launch.place()));
    };
    QTRY_VERIFY_WITH_TIMEOUT(isFreed(), 20000);
}

void WholeDeviceTest::dataPartitionNeedsRoot()
{
    if (geteuid() == 0)
        QSKIP("this is root");
    Launch launch;
    launch.run({QStringLiteral("--with-data-partition"), QStringLiteral("true")});
    QCOMPARE(launch.exitStatus(), 77);
    const QByteArray errors = launch.readErrors();
    QVERIFY2(
        errors.startsWith("zbvirtualdevice: this machine does not allow an ext4 file system in a file ("),
        errors.constData());
    QCOMPARE(errors.count('\n'), 1);
    QCOMPARE(launch.folders(), QStringList());
}

void WholeDeviceTest::temporaryFolderThatTheDeviceHidesIsNotUsed_data()
{
    QTest::addColumn<QString>("folder");
    for (const char *const folder : {"/run", "/var/run", "/run/lock", "/var/lib", "/etc"})
        QTest::newRow(folder) << QString::fromLatin1(folder);
}

void WholeDeviceTest::temporaryFolderThatTheDeviceHidesIsNotUsed()
{
    QFETCH(QString, folder);
    Launch launch;
    launch.setVariable(QStringLiteral("TMPDIR"), folder);
    launch.run(shell(QStringLiteral("test -d $HOME && echo $HOME")));
    const QByteArray home = launch.readOutput();
    QVERIFY2(home.startsWith("/tmp/zbvd-"), home.constData());
    QCOMPARE(launch.exitStatus(), 0);
}

void WholeDeviceTest::unusualTemporaryFolderIsUsed()
{
    // Overlays have a syntax of their own for paths, as has LD_PRELOAD.
    Launch launch;
    const QString folder = launch.place() + QString::fromUtf8("/a,b:c;d% e\\f&<ü>");
    QVERIFY(QDir().mkpath(folder));
    launch.setVariable(QStringLiteral("TMPDIR"), folder);
    launch.run(QStringList{QStringLiteral("--device-clock")}
               + shell(QStringLiteral("printf '%s\\n' \"$HOME\"; fw_printenv -n serialNumber;"
                                      " timedatectl set-ntp 0; sleep 0.3; timedatectl set-time 2024-02-29;"
                                      " cut -d. -f1 \"$ZBVIRTUALDEVICE_CLOCK_LOG\"; date +%Y")));
    QCOMPARE(launch.readErrors(), QByteArray());
    const QList<QByteArray> lines = launch.readOutput().split('\n');
    QVERIFY2(lines.value(0).startsWith(QFile::encodeName(folder) + "/zbvd-"), lines.value(0).constData());
    QCOMPARE(lines.value(1), QByteArray("BX24460173"));
    QCOMPARE(lines.value(2), QByteArray("1709164800"));
    QCOMPARE(lines.value(3), QByteArray("2024"));
    QVERIFY(QDir().rmdir(folder));
}

void WholeDeviceTest::unusualProgramFolderIsNoHindrance()
{
    // The bus has a syntax of its own for the programs that it starts.
    Launch launch;
    const QString folder = launch.place() + QStringLiteral("/it's a \"build\" \\ folder $HOME %s");
    const QString build = QFileInfo(launcher()).canonicalPath() + QStringLiteral("/../");
    for (const char *const file :
         {"bin/zbvirtualdevice", "bin/zbservicemanager", "bin/zbservicestart", "lib/libzbdeviceclock.so"}) {
        const QString copy = folder + QLatin1Char('/') + QLatin1String(file);
        QVERIFY(QDir().mkpath(QFileInfo(copy).path()));
        QVERIFY2(QFile::copy(build + QLatin1String(file), copy), qPrintable(build));
    }
    launch.startProgram(folder + QStringLiteral("/bin/zbvirtualdevice"),
                        QStringList{QStringLiteral("--device-clock"), QStringLiteral("--without-printqd")}
                            + shell(QStringLiteral("timedatectl show --property=CanNTP")));
    QVERIFY(launch.waitForEnd());
    QVERIFY(QDir(folder).removeRecursively());
    QCOMPARE(launch.readErrors(), QByteArray());
    QCOMPARE(launch.readOutput(), QByteArray("CanNTP=yes\n"));
}

void WholeDeviceTest::callersWorkingFolderStays()
{
    Launch launch;
    launch.startProgram(QStringLiteral("/bin/sh"),
                        {QStringLiteral("-c"),
                         QStringLiteral("cd \"$1\" && exec \"$0\" --without-daemon pwd"),
                         QStringLiteral(LAUNCHER), launch.place()});
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.readOutput(), QFile::encodeName(launch.place()) + '\n');
}

void WholeDeviceTest::unreachableWorkingFolderStays()
{
    // As after su(1) in a folder of root's: the user is in it, but no path leads there for that user.
    if (geteuid() != 0)
        QSKIP("only root can become somebody else");
    Launch launch;
    launch.startProgram(QStringLiteral("/bin/sh"),
                        {QStringLiteral("-c"),
                         QStringLiteral("mkdir \"$1/inner\" && cd \"$1/inner\" && unset TMPDIR && setpriv"
                                        " --reuid 65534 --regid 65534 --clear-groups"
                                        " \"$0\" --without-daemon stat -c %n:%i .; stat -c .:%i .; cd /;"
                                        " rmdir \"$1/inner\""),
                         launcher(), launch.place()});
    QVERIFY(launch.waitForEnd());
    const QByteArray errors = launch.readErrors();
    if (errors.startsWith("setpriv:"))
        QSKIP("this program lies where other users cannot reach it");
    QCOMPARE(errors, QByteArray());
    const QByteArrayList lines = launch.readOutput().split('\n');
    QVERIFY(lines.value(0).startsWith(".:"));
    QCOMPARE(lines.value(0), lines.value(1));
}

void WholeDeviceTest::startsInWellUnderASecond()
{
    qint64 best = std::numeric_limits<qint64>::max();
    for (int round = 0; round < 5; ++round) {
        Launch launch;
        QElapsedTimer timer;
        timer.start();
        launch.run({QStringLiteral("true")});
        best = qMin(best, timer.elapsed());
    }
    qInfo("start and end of a whole device: %lld ms", best);
    QVERIFY2(best < 1000, qPrintable(QString::number(best)));
}

QTEST_GUILESS_MAIN(WholeDeviceTest)
#include "tst_wholedevice.moc"
