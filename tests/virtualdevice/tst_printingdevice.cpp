// The print scheduler and the print queue daemon as parts of a device: who has them, what their surroundings
// are, and how they end.
#include "launch.h"
#include "processtable.h"

#include <QtCore/QElapsedTimer>
#include <QtTest/QtTest>

#include <csignal>

class PrintingDeviceTest : public QObject
{
    Q_OBJECT

private slots:
    void deviceHasTheSchedulerThatWasAskedFor_data();
    void deviceHasTheSchedulerThatWasAskedFor();
    void variablesOfTheCallerLeadNowhereElse_data();
    void variablesOfTheCallerLeadNowhereElse();
    void machinesConfigurationIsNotInSight();
    void devicesAtTheSameTimeHaveTheirOwn_data();
    void devicesAtTheSameTimeHaveTheirOwn();
    void testPageIsPrinted();
    void deviceHasThePrintQueueThatWasAskedFor_data();
    void deviceHasThePrintQueueThatWasAskedFor();
    void printedDocumentIsAJobWithItsSupplies_data();
    void printedDocumentIsAJobWithItsSupplies();
    void otherShellsPrintOnTheDevice_data();
    void otherShellsPrintOnTheDevice();
    void schedulerEndsQuicklyWithTheDevice_data();
    void schedulerEndsQuicklyWithTheDevice();
    void killedDeviceLeavesNoScheduler();
    void unusualFolderIsUsedOrRefused_data();
    void unusualFolderIsUsedOrRefused();
};

namespace {

const char *const wholeDevice = "";
const char *const busOnly = "--bus-only --with-printing";

QStringList launch(const QString &options, const QString &script)
{
    return QStringList(QStringLiteral("--without-printqd"))
        + options.split(QLatin1Char(' '), Qt::SkipEmptyParts)
        + QStringList{QStringLiteral("--without-daemon"), QStringLiteral("--"), QStringLiteral("/bin/sh"),
                      QStringLiteral("-c"), script};
}

void addDevices()
{
    QTest::addColumn<QString>("options");
    QTest::newRow("whole device") << QString::fromLatin1(wholeDevice);
    QTest::newRow("bus only") << QString::fromLatin1(busOnly);
}

} // namespace

// In a row with whole devices where the machine allows none.
#define SKIP_ROW_WHERE_DEVICES_ARE_FORBIDDEN(options)                                                        \
    do {                                                                                                     \
        if (!(options).contains(QStringLiteral("--bus-only")))                                               \
            SKIP_WHERE_DEVICES_ARE_FORBIDDEN();                                                              \
    } while (false)

void PrintingDeviceTest::deviceHasTheSchedulerThatWasAskedFor_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QByteArray>("output");
    const QByteArray none = "\n";
    QTest::newRow("whole") << QString() << QByteArray("BrackenXL 631\n");
    QTest::newRow("whole, with") << QStringLiteral("--with-printing") << QByteArray("BrackenXL 631\n");
    QTest::newRow("whole, without") << QStringLiteral("--without-printing") << none;
    QTest::newRow("the last word counts")
        << QStringLiteral("--with-printing --without-printing --bus-only") << none;
    QTest::newRow("bus only") << QStringLiteral("--bus-only") << none;
    QTest::newRow("bus only, without") << QStringLiteral("--bus-only --without-printing") << none;
}

void PrintingDeviceTest::deviceHasTheSchedulerThatWasAskedFor()
{
    QFETCH(QString, options);
    SKIP_ROW_WHERE_DEVICES_ARE_FORBIDDEN(options);
    Launch device;
    device.run(
        launch(options,
               QStringLiteral("if [ -n \"$ZBVIRTUALDEVICE_PRINTED\" ]; then lpstat -e; fi | tr '\\n' ' ';"
                              " echo \"${ZBVIRTUALDEVICE_PRINTER:-}\" | grep -o '631' || echo")));
    QTEST(device.readOutput(), "output");
    QCOMPARE(device.readErrors(), QByteArray());
    QCOMPARE(device.exitStatus(), 0);
}

void PrintingDeviceTest::variablesOfTheCallerLeadNowhereElse_data()
{
    addDevices();
    QTest::newRow("bus only, without a scheduler") << QStringLiteral("--bus-only");
}

