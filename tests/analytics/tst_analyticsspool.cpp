// The spool under everything that happens to it: many writers, killed writers, a held lock, a full disk,
// foreign files in the way, and its bounds.
#include "analyticsspool.h"
#include "filesizelimit.h"
#include "ordinaryuser.h"
#include "spooltestsupport.h"
#include "writerprocess.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <algorithm>
#include <csignal>
#include <memory>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

using Outcome = AnalyticsSpool::Outcome;

namespace {

// Room for everything that a test writes.
constexpr qint64 wide = 1024 * 1024;

// Another process that holds the spool's lock, as a shipper would, until it is told to let go.
class LockHolder
{
public:
    bool hold(const QString &folder)
    {
        m_process.start(QStringLiteral("flock"),
                        {folder + QStringLiteral("/events.lock"), QStringLiteral("sh"), QStringLiteral("-c"),
                         QStringLiteral("echo held; exec cat")});
        return m_process.waitForReadyRead() && m_process.readLine() == "held\n";
    }

    bool letGo()
    {
        m_process.closeWriteChannel();
        return m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

} // namespace

class TestAnalyticsSpool : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theFirstLineMakesAFolderAndFilesForTheUserAlone();
    void nothingIsMadeBeforeTheFirstLine();
    void linesKeepTheirOrder();
    void theSpoolFillsToItsLimitAndThenLosesItsOldestHalf();
    void aLongLineDropsAsMuchAsItNeeds();
    void aSpoolThatGrewByOtherHandsComesBackIntoItsLimit();
    void theReplacedSpoolIsForTheUserAlone();
    void theLongestLineIsKeptAndALongerOneIsLoggedOnce();
    void aLineLongerThanTheSpoolIsDropped();
    void aTornLastLineSwallowsNothing_data();
    void aTornLastLineSwallowsNothing();
    void aTornLastLineSurvivesTheHalvingAsALine();

    void twoProcessesLoseAndTearNothing();
    void twoProcessesAtTheLimitLoseOnlyTheOldest();
    void aKilledWriterHarmsNoLaterEventAndLeavesNoLock();
    void threadsOfOneProcessLoseNothing();

    void aHeldLockDelaysNoCaller();
    void linesThatWaitAreWrittenInOrderWhenTheLockIsFree();
    void linesThatWaitAreWrittenAtTheEnd();
    void linesThatWaitAreBounded();

    void whatStandsInTheWayIsLoggedOnceAndHarmsNothing_data();
    void whatStandsInTheWayIsLoggedOnceAndHarmsNothing();
    void aFolderWithoutWritePermissionIsLoggedOnce();
    void aFullDiskLeavesTheSpoolAsItWas();
    void aFullDiskWhileHalvingLeavesTheSpoolAsItWas();
    void aReplacementLeftByAKilledProcessIsNoObstacle();

private:
    QString path(const char *name) const { return m_folder + QLatin1Char('/') + QLatin1String(name); }
    QByteArray spooled() const { return contentOf(path("events.jsonl")); }

    std::unique_ptr<QTemporaryDir> m_home;
    QString m_folder;
};

void TestAnalyticsSpool::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    m_folder = m_home->filePath(QStringLiteral("Corvanta/analytics"));
}

void TestAnalyticsSpool::cleanup()
{
    m_home.reset();
}

void TestAnalyticsSpool::theFirstLineMakesAFolderAndFilesForTheUserAlone()
{
    const mode_t before = umask(0);
    AnalyticsSpool spool(m_folder);
    const Outcome outcome = spool.append("line\n");
    umask(before);

    QCOMPARE(outcome, Outcome::Written);
    QCOMPARE(spooled(), QByteArray("line\n"));
    QCOMPARE(modeOf(m_home->filePath(QStringLiteral("Corvanta"))), 0700);
    QCOMPARE(modeOf(m_folder), 0700);
    QCOMPARE(modeOf(path("events.jsonl")), 0600);
    QCOMPARE(modeOf(path("events.lock")), 0600);
    QCOMPARE(QDir(m_folder).entryList(QDir::Files | QDir::Hidden),
             QStringList({QStringLiteral("events.jsonl"), QStringLiteral("events.lock")}));
}

