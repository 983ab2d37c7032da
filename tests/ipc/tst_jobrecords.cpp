// The pure parts: records and the daemon's answers, by a table and against a plain model; the queue of
// notices. And the class on a machine without a bus.
#include "jobrecords.h"
#include "jobwire.h"
#include "pendingnotices.h"
#include "printqueue.h"
#include "zbipc.h"

#include <QtTest/QtTest>

#include <random>

namespace {

using Step = JobUpdate::Step;

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString c = QStringLiteral("c");

JobChanges answer(const char *epoch, quint64 revision, bool complete, const QStringList &guids,
                  const QStringList &removed = {}, bool more = false)
{
    JobChanges result{QLatin1String(epoch), revision, complete, {}, removed, more};
    for (const QString &guid : guids)
        result.jobs.push_back(sampleJob(guid, int(revision)));
    return result;
}

/// "a1 b2": the jobs in order, each with the revision of its record, 0 for a blank one.
QString textOf(const JobRecords &records)
{
    QStringList texts;
    for (auto job = records.jobs.cbegin(); job != records.jobs.cend(); ++job)
        texts.append(job.key()
                     + QString::number(job->GUID.isEmpty() ? 0 : job->timeStamp.rightRef(5).toInt() - 20000));
    texts.sort();
    return texts.join(QLatin1Char(' '));
}

/// Two jobs, a and b, of epoch "e" and revision 10.
JobRecords knownRecords()
{
    JobUpdate update{JobRecords()};
    update.take(answer("e", 10, true, {a, b}));
    return update.takeRecords();
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

/// Everything that is told, in order.
QString told(PendingNotices *notices)
{
    QString result;
    while (!notices->isEmpty())
        result += notices->takeNext();
    return result;
}

} // namespace

Q_DECLARE_METATYPE(std::vector<JobChanges>)

class TestJobRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersBringRecordsUpToDate_data();
    void answersBringRecordsUpToDate();
    void answersWithoutEndAreGivenUp_data();
    void answersWithoutEndAreGivenUp();
    void failureKeepsTheNamesOnly();
    void everyMemberCountsAsADifference();
    void randomHistoriesEndAsThePlainStore();
    void noticesAreToldOnceAndInOrder();
    void readJobsAreToldOnlyWhenTheDaemonNamedThem();
    void theOldestNoticesCanBeKept();
    void machineWithoutABusHasNoJobs();
};

void TestJobRecords::answersBringRecordsUpToDate_data()
{
    QTest::addColumn<std::vector<JobChanges>>("answers");
    QTest::addColumn<int>("lastStep");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<QString>("records");
    const auto row = [](const char *name, const std::vector<JobChanges> &answers, Step step,
                        const char *asked, const char *records) {
        QTest::newRow(name) << answers << int(step) << QString::fromLatin1(asked)
                            << QString::fromLatin1(records);
    };
    row("nothing changed", {answer("e", 10, false, {})}, Step::Done, "e10", "a10 b10");
    row("one changed, one new", {answer("e", 12, false, {b, c})}, Step::Done, "e10", "a10 b12 c12");
    row("one gone", {answer("e", 11, false, {}, {a})}, Step::Done, "e10", "b10");
    row("gone and back", {answer("e", 12, false, {a}, {a})}, Step::Done, "e10", "a12 b10");
    row("one gone that was never known", {answer("e", 12, false, {}, {c})}, Step::Done, "e10", "a10 b10");
    row("all of another epoch", {answer("f", 3, true, {c})}, Step::Done, "e10", "c3");
    row("all of the same epoch", {answer("e", 30, true, {c})}, Step::Done, "e10", "c30");
    row("all of an older revision", {answer("e", 3, true, {a})}, Step::Done, "e10", "a3");
    row("more", {answer("e", 12, false, {c}, {}, true), answer("e", 14, false, {a}, {b})}, Step::Done,
        "e10 e12", "a14 c12");
    row("all in two answers", {answer("f", 2, true, {a}, {}, true), answer("f", 4, false, {c})}, Step::Done,
        "e10 f2", "a2 c4");
    row("all, but the last answer is missing", {answer("f", 2, true, {a}, {}, true)}, Step::AskAgain, "e10",
        "a2");
    row("another epoch in the middle", {answer("e", 12, false, {c}, {}, true), answer("f", 1, true, {b})},
        Step::Done, "e10 e12", "b1");
    row("an older revision that is not all", {answer("e", 9, false, {c}), answer("e", 9, true, {c})},
        Step::Done, "e10 0", "c9");
    row("another epoch that is not all", {answer("f", 12, false, {c}), answer("f", 12, true, {a, c})},
        Step::Done, "e10 0", "a12 c12");
    row("all, without saying so", {answer("f", 12, false, {c}), answer("f", 12, false, {a})}, Step::Done,
        "e10 0", "a12");
    row("no epoch", {answer("", 12, true, {c})}, Step::Failed, "e10", "a10 b10");
    row("more of nothing", {answer("e", 10, false, {c}, {}, true)}, Step::Failed, "e10", "a10 b10");
    row("largest revision", {answer("e", ~quint64(0), false, {}, {a})}, Step::Done, "e10", "b10");
}