void PrintingDeviceTest::variablesOfTheCallerLeadNowhereElse()
{
    QFETCH(QString, options);
    SKIP_ROW_WHERE_DEVICES_ARE_FORBIDDEN(options);
    Launch device;
    for (const char *const name :
         {"CUPS_SERVER", "CUPS_SERVERROOT", "CUPS_DATADIR", "CUPS_CACHEDIR", "CUPS_STATEDIR",
          "CUPS_SERVERBIN", "CUPS_USER", "CUPS_ENCRYPTION", "IPP_PORT", "LPDEST", "PRINTER"})
        device.setVariable(QLatin1String(name), QStringLiteral("zb-elsewhere"));
    device.run(launch(options, QStringLiteral("env | grep zb-elsewhere")));
    QCOMPARE(device.readOutput(), QByteArray());
    QCOMPARE(device.exitStatus(), 1);
}

void PrintingDeviceTest::machinesConfigurationIsNotInSight()
{
    SKIP_WHERE_DEVICES_ARE_FORBIDDEN();
    Launch device;
    device.run(
        launch(QStringLiteral("--without-printing"), QStringLiteral("ls -A /etc/cups; [ -d /etc/cups ]")));
    QCOMPARE(device.readOutput(), QByteArray());
    QCOMPARE(device.exitStatus(), 0);
}

void PrintingDeviceTest::devicesAtTheSameTimeHaveTheirOwn_data()
{
    addDevices();
}

void PrintingDeviceTest::devicesAtTheSameTimeHaveTheirOwn()
{
    QFETCH(QString, options);
    SKIP_ROW_WHERE_DEVICES_ARE_FORBIDDEN(options);
    const QString script = QStringLiteral("echo ready; read go; echo text > $HOME/text; lp -d BrackenXL "
                                          "$HOME/text; read go; lpstat -W all -o | wc -l");
    Launch one;
    Launch other;
    for (Launch *const device : {&one, &other}) {
        device->start(launch(options, script));
        QCOMPARE(device->readLine(), QByteArray("ready"));
    }
    for (Launch *const device : {&one, &other}) {
        device->write("\n");
        QCOMPARE(device->readLine(), QByteArray("request id is BrackenXL-1 (1 file(s))"));
    }
    for (Launch *const device : {&one, &other}) {
        device->write("\n");
        QCOMPARE(device->readLine(), QByteArray("1"));
        QVERIFY(device->waitForEnd());
        QCOMPARE(device->exitStatus(), 0);
    }
}

void PrintingDeviceTest::testPageIsPrinted()
{
    SKIP_WHERE_DEVICES_ARE_FORBIDDEN();
    Launch device;
    device.run(launch(
        QLatin1String(wholeDevice),
        QStringLiteral("cd /usr/share/data/Corvanta/TestPages/BrackenXL; lp -d BrackenXL testpage_6x6.tavo;"
                       " until [ -e \"$ZBVIRTUALDEVICE_PRINTED/job-1.prn\" ]; do sleep 0.01; done;"
                       " cmp testpage_6x6.tavo \"$ZBVIRTUALDEVICE_PRINTED/job-1.prn\" && echo same")));
    QCOMPARE(device.readOutput(), QByteArray("request id is BrackenXL-1 (1 file(s))\nsame\n"));
    QCOMPARE(device.exitStatus(), 0);
}

void PrintingDeviceTest::deviceHasThePrintQueueThatWasAskedFor_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<bool>("hasQueue");
    QTest::newRow("whole") << QString() << true;
    QTest::newRow("whole, without") << QStringLiteral("--without-printqd") << false;
    QTest::newRow("whole, without a scheduler") << QStringLiteral("--without-printing") << true;
    QTest::newRow("bus only") << QStringLiteral("--bus-only") << false;
    QTest::newRow("bus only, with") << QStringLiteral("--bus-only --with-printqd") << true;
    QTest::newRow("the last word counts")
        << QStringLiteral("--bus-only --with-printqd --without-printqd") << false;
}