void TestAnalyticsSpool::nothingIsMadeBeforeTheFirstLine()
{
    {
        AnalyticsSpool spool(m_folder);
        QCOMPARE(spool.flush(), Outcome::Written);
    }
    QVERIFY(QDir(m_home->path()).isEmpty());
}

void TestAnalyticsSpool::linesKeepTheirOrder()
{
    AnalyticsSpool spool(m_folder);
    QCOMPARE(spool.append("1\n"), Outcome::Written);
    QCOMPARE(spool.append("2\n"), Outcome::Written);
    AnalyticsSpool another(m_folder);
    QCOMPARE(another.append("3\n"), Outcome::Written);
    QCOMPARE(spool.append("4\n"), Outcome::Written);
    QCOMPARE(spooled(), QByteArray("1\n2\n3\n4\n"));
}

void TestAnalyticsSpool::theSpoolFillsToItsLimitAndThenLosesItsOldestHalf()
{
    AnalyticsSpool spool(m_folder, 1000);
    QByteArray all;
    for (int i = 0; i < 10; ++i) {
        const QByteArray line = lineOf(QByteArray::number(i), 100);
        QCOMPARE(spool.append(line), Outcome::Written);
        all += line;
        QCOMPARE(spooled(), all);
    }
    QCOMPARE(all.size(), 1000);

    QCOMPARE(spool.append("one more\n"), Outcome::Written);
    QCOMPARE(spooled(), all.mid(500) + "one more\n");
}

void TestAnalyticsSpool::aLongLineDropsAsMuchAsItNeeds()
{
    AnalyticsSpool spool(m_folder, 1000);
    for (int i = 0; i < 8; ++i)
        QCOMPARE(spool.append(lineOf(QByteArray::number(i), 100)), Outcome::Written);

    QCOMPARE(spool.append(lineOf("long", 800)), Outcome::Written);
    QCOMPARE(spooled(), lineOf("6", 100) + lineOf("7", 100) + lineOf("long", 800));
    QCOMPARE(spool.append(lineOf("longest", 1000)), Outcome::Written);
    QCOMPARE(spooled(), lineOf("longest", 1000));
}

void TestAnalyticsSpool::aSpoolThatGrewByOtherHandsComesBackIntoItsLimit()
{
    QVERIFY(QDir().mkpath(m_folder));
    QByteArray grown;
    for (int i = 0; i < 1000; ++i)
        grown += lineOf(QByteArray::number(i), 100);
    QVERIFY(writeFile(path("events.jsonl"), grown));

    AnalyticsSpool spool(m_folder, 1050);
    QCOMPARE(spool.append("new\n"), Outcome::Written);
    // A piece of a line and ten whole ones are in the last 1050 bytes, and the newer half of these stays.
    QCOMPARE(spooled(), grown.right(500) + "new\n");
}

void TestAnalyticsSpool::theReplacedSpoolIsForTheUserAlone()
{
    const mode_t before = umask(0);
    AnalyticsSpool spool(m_folder, 100);
    spool.append(lineOf("old", 60));
    spool.append(lineOf("new", 60));
    umask(before);

    QCOMPARE(spooled(), lineOf("new", 60));
    QCOMPARE(modeOf(path("events.jsonl")), 0600);
    QVERIFY(!QFileInfo::exists(path("events.new")));
}

void TestAnalyticsSpool::theLongestLineIsKeptAndALongerOneIsLoggedOnce()
{
    AnalyticsSpool spool(m_folder);
    const LogCapture log;
    QCOMPARE(spool.append(lineOf("longest", 65536)), Outcome::Written);
    QVERIFY(log.messages().isEmpty());
    QCOMPARE(spool.append(lineOf("longer", 65537)), Outcome::Dropped);
    QCOMPARE(spool.append(lineOf("longer", 100000)), Outcome::Dropped);
    QCOMPARE(spool.append("after\n"), Outcome::Written);
    QCOMPARE(spooled(), lineOf("longest", 65536) + "after\n");
    QCOMPARE(
        log.messages(),
        QStringList(QStringLiteral("AnalyticsLibrary: an event of 65537 bytes is too long to be kept. It is "
                                   "dropped, further ones silently.")));
}

