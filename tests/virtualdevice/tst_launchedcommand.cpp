// What a command sees that the launcher runs: its arguments, streams, environment and signals, and what the
// caller sees of it.
#include "launch.h"
#include "processtable.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <csignal>

class LaunchedCommandTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void exitStatusIsTheCommands_data();
    void exitStatusIsTheCommands();
    void argumentsArriveUnharmed();
    void optionsAfterTheCommandAreTheCommands();
    void inputAndOutputPassThrough();
    void errorsPassThrough();
    void otherDescriptorsPassToTheCommandOnly();
    void environmentNamesPrivateFolders();
    void sessionBusIsHidden();
    void otherVariablesPassThrough();
    void displayStaysReachable();
    void signalsReachTheCommandOnce_data();
    void signalsReachTheCommandOnce();
    void ignoredSignalsStayIgnoredInTheCommand();
    void ignoredChildSignalDoesNotLoseTheStatus();
    void commandThatIgnoresTerminationIsKilled();
    void longOrUselessTemporaryFolderIsNotUsed_data();
    void longOrUselessTemporaryFolderIsNotUsed();
    void unusualTemporaryFolderIsUsed();
    void ownFailuresAreOneSentence_data();
    void ownFailuresAreOneSentence();
    void missingProgramNamesThePackage();
    void daemonThatDoesNotComeUpShowsItsLog();
    void helpNamesTheOptions();
};

namespace {

QStringList shell(const QString &script)
{
    return {QStringLiteral("--without-daemon"), QStringLiteral("--"), QStringLiteral("/bin/sh"),
            QStringLiteral("-c"), script};
}

QString scriptIn(const QString &folder, const QByteArray &text)
{
    const QString path = folder + QStringLiteral("/script");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        return {};
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

} // namespace

void LaunchedCommandTest::initTestCase()
{
    SKIP_WHERE_DEVICES_ARE_FORBIDDEN();
}

void LaunchedCommandTest::exitStatusIsTheCommands_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<int>("status");
    const auto sh = [](const char *script) {
        return QStringList{QStringLiteral("sh"), QStringLiteral("-c"), QLatin1String(script)};
    };
    QTest::newRow("success") << QStringList{QStringLiteral("true")} << 0;
    QTest::newRow("failure") << QStringList{QStringLiteral("false")} << 1;
    QTest::newRow("any status") << sh("exit 77") << 77;
    QTest::newRow("largest status") << sh("exit 255") << 255;
    QTest::newRow("crash") << sh("ulimit -c 0; kill -SEGV $$") << 139;
    QTest::newRow("killed") << sh("kill -KILL $$") << 137;
    QTest::newRow("no such command") << QStringList{QStringLiteral("no-such-command")} << 127;
    QTest::newRow("no such path") << QStringList{QStringLiteral("/nowhere/command")} << 127;
    QTest::newRow("empty command") << QStringList{QString()} << 127;
    QTest::newRow("not executable") << QStringList{QStringLiteral("/etc/passwd")} << 126;
    QTest::newRow("a folder") << QStringList{QStringLiteral("/etc")} << 126;
}

void LaunchedCommandTest::exitStatusIsTheCommands()
{
    QFETCH(QStringList, command);
    QFETCH(int, status);
    Launch launch;
    // A folder in PATH that this user may not read would make "no such command" a "not allowed".
    launch.setVariable(QStringLiteral("PATH"), QStringLiteral("/usr/bin:/bin"));
    launch.run(QStringList{QStringLiteral("--without-daemon"), QStringLiteral("--")} + command);
    QCOMPARE(launch.exitStatus(), status);
    QCOMPARE(launch.folders(), QStringList());
    QCOMPARE(launch.processes(), QStringList());
}

void LaunchedCommandTest::argumentsArriveUnharmed()
{
    const QStringList arguments = {
        QStringLiteral("two words"),
        QString(),
        QStringLiteral("it's \"quoted\""),
        QStringLiteral("$HOME `id` \\"),
        QStringLiteral("line\nend\ttab"),
        QString::fromUtf8("größe 温度 \xf0\x9f\x96\xa8"),
        QStringLiteral("--help"),
        QStringLiteral("--"),
        QStringLiteral("*"),
        QStringLiteral(" "),
    };
    Launch launch;
    launch.run(shell(QStringLiteral("printf '%s\\0' \"$@\"")) + QStringList{QStringLiteral("sh")}
               + arguments);
    QStringList seen;
    for (const QByteArray &argument : launch.readOutput().split('\0'))
        seen.append(QString::fromUtf8(argument));
    QCOMPARE(seen, arguments + QStringList{QString()});
}

