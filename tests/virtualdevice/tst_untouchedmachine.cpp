// Whatever a command does in a whole device, the machine is the same before and after: its folders, locks,
// interfaces, mounts and clock.
#include "launch.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <ctime>
#include <sys/stat.h>
#include <unistd.h>

class UntouchedMachineTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void foldersInterfacesAndMountsAreAsBefore_data();
    void foldersInterfacesAndMountsAreAsBefore();
    void relativePathsLeadIntoTheDevice_data();
    void relativePathsLeadIntoTheDevice();
    void workingFolderThatTheDeviceLacksIsReplaced();
    void clockIsAsBefore();
    void commandMayNotSetTheMachinesClock();
    void deviceSeesNothingOfTheMachinesRunFolder();
    void hostNameIsTheDevicesOwn();
};

namespace {

// Everything that a device has in the place of the machine's, changed as much as the command's rights allow.
// The first argument is the test's own mount namespace: should the device be in it, the machine is not made
// to pay.
const char *const havoc =
    "[ \"$(readlink /proc/self/ns/mnt)\" != \"$1\" ] || exit 99;"
    "lp -d BrackenXL /etc/passwd; lpoptions -p BrackenXL -o Feed=Custom.1;"
    "rm -rf /etc/cups/*; touch /etc/cups/zb-new;"
    "touch /etc/zb-new /run/lock/zb-new /run/zb-new /usr/share/data/zb-new /var/lib/zb-new;"
    "mkdir -p /etc/corvanta/folder;"
    "rm -f /etc/hostname /etc/fw_env.config /usr/share/data/Corvanta;"
    "echo XKB_DEFAULT_LAYOUT=de > /etc/corvanta/wayland.env;"
    "fw_setenv supplyTrans; fw_setenv zbShip 2;"
    "timedatectl set-timezone Asia/Kathmandu;"
    "timedatectl set-ntp 0; sleep 0.3; timedatectl set-time '2001-02-03 04:05:06';"
    "[ -z \"$LD_PRELOAD\" ] || date -s '2002-03-04'; ip link set wlan0 down; ip link delete wlan0;"
    "mount --bind /usr /mnt; hostname zb-new; echo done";

QByteArray describe(const QString &path)
{
    struct stat status = {};
    if (lstat(QFile::encodeName(path).constData(), &status) != 0)
        return QFile::encodeName(path) + " absent\n";
    return QFile::encodeName(path) + ' ' + QByteArray::number(status.st_mode, 8) + ' '
        + QByteArray::number(qint64{status.st_size}) + ' ' + QByteArray::number(qint64{status.st_mtim.tv_sec})
        + '.' + QByteArray::number(qint64{status.st_mtim.tv_nsec}) + ' '
        + QByteArray::number(quint64{status.st_ino}) + '\n';
}

QByteArray listing(const QString &folder, QDirIterator::IteratorFlags flags)
{
    QByteArrayList lines = {describe(folder)};
    QDirIterator iterator(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                          flags);
    while (iterator.hasNext())
        lines.append(describe(iterator.next()));
    std::sort(lines.begin(), lines.end());
    return lines.join();
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray machine()
{
    QByteArray result;
    for (const char *const folder :
         {"/etc", "/run/lock", "/run/dbus", "/usr/share/data", "/var/lib/corvanta"})
        result += listing(QLatin1String(folder), QDirIterator::Subdirectories);
    for (const char *const folder : {"/run", "/run/systemd", "/var/lib", "/usr/share", "/dev/shm"})
        result += describe(QLatin1String(folder));
    for (const char *const folder : {"/var/cache/cups", "/var/log/cups", "/var/spool/cups", "/root/.cups"})
        result += listing(QLatin1String(folder), QDirIterator::Subdirectories);
    for (const QString &name :
         QDir(QStringLiteral("/sys/class/net")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot))
        result += name.toLocal8Bit() + '\n';
    return result + contentOf(QStringLiteral("/proc/self/mountinfo"))
        + contentOf(QStringLiteral("/proc/sys/kernel/hostname")) + contentOf(QStringLiteral("/etc/hostname"));
}

// What the clock is ahead of one that nobody can set.
double clockLead()
{
    timespec day = {};
    timespec steady = {};
    clock_gettime(CLOCK_REALTIME, &day);
    clock_gettime(CLOCK_BOOTTIME, &steady);
    return double(day.tv_sec - steady.tv_sec) + 1e-9 * double(day.tv_nsec - steady.tv_nsec);
}

// The launcher with ARGUMENTS, started in FOLDER.
void runIn(const QString &folder, const QStringList &arguments, Launch *launch)
{
    launch->startProgram(QStringLiteral("/bin/sh"),
                         QStringList{QStringLiteral("-c"),
                                     QStringLiteral("cd \"$1\" && shift && exec \"$0\" \"$@\""), launcher(),
                                     folder}
                             + arguments);
    QVERIFY(launch->waitForEnd());
}

QStringList shell(const QString &script)
{
    return {QStringLiteral("--"), QStringLiteral("/bin/sh"), QStringLiteral("-c"), script};
}

} // namespace

void UntouchedMachineTest::initTestCase()
{
    SKIP_WHERE_DEVICES_ARE_FORBIDDEN();
}

void UntouchedMachineTest::foldersInterfacesAndMountsAreAsBefore_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::newRow("machine's clock in sight") << QStringList{};
    QTest::newRow("device's clock in sight") << QStringList{QStringLiteral("--device-clock")};
}