void TestAnalyticsSpool::aLineLongerThanTheSpoolIsDropped()
{
    AnalyticsSpool spool(m_folder, 100);
    const LogCapture log;
    QCOMPARE(spool.append(lineOf("fits", 100)), Outcome::Written);
    QCOMPARE(spool.append(lineOf("does not", 101)), Outcome::Dropped);
    QCOMPARE(spooled(), lineOf("fits", 100));
    QCOMPARE(log.messages().size(), 1);
}

void TestAnalyticsSpool::aTornLastLineSwallowsNothing_data()
{
    QTest::addColumn<QByteArray>("left");
    QTest::addColumn<QByteArray>("spool");

    QTest::newRow("piece of a line") << QByteArray("whole\n{\"time\":\"20")
                                     << QByteArray("whole\n{\"time\":\"20\nnext\nlast\n");
    QTest::newRow("only a piece") << QByteArray("{") << QByteArray("{\nnext\nlast\n");
    QTest::newRow("NUL bytes of a power cut")
        << QByteArray("whole\n\0\0\0", 9) << QByteArray("whole\n\0\0\0\nnext\nlast\n", 20);
    QTest::newRow("nothing torn") << QByteArray("whole\n") << QByteArray("whole\nnext\nlast\n");
    QTest::newRow("empty file") << QByteArray() << QByteArray("next\nlast\n");
}

void TestAnalyticsSpool::aTornLastLineSwallowsNothing()
{
    QFETCH(QByteArray, left);
    QFETCH(QByteArray, spool);

    QVERIFY(QDir().mkpath(m_folder));
    QVERIFY(writeFile(path("events.jsonl"), left));
    AnalyticsSpool writer(m_folder);
    QCOMPARE(writer.append("next\n"), Outcome::Written);
    QCOMPARE(writer.append("last\n"), Outcome::Written);
    QCOMPARE(spooled(), spool);
}

void TestAnalyticsSpool::aTornLastLineSurvivesTheHalvingAsALine()
{
    QVERIFY(QDir().mkpath(m_folder));
    QVERIFY(writeFile(path("events.jsonl"), lineOf("1", 40) + lineOf("2", 40) + "torn"));
    // The file and the line would just fit, if they did not need a line end between them.
    AnalyticsSpool spool(m_folder, 100);
    QCOMPARE(spool.append(lineOf("new", 16)), Outcome::Written);
    QCOMPARE(spooled(), "torn\n" + lineOf("new", 16));
}

void TestAnalyticsSpool::twoProcessesLoseAndTearNothing()
{
    constexpr int count = 4000;
    WriterProcess first(m_folder, QStringLiteral("first"), count, wide);
    WriterProcess second(m_folder, QStringLiteral("second"), count, wide);
    QVERIFY(first.prepare() && second.prepare());
    first.go();
    second.go();
    QVERIFY(first.finish() && second.finish());

    const QByteArray lines = spooled();
    QVERIFY(lines.size() <= wide);
    QCOMPARE(numbersOf(lines, QStringLiteral("first")).value_or(QVector<int>()), numbersBetween(0, count));
    QCOMPARE(numbersOf(lines, QStringLiteral("second")).value_or(QVector<int>()), numbersBetween(0, count));
}

void TestAnalyticsSpool::twoProcessesAtTheLimitLoseOnlyTheOldest()
{
    constexpr int count = 4000;
    constexpr qint64 limit = 8000;
    WriterProcess first(m_folder, QStringLiteral("first"), count, limit);
    WriterProcess second(m_folder, QStringLiteral("second"), count, limit);
    QVERIFY(first.prepare() && second.prepare());
    first.go();
    second.go();
    QVERIFY(first.finish() && second.finish());

    const QByteArray lines = spooled();
    QVERIFY2(lines.size() <= limit && lines.size() > limit / 4, qPrintable(QString::number(lines.size())));
    // An event that was added to a file just being replaced would be missing between its neighbours.
    const auto ofFirst = numbersOf(lines, QStringLiteral("first"));
    const auto ofSecond = numbersOf(lines, QStringLiteral("second"));
    QVERIFY(ofFirst && ofSecond);
    QCOMPARE(*ofFirst, numbersBetween(count - ofFirst->size(), count));
    QCOMPARE(*ofSecond, numbersBetween(count - ofSecond->size(), count));
    QVERIFY(!QFileInfo::exists(path("events.new")));
}

