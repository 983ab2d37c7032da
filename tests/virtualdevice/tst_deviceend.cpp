// However a device ends, no process and no file of it is left, and nothing outside it is touched.
#include "launch.h"
#include "processtable.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

class DeviceEndTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void nothingIsLeft_data();
    void nothingIsLeft();
    void nothingIsLeftOfAnUnfinishedStart_data();
    void nothingIsLeftOfAnUnfinishedStart();
    void processesThatForkWithoutEndAreKilled();
    void processesOfTheCommandNeverSeeTheDeviceGo();
    void daemonThatDoesNotEndIsAFailureAndIsKilled();
    void processesOfOthersThatComeAndGoDoNotDisturb();
    void stoppedProcessOfTheCallerIsNotHungUp();
    void deviceInADeviceGoesWithIt();
    void deviceOutlivesTheThreadThatStartedIt();
    void foldersWithoutRightsAreRemoved();
    void deepTreesAreRemoved();
    void linksOutOfTheDeviceAreNotFollowed();
    void mountedFoldersAreLeftAlone();
    void deviceKilledAtOnceLeavesAFolderForTheNextToRemove_data();
    void deviceKilledAtOnceLeavesAFolderForTheNextToRemove();
    void runningDevicesAndForeignFoldersAreLeftAlone();
};

namespace {

// The command's name for its device, then processes that try to outlive it: in the background, in a session
// of their own, without the device's environment, and deaf to everything that can be ignored.
const char *const litter =
    "ulimit -c 0; echo $ZBVIRTUALDEVICE_DIRECTORY; "
    "sleep 100 & "
    "(setsid sleep 100 &) ; "
    "(setsid env -i /bin/sh -c '/bin/sleep 100; :' $ZBVIRTUALDEVICE_DIRECTORY >/dev/null 2>&1 &) ; "
    "(trap '' HUP INT TERM; setsid sh -c 'sleep 100; sleep 100' &) ; "
    "echo ready; ";

enum End { ByItself, SignalToLauncher, SignalToKeeper, SignalToParent, SignalToGroup };

QStringList shell(const QString &script)
{
    return {QStringLiteral("--"), QStringLiteral("/bin/sh"), QStringLiteral("-c"), script};
}

qint64 keeperOf(qint64 launcher)
{
    return childrenOf(launcher).value(0);
}

} // namespace

void DeviceEndTest::initTestCase()
{
    SKIP_WHERE_DEVICES_ARE_FORBIDDEN();
}

void DeviceEndTest::nothingIsLeft_data()
{
    QTest::addColumn<int>("end");
    QTest::addColumn<int>("number");
    QTest::addColumn<QByteArray>("lastWords");
    QTest::addColumn<int>("status");
    QTest::newRow("command ends") << int(ByItself) << 0 << QByteArray("exit 3") << 3;
    QTest::newRow("command crashes") << int(ByItself) << 0 << QByteArray("kill -SEGV $$") << 139;
    const QByteArray wait = "exec sleep 100";
    QTest::newRow("SIGTERM to launcher") << int(SignalToLauncher) << SIGTERM << wait << 143;
    QTest::newRow("SIGINT to launcher") << int(SignalToLauncher) << SIGINT << wait << 130;
    QTest::newRow("SIGHUP to launcher") << int(SignalToLauncher) << SIGHUP << wait << 129;
    QTest::newRow("SIGKILL to launcher") << int(SignalToLauncher) << SIGKILL << wait << -1;
    QTest::newRow("SIGALRM to launcher") << int(SignalToLauncher) << SIGALRM << wait << -1;
    QTest::newRow("SIGTERM to keeper") << int(SignalToKeeper) << SIGTERM << wait << 143;
    QTest::newRow("SIGKILL to keeper") << int(SignalToKeeper) << SIGKILL << wait << 125;
    QTest::newRow("SIGKILL to parent") << int(SignalToParent) << SIGKILL << wait << -1;
    QTest::newRow("SIGKILL to the launcher's group") << int(SignalToGroup) << SIGKILL << wait << -1;
    QTest::newRow("parent ends") << int(SignalToParent) << SIGTERM << wait << -1;
}