void PrintingDeviceTest::deviceHasThePrintQueueThatWasAskedFor()
{
    QFETCH(QString, options);
    QFETCH(bool, hasQueue);
    SKIP_ROW_WHERE_DEVICES_ARE_FORBIDDEN(options);
    Launch device;
    // Asked once, without patience.
    device.run(
        options.split(QLatin1Char(' '), Qt::SkipEmptyParts)
        + QStringList{QStringLiteral("--"), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                      QStringLiteral("dbus-send --system --print-reply=literal --dest=com.corvanta.printqd /"
                                     " local.IZBIPCPRINTQD.getJobList 2>&1;"
                                     " echo \"$ZBVIRTUALDEVICE_PRINTQD\"")});
    const QByteArrayList lines = device.readOutput().trimmed().split('\n');
    QVERIFY2(lines.first().contains(hasQueue ? "array [" : "ServiceUnknown"), lines.first());
    QVERIFY2(lines.last().startsWith('/') && lines.last().endsWith("/printqd"), lines.last());
    QCOMPARE(device.readErrors(), QByteArray());
}

void PrintingDeviceTest::printedDocumentIsAJobWithItsSupplies_data()
{
    QTest::addColumn<QString>("options");
    QTest::newRow("whole device") << QStringLiteral("--with-printqd");
    QTest::newRow("bus only") << QStringLiteral("--bus-only --with-printing --with-printqd");
}

void PrintingDeviceTest::printedDocumentIsAJobWithItsSupplies()
{
    QFETCH(QString, options);
    SKIP_ROW_WHERE_DEVICES_ARE_FORBIDDEN(options);
    Launch device;
    device.run(
        launch(options,
               QStringLiteral("echo text | lp -s -d BrackenXL -t Invoice; for round in $(seq 400); do"
                              " dbus-send --system --print-reply --dest=com.corvanta.printqd /"
                              " local.IZBIPCPRINTQD.getChangedJobs string: uint64:0 > $HOME/jobs;"
                              " grep -q Printed $HOME/jobs && break; sleep 0.02; done; cat $HOME/jobs")));
    const QByteArray jobs = device.readOutput();
    for (const char *text :
         {"\"Invoice\"", "\"Printed\"", "\"BM-4100-W\"", "\"White\"", "812.5", "\"BR-110-K\"", "\"Black\"",
          "240.25", "\"BR-110-R\"", "\"Red\"", "double 36", "int32 104", "int32 98"})
        QVERIFY2(jobs.contains(text), text + jobs);
    QCOMPARE(device.readErrors(), QByteArray());
    QCOMPARE(device.exitStatus(), 0);
}

void PrintingDeviceTest::otherShellsPrintOnTheDevice_data()
{
    addDevices();
}

void PrintingDeviceTest::otherShellsPrintOnTheDevice()
{
    QFETCH(QString, options);
    SKIP_ROW_WHERE_DEVICES_ARE_FORBIDDEN(options);
    Launch device;
    device.start(options.split(QLatin1Char(' '), Qt::SkipEmptyParts)
                 + QStringList{QStringLiteral("--without-daemon")});
    QByteArray text;
    while (!text.endsWith("# The device is ready.\n")) {
        const QByteArray line = device.readLine();
        QVERIFY(!line.isEmpty());
        text += line + '\n';
    }
    QProcess shell;
    shell.start(QStringLiteral("/bin/sh"),
                {QStringLiteral("-eu"), QStringLiteral("-c"),
                 QString::fromUtf8(text)
                     + QStringLiteral("echo text > $HOME/text; lp -d BrackenXL $HOME/text;"
                                      " [ -d \"$ZBVIRTUALDEVICE_PRINTED\" ]; lpstat -v")});
    QVERIFY(shell.waitForFinished());
    QCOMPARE(shell.readAllStandardError(), QByteArray());
    QCOMPARE(shell.readAllStandardOutput(),
             QByteArray("request id is BrackenXL-1 (1 file(s))\ndevice for BrackenXL: bracken:/\n"));
    device.sendSignal(SIGTERM);
    QVERIFY(device.waitForEnd());
    QCOMPARE(device.exitStatus(), 0);
}