void UntouchedMachineTest::foldersInterfacesAndMountsAreAsBefore()
{
    QFETCH(QStringList, options);
    const QByteArray before = machine();
    QVERIFY(before.contains("/etc/passwd"));
    const double lead = clockLead();
    Launch launch;
    launch.run(options + shell(QLatin1String(havoc))
               + QStringList{
                   QStringLiteral("sh"),
                   QFile::symLinkTarget(QStringLiteral("/proc/self/ns/mnt")).section(QLatin1Char('/'), -1)});
    QCOMPARE(launch.exitStatus(), 0);
    QVERIFY(launch.readOutput().endsWith("done\n"));
    QCOMPARE(machine(), before);
    QVERIFY2(qAbs(clockLead() - lead) < 1, "the machine's clock was moved");
    QCOMPARE(launch.folders(), QStringList());
}

void UntouchedMachineTest::relativePathsLeadIntoTheDevice_data()
{
    QTest::addColumn<QString>("folder");
    for (const char *const folder : {"/etc", "/run", "/run/lock", "/var/lib", "/usr/share", "/sys/class/net"})
        QTest::newRow(folder) << QString::fromLatin1(folder);
}

void UntouchedMachineTest::relativePathsLeadIntoTheDevice()
{
    QFETCH(QString, folder);
    const QString onTheMachine = folder + QStringLiteral("/zb-here");
    QVERIFY(!QFileInfo::exists(onTheMachine));
    Launch launch;
    runIn(
        folder,
        shell(QStringLiteral("pwd -P; [ \"$(stat -c %d:%i .)\" = \"$(stat -c %d:%i \"$1\")\" ] && echo same;"
                             " touch zb-here 2>/dev/null && ls \"$1/zb-here\"; true"))
            + QStringList{QStringLiteral("sh"), folder},
        &launch);
    const bool wasReached = QFile::remove(onTheMachine);
    QVERIFY2(!wasReached, "the command wrote to the machine");
    QCOMPARE(launch.exitStatus(), 0);
    const QByteArrayList lines = launch.readOutput().trimmed().split('\n');
    QCOMPARE(lines.value(0), QFile::encodeName(folder));
    QCOMPARE(lines.value(1), QByteArray("same"));
    const bool isWritten = geteuid() == 0 && !folder.startsWith(QStringLiteral("/sys"));
    if (isWritten)
        QCOMPARE(lines.value(2), QFile::encodeName(onTheMachine));
}

void UntouchedMachineTest::workingFolderThatTheDeviceLacksIsReplaced()
{
    // What is in the machine's /run, the device's has not.
    const QTemporaryDir folder(QStringLiteral("/run/lock/zbvt-XXXXXX"));
    if (!folder.isValid())
        QSKIP("this user cannot make a folder in /run/lock");
    Launch launch;
    runIn(folder.path(), shell(QStringLiteral("pwd -P")), &launch);
    QCOMPARE(launch.readOutput(), QByteArray("/\n"));
    QCOMPARE(launch.readErrors(),
             "zbvirtualdevice: cannot enter '" + QFile::encodeName(folder.path())
                 + "' in the device, going to '/': No such file or directory\n");
    QCOMPARE(launch.exitStatus(), 0);
}

void UntouchedMachineTest::clockIsAsBefore()
{
    const double lead = clockLead();
    Launch launch;
    launch.run(shell(
        QStringLiteral("timedatectl set-ntp 0; sleep 0.3; timedatectl set-time 2001-02-03 && date +%Y")));
    QCOMPARE(launch.exitStatus(), 0);
    QVERIFY2(launch.readOutput().trimmed().toInt() > 2020, "the command saw the machine's clock move");
    QVERIFY2(qAbs(clockLead() - lead) < 1, "the machine's clock was moved");
}

void UntouchedMachineTest::commandMayNotSetTheMachinesClock()
{
    // Only asks for the right: a wrong answer must not cost this machine its time.
    Launch launch;
    launch.run(shell(QStringLiteral("grep -E '^Cap(Inh|Prm|Eff|Bnd|Amb)' /proc/self/status")));
    const QList<QByteArray> lines = launch.readOutput().trimmed().split('\n');
    QCOMPARE(lines.size(), 5);
    constexpr quint64 setTime = 1ULL << 25;
    for (const QByteArray &line : lines) {
        bool isNumber = false;
        const quint64 set = line.mid(line.indexOf('\t') + 1).toULongLong(&isNumber, 16);
        QVERIFY2(isNumber && !(set & setTime), line.constData());
    }
}

void UntouchedMachineTest::deviceSeesNothingOfTheMachinesRunFolder()
{
    Launch launch;
    launch.run(shell(QStringLiteral("ls /run; ls /run/lock; ls -ld /run/lock | cut -c1-10")));
    QCOMPARE(launch.readOutput(),
             QByteArray("cups\ndbus\nlock\nsystemd\nzbvirtualdevice\nfw_printenv.lock\ndrwxrwxrwt\n"));
}

void UntouchedMachineTest::hostNameIsTheDevicesOwn()
{
    if (geteuid() != 0)
        QSKIP("only root can change a host name");
    const QByteArray before = contentOf(QStringLiteral("/proc/sys/kernel/hostname"));
    Launch launch;
    launch.run(
        shell(QStringLiteral("echo zb-new > /proc/sys/kernel/hostname; cat /proc/sys/kernel/hostname")));
    QCOMPARE(launch.readOutput(), QByteArray("zb-new\n"));
    QCOMPARE(contentOf(QStringLiteral("/proc/sys/kernel/hostname")), before);
}

QTEST_GUILESS_MAIN(UntouchedMachineTest)
#include "tst_untouchedmachine.moc"