void DeviceEndTest::nothingIsLeft()
{
    QFETCH(int, end);
    QFETCH(int, number);
    QFETCH(QByteArray, lastWords);
    QFETCH(int, status);
    Launch launch;
    const QStringList arguments = shell(QLatin1String(litter) + QLatin1String(lastWords));
    if (end == SignalToParent)
        launch.startFromShell(arguments);
    else if (end == SignalToGroup)
        launch.startProgram(QStringLiteral("setsid"), QStringList{launcher()} + arguments);
    else
        launch.start(arguments);
    const QString directory = QFile::decodeName(launch.readLine());
    QVERIFY2(directory.startsWith(launch.place()), launch.readErrors().constData());
    QCOMPARE(launch.readLine(), QByteArray("ready"));

    if (end == SignalToLauncher || end == SignalToParent)
        launch.sendSignal(number);
    if (end == SignalToGroup) {
        QVERIFY(launch.processId() > 1);
        QCOMPARE(::kill(static_cast<pid_t>(-launch.processId()), number), 0);
    }
    if (end == SignalToKeeper) {
        const qint64 keeper = keeperOf(launch.processId());
        QVERIFY(keeper > 0);
        QCOMPARE(::kill(static_cast<pid_t>(keeper), number), 0);
    }

    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.exitStatus(), status);
    const bool launcherWasThere = status >= 0;
    if (launcherWasThere) {
        // Then all is gone before the launcher is.
        QCOMPARE(launch.processes(), QStringList());
        QCOMPARE(launch.folders(), QStringList());
    }
    QTRY_COMPARE_WITH_TIMEOUT(launch.processes(), QStringList(), 20000);
    QTRY_COMPARE_WITH_TIMEOUT(launch.folders(), QStringList(), 20000);
}

void DeviceEndTest::nothingIsLeftOfAnUnfinishedStart_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("status");
    QTest::newRow("SIGTERM") << SIGTERM << 143;
    QTest::newRow("SIGINT") << SIGINT << 130;
    QTest::newRow("SIGKILL") << SIGKILL << -1;
}

void DeviceEndTest::nothingIsLeftOfAnUnfinishedStart()
{
    QFETCH(int, number);
    QFETCH(int, status);
    QTemporaryDir folder;
    QFile daemon(folder.filePath(QStringLiteral("daemon")));
    QVERIFY(daemon.open(QIODevice::WriteOnly));
    // Never takes its name, and says through a pipe that it runs.
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), S_IRUSR | S_IWUSR), 0);
    daemon.write("#!/bin/sh\necho started > " + QFile::encodeName(pipe) + "\nexec sleep 100\n");
    daemon.close();
    daemon.setPermissions(QFile::ReadOwner | QFile::ExeOwner);

    const int reader = open(QFile::encodeName(pipe).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QVERIFY(reader >= 0);

    Launch launch;
    launch.start(
        {QStringLiteral("--utilityd"), daemon.fileName(), QStringLiteral("echo"), QStringLiteral("never")});
    pollfd started = {reader, POLLIN, 0};
    const int ready = poll(&started, 1, 30000);
    close(reader);
    QCOMPARE(ready, 1);
    launch.sendSignal(number);
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.exitStatus(), status);
    QCOMPARE(launch.readOutput(), QByteArray());
    QTRY_COMPARE_WITH_TIMEOUT(launch.processes(), QStringList(), 20000);
    QTRY_COMPARE_WITH_TIMEOUT(launch.folders(), QStringList(), 20000);
}