void PrintingDeviceTest::schedulerEndsQuicklyWithTheDevice_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QByteArray>("errors");
    QTest::newRow("idle") << QStringLiteral("true") << QByteArray();
    QTest::newRow("printing") << QStringLiteral("echo text > $HOME/text;"
                                                " lp -d BrackenXL $HOME/text > /dev/null")
                              << QByteArray();
    QTest::newRow("held") << QStringLiteral("$ZBVIRTUALDEVICE_SCHEDULER pause") << QByteArray();
    QTest::newRow("started again") << QStringLiteral(
        "$ZBVIRTUALDEVICE_SCHEDULER kill; $ZBVIRTUALDEVICE_SCHEDULER start")
                                   << QByteArray("zbvirtualdevice: cupsd was ended by signal 9 (Killed)\n");
}

void PrintingDeviceTest::schedulerEndsQuicklyWithTheDevice()
{
    // A scheduler that is asked to end takes more than 1.5 seconds.
    QFETCH(QString, script);
    QFETCH(QByteArray, errors);
    Launch device;
    device.start(launch(QLatin1String(busOnly), script + QStringLiteral("; echo end; read go")));
    QCOMPARE(device.readLine(), QByteArray("end"));
    QElapsedTimer timer;
    timer.start();
    device.closeInput();
    QVERIFY(device.waitForEnd());
    QVERIFY2(timer.elapsed() < 1200, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(device.readErrors(), errors);
    // That of read(1) at the end of its input.
    QCOMPARE(device.exitStatus(), 1);
    QCOMPARE(device.processes(), QStringList());
    QCOMPARE(device.folders(), QStringList());
}

void PrintingDeviceTest::killedDeviceLeavesNoScheduler()
{
    Launch device;
    device.start(
        launch(QLatin1String(busOnly), QStringLiteral("$ZBVIRTUALDEVICE_SCHEDULER pid; exec sleep 100")));
    QVERIFY(device.readLine().toInt() > 0);
    QCOMPARE(::kill(static_cast<pid_t>(childrenOf(device.processId()).value(0)), SIGKILL), 0);
    QVERIFY(device.waitForEnd());
    QTRY_COMPARE_WITH_TIMEOUT(device.processes(), QStringList(), 20000);
    QTRY_COMPARE_WITH_TIMEOUT(device.folders(), QStringList(), 20000);
}

void PrintingDeviceTest::unusualFolderIsUsedOrRefused_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("used");
    const QString odd = QString::fromUtf8("/a,b;c% e&<ü>'\"[$");
    QTest::newRow("whole device") << QString() << odd << true;
    QTest::newRow("whole device, colon") << QString() << QStringLiteral("/a:b#c") << true;
    QTest::newRow("bus only") << QString::fromLatin1(busOnly) << odd << true;
    QTest::newRow("bus only, colon") << QString::fromLatin1(busOnly) << QStringLiteral("/a:b") << false;
    QTest::newRow("bus only, number sign") << QString::fromLatin1(busOnly) << QStringLiteral("/a#b") << false;
}

void PrintingDeviceTest::unusualFolderIsUsedOrRefused()
{
    QFETCH(QString, options);
    QFETCH(QString, name);
    QFETCH(bool, used);
    SKIP_ROW_WHERE_DEVICES_ARE_FORBIDDEN(options);
    Launch device;
    const QString folder = device.place() + name;
    QVERIFY(QDir().mkpath(folder));
    device.setVariable(QStringLiteral("TMPDIR"), folder);
    device.run(
        launch(options,
               QStringLiteral("echo text > \"$HOME/text\"; lp -d BrackenXL \"$HOME/text\";"
                              " until [ -e \"$ZBVIRTUALDEVICE_PRINTED/job-1.prn\" ]; do sleep 0.01; done")));
    QVERIFY(QDir().rmdir(folder));
    QCOMPARE(device.exitStatus(), used ? 0 : 125);
    QCOMPARE(device.readOutput(), QByteArray(used ? "request id is BrackenXL-1 (1 file(s))\n" : ""));
    const QByteArray errors = device.readErrors();
    QVERIFY2(used == errors.isEmpty(), errors.constData());
    QVERIFY2(used || errors.startsWith("zbvirtualdevice: the print scheduler cannot lie in '"),
             errors.constData());
}

QTEST_GUILESS_MAIN(PrintingDeviceTest)
#include "tst_printingdevice.moc"
