// The machine's own tools find a printer in the whole device: boot environment, addresses, storage, files,
// bus.
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtDBus/QtDBus>
#include <QtTest/QtTest>

#include <memory>
#include <vector>

#include <sys/file.h>
#include <unistd.h>

class DeviceToolsTest : public QObject
{
    Q_OBJECT

private slots:
    void valuesAreAloneOnTheirLinesInTheOrderOfTheNames_data();
    void valuesAreAloneOnTheirLinesInTheOrderOfTheNames();
    void nameWithoutAValueDeletesTheVariable();
    void writersAtTheSameTimeLoseNothing();
    void lockOfTheEnvironmentIsTaken();
    void wirelessInterfaceHasItsAddress();
    void networkHasADefaultRoute();
    void storageIsListedWhereThereIsExt4();
    void compositorsEnvironmentHasALayout();
    void compositorsEnvironmentCanBeWrittenInPlaceAndReplaced();
    void testPagesAreDocumentsOfTheirSize_data();
    void testPagesAreDocumentsOfTheirSize();
    void machinesSharedFilesAreInSightToo();
    void busIsFoundWithoutAVariable();
    void daemonStartsConnected();
};

namespace {

struct Run
{
    int status = -1;
    QByteArray output;
    QByteArray errors;
};

Run run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished())
        return {};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

QByteArray printed(const QStringList &names)
{
    return run(QStringLiteral("fw_printenv"), QStringList{QStringLiteral("-n")} + names).output;
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

} // namespace

void DeviceToolsTest::valuesAreAloneOnTheirLinesInTheOrderOfTheNames_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QByteArray>("output");
    QTest::newRow("serial number") << words("serialNumber") << QByteArray("BX24460173\n");
    QTest::newRow("ethernet") << words("ethaddr") << QByteArray("02:00:5e:10:00:02\n");
    QTest::newRow("offsets") << words("backstop hOffset bMarkOffset gapOffset tphHeat backstop2 hOffset2"
                                      " bMarkOffset2 gapOffset2 tphHeat2")
                             << QByteArray("112\n-3\n18\n7\n104\n109\n2\n21\n5\n98\n");
    QTest::newRow("calibration") << words("tachLow tachHigh cutterTrans supplyTrans supplyRefl")
                                 << QByteArray("812\n1190\n436\n2213\n1764\n");
    QTest::newRow("ship mode") << words("zbShip") << QByteArray("0\n");
    QTest::newRow("unknown between") << words("zbShip unknown ethaddr")
                                     << QByteArray("0\n\n02:00:5e:10:00:02\n");
}

void DeviceToolsTest::valuesAreAloneOnTheirLinesInTheOrderOfTheNames()
{
    QFETCH(QStringList, names);
    QTEST(printed(names), "output");
}

void DeviceToolsTest::nameWithoutAValueDeletesTheVariable()
{
    QCOMPARE(run(QStringLiteral("fw_setenv"), words("scratch some")).status, 0);
    QCOMPARE(printed(words("scratch")), QByteArray("some\n"));
    QCOMPARE(run(QStringLiteral("fw_setenv"), words("scratch")).status, 0);
    QCOMPARE(printed(words("scratch tachLow")), QByteArray("\n812\n"));
}

void DeviceToolsTest::writersAtTheSameTimeLoseNothing()
{
    // Each rewrites the whole image: without the lock, one undoes what another has just done.
    QStringList names;
    for (int round = 0; round < 30; ++round) {
        std::vector<std::unique_ptr<QProcess>> writers;
        for (int writer = 0; writer < 3; ++writer) {
            names.append(QStringLiteral("w%1x%2").arg(round).arg(writer));
            writers.push_back(std::make_unique<QProcess>());
            writers.back()->start(QStringLiteral("fw_setenv"), {names.constLast(), QStringLiteral("set")});
        }
        for (const std::unique_ptr<QProcess> &writer : writers) {
            QVERIFY(writer->waitForFinished());
            QCOMPARE(writer->exitCode(), 0);
        }
    }
    QCOMPARE(printed(names), QByteArray("set\n").repeated(90));
}

void DeviceToolsTest::lockOfTheEnvironmentIsTaken()
{
    QFile lock(QStringLiteral("/run/lock/fw_printenv.lock"));
    QVERIFY2(lock.open(QIODevice::WriteOnly), qPrintable(lock.errorString()));
    QCOMPARE(flock(lock.handle(), LOCK_EX | LOCK_NB), 0);
    QProcess writer;
    writer.start(QStringLiteral("fw_setenv"), words("locked yes"));
    QVERIFY(writer.waitForStarted());
    QVERIFY2(!writer.waitForFinished(200), "did not wait for the lock");
    QCOMPARE(flock(lock.handle(), LOCK_UN), 0);
    QVERIFY(writer.waitForFinished());
    QCOMPARE(printed(words("locked")), QByteArray("yes\n"));
}

void DeviceToolsTest::wirelessInterfaceHasItsAddress()
{
    const Run cat = run(QStringLiteral("cat"), words("/sys/class/net/wlan0/address"));
    QCOMPARE(cat.errors, QByteArray());
    QCOMPARE(cat.output, QByteArray("02:00:5e:10:00:01\n"));
}