void DeviceEndTest::processesThatForkWithoutEndAreKilled()
{
    // Each shell starts the next and ends, so that what is found in the process table is already gone. The
    // chain ends after half a minute, should it escape.
    const QString link = QStringLiteral("[ $2 = 0 ] || sh -c \"$1\" sh \"$1\" $(($2 - 1)) &");
    Launch launch;
    launch.start(QStringList{QStringLiteral("--without-daemon")}
                 + shell(QStringLiteral("setsid sh -c \"$1\" sh \"$1\" 20000 & echo ready; read go"))
                 + QStringList{QStringLiteral("sh"), link});
    QCOMPARE(launch.readLine(), QByteArray("ready"));
    launch.write("go\n");
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.exitStatus(), 0);
    QCOMPARE(launch.readErrors(), QByteArray());
    QCOMPARE(launch.processes(), QStringList());
    QCOMPARE(launch.folders(), QStringList());
}

void DeviceEndTest::processesOfTheCommandNeverSeeTheDeviceGo()
{
    QTemporaryDir outside;
    Launch launch;
    launch.start(
        shell(QStringLiteral("call() { dbus-send --system --print-reply --dest=com.corvanta.zbutility /"
                             " local.ZBUtilityd.UtilityDaemon.getShip; };"
                             " (call && echo ready; while call; do :; done >/dev/null 2>&1;"
                             " echo lost > \"$1/lost\") & read go"))
        + QStringList{QStringLiteral("sh"), outside.path()});
    QByteArray line;
    do
        line = launch.readLine();
    while (!line.isEmpty() && line != "ready");
    QCOMPARE(line, QByteArray("ready"));
    launch.write("go\n");
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.exitStatus(), 0);
    QVERIFY(!QFileInfo::exists(outside.filePath(QStringLiteral("lost"))));
}

void DeviceEndTest::daemonThatDoesNotEndIsAFailureAndIsKilled()
{
    // The shell is what the keeper has started; the daemon and the other one are its children.
    QTemporaryDir folder;
    QFile daemon(folder.filePath(QStringLiteral("daemon")));
    QVERIFY(daemon.open(QIODevice::WriteOnly));
    daemon.write("#!/bin/sh\ntrap '' TERM\nsleep 100 &\n\"$ZBVIRTUALDEVICE_REAL\" \"$@\"\nsleep 100\n");
    daemon.close();
    daemon.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    Launch launch;
    launch.setVariable(QStringLiteral("ZBVIRTUALDEVICE_REAL"),
                       QFileInfo(QStringLiteral(LAUNCHER)).path() + QStringLiteral("/zbutilityd"));
    launch.run({QStringLiteral("--utilityd"), daemon.fileName(), QStringLiteral("true")});
    QCOMPARE(launch.exitStatus(), 125);
    QCOMPARE(launch.readErrors(),
             QByteArray("zbvirtualdevice: zbutilityd does not end when told to (it wrote nothing)\n"));
    QCOMPARE(launch.processes(), QStringList());
    QCOMPARE(launch.folders(), QStringList());
}

void DeviceEndTest::processesOfOthersThatComeAndGoDoNotDisturb()
{
    // A process may be gone at each moment between being listed and being asked for its parent.
    QProcess others;
    others.start(
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"),
         QStringLiteral("echo begun; for i in $(seq 10000); do /bin/true & /bin/true & /bin/true; done")});
    QVERIFY(others.waitForReadyRead());
    for (int round = 0; round < 40; ++round) {
        Launch launch;
        launch.run(QStringList{QStringLiteral("--without-daemon")}
                   + shell(QStringLiteral("sleep 100 & exit 4")));
        QCOMPARE(launch.readErrors(), QByteArray());
        QCOMPARE(launch.exitStatus(), 4);
        QCOMPARE(launch.folders(), QStringList());
    }
    others.kill();
    QVERIFY(others.waitForFinished());
}