void TestJobRecords::answersBringRecordsUpToDate()
{
    QFETCH(std::vector<JobChanges>, answers);
    JobUpdate update(knownRecords());
    Step step = Step::AskAgain;
    QStringList asked;
    for (JobChanges &each : answers) {
        QCOMPARE(step, Step::AskAgain);
        asked.append(update.epoch() + QString::number(update.revision()));
        step = update.take(std::move(each));
    }
    QTEST(int(step), "lastStep");
    QTEST(asked.join(QLatin1Char(' ')), "asked");
    QTEST(textOf(update.takeRecords()), "records");
}

void TestJobRecords::answersWithoutEndAreGivenUp_data()
{
    QTest::addColumn<bool>("complete");
    QTest::addColumn<QString>("epochs");
    QTest::addColumn<int>("atMost");
    QTest::newRow("always more") << false << QStringLiteral("e") << 1000;
    QTest::newRow("always all, and more") << true << QStringLiteral("e") << 4;
    QTest::newRow("always another epoch") << false << QStringLiteral("fg") << 8;
}

void TestJobRecords::answersWithoutEndAreGivenUp()
{
    QFETCH(bool, complete);
    QFETCH(QString, epochs);
    JobUpdate update(knownRecords());
    int answers = 0;
    Step step = Step::AskAgain;
    while (step == Step::AskAgain && answers < 2000) {
        const QByteArray epoch(1, epochs.at(answers % epochs.size()).toLatin1());
        step = update.take(answer(epoch.constData(), quint64(11 + answers), complete, {}, {}, true));
        ++answers;
    }
    QCOMPARE(step, Step::Failed);
    QFETCH(int, atMost);
    QVERIFY2(answers <= atMost + 1, qPrintable(QString::number(answers)));
}

void TestJobRecords::failureKeepsTheNamesOnly()
{
    JobUpdate atOnce(knownRecords());
    QCOMPARE(textOf(atOnce.takeBlank()), QStringLiteral("a0 b0"));

    JobUpdate inTheMiddle(knownRecords());
    QCOMPARE(inTheMiddle.take(answer("f", 1, true, {c}, {}, true)), Step::AskAgain);
    const JobRecords blank = inTheMiddle.takeBlank();
    QCOMPARE(textOf(blank), QStringLiteral("a0 b0"));
    QCOMPARE(blank.epoch, QString());
    QCOMPARE(blank.revision, quint64(0));

    // From there all is asked for, and what is not in the answer is gone.
    JobUpdate next{JobRecords(blank)};
    QCOMPARE(next.take(answer("f", 2, false, {b, c})), Step::Done);
    const JobRecords now = next.takeRecords();
    QCOMPARE(textOf(now), QStringLiteral("b2 c2"));
    QCOMPARE(sorted(differingJobs(blank, now)), QStringList({a, b, c}));
}

void TestJobRecords::everyMemberCountsAsADifference()
{
    const std::vector<std::function<void(PrintJobMetaData &)>> changes{[](PrintJobMetaData &job) { job.timeStamp += a; },
                                                                       [](PrintJobMetaData &job) { job.GUID += a; },
                                                                       [](PrintJobMetaData &job) { job.jobName += a; },
                                                                       [](PrintJobMetaData &job) { job.jobStatus += a; },
                                                                       [](PrintJobMetaData &job) { ++job.appName; },
                                                                       [](PrintJobMetaData &job) { ++job.errorValue; },
                                                                       [](PrintJobMetaData &job) { ++job.copyCount; },
                                                                       [](PrintJobMetaData &job) { ++job.seriesCount; },
                                                                       [](PrintJobMetaData &job) { ++job.heat1; },
                                                                       [](PrintJobMetaData &job) { ++job.heat2; },
                                                                       [](PrintJobMetaData &job) { ++job.tension1; },
                                                                       [](PrintJobMetaData &job) { ++job.tension2; },
                                                                       [](PrintJobMetaData &job) { ++job.eventType; },
                                                                       [](PrintJobMetaData &job) { job.supplySKU += a; },
                                                                       [](PrintJobMetaData &job) { job.supplyColor += a; },
                                                                       [](PrintJobMetaData &job) { ++job.supplyMileage; },
                                                                       [](PrintJobMetaData &job) { job.ribbon1SKU += a; },
                                                                       [](PrintJobMetaData &job) { job.ribbon1Color += a; },
                                                                       [](PrintJobMetaData &job) { ++job.ribbon1Mileage; },
                                                                       [](PrintJobMetaData &job) { job.ribbon2SKU += a; },
                                                                       [](PrintJobMetaData &job) { job.ribbon2Color += a; },
                                                                       [](PrintJobMetaData &job) { ++job.ribbon2Mileage; },
                                                                       [](PrintJobMetaData &job) { job.imagePath += a; }};
    QCOMPARE(changes.size(), size_t(23));
    const JobRecords before = knownRecords();
    QCOMPARE(differingJobs(before, knownRecords()), QStringList());
    for (const auto &change : changes) {
        JobRecords after = before;
        change(after.jobs[b]);
        QCOMPARE(differingJobs(before, after), QStringList(b));
    }
}