void DeviceToolsTest::networkHasADefaultRoute()
{
    QCOMPARE(run(QStringLiteral("ip"), words("route show default")).output.trimmed(),
             QByteArray("default via 192.0.2.1 dev wlan0"));
    const QByteArray interfaces = run(QStringLiteral("ip"), words("-brief link")).output;
    QVERIFY2(interfaces.contains("wlan0"), interfaces.constData());
    QCOMPARE(interfaces.count('\n'), 3);
}

void DeviceToolsTest::storageIsListedWhereThereIsExt4()
{
    const Run all = run(QStringLiteral("df"), words("--output=fstype"));
    const Run table = run(QStringLiteral("df"), words("-t ext4 -h"));
    if (!all.output.contains("ext4"))
        QSKIP("this machine has no ext4 file system, and only root can make one");
    QCOMPARE(table.status, 0);
    const QList<QByteArray> lines = table.output.trimmed().split('\n');
    QVERIFY(lines.size() >= 2);
    QCOMPARE(lines.constFirst().simplified(), QByteArray("Filesystem Size Used Avail Use% Mounted on"));
}

void DeviceToolsTest::compositorsEnvironmentHasALayout()
{
    QFile file(QStringLiteral("/etc/corvanta/wayland.env"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(),
             QByteArray("XDG_SESSION_TYPE=wayland\nXCURSOR_SIZE=48\n"
                        "XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=\n"));
}

void DeviceToolsTest::compositorsEnvironmentCanBeWrittenInPlaceAndReplaced()
{
    const QString path = QStringLiteral("/etc/corvanta/wayland.env");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    const QByteArray before = file.readAll();
    file.close();
    QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Truncate));
    file.write("XKB_DEFAULT_LAYOUT=de\n");
    file.close();
    QFile replacement(path + QStringLiteral(".new"));
    QVERIFY(replacement.open(QIODevice::WriteOnly));
    replacement.write(before);
    replacement.close();
    QCOMPARE(::rename(QFile::encodeName(replacement.fileName()), QFile::encodeName(path)), 0);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
}

void DeviceToolsTest::testPagesAreDocumentsOfTheirSize_data()
{
    QTest::addColumn<int>("inches");
    QTest::newRow("testpage_4x4.tavo") << 4;
    QTest::newRow("testpage_6x6.tavo") << 6;
    QTest::newRow("testpage_9x9.tavo") << 9;
}

void DeviceToolsTest::testPagesAreDocumentsOfTheirSize()
{
    QFETCH(int, inches);
    const QString path = QStringLiteral("/usr/share/data/Corvanta/TestPages/BrackenXL/")
        + QLatin1String(QTest::currentDataTag());
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray page = file.readAll();
    const QByteArray size = QByteArray::number(inches);
    const QByteArray points = QByteArray::number(72 * inches);
    QVERIFY(page.startsWith("%PDF-1.4\n"));
    QVERIFY(page.endsWith("%%EOF\n"));
    QVERIFY(page.contains("/MediaBox [0 0 " + points + ' ' + points + ']'));
    QVERIFY(page.contains("(BrackenXL test page " + size + " x " + size + ')'));
    // Readers find the objects by the table, and the table by the number at the end.
    const int table = page.mid(page.lastIndexOf("startxref\n") + 10).split('\n').constFirst().toInt();
    const QList<QByteArray> lines = page.mid(table).split('\n');
    QCOMPARE(lines.value(0), QByteArray("xref"));
    QCOMPARE(lines.value(2), QByteArray("0000000000 65535 f "));
    for (int object = 1; object <= 4; ++object) {
        const int begin = lines.value(object + 2).left(10).toInt();
        QVERIFY(page.mid(begin).startsWith(QByteArray::number(object) + " 0 obj\n"));
        QCOMPARE(lines.value(object + 2).size(), 19);
    }
    const int stream = page.indexOf("stream\n") + 7;
    QVERIFY(page.contains("/Length " + QByteArray::number(page.indexOf("endstream") - stream) + ' '));
}

void DeviceToolsTest::machinesSharedFilesAreInSightToo()
{
    QVERIFY(QFileInfo(QStringLiteral("/usr/share/zoneinfo")).isDir());
}

void DeviceToolsTest::busIsFoundWithoutAVariable()
{
    QCOMPARE(qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS"),
             QStringLiteral("unix:path=/run/dbus/system_bus_socket"));
    QProcess send;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"));
    send.setProcessEnvironment(environment);
    send.start(QStringLiteral("dbus-send"),
               words("--system --print-reply=literal --dest=com.corvanta.zbutility /"
                     " local.ZBUtilityd.UtilityDaemon.getShip"));
    QVERIFY(send.waitForFinished());
    QCOMPARE(send.readAllStandardError(), QByteArray());
    QCOMPARE(send.readAllStandardOutput().trimmed(), QByteArray("int32 0"));
}

void DeviceToolsTest::daemonStartsConnected()
{
    const QDBusMessage answer = QDBusConnection::systemBus().call(QDBusMessage::createMethodCall(
        QStringLiteral("com.corvanta.zbutility"), QStringLiteral("/"),
        QStringLiteral("local.ZBUtilityd.UtilityDaemon"), QStringLiteral("getInternetConnection")));
    QCOMPARE(answer.arguments(), QVariantList{true});
}

QTEST_GUILESS_MAIN(DeviceToolsTest)
#include "tst_devicetools.moc"