void LaunchedCommandTest::optionsAfterTheCommandAreTheCommands()
{
    Launch launch;
    launch.run({QStringLiteral("--without-daemon"), QStringLiteral("echo"),
                QStringLiteral("--without-daemon"), QStringLiteral("--help")});
    QCOMPARE(launch.readOutput(), QByteArray("--without-daemon --help\n"));
}

void LaunchedCommandTest::inputAndOutputPassThrough()
{
    QByteArray everyByte;
    for (int byte = 0; byte < 256; ++byte)
        everyByte += static_cast<char>(byte);
    const QByteArray input = everyByte.repeated(4096);
    Launch launch;
    launch.start({QStringLiteral("--without-daemon"), QStringLiteral("cat")});
    launch.write(input);
    launch.closeInput();
    QVERIFY(launch.waitForEnd());
    QVERIFY(launch.readOutput() == input);
    QCOMPARE(launch.exitStatus(), 0);
}

void LaunchedCommandTest::errorsPassThrough()
{
    Launch launch;
    launch.run(shell(QStringLiteral("echo out; echo err >&2")));
    QCOMPARE(launch.readOutput(), QByteArray("out\n"));
    QCOMPARE(launch.readErrors(), QByteArray("err\n"));
}

void LaunchedCommandTest::otherDescriptorsPassToTheCommandOnly()
{
    QProcess direct;
    direct.start(QStringLiteral("/bin/sh"),
                 {QStringLiteral("-c"),
                  QStringLiteral("exec 9</etc/passwd;"
                                 " ls /proc/self/fd")});
    QVERIFY(direct.waitForFinished());
    const QByteArray expected = direct.readAllStandardOutput().simplified();

    // A part of the device that held the caller's pipe would keep its reader waiting.
    Launch launch;
    launch.start({QStringLiteral("--without-daemon"), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                  QStringLiteral("exec 9</etc/passwd; exec \"$0\" sh -c 'echo $ZBVIRTUALDEVICE_DIRECTORY;"
                                 " readlink /proc/self/fd/9; echo $(ls /proc/self/fd); read go'"),
                  launcher()});
    const QString directory = QFile::decodeName(launch.readLine());
    QCOMPARE(launch.readLine(), QByteArray("/etc/passwd"));
    // None of the launcher's.
    QCOMPARE(launch.readLine(), expected);

    const QString bus = directory + QStringLiteral("/bus/system.conf");
    QVector<qint64> daemons = processesWithCommandLine(bus);
    daemons += processesWithCommandLine(directory + QStringLiteral("/utilityd"));
    QCOMPARE(daemons.size(), 2);
    for (const qint64 daemon : daemons) {
        const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(daemon));
        QVERIFY(!descriptors.entryList().isEmpty());
        for (const QFileInfo &descriptor : descriptors.entryInfoList(QDir::AllEntries | QDir::System))
            QVERIFY(descriptor.symLinkTarget() != QStringLiteral("/etc/passwd"));
    }
    launch.write("go\n");
    QVERIFY(launch.waitForEnd());
}

