// The shipper program of the library's README, as it stands there, beside processes that write.
//
// The service is a folder: a batch is confirmed once it is stored there under its name, so that a name which
// arrives twice is kept once, as the README asks of a service.
#include "analyticsspool.h"
#include "spooltestsupport.h"
#include "writerprocess.h"

#include <QtCore/QDir>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <algorithm>
#include <sys/stat.h>

using Outcome = AnalyticsSpool::Outcome;

namespace {

constexpr qint64 wide = 1024 * 1024;

QByteArray shipperProgram()
{
    const QString readme = QString::fromUtf8(contentOf(QStringLiteral(ANALYTICS_README)));
    const QRegularExpression fence(QStringLiteral("```sh\\n(.*?)```"),
                                   QRegularExpression::DotMatchesEverythingOption);
    return fence.match(readme).captured(1).toUtf8();
}

// Whether a process sleeps until it gets the flock on the file, see proc_locks(5).
bool isWaitedFor(const QString &lock)
{
    struct stat status = {};
    if (stat(QFile::encodeName(lock).constData(), &status) != 0)
        return false;
    const QByteArray file = ':' + QByteArray::number(qulonglong(status.st_ino)) + ' ';
    const QList<QByteArray> locks = contentOf(QStringLiteral("/proc/locks")).split('\n');
    return std::any_of(locks.cbegin(), locks.cend(), [&file](const QByteArray &line) {
        return line.contains("-> FLOCK") && line.contains(file);
    });
}

} // namespace

class TestAnalyticsShipper : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everythingIsTakenOnceAndNothingIsLeft();
    void aShipperWithNothingToTakeMakesNothing();
    void aServiceThatRefusesLosesNothing();
    void aShipperThatDiesBeforeRemovingABatchDoublesNothing();
    void asLongAsABatchIsLeftTheSpoolIsNotTaken();
    void aSecondShipperLeavesTheFirstAlone();
    void theSpoolIsNotTakenUnderAWriter();
    void besideWritersNothingIsLostOrDoubled();

private:
    bool prepareShipper(QProcess *shipper, const QByteArray &service);
    int ship(const QByteArray &service);
    QByteArray delivered() const;
    int batchCount() const;
    QStringList left() const;

    std::unique_ptr<QTemporaryDir> m_home;
    QString m_folder;
};

namespace {

// Stores the batch whole or not at all.
const QByteArray confirms("cp \"$1\" \"$SERVICE/$1.part\" && mv \"$SERVICE/$1.part\" \"$SERVICE/$1\"\n");
const QByteArray refuses("exit 1\n");
// Gives the inherited shipper lock back first, so that the next run does not meet it.
const QByteArray confirmsAndKillsTheShipper(confirms + "exec 9>&-\nkill -KILL $PPID\n");

} // namespace

void TestAnalyticsShipper::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    m_folder = m_home->filePath(QStringLiteral("data/Corvanta/analytics"));
    QVERIFY(QDir().mkpath(m_home->filePath(QStringLiteral("service"))));
    QVERIFY(!shipperProgram().isEmpty());
    QVERIFY(writeFile(m_home->filePath(QStringLiteral("shipper")), shipperProgram()));
}

void TestAnalyticsShipper::cleanup()
{
    m_home.reset();
}