void DeviceEndTest::stoppedProcessOfTheCallerIsNotHungUp()
{
    // Without a terminal, as build servers run, nobody could continue a stopped process; the kernel then
    // sends SIGHUP to its whole group at the end of the last process in it with a parent in another group of
    // the session.
    Launch launch;
    launch.startProgram(
        QStringLiteral("setsid"),
        {QStringLiteral("--wait"), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
         QStringLiteral("sleep 100 & kill -STOP $!; until grep -q '^State:.T' /proc/$!/status; do :; done;"
                        " \"$0\" --without-daemon sh -c 'exit 5'; echo went on $?; kill -KILL $!"),
         launcher()});
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.readErrors(), QByteArray());
    QCOMPARE(launch.readOutput(), QByteArray("went on 5\n"));
    QTRY_COMPARE_WITH_TIMEOUT(launch.processes(), QStringList(), 20000);
}

void DeviceEndTest::deviceInADeviceGoesWithIt()
{
    Launch launch;
    launch.start({launcher(), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                  QLatin1String(litter) + QLatin1String("exec sleep 100")});
    const QString directory = QFile::decodeName(launch.readLine());
    QVERIFY(directory.startsWith(launch.place() + QLatin1Char('/') + launch.folders().value(0)
                                 + QStringLiteral("/tmp/zbvd-")));
    QCOMPARE(launch.readLine(), QByteArray("ready"));
    launch.sendSignal(SIGKILL);
    QVERIFY(launch.waitForEnd());
    QTRY_COMPARE_WITH_TIMEOUT(launch.processes(), QStringList(), 20000);
    QTRY_COMPARE_WITH_TIMEOUT(launch.folders(), QStringList(), 20000);
}

void DeviceEndTest::deviceOutlivesTheThreadThatStartedIt()
{
    // The kernel reports the end of the thread that forked, not of its process.
    std::array<int, 2> ends = {};
    QCOMPARE(pipe2(ends.data(), O_CLOEXEC), 0);
    pid_t started = 0;
    pid_t threadId = 0;
    std::array<char, 6> greeting = {};
    const QByteArray program = launcher().toLocal8Bit();
    std::thread starter([&] {
        threadId = gettid();
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        std::array<QByteArray, 3> words = {program, "--without-daemon", SIGNALREPORTER};
        std::array<char *, 4> arguments = {words[0].data(), words[1].data(), words[2].data(), nullptr};
        if (posix_spawn(&started, program.constData(), &actions, nullptr, arguments.data(), environ) != 0)
            started = 0;
        posix_spawn_file_actions_destroy(&actions);
        if (started > 0 && read(ends[0], greeting.data(), greeting.size()) != 6)
            greeting = {};
    });
    starter.join();
    close(ends[1]);
    QVERIFY(started > 0);
    QCOMPARE(QByteArray(greeting.data(), 6), QByteArray("ready\n"));
    QTRY_VERIFY(!QFileInfo::exists(QStringLiteral("/proc/self/task/%1").arg(threadId)));

    QCOMPARE(kill(started, SIGTERM), 0);
    int status = -1;
    QCOMPARE(waitpid(started, &status, 0), started);
    std::array<char, 64> rest = {};
    const ssize_t size = read(ends[0], rest.data(), rest.size());
    close(ends[0]);
    QCOMPARE(QByteArray(rest.data(), static_cast<int>(qMax<ssize_t>(size, 0))),
             QByteArray("signal 15 from process\n"));
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 0);
}

