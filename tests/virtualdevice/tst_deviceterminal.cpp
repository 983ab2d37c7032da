// The launcher as a person uses it, in a terminal: Ctrl-C, Ctrl-Z, typing to the command, closing the window.
#include "launch.h"
#include "terminal.h"

#include <QtTest/QtTest>

#include <csignal>

class DeviceTerminalTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void interruptKeyReachesTheCommandOnce();
    void interruptKeyEndsADeviceWithoutCommand();
    void interruptKeyDoesNotReachTheDeviceItself();
    void commandReadsWhatIsTyped();
    void stoppedJobGoesOn();
    void closedTerminalEndsTheDevice();

private:
    QStringList entries() const { return {QStringLiteral("TMPDIR=") + m_launch->place()}; }

    // Only for its folder and for what is left in it.
    std::unique_ptr<Launch> m_launch;
};

void DeviceTerminalTest::initTestCase()
{
    SKIP_WHERE_DEVICES_ARE_FORBIDDEN();
}

void DeviceTerminalTest::init()
{
    m_launch = std::make_unique<Launch>();
}

void DeviceTerminalTest::cleanup()
{
    m_launch.reset();
}

void DeviceTerminalTest::interruptKeyReachesTheCommandOnce()
{
    Terminal terminal;
    QVERIFY(terminal.start({launcher(), QStringLiteral("--without-daemon"), QStringLiteral(SIGNALREPORTER)},
                           entries()));
    QVERIFY(terminal.shownUntil("ready\r\n").contains("ready"));
    terminal.type("\x03");
    QVERIFY(terminal.shownUntil("signal 2 from terminal\r\n").contains("signal 2 from terminal"));
    terminal.sendSignal(SIGTERM);
    const QByteArray shown = terminal.shownUntil("signal 15 from process\r\n");
    QCOMPARE(shown.count("signal 2 "), 1);
    QCOMPARE(shown.count("signal 15 "), 1);
    QCOMPARE(terminal.waitForEnd(), 0);
}

void DeviceTerminalTest::interruptKeyEndsADeviceWithoutCommand()
{
    Terminal terminal;
    QVERIFY(terminal.start({launcher()}, entries()));
    QVERIFY(terminal.shownUntil("# The device is ready.").contains("export HOME="));
    terminal.type("\x03");
    QCOMPARE(terminal.waitForEnd(), 0);
    QCOMPARE(m_launch->processes(), QStringList());
    QCOMPARE(m_launch->folders(), QStringList());
}

void DeviceTerminalTest::interruptKeyDoesNotReachTheDeviceItself()
{
    Terminal terminal;
    QVERIFY(terminal.start({launcher(), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                            QStringLiteral("trap 'echo caught' INT; echo ready; read line; dbus-send --system"
                                           " --print-reply=literal --dest=com.corvanta.zbutility /"
                                           " local.ZBUtilityd.UtilityDaemon.getShip; echo end")},
                           entries()));
    QVERIFY(terminal.shownUntil("ready\r\n").contains("ready"));
    terminal.type("\x03");
    QVERIFY(terminal.shownUntil("caught\r\n").contains("caught"));
    terminal.type("\n");
    const QByteArray shown = terminal.shownUntil("end\r\n");
    QVERIFY2(shown.contains("int32"), shown.constData());
    QCOMPARE(terminal.waitForEnd(), 0);
}

void DeviceTerminalTest::commandReadsWhatIsTyped()
{
    // A process that is not in the foreground would be stopped by the kernel when it reads.
    Terminal terminal;
    QVERIFY(terminal.start({launcher(), QStringLiteral("--without-daemon"), QStringLiteral("/bin/sh"),
                            QStringLiteral("-c"), QStringLiteral("echo ready; read line; echo \"<$line>\"")},
                           entries()));
    QVERIFY(terminal.shownUntil("ready\r\n").contains("ready"));
    terminal.type("two words\n");
    QVERIFY(terminal.shownUntil("<two words>").contains("<two words>"));
    QCOMPARE(terminal.waitForEnd(), 0);
}

void DeviceTerminalTest::stoppedJobGoesOn()
{
    Terminal terminal;
    QVERIFY(terminal.start({QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                            QStringLiteral("set -m; \"$0\" sh -c 'echo ready; read line; echo \"<$line>\"';"
                                           " echo stopped; fg; echo ended $?"),
                            launcher()},
                           entries()));
    QVERIFY(terminal.shownUntil("ready\r\n").contains("ready"));
    terminal.type("\x1a");
    QVERIFY(terminal.shownUntil("stopped\r\n").contains("stopped"));
    terminal.type("more\n");
    QVERIFY(terminal.shownUntil("<more>").contains("<more>"));
    QVERIFY(terminal.shownUntil("ended 0").contains("ended 0"));
    QCOMPARE(terminal.waitForEnd(), 0);
}

void DeviceTerminalTest::closedTerminalEndsTheDevice()
{
    Terminal terminal;
    QVERIFY(terminal.start({launcher(), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                            QStringLiteral("(trap '' HUP; sleep 100 &); echo ready; exec sleep 100")},
                           entries()));
    QVERIFY(terminal.shownUntil("ready\r\n").contains("ready"));
    terminal.close();
    QCOMPARE(terminal.waitForEnd(), 129);
    QCOMPARE(m_launch->processes(), QStringList());
    QCOMPARE(m_launch->folders(), QStringList());
}

QTEST_GUILESS_MAIN(DeviceTerminalTest)
#include "tst_deviceterminal.moc"