bool TestAnalyticsShipper::prepareShipper(QProcess *shipper, const QByteArray &service)
{
    const QString command = m_home->filePath(QStringLiteral("deliver"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_DATA_HOME"), m_home->filePath(QStringLiteral("data")));
    environment.insert(QStringLiteral("SERVICE"), m_home->filePath(QStringLiteral("service")));
    shipper->setProcessEnvironment(environment);
    shipper->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    shipper->setProgram(QStringLiteral("sh"));
    shipper->setArguments({m_home->filePath(QStringLiteral("shipper")), command});
    return writeFile(command, "#!/bin/sh\n" + service)
        && QFile::setPermissions(command,
                                 QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

int TestAnalyticsShipper::ship(const QByteArray &service)
{
    QProcess shipper;
    if (!prepareShipper(&shipper, service))
        return -1;
    shipper.start();
    if (!shipper.waitForFinished())
        return -1;
    return shipper.exitStatus() == QProcess::NormalExit ? shipper.exitCode() : -1;
}

QByteArray TestAnalyticsShipper::delivered() const
{
    QByteArray lines;
    const QDir service(m_home->filePath(QStringLiteral("service")));
    const QStringList batches = service.entryList(QDir::Files, QDir::Time | QDir::Reversed);
    for (const QString &batch : batches)
        lines += contentOf(service.filePath(batch));
    return lines;
}

int TestAnalyticsShipper::batchCount() const
{
    return QDir(m_home->filePath(QStringLiteral("service"))).entryList(QDir::Files).size();
}

// What is in the folder of the spool beside the two locks.
QStringList TestAnalyticsShipper::left() const
{
    QStringList names = QDir(m_folder).entryList(QDir::Files | QDir::Hidden);
    names.removeAll(QStringLiteral("events.lock"));
    names.removeAll(QStringLiteral("shipper.lock"));
    return names;
}

void TestAnalyticsShipper::everythingIsTakenOnceAndNothingIsLeft()
{
    AnalyticsSpool spool(m_folder);
    QCOMPARE(spool.append("1\n"), Outcome::Written);
    QCOMPARE(spool.append("2\n"), Outcome::Written);
    QCOMPARE(ship(confirms), 0);
    QCOMPARE(delivered(), QByteArray("1\n2\n"));
    QCOMPARE(left(), QStringList());

    QCOMPARE(spool.append("3\n"), Outcome::Written);
    QCOMPARE(ship(confirms), 0);
    QCOMPARE(batchCount(), 2);
    QVERIFY(delivered().contains("3\n"));
    QCOMPARE(delivered().size(), 6);
}

void TestAnalyticsShipper::aShipperWithNothingToTakeMakesNothing()
{
    QVERIFY(QDir().mkpath(m_folder));
    QCOMPARE(ship(confirms), 0);
    QCOMPARE(QDir(m_folder).entryList(QDir::Files), QStringList(QStringLiteral("shipper.lock")));
    QCOMPARE(delivered(), QByteArray());
}

void TestAnalyticsShipper::aServiceThatRefusesLosesNothing()
{
    AnalyticsSpool spool(m_folder);
    QCOMPARE(spool.append("1\n"), Outcome::Written);
    QCOMPARE(ship(refuses), 1);
    QCOMPARE(delivered(), QByteArray());
    QCOMPARE(left().size(), 1);
    QCOMPARE(ship(confirms), 0);
    QCOMPARE(delivered(), QByteArray("1\n"));
    QCOMPARE(left(), QStringList());
}

void TestAnalyticsShipper::aShipperThatDiesBeforeRemovingABatchDoublesNothing()
{
    AnalyticsSpool spool(m_folder);
    QCOMPARE(spool.append("1\n"), Outcome::Written);
    QCOMPARE(ship(confirmsAndKillsTheShipper), -1);
    QCOMPARE(delivered(), QByteArray("1\n"));
    QCOMPARE(left().size(), 1);

    QCOMPARE(spool.append("2\n"), Outcome::Written);
    QCOMPARE(ship(confirms), 0);
    QCOMPARE(delivered().size(), 4);
    QVERIFY(delivered().contains("1\n") && delivered().contains("2\n"));
    QCOMPARE(left(), QStringList());
}

void TestAnalyticsShipper::asLongAsABatchIsLeftTheSpoolIsNotTaken()
{
    AnalyticsSpool spool(m_folder);
    QCOMPARE(spool.append("1\n"), Outcome::Written);
    QCOMPARE(ship(refuses), 1);
    QCOMPARE(spool.append("2\n"), Outcome::Written);
    QCOMPARE(ship(refuses), 1);
    QCOMPARE(left().size(), 2);
    QCOMPARE(contentOf(m_folder + QStringLiteral("/events.jsonl")), QByteArray("2\n"));
}

void TestAnalyticsShipper::aSecondShipperLeavesTheFirstAlone()
{
    AnalyticsSpool spool(m_folder);
    QCOMPARE(spool.append("1\n"), Outcome::Written);
    QProcess first;
    // Tells that it has begun and then takes its time until its input is closed.
    QVERIFY(prepareShipper(&first, "echo begun\ncat\n" + confirms));
    first.start();
    QVERIFY(first.waitForReadyRead());
    QCOMPARE(first.readLine(), QByteArray("begun\n"));

    QCOMPARE(spool.append("2\n"), Outcome::Written);
    QCOMPARE(ship(confirms), 0);
    QCOMPARE(delivered(), QByteArray());
    QCOMPARE(contentOf(m_folder + QStringLiteral("/events.jsonl")), QByteArray("2\n"));

    first.closeWriteChannel();
    QVERIFY(first.waitForFinished());
    QCOMPARE(delivered(), QByteArray("1\n"));
}

void TestAnalyticsShipper::theSpoolIsNotTakenUnderAWriter()
{
    AnalyticsSpool spool(m_folder);
    QCOMPARE(spool.append("1\n"), Outcome::Written);
    const QString lock = m_folder + QStringLiteral("/events.lock");
    // Has the spool open and the lock in hand, and writes when its input is closed.
    QProcess writer;
    writer.setWorkingDirectory(m_folder);
    writer.start(QStringLiteral("flock"),
                 {lock, QStringLiteral("sh"), QStringLiteral("-c"),
                  QStringLiteral("exec 3>> events.jsonl; echo ready; cat; echo 2 >&3")});
    QVERIFY(writer.waitForReadyRead());

    QProcess shipper;
    QVERIFY(prepareShipper(&shipper, confirms));
    shipper.start();
    QTRY_VERIFY(isWaitedFor(lock) || shipper.state() == QProcess::NotRunning);
    writer.closeWriteChannel();
    QVERIFY(writer.waitForFinished());
    QVERIFY(shipper.state() == QProcess::NotRunning || shipper.waitForFinished());
    QCOMPARE(delivered(), QByteArray("1\n2\n"));
}

void TestAnalyticsShipper::besideWritersNothingIsLostOrDoubled()
{
    // Every way in which a run can end, again and again, each while there are writers.
    const QByteArray services[] = {confirms, refuses, confirmsAndKillsTheShipper};
    constexpr int count = 1000;
    constexpr int batchesWanted = 8;
    int runs = 0;
    int rounds = 0;
    for (; batchCount() < batchesWanted; ++rounds) {
        WriterProcess first(m_folder, QStringLiteral("first %1").arg(rounds), count, wide);
        WriterProcess second(m_folder, QStringLiteral("second %1").arg(rounds), count, wide);
        QVERIFY(first.prepare() && second.prepare());
        first.go();
        second.go();
        do {
            ship(services[runs++ % 3]);
        } while (first.isRunning() || second.isRunning());
        QVERIFY(first.finish() && second.finish());
    }
    ship(confirms);
    QCOMPARE(ship(confirms), 0);
    QCOMPARE(left(), QStringList());

    const QByteArray lines = delivered();
    for (int round = 0; round < rounds; ++round) {
        for (const QString &writer : {QStringLiteral("first %1"), QStringLiteral("second %1")}) {
            auto numbers = numbersOf(lines, writer.arg(round));
            QVERIFY(numbers.has_value());
            std::sort(numbers->begin(), numbers->end());
            QCOMPARE(*numbers, numbersBetween(0, count));
        }
    }
    qInfo("%d writers of %d events, %d runs of the shipper, %d batches", 2 * rounds, count, runs,
          batchCount());
}

int main(int argc, char **argv)
{
    if (const auto status = runAsWriter(argc, argv))
        return *status;
    QCoreApplication application(argc, argv);
    TestAnalyticsShipper test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_analyticsshipper.moc"