void DeviceEndTest::foldersWithoutRightsAreRemoved()
{
    // Rights do not bind root, unless root has lost the capability; but then it cannot make overlays.
    QStringList command = {QStringLiteral("setpriv"), QStringLiteral("--bounding-set"),
                           QStringLiteral("-dac_override,-dac_read_search")};
    QStringList options = {QStringLiteral("--bus-only"), QStringLiteral("--without-daemon")};
    if (geteuid() != 0) {
        command = QStringList{QStringLiteral("env")};
        options.removeFirst();
    }
    Launch launch;
    launch.startProgram(command.first(),
                        command.mid(1) + QStringList{launcher()} + options
                            + shell(QStringLiteral(
                                "cd \"$HOME\" && mkdir -p a/b/c d/e && touch a/b/c/file d/e/file &&"
                                " chmod 400 a/b/c/file && chmod 0 a/b/c && chmod 500 a/b && chmod 0 a d/e &&"
                                " chmod 500 d . .. && mkfifo \"$TMPDIR/pipe\" && chmod 0 \"$TMPDIR\"")));
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.readErrors(), QByteArray());
    QCOMPARE(launch.exitStatus(), 0);
    QCOMPARE(launch.folders(), QStringList());
}

void DeviceEndTest::deepTreesAreRemoved()
{
    // Deeper than the 1024 descriptors that a process may have open, and with names in the way that the
    // removal itself gives to folders.
    Launch launch;
    launch.run(QStringList{QStringLiteral("--without-daemon")}
               + shell(QStringLiteral("cd \"$HOME\" && mkdir -p $(printf 'd/%.0s' $(seq 1100)) && cd .. && "
                                      "touch $(seq -f '.removing-%g' 50)")));
    QCOMPARE(launch.readErrors(), QByteArray());
    QCOMPARE(launch.exitStatus(), 0);
    QCOMPARE(launch.folders(), QStringList());
}