void LaunchedCommandTest::environmentNamesPrivateFolders()
{
    Launch launch;
    launch.start(shell(QStringLiteral(
        "for name in ZBVIRTUALDEVICE_DIRECTORY HOME XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME "
        "XDG_STATE_HOME"
        " XDG_RUNTIME_DIR TMPDIR; do eval \"value=\\$$name\"; echo \"$name $(stat -c '%a %F' \"$value\") "
        "$value\";"
        " done; echo \"$DBUS_SYSTEM_BUS_ADDRESS\"; echo \"$ZBVIRTUALDEVICE_UTILITYD\"; read stay")));
    QSet<QByteArray> folders;
    for (const char *name : {"ZBVIRTUALDEVICE_DIRECTORY", "HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME",
                             "XDG_CACHE_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
        const QByteArray line = launch.readLine();
        const QByteArray expected =
            QByteArray(name) + " 700 directory " + QFile::encodeName(launch.place()) + "/zbvd-";
        QVERIFY2(line.startsWith(expected), line.constData());
        folders.insert(line.split(' ').last());
    }
    QCOMPARE(folders.size(), 8);
    const QString directory = launch.place() + QLatin1Char('/') + launch.folders().value(0);
    QCOMPARE(launch.folders().size(), 1);
    QVERIFY(folders.contains(QFile::encodeName(directory)));
    QVERIFY2(directory.size() + 50 <= 107, "leaves no room for the names of sockets");

    const QByteArray address = launch.readLine();
    const QByteArray expectedAddress = launchesAreBusOnly()
        ? "unix:path=" + QFile::encodeName(directory) + "/bus/socket"
        : QByteArray("unix:path=/run/dbus/system_bus_socket");
    QCOMPARE(address, expectedAddress);
    QCOMPARE(launch.readLine(),
             QFile::encodeName(QFileInfo(QStringLiteral(LAUNCHER)).canonicalPath()) + "/zbutilityd");
    launch.closeInput();
    QVERIFY(launch.waitForEnd());
}

void LaunchedCommandTest::sessionBusIsHidden()
{
    Launch launch;
    launch.setVariable(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nowhere"));
    launch.setVariable(QStringLiteral("DBUS_STARTER_ADDRESS"), QStringLiteral("unix:path=/nowhere"));
    launch.setVariable(QStringLiteral("DBUS_STARTER_BUS_TYPE"), QStringLiteral("session"));
    launch.run(shell(QStringLiteral("env | grep -E 'DBUS_(SESSION|STARTER)' || echo none")));
    QCOMPARE(launch.readOutput(), QByteArray("none\n"));
}

void LaunchedCommandTest::otherVariablesPassThrough()
{
    Launch launch;
    launch.setVariable(QStringLiteral("OTHER"), QStringLiteral("two words\nand 'quotes'"));
    launch.run(shell(QStringLiteral("printf %s \"$OTHER\"")));
    QCOMPARE(launch.readOutput(), QByteArray("two words\nand 'quotes'"));
}

void LaunchedCommandTest::displayStaysReachable()
{
    QTemporaryDir person;
    QFile key(person.filePath(QStringLiteral(".Xauthority")));
    QVERIFY(key.open(QIODevice::WriteOnly));
    Launch launch;
    launch.setVariable(QStringLiteral("HOME"), person.path());
    launch.setVariable(QStringLiteral("XDG_RUNTIME_DIR"), QStringLiteral("/run/user/1234"));
    launch.setVariable(QStringLiteral("DISPLAY"), QStringLiteral(":7"));
    launch.setVariable(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("wayland-7"));
    launch.unsetVariable(QStringLiteral("XAUTHORITY"));
    launch.run(shell(QStringLiteral("echo $DISPLAY $WAYLAND_DISPLAY $XAUTHORITY")));
    QCOMPARE(launch.readOutput(), ":7 /run/user/1234/wayland-7 " + QFile::encodeName(key.fileName()) + '\n');
}

void LaunchedCommandTest::signalsReachTheCommandOnce_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
    QTest::newRow("SIGQUIT") << SIGQUIT;
}

void LaunchedCommandTest::signalsReachTheCommandOnce()
{
    QFETCH(int, number);
    Launch launch;
    launch.start({QStringLiteral("--without-daemon"), QStringLiteral(SIGNALREPORTER)});
    QCOMPARE(launch.readLine(), QByteArray("ready"));
    launch.sendSignal(number);
    QCOMPARE(launch.readLine(), "signal " + QByteArray::number(number) + " from process");
    launch.sendSignal(SIGTERM);
    QCOMPARE(launch.readLine(), QByteArray("signal 15 from process"));
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.exitStatus(), 0);
    QCOMPARE(launch.readOutput(), QByteArray());
}

void LaunchedCommandTest::ignoredSignalsStayIgnoredInTheCommand()
{
    // As nohup(1) does it; the launcher itself must not end either.
    Launch launch;
    launch.startFromShell(shell(QStringLiteral("grep -E 'Sig(Blk|Ign|Cgt)' /proc/self/status")));
    QVERIFY(launch.waitForEnd());
    const QList<QByteArray> plain = launch.readOutput().split('\n');
    Launch ignoring;
    ignoring.start({QStringLiteral("--without-daemon"), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                    QStringLiteral("trap '' HUP; exec \"$0\" --without-daemon grep SigIgn /proc/self/status"),
                    launcher()});
    QVERIFY(ignoring.waitForEnd());
    const QByteArray line = ignoring.readOutput();
    QVERIFY2(line.trimmed().endsWith('1'), line.constData());

    QCOMPARE(plain.value(0), QByteArray("SigBlk:\t0000000000000000"));
}