void TestJobRecords::randomHistoriesEndAsThePlainStore()
{
    std::mt19937 random(20261121);
    const auto upTo = [&random](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    for (int history = 0; history < 40; ++history) {
        PrintQueueStore store;
        store.mostInAnAnswer = 1 + upTo(5);
        JobRecords records;
        for (int fetch = 0; fetch < 12; ++fetch) {
            const JobRecords before = records;
            JobUpdate update(std::move(records));
            Step step = Step::AskAgain;
            int beginnings = 0;
            while (step == Step::AskAgain) {
                for (int changes = upTo(8); changes > 0; --changes) {
                    const QString guid = QString::number(upTo(20));
                    if (upTo(2) == 0)
                        store.remove(guid);
                    else
                        store.set(sampleJob(guid, upTo(3)));
                }
                if (upTo(15) == 0 && ++beginnings < 2)
                    store.lose(QStringLiteral("epoch %1").arg(upTo(3)));
                const QVariantList content = store.changesSince(update.epoch(), update.revision());
                const auto jobs = content.at(3).value<PrintJobMetaDataList>();
                step = update.take({content.at(0).toString(),
                                    content.at(1).toULongLong(),
                                    content.at(2).toBool(),
                                    {jobs.cbegin(), jobs.cend()},
                                    content.at(4).toStringList(),
                                    content.at(5).toBool()});
                // The store stands still at last, for an answer to be the last one.
                store.mostInAnAnswer += 2;
            }
            QCOMPARE(step, Step::Done);
            const QStringList changed = update.changed();
            records = update.takeRecords();

            QCOMPARE(records.jobs.size(), store.jobs().size());
            QStringList expected;
            for (const PrintJobMetaData &job : store.jobs()) {
                QVERIFY(isSame(records.jobs.value(job.GUID), job));
                if (!before.jobs.contains(job.GUID) || !isSame(before.jobs.value(job.GUID), job))
                    expected.append(job.GUID);
            }
            for (const QString &guid : before.jobs.keys()) {
                if (!store.jobs().contains(guid))
                    expected.append(guid);
            }
            QCOMPARE(sorted(differingJobs(before, records)), sorted(expected));
            // Beside those, only what went to and fro.
            for (const QString &guid : expected)
                QVERIFY(changed.contains(guid));
        }
    }
}

void TestJobRecords::noticesAreToldOnceAndInOrder()
{
    PendingNotices notices;
    for (const QString &guid : {b, a, b, c, a})
        notices.add(guid);
    QCOMPARE(notices.takeNext(), b);
    notices.add(b);
    QCOMPARE(told(&notices), QStringLiteral("acb"));
    QVERIFY(notices.isEmpty());
}

void TestJobRecords::readJobsAreToldOnlyWhenTheDaemonNamedThem()
{
    PendingNotices notices;
    notices.add(a);
    notices.addUnlessRead(a);
    notices.addUnlessRead(b);
    notices.addUnlessRead(c);
    for (const QString &guid : {a, b, c, QStringLiteral("d")})
        notices.noteRead(guid);
    QCOMPARE(told(&notices), QStringLiteral("a"));

    notices.addUnlessRead(a);
    notices.addUnlessRead(b);
    notices.add(a);
    notices.noteRead(a);
    notices.noteRead(b);
    notices.addUnlessRead(b);
    QCOMPARE(told(&notices), QStringLiteral("ab"));
}

void TestJobRecords::theOldestNoticesCanBeKept()
{
    PendingNotices notices;
    for (const QString &guid : {a, b, c})
        notices.add(guid);
    notices.keepNext(3);
    QCOMPARE(notices.takeNext(), a);
    notices.add(a);
    notices.keepNext(2);
    QCOMPARE(told(&notices), QStringLiteral("bc"));

    notices.addUnlessRead(a);
    notices.add(b);
    notices.noteRead(a);
    notices.addUnlessRead(a);
    notices.addUnlessRead(c);
    notices.keepNext(2);
    notices.noteRead(a);
    notices.noteRead(b);
    QCOMPARE(told(&notices), QStringLiteral("b"));

    // Those that were read do not count.
    notices.addUnlessRead(a);
    for (const QString &guid : {b, c, QStringLiteral("d")})
        notices.add(guid);
    notices.noteRead(a);
    notices.keepNext(2);
    QCOMPARE(told(&notices), QStringLiteral("bc"));
}

void TestJobRecords::machineWithoutABusHasNoJobs()
{
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/at/all");
    QElapsedTimer timer;
    timer.start();
    const ZBIPC ipc(nullptr);
    for (int i = 0; i < 1000; ++i)
        QCOMPARE(ipc.getJobInfo(QString::number(i)).copyCount, 0);
    QCoreApplication::processEvents();
    QCOMPARE(ipc.getJobInfo(a).copyCount, 0);
    QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
}

QTEST_GUILESS_MAIN(TestJobRecords)
#include "tst_jobrecords.moc"