void TestAnalyticsSpool::aKilledWriterHarmsNoLaterEventAndLeavesNoLock()
{
    constexpr qint64 limit = 2000;
    for (int round = 0; round < 25; ++round) {
        WriterProcess writer(m_folder, QString::number(round), 1000000, limit);
        QVERIFY(writer.prepare());
        writer.go();
        // Killed as soon as its first events are there, at a point that differs from round to round.
        const QByteArray begun = "\"writer\":\"" + QByteArray::number(round) + '"';
        QTRY_VERIFY(spooled().contains(begun));
        writer.process().kill();
        QVERIFY(writer.process().waitForFinished());

        QVERIFY2(spooled().size() <= limit, qPrintable(QString::number(spooled().size())));
        AnalyticsSpool spool(m_folder, limit);
        const QByteArray next =
            "{\"hit\":{\"writer\":\"after\",\"number\":" + QByteArray::number(round) + "}}";
        QCOMPARE(spool.append(next + '\n'), Outcome::Written);
        // The kernel may end a write of a killed process at a page's end, so one piece of a line is its
        // right.
        QVERIFY2(brokenLineCount(spooled()) <= round + 1, spooled().constData());
        QCOMPARE(spooled().split('\n').mid(spooled().count('\n') - 1),
                 QList<QByteArray>({next, QByteArray()}));
    }
}

void TestAnalyticsSpool::threadsOfOneProcessLoseNothing()
{
    AnalyticsSpool spool(m_folder);
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&spool, number] {
            const QByteArray writer = QByteArray::number(number);
            for (int i = 0; i < 500; ++i)
                spool.append("{\"hit\":{\"writer\":\"" + writer + "\",\"number\":" + QByteArray::number(i)
                             + "}}\n");
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(spool.flush(), Outcome::Written);

    for (int number = 0; number < 4; ++number)
        QCOMPARE(numbersOf(spooled(), QString::number(number)).value_or(QVector<int>()),
                 numbersBetween(0, 500));
}

void TestAnalyticsSpool::aHeldLockDelaysNoCaller()
{
    AnalyticsSpool spool(m_folder);
    QCOMPARE(spool.append("before\n"), Outcome::Written);
    LockHolder holder;
    QVERIFY(holder.hold(m_folder));

    const LogCapture log;
    QVector<qint64> waits;
    for (int i = 0; i < 11; ++i) {
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(spool.append("line\n"), Outcome::Waiting);
        waits.append(timer.elapsed());
    }
    std::sort(waits.begin(), waits.end());
    // Three milliseconds are its patience; the rest is for a machine that is busy with something else.
    QVERIFY2(waits.at(waits.size() / 2) < 15, qPrintable(QString::number(waits.at(waits.size() / 2))));
    QVERIFY2(waits.first() < 8, qPrintable(QString::number(waits.first())));
    QCOMPARE(spooled(), QByteArray("before\n"));
    QVERIFY(log.messages().isEmpty());
}

void TestAnalyticsSpool::linesThatWaitAreWrittenInOrderWhenTheLockIsFree()
{
    AnalyticsSpool spool(m_folder);
    QCOMPARE(spool.append("1\n"), Outcome::Written);
    LockHolder holder;
    QVERIFY(holder.hold(m_folder));
    QCOMPARE(spool.append("2\n"), Outcome::Waiting);
    QCOMPARE(spool.append("3\n"), Outcome::Waiting);
    QVERIFY(holder.letGo());
    QCOMPARE(spool.append("4\n"), Outcome::Written);
    QCOMPARE(spooled(), QByteArray("1\n2\n3\n4\n"));
    QCOMPARE(spool.append("5\n"), Outcome::Written);
    QCOMPARE(spooled(), QByteArray("1\n2\n3\n4\n5\n"));
}

void TestAnalyticsSpool::linesThatWaitAreWrittenAtTheEnd()
{
    {
        AnalyticsSpool spool(m_folder);
        QCOMPARE(spool.append("1\n"), Outcome::Written);
        LockHolder holder;
        QVERIFY(holder.hold(m_folder));
        QCOMPARE(spool.append("2\n"), Outcome::Waiting);
        QVERIFY(holder.letGo());
    }
    QCOMPARE(spooled(), QByteArray("1\n2\n"));
}

