// The options of the daemon.
#include "commandline.h"

#include <QtTest/QtTest>

class DaemonCommandLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stateDirectoryComesFromOptionThenUnitThenDefault_data();
    void stateDirectoryComesFromOptionThenUnitThenDefault();
    void controlInterfaceIsThereOnlyOnRequest();
    void aWrongCommandLineIsSaidInOneLine_data();
    void aWrongCommandLineIsSaidInOneLine();
    void helpAndVersionAreNoFailure_data();
    void helpAndVersionAreNoFailure();
};

namespace {

QStringList commandLine(const QStringList &arguments)
{
    return QStringList{QStringLiteral("zbutilityd")} + arguments;
}

} // namespace

void DaemonCommandLineTest::stateDirectoryComesFromOptionThenUnitThenDefault_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("directory");
    const QStringList option{QStringLiteral("--state-directory"), QStringLiteral("/a b")};
    QTest::newRow("nothing") << QStringList() << QString() << QStringLiteral("/var/lib/zbutilityd");
    QTest::newRow("unit") << QStringList() << QStringLiteral("/unit") << QStringLiteral("/unit");
    QTest::newRow("unit with two folders")
        << QStringList() << QStringLiteral("/unit:/other") << QStringLiteral("/unit");
    QTest::newRow("option") << option << QString() << QStringLiteral("/a b");
    QTest::newRow("option and unit") << option << QStringLiteral("/unit") << QStringLiteral("/a b");
}

void DaemonCommandLineTest::stateDirectoryComesFromOptionThenUnitThenDefault()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, unit);
    const auto result = readCommandLine(commandLine(arguments), unit);
    QVERIFY(std::holds_alternative<Options>(result));
    QTEST(std::get<Options>(result).stateDirectory, "directory");
}

void DaemonCommandLineTest::controlInterfaceIsThereOnlyOnRequest()
{
    QVERIFY(!std::get<Options>(readCommandLine(commandLine({}), {})).isVirtualDevice);
    const QStringList arguments{QStringLiteral("--virtual-device")};
    QVERIFY(std::get<Options>(readCommandLine(commandLine(arguments), {})).isVirtualDevice);
}

void DaemonCommandLineTest::aWrongCommandLineIsSaidInOneLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("unknown option") << QStringList{QStringLiteral("--virtual")};
    QTest::newRow("missing value") << QStringList{QStringLiteral("--state-directory")};
    QTest::newRow("empty value") << QStringList{QStringLiteral("--state-directory=")};
    QTest::newRow("argument") << QStringList{QStringLiteral("something")};
}

void DaemonCommandLineTest::aWrongCommandLineIsSaidInOneLine()
{
    QFETCH(QStringList, arguments);
    const auto result = readCommandLine(commandLine(arguments), {});
    QVERIFY(std::holds_alternative<EarlyEnd>(result));
    const EarlyEnd &end = std::get<EarlyEnd>(result);
    QCOMPARE(end.exitStatus, 1);
    QVERIFY(!end.text.isEmpty());
    QVERIFY(!end.text.contains(QLatin1Char('\n')));
}

void DaemonCommandLineTest::helpAndVersionAreNoFailure_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("part");
    QTest::newRow("help") << QStringLiteral("--help") << QStringLiteral("--state-directory <directory>");
    QTest::newRow("version") << QStringLiteral("--version") << QStringLiteral("zbutilityd ");
}

void DaemonCommandLineTest::helpAndVersionAreNoFailure()
{
    QFETCH(QString, option);
    QFETCH(QString, part);
    const auto result = readCommandLine(commandLine({option}), {});
    QVERIFY(std::holds_alternative<EarlyEnd>(result));
    QCOMPARE(std::get<EarlyEnd>(result).exitStatus, 0);
    QVERIFY(std::get<EarlyEnd>(result).text.contains(part));
}

QTEST_GUILESS_MAIN(DaemonCommandLineTest)
#include "tst_daemoncommandline.moc"
