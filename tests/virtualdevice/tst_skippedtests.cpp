// What counts as skipped: for ctest, a test in a whole device that the machine forbids, and nothing else; for
// run-tests, which names it afterwards.
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

class SkippedTestsTest : public QObject
{
    Q_OBJECT

private slots:
    void onlyAForbiddenDeviceSkipsATest_data();
    void onlyAForbiddenDeviceSkipsATest();
    void skippedTestsAreCountedAndNamed_data();
    void skippedTestsAreCountedAndNamed();
    void missingLogEndsNothing_data();
    void missingLogEndsNothing();
};

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
        && file.write(content) == content.size();
}

// Status and output, in FOLDER.
QPair<int, QByteArray> run(const QString &folder, const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    const bool hasEnded = process.waitForFinished() && process.exitStatus() == QProcess::NormalExit;
    return {hasEnded ? process.exitCode() : -1, process.readAll()};
}

// The properties that zb_add_test gives to tests in a whole device, as ctest reads them.
QByteArray propertiesInAWholeDevice()
{
    const QString tests = QString::fromUtf8(contentOf(QStringLiteral(TEST_LIST)));
    const QRegularExpression line(
        QStringLiteral("set_tests_properties\\([^ ]*tst_devicetools[^ ]* PROPERTIES (.*?) _BACKTRACE"));
    return line.match(tests).captured(1).toUtf8();
}

// What run-tests says after a run of the preset "some" that has left a folder build in FOLDER.
QPair<int, QByteArray> wordsOfRunTests(const QString &folder)
{
    const QString script = QStringLiteral("set -euo pipefail; eval \"$(sed -n '/^say_skipped() {/,/^}/p' "
                                          "\"$0\")\"; say_skipped some; echo went on");
    return run(folder, QStringLiteral("bash"), {QStringLiteral("-c"), script, QStringLiteral(RUN_TESTS)});
}

const QString reportFile = QStringLiteral("/build/some-report.xml");
const QString logFile = QStringLiteral("/build/some/Testing/Temporary/LastTest.log");

} // namespace

void SkippedTestsTest::onlyAForbiddenDeviceSkipsATest_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QByteArray>("outcome");
    const QByteArray sentence = "zbvirtualdevice: this machine does not allow a user namespace";
    QTest::newRow("success") << QByteArray("true") << QByteArray("Passed");
    QTest::newRow("one failure") << QByteArray("exit 1") << QByteArray("***Failed");
    QTest::newRow("77 failures") << QByteArray("echo FAIL!; exit 77") << QByteArray("***Failed");
    QTest::newRow("77 failures in silence") << QByteArray("exit 77") << QByteArray("***Failed");
    QTest::newRow("forbidden device") << "echo " + sentence + " >&2; exit 77" << QByteArray("***Skipped");
    QTest::newRow("a test's own words")
        << "echo FAIL!; echo " + sentence + "; exit 77" << QByteArray("***Failed");
}

void SkippedTestsTest::onlyAForbiddenDeviceSkipsATest()
{
    QFETCH(QByteArray, script);
    QFETCH(QByteArray, outcome);
    const QTemporaryDir folder;
    const QByteArray properties = propertiesInAWholeDevice();
    QVERIFY(!properties.isEmpty());
    QVERIFY(write(folder.filePath(QStringLiteral("CTestTestfile.cmake")),
                  "add_test(some \"sh\" \"-c\" \"" + script + "\")\nset_tests_properties(some PROPERTIES "
                      + properties + ")\n"));
    const QByteArray output = run(folder.path(), QStringLiteral(CTEST), {}).second;
    const int line = output.indexOf("Test #1: some ");
    QVERIFY2(line >= 0 && output.mid(line, output.indexOf('\n', line) - line).contains(outcome),
             output.constData());
}

void SkippedTestsTest::skippedTestsAreCountedAndNamed_data()
{
    QTest::addColumn<QByteArray>("reported");
    QTest::addColumn<QByteArray>("logged");
    QTest::addColumn<QByteArray>("words");
    QTest::newRow("none") << QByteArray() << QByteArray("PASS   : A::b()\n") << QByteArray("none");
    QTest::newRow("program") << QByteArray("\t<testcase name=\"tst_a\" classname=\"tst_a\">\n"
                                           "\t\t<skipped message=\"SKIP_REGULAR_EXPRESSION_MATCHED\"/>\n")
                             << QByteArray() << QByteArray("1: tst_a");
    QTest::newRow("failed program") << QByteArray("\t<testcase name=\"tst_a\" classname=\"tst_a\">\n"
                                                  "\t\t<failure message=\"\"/>\n")
                                    << QByteArray() << QByteArray("none");
    QTest::newRow("functions") << QByteArray()
                               << QByteArray("SKIP   : A::b() no (real) reason\n   Loc: [a.cpp(1)]\n"
                                             "SKIP   : A::c(two words) not here\n"
                                             "SKIP   : A::b() no (real) reason\n")
                               << QByteArray("2: A::b(); A::c(two words)");
    QTest::newRow("row with brackets")
        << QByteArray() << QByteArray("SKIP   : A::b(SIGKILL (9) to it) not (here)\n")
        << QByteArray("1: A::b(SIGKILL (9) to it)");
    QTest::newRow("row that ends with a bracket") << QByteArray()
                                                  << QByteArray("SKIP   : A::b(f(x)) not (here)\n"
                                                                "SKIP   : A::b(:-)) not here\n")
                                                  << QByteArray("2: A::b(:-)); A::b(f(x))");
}

void SkippedTestsTest::skippedTestsAreCountedAndNamed()
{
    QFETCH(QByteArray, reported);
    QFETCH(QByteArray, logged);
    QFETCH(QByteArray, words);
    const QTemporaryDir folder;
    QVERIFY(write(folder.path() + reportFile, reported));
    QVERIFY(write(folder.path() + logFile, logged));
    const QPair<int, QByteArray> said = wordsOfRunTests(folder.path());
    QCOMPARE(said.second, "Skipped tests in some: " + words + "\nwent on\n");
    QCOMPARE(said.first, 0);
}

void SkippedTestsTest::missingLogEndsNothing_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::newRow("no log") << QStringList{reportFile};
    QTest::newRow("no report") << QStringList{logFile};
    QTest::newRow("neither") << QStringList{};
}

void SkippedTestsTest::missingLogEndsNothing()
{
    QFETCH(QStringList, files);
    const QTemporaryDir folder;
    for (const QString &file : files)
        QVERIFY(write(folder.path() + file, "\n"));
    const QPair<int, QByteArray> said = wordsOfRunTests(folder.path());
    QCOMPARE(
        said.second,
        QByteArray("Skipped tests in some: unknown, since ctest has left no report or no log\nwent on\n"));
    QCOMPARE(said.first, 0);
}

QTEST_GUILESS_MAIN(SkippedTestsTest)
#include "tst_skippedtests.moc"