void LaunchedCommandTest::ignoredChildSignalDoesNotLoseTheStatus()
{
    // Some callers leave SIGCHLD ignored, and then the kernel keeps no status of children.
    Launch launch;
    launch.startProgram(QStringLiteral("env"),
                        {QStringLiteral("--ignore-signal=CHLD"), launcher(),
                         QStringLiteral("--without-daemon"), QStringLiteral("sh"), QStringLiteral("-c"),
                         QStringLiteral("exit 7")});
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.exitStatus(), 7);
}

void LaunchedCommandTest::commandThatIgnoresTerminationIsKilled()
{
    Launch launch;
    launch.start(shell(QStringLiteral("trap '' TERM; echo ready; sleep 100; sleep 100")));
    QCOMPARE(launch.readLine(), QByteArray("ready"));
    launch.sendSignal(SIGTERM);
    QVERIFY(launch.waitForEnd());
    QCOMPARE(launch.exitStatus(), 137);
    QCOMPARE(launch.processes(), QStringList());
}

void LaunchedCommandTest::longOrUselessTemporaryFolderIsNotUsed_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("long") << QStringLiteral("/tmp/zbvt-a-folder-with-a-name-of-more-than-thirty-six-bytes");
    QTest::newRow("absent") << QStringLiteral("/tmp/zbvt-absent");
    QTest::newRow("relative") << QStringLiteral("zbvt-relative");
    QTest::newRow("a file") << QStringLiteral("/etc/passwd");
    QTest::newRow("empty") << QString();
}

void LaunchedCommandTest::longOrUselessTemporaryFolderIsNotUsed()
{
    QFETCH(QString, folder);
    const bool make = folder.size() > 48;
    if (make)
        QVERIFY(QDir().mkpath(folder));
    Launch launch;
    launch.setVariable(QStringLiteral("TMPDIR"), folder);
    launch.run(shell(QStringLiteral("echo $ZBVIRTUALDEVICE_DIRECTORY")));
    if (make)
        QVERIFY(QDir().rmdir(folder));
    const QByteArray directory = launch.readOutput().trimmed();
    QVERIFY2(directory.startsWith("/tmp/zbvd-"), directory.constData());
    QVERIFY(!QFileInfo::exists(QFile::decodeName(directory)));
    QCOMPARE(launch.exitStatus(), 0);
}

void LaunchedCommandTest::unusualTemporaryFolderIsUsed()
{
    Launch launch;
    const QString folder = launch.place() + QString::fromUtf8("/a,b;c%d e&<ü>");
    QVERIFY(QDir().mkpath(folder));
    launch.setVariable(QStringLiteral("TMPDIR"), folder + QLatin1Char('/'));
    launch.run({QStringLiteral("/bin/sh"), QStringLiteral("-c"), QStringLiteral("printf %s \"$HOME\"")});
    QCOMPARE(launch.readErrors(), QByteArray());
    QVERIFY(launch.readOutput().startsWith(QFile::encodeName(folder) + "/zbvd-"));
    QVERIFY(QDir().rmdir(folder));
}