void TestAnalyticsSpool::linesThatWaitAreBounded()
{
    AnalyticsSpool spool(m_folder);
    QCOMPARE(spool.append("before\n"), Outcome::Written);
    LockHolder holder;
    QVERIFY(holder.hold(m_folder));
    for (int i = 0; i < 4; ++i)
        QCOMPARE(spool.append(lineOf(QByteArray::number(i), 65536)), Outcome::Waiting);
    QCOMPARE(spool.append("too much\n"), Outcome::Dropped);
    QVERIFY(holder.letGo());

    QCOMPARE(spool.append("after\n"), Outcome::Dropped);
    QCOMPARE(spool.append("later\n"), Outcome::Written);
    QCOMPARE(spooled(),
             "before\n" + lineOf("0", 65536) + lineOf("1", 65536) + lineOf("2", 65536) + lineOf("3", 65536)
                 + "later\n");
}

void TestAnalyticsSpool::whatStandsInTheWayIsLoggedOnceAndHarmsNothing_data()
{
    QTest::addColumn<QString>("obstacle"); // below the home folder
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason");

    const QString spool = QStringLiteral("Corvanta/analytics/events.jsonl");
    const QString lock = QStringLiteral("Corvanta/analytics/events.lock");
    const QString folder = QStringLiteral("Corvanta/analytics");
    const QString parent = QStringLiteral("Corvanta");
    QTest::newRow("file for the folder") << folder << "file"
                                         << "Not a directory";
    QTest::newRow("file for the folder above") << parent << "file"
                                               << "Not a directory";
    QTest::newRow("link for the folder") << folder << "link to a folder"
                                         << "Not a directory";
    QTest::newRow("dead link for the folder above") << parent << "dead link"
                                                    << "No such file or directory";
    QTest::newRow("folder for the spool") << spool << "folder"
                                          << "Is a directory";
    QTest::newRow("link for the spool") << spool << "link to a file"
                                        << "Too many levels of symbolic links";
    QTest::newRow("dead link for the spool") << spool << "dead link"
                                             << "Too many levels of symbolic links";
    QTest::newRow("pipe for the spool") << spool << "pipe"
                                        << "Invalid argument";
    QTest::newRow("folder for the lock") << lock << "folder"
                                         << "Is a directory";
    QTest::newRow("link for the lock") << lock << "link to a file"
                                       << "Too many levels of symbolic links";
}

void TestAnalyticsSpool::whatStandsInTheWayIsLoggedOnceAndHarmsNothing()
{
    QFETCH(QString, obstacle);
    QFETCH(QString, kind);
    QFETCH(QString, reason);

    const QString place = m_home->filePath(obstacle);
    const QString elsewhere = m_home->filePath(QStringLiteral("elsewhere"));
    QVERIFY(QDir().mkpath(QFileInfo(place).path()));
    if (kind == QLatin1String("folder")) {
        QVERIFY(QDir().mkpath(place));
    } else if (kind == QLatin1String("pipe")) {
        QCOMPARE(mkfifo(QFile::encodeName(place).constData(), 0600), 0);
    } else if (kind == QLatin1String("file")) {
        QVERIFY(writeFile(place, "foreign"));
    } else {
        if (kind == QLatin1String("link to a folder"))
            QVERIFY(QDir().mkpath(elsewhere));
        else if (kind == QLatin1String("link to a file"))
            QVERIFY(writeFile(elsewhere, "foreign"));
        QVERIFY(QFile::link(elsewhere, place));
    }

    AnalyticsSpool spool(m_folder);
    const LogCapture log;
    QCOMPARE(spool.append("1\n"), Outcome::Dropped);
    QCOMPARE(spool.append("2\n"), Outcome::Dropped);
    QCOMPARE(log.messages(),
             QStringList(QStringLiteral("AnalyticsLibrary: cannot keep events in %1: %2. Events are dropped, "
                                        "further ones silently.")
                             .arg(m_folder, reason)));
    if (kind == QLatin1String("file"))
        QCOMPARE(contentOf(place), QByteArray("foreign"));
    if (kind == QLatin1String("link to a file"))
        QCOMPARE(contentOf(elsewhere), QByteArray("foreign"));
    if (kind == QLatin1String("link to a folder"))
        QVERIFY(QDir(elsewhere).isEmpty());
    if (kind == QLatin1String("dead link"))
        QVERIFY(!QFileInfo::exists(elsewhere));

    QVERIFY(QFile::remove(place) || QDir().rmdir(place));
    QCOMPARE(spool.append("3\n"), Outcome::Written);
    QCOMPARE(spooled(), QByteArray("3\n"));
    QCOMPARE(log.messages().size(), 1);
}