void DeviceEndTest::linksOutOfTheDeviceAreNotFollowed()
{
    QTemporaryDir outside;
    QVERIFY(QDir(outside.path()).mkdir(QStringLiteral("folder")));
    const QString folder = outside.filePath(QStringLiteral("folder"));
    QFile file(folder + QStringLiteral("/file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("kept");
    file.close();
    file.setPermissions(QFile::ReadOwner);
    QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));

    Launch launch;
    launch.run(
        QStringList{QStringLiteral("--without-daemon")}
        + shell(QStringLiteral("mkdir $HOME/a && ln -s \"$1\" $HOME/a/link && ln -s \"$1\" $TMPDIR/link &&"
                               " ln -s \"$1/file\" $HOME/file && ln \"$1/file\" $HOME/same &&"
                               " rmdir $XDG_CACHE_HOME && ln -s \"$1\" $XDG_CACHE_HOME"))
        + QStringList{QStringLiteral("sh"), folder});
    QCOMPARE(launch.readErrors(), QByteArray());
    QCOMPARE(launch.exitStatus(), 0);
    QCOMPARE(launch.folders(), QStringList());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("kept"));
    struct stat status = {};
    QCOMPARE(stat(QFile::encodeName(folder).constData(), &status), 0);
    QCOMPARE(status.st_mode & 07777U, 0500U);
    QCOMPARE(stat(QFile::encodeName(file.fileName()).constData(), &status), 0);
    QCOMPARE(status.st_mode & 07777U, 0400U);
    QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void DeviceEndTest::mountedFoldersAreLeftAlone()
{
    QTemporaryDir outside;
    QFile file(outside.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(QFile::setPermissions(outside.path(), QFile::ReadOwner | QFile::ExeOwner));
    const QStringList unshare = {QStringLiteral("--user"), QStringLiteral("--map-root-user"),
                                 QStringLiteral("--mount")};
    if (QProcess::execute(QStringLiteral("unshare"), unshare + QStringList{QStringLiteral("true")}) != 0)
        QSKIP("this machine has no user namespaces to mount in");

    // The mounts are gone with the namespace in which the launcher runs too.
    Launch launch;
    launch.startProgram(
        QStringLiteral("unshare"),
        unshare + QStringList{launcher(), QStringLiteral("--without-daemon")}
            + shell(QStringLiteral("mkdir $HOME/mounted && mount --bind \"$1\" $HOME/mounted &&"
                                   " mount --bind \"$1\" $XDG_CACHE_HOME"))
            + QStringList{QStringLiteral("sh"), outside.path()});
    QVERIFY(launch.waitForEnd());
    const QString device = launch.place() + QLatin1Char('/') + launch.folders().value(0);
    if (launchesAreBusOnly()) {
        QCOMPARE(launch.exitStatus(), 125);
        const QByteArray beginning = "zbvirtualdevice: cannot remove '";
        const QByteArray end = "' in '" + QFile::encodeName(device) + "': Device or resource busy\n";
        const QList<QByteArray> complaints = launch.readErrors().split('\n');
        for (const char *const name : {"cache", "mounted"})
            QVERIFY2(complaints.contains((beginning + name + end).chopped(1)),
                     complaints.join('\n').constData());
    } else {
        // The command mounted it where only the device sees it.
        QCOMPARE(launch.readErrors(), QByteArray());
        QCOMPARE(launch.exitStatus(), 0);
        QCOMPARE(launch.folders(), QStringList());
    }
    QVERIFY(file.exists());
    struct stat status = {};
    QCOMPARE(stat(QFile::encodeName(outside.path()).constData(), &status), 0);
    QCOMPARE(status.st_mode & 07777U, 0500U);
    QVERIFY(QFile::setPermissions(outside.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    if (launchesAreBusOnly())
        QVERIFY(QDir(device).removeRecursively());
}

void DeviceEndTest::deviceKilledAtOnceLeavesAFolderForTheNextToRemove_data()
{
    QTest::addColumn<QString>("firstWords");
    QTest::newRow("clock at rest") << QString();
    // The bus has then started services of its own.
    QTest::newRow("clock in use") << QStringLiteral("timedatectl show >/dev/null 2>&1;");
}

void DeviceEndTest::deviceKilledAtOnceLeavesAFolderForTheNextToRemove()
{
    QFETCH(QString, firstWords);
    Launch launch;
    launch.start(shell(firstWords + QStringLiteral("echo ready; exec sleep 100")));
    QCOMPARE(launch.readLine(), QByteArray("ready"));
    const qint64 keeper = keeperOf(launch.processId());
    QVERIFY(keeper > 0);
    launch.sendSignal(SIGSTOP);
    QCOMPARE(::kill(static_cast<pid_t>(keeper), SIGKILL), 0);
    launch.sendSignal(SIGKILL);
    QVERIFY(launch.waitForEnd());
    QTRY_COMPARE_WITH_TIMEOUT(launch.processes(), QStringList(), 10000);
    QCOMPARE(launch.folders().size(), 1);

    Launch next;
    next.setVariable(QStringLiteral("TMPDIR"), launch.place());
    next.run({QStringLiteral("true")});
    QCOMPARE(next.exitStatus(), 0);
    QCOMPARE(next.readErrors(), QByteArray());
    QCOMPARE(launch.folders(), QStringList());
}

void DeviceEndTest::runningDevicesAndForeignFoldersAreLeftAlone()
{
    Launch launch;
    launch.start(shell(QStringLiteral(
        "echo ready; read go; test -d \"$HOME\" && test -S $ZBVIRTUALDEVICE_DIRECTORY/bus/socket")));
    QCOMPARE(launch.readLine(), QByteArray("ready"));
    const QString foreign = launch.place() + QStringLiteral("/zbvd-abcdef");
    QVERIFY(QDir().mkdir(foreign));

    Launch next;
    next.setVariable(QStringLiteral("TMPDIR"), launch.place());
    next.run({QStringLiteral("--without-daemon"), QStringLiteral("true")});
    QCOMPARE(next.exitStatus(), 0);
    QCOMPARE(launch.folders().size(), 2);
    launch.write("go\n");
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.exitStatus(), 0);
    QVERIFY(QDir().rmdir(foreign));
}

QTEST_GUILESS_MAIN(DeviceEndTest)
#include "tst_deviceend.moc"