void LaunchedCommandTest::ownFailuresAreOneSentence_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("sentence");
    QTest::newRow("unknown option") << QStringList{QStringLiteral("--nonsense"), QStringLiteral("true")}
                                    << QByteArray("zbvirtualdevice: there is no option '--nonsense';"
                                                  " 'zbvirtualdevice --help' lists the options\n");
    QTest::newRow("option without value")
        << QStringList{QStringLiteral("--utilityd")}
        << QByteArray("zbvirtualdevice: --utilityd needs the path of a program;"
                      " 'zbvirtualdevice --help' lists the options\n");
    QTest::newRow("print queue daemon without path")
        << QStringList{QStringLiteral("--printqd="), QStringLiteral("true")}
        << QByteArray("zbvirtualdevice: --printqd needs the path of a program;"
                      " 'zbvirtualdevice --help' lists the options\n");
    QTest::newRow("no print queue daemon")
        << QStringList{QStringLiteral("--with-printqd"), QStringLiteral("--printqd"),
                       QStringLiteral("/nowhere/printqd"), QStringLiteral("true")}
        << QByteArray("zbvirtualdevice: cannot run the print queue daemon '/nowhere/printqd';"
                      " build it, name another with --printqd, or go --without-printqd:"
                      " No such file or directory\n");
    QTest::newRow("clock without whole device")
        << QStringList{QStringLiteral("--bus-only"), QStringLiteral("--device-clock"), QStringLiteral("true")}
        << QByteArray("zbvirtualdevice: --device-clock needs a whole device and cannot go with --bus-only;"
                      " 'zbvirtualdevice --help' lists the options\n");
    QTest::newRow("data partition without whole device")
        << QStringList{QStringLiteral("--with-data-partition"), QStringLiteral("--bus-only"),
                       QStringLiteral("true")}
        << QByteArray("zbvirtualdevice: --with-data-partition needs a whole device and cannot go with"
                      " --bus-only; 'zbvirtualdevice --help' lists the options\n");
    QTest::newRow("no daemon") << QStringList{QStringLiteral("--utilityd=/nowhere/zbutilityd"),
                                              QStringLiteral("true")}
                               << QByteArray(
                                      "zbvirtualdevice: cannot run the utility daemon '/nowhere/zbutilityd';"
                                      " build it, name another with --utilityd, or go --without-daemon:"
                                      " No such file or directory\n");
}

void LaunchedCommandTest::ownFailuresAreOneSentence()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, sentence);
    Launch launch;
    launch.run(arguments);
    QCOMPARE(launch.exitStatus(), 125);
    QCOMPARE(launch.readErrors(), sentence);
    QCOMPARE(launch.readOutput(), QByteArray());
    QCOMPARE(launch.folders(), QStringList());
}

void LaunchedCommandTest::missingProgramNamesThePackage()
{
    Launch launch;
    launch.setVariable(QStringLiteral("PATH"), QStringLiteral("/nowhere"));
    launch.run({QStringLiteral("/bin/true")});
    QCOMPARE(launch.exitStatus(), 125);
    const QByteArray expected = launchesAreBusOnly()
        ? "zbvirtualdevice: dbus-daemon is not in PATH; on Debian it is in the package dbus-daemon\n"
        : "zbvirtualdevice: fw_setenv is not in PATH; on Debian it is in the package libubootenv-tool\n";
    QCOMPARE(launch.readErrors(), expected);
    QCOMPARE(launch.folders(), QStringList());
    QCOMPARE(launch.processes(), QStringList());
}

void LaunchedCommandTest::daemonThatDoesNotComeUpShowsItsLog()
{
    QTemporaryDir folder;
    const QString daemon =
        scriptIn(folder.path(), "#!/bin/sh\nfor line in $(seq 61); do echo line $line >&2; done\nexit 1\n");
    Launch launch;
    launch.run({QStringLiteral("--utilityd"), daemon, QStringLiteral("echo"), QStringLiteral("never")});
    QCOMPARE(launch.exitStatus(), 125);
    const QList<QByteArray> errors = launch.readErrors().split('\n');
    QCOMPARE(errors.value(0), QByteArray("zbvirtualdevice: zbutilityd did not come up; it wrote last:"));
    QCOMPARE(errors.value(1), QByteArray("  line 2"));
    QCOMPARE(errors.value(60), QByteArray("  line 61"));
    QCOMPARE(errors.size(), 62);
    QCOMPARE(launch.readOutput(), QByteArray());
    QCOMPARE(launch.folders(), QStringList());
    QCOMPARE(launch.processes(), QStringList());
}

void LaunchedCommandTest::helpNamesTheOptions()
{
    Launch launch;
    launch.run({QStringLiteral("--help")});
    QCOMPARE(launch.exitStatus(), 0);
    const QByteArray text = launch.readOutput();
    for (const char *word :
         {"Usage: zbvirtualdevice", "--without-daemon", "--utilityd", "--bus-only", "--device-clock",
          "--with-data-partition", "--without-printqd", "--with-printqd", "--printqd", "--help", "125", "77"})
        QVERIFY2(text.contains(word), word);
}

QTEST_GUILESS_MAIN(LaunchedCommandTest)
#include "tst_launchedcommand.moc"