void TestAnalyticsSpool::aFolderWithoutWritePermissionIsLoggedOnce()
{
    const OrdinaryUser user({m_home->path()});
    if (!user.isOrdinary())
        QSKIP("This process may not act as an ordinary user.");
    QVERIFY(QFile::setPermissions(m_home->path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    AnalyticsSpool spool(m_folder);
    const LogCapture log;
    QCOMPARE(spool.append("1\n"), Outcome::Dropped);
    QCOMPARE(spool.append("2\n"), Outcome::Dropped);
    QVERIFY(QFile::setPermissions(m_home->path(),
                                  QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
    QCOMPARE(log.messages(),
             QStringList(
                 QStringLiteral("AnalyticsLibrary: cannot keep events in %1: Permission denied. Events are "
                                "dropped, further ones silently.")
                     .arg(m_folder)));
}

void TestAnalyticsSpool::aFullDiskLeavesTheSpoolAsItWas()
{
    AnalyticsSpool spool(m_folder);
    QCOMPARE(spool.append(lineOf("first", 100)), Outcome::Written);
    const LogCapture log;
    {
        const FileSizeLimit full(150);
        QCOMPARE(spool.append(lineOf("does not fit", 100)), Outcome::Dropped);
    }
    QCOMPARE(spooled(), lineOf("first", 100));
    QCOMPARE(
        log.messages(),
        QStringList(QStringLiteral("AnalyticsLibrary: cannot keep events in %1: File too large. Events are "
                                   "dropped, further ones silently.")
                        .arg(m_folder)));
    QCOMPARE(spool.append("next\n"), Outcome::Written);
    QCOMPARE(spooled(), lineOf("first", 100) + "next\n");
}

void TestAnalyticsSpool::aFullDiskWhileHalvingLeavesTheSpoolAsItWas()
{
    AnalyticsSpool spool(m_folder, 400);
    QByteArray all;
    for (int i = 0; i < 4; ++i) {
        all += lineOf(QByteArray::number(i), 100);
        QCOMPARE(spool.append(lineOf(QByteArray::number(i), 100)), Outcome::Written);
    }
    const LogCapture log;
    {
        const FileSizeLimit full(250);
        QCOMPARE(spool.append(lineOf("does not fit", 100)), Outcome::Dropped);
    }
    QCOMPARE(spooled(), all);
    QVERIFY(!QFileInfo::exists(path("events.new")));
    QCOMPARE(log.messages().size(), 1);
    QCOMPARE(spool.append(lineOf("fits", 100)), Outcome::Written);
    QCOMPARE(spooled(), all.mid(200) + lineOf("fits", 100));
}

void TestAnalyticsSpool::aReplacementLeftByAKilledProcessIsNoObstacle()
{
    QVERIFY(QDir().mkpath(m_folder));
    const QString elsewhere = m_home->filePath(QStringLiteral("elsewhere"));
    QVERIFY(writeFile(elsewhere, "foreign"));
    QVERIFY(QFile::link(elsewhere, path("events.new")));

    AnalyticsSpool spool(m_folder, 100);
    QCOMPARE(spool.append(lineOf("1", 60)), Outcome::Written);
    QCOMPARE(spool.append(lineOf("2", 60)), Outcome::Written);
    QCOMPARE(spooled(), lineOf("2", 60));
    QCOMPARE(contentOf(elsewhere), QByteArray("foreign"));
    QVERIFY(!QFileInfo(path("events.jsonl")).isSymLink());

    QVERIFY(writeFile(path("events.new"),
                      "a leftover that is longer than all lines together, to the last byte of "
                      "it, since nothing of it may come into the spool\n"));
    QCOMPARE(spool.append(lineOf("3", 60)), Outcome::Written);
    QCOMPARE(spooled(), lineOf("3", 60));
}

int main(int argc, char **argv)
{
    if (const auto status = runAsWriter(argc, argv))
        return *status;
    QCoreApplication application(argc, argv);
    TestAnalyticsSpool test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_analyticsspool.moc"
