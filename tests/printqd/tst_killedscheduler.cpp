// The program and a scheduler that is killed again and again: what was acknowledged, by either of them, is in
// the history once, and nothing stays unfinished or is printed by two jobs.
#include "printqueuedaemon.h"

#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

#include <algorithm>

class KilledSchedulerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatWasAcknowledgedIsThereOnceAndEnds();

private:
    PrintQueueDaemon m_daemon;
};

namespace {

QString variable(const char *name)
{
    return qEnvironmentVariable(name);
}

bool control(const char *word)
{
    return QProcess::execute(variable("ZBVIRTUALDEVICE_SCHEDULER"), {QLatin1String(word)}) == 0;
}

bool writeDocument(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write("text\n") == 5;
}

// What clients of the scheduler do, one after the other.
void beginToPrint(QProcess *lp, const QString &name)
{
    lp->start(QStringLiteral("lp"),
              {QStringLiteral("-d"), QStringLiteral("BrackenXL"), QStringLiteral("-t"), name,
               QDir::home().filePath(QStringLiteral("document.txt"))});
    lp->closeWriteChannel();
}

bool isAccepted(QProcess *lp)
{
    lp->waitForFinished();
    return lp->readAllStandardOutput().startsWith("request id is BrackenXL-");
}

// The tokens of the orders that were printed, one for each job; the printer notes the options of a job.
QStringList printedOrders()
{
    const QRegularExpression token(QStringLiteral("zb-order=(\\S+)"));
    const QDir printed(variable("ZBVIRTUALDEVICE_PRINTED"));
    QStringList orders;
    const QStringList names = printed.entryList({QStringLiteral("*.opts")}, QDir::Files);
    for (const QString &name : names) {
        QFile file(printed.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const QRegularExpressionMatch match = token.match(QString::fromUtf8(file.readAll()));
        if (match.hasMatch())
            orders += match.captured(1);
    }
    return orders;
}

int countOf(const PrintJobMetaDataList &jobs, const std::function<bool(const PrintJobMetaData &)> &isMeant)
{
    return int(std::count_if(jobs.cbegin(), jobs.cend(), isMeant));
}

bool isUnfinished(const PrintJobMetaData &job)
{
    return job.jobStatus != QLatin1String("Printed") && job.jobStatus != QLatin1String("Failed");
}

} // namespace

void KilledSchedulerTest::whatWasAcknowledgedIsThereOnceAndEnds()
{
    constexpr int reprints = 20;
    QVERIFY(writeDocument(QDir::home().filePath(QStringLiteral("document.txt"))));
    QVERIFY2(m_daemon.start({QStringLiteral("--printer"), variable("ZBVIRTUALDEVICE_PRINTER")}),
             qPrintable(m_daemon.standardError()));
    QCOMPARE(PrintQueueDaemon::control("AddJobs", {1U}).type(), QDBusMessage::ReplyMessage);
    const QString original = PrintQueueDaemon::jobList().value(0);

    QStringList accepted;
    for (int kill = 0; kill < 10; ++kill) {
        QProcess finished;
        beginToPrint(&finished, QStringLiteral("finished-%1").arg(kill));
        for (int index = 0; index < 2; ++index)
            QCOMPARE(PrintQueueDaemon::call("reprintPrintJob", {original}).type(),
                     QDBusMessage::ReplyMessage);
        if (isAccepted(&finished))
            accepted += QStringLiteral("finished-%1").arg(kill);
        // Another one is somewhere on its way when the scheduler ends, as reprints may be.
        QProcess interrupted;
        beginToPrint(&interrupted, QStringLiteral("interrupted-%1").arg(kill));
        interrupted.waitForFinished(4 * kill);
        QVERIFY(control("kill"));
        if (isAccepted(&interrupted))
            accepted += QStringLiteral("interrupted-%1").arg(kill);
        QVERIFY(control("start"));
    }

    PrintJobMetaDataList jobs;
    const auto look = [&jobs] {
        jobs = PrintQueueDaemon::allJobs();
        return countOf(jobs, isUnfinished);
    };
    const auto reprinted = [](const PrintJobMetaData &job) { return job.appName == 2; };
    const auto areAllOver = [&look] { return look() == 0; };
    // The scheduler itself leaves a job of before at times, until it is started again or has another one.
    for (int again = 0; again < 5 && !QTest::qWaitFor(areAllOver, 2000); ++again) {
        QVERIFY(control("kill"));
        QVERIFY(control("start"));
        QProcess another;
        beginToPrint(&another, QStringLiteral("another"));
        isAccepted(&another);
    }
    QStringList unfinished;
    for (const PrintJobMetaData &job : qAsConst(jobs)) {
        if (isUnfinished(job))
            unfinished += job.jobName + QLatin1Char(' ') + job.jobStatus;
    }
    QCOMPARE(unfinished, QStringList());
    QCOMPARE(countOf(jobs, reprinted), reprints);
    for (const QString &name : qAsConst(accepted))
        QCOMPARE(countOf(jobs, [&](const PrintJobMetaData &job) { return job.jobName == name; }), 1);
    QVERIFY2(accepted.size() >= 10, qPrintable(accepted.join(QLatin1Char(' '))));
    // What ended as printed was, and nothing by two jobs.
    QStringList orders = printedOrders();
    const int printed = countOf(jobs, [&](const PrintJobMetaData &job) {
        return reprinted(job) && job.jobStatus == QLatin1String("Printed");
    });
    QVERIFY2(orders.size() >= printed && printed >= reprints / 2,
             qPrintable(QStringLiteral("%1 of %2").arg(printed).arg(orders.size())));
    QCOMPARE(orders.removeDuplicates(), 0);
    // Nothing is left that could not be cleared.
    QCOMPARE(PrintQueueDaemon::call("clearPrintJob").type(), QDBusMessage::ReplyMessage);
    QCOMPARE(PrintQueueDaemon::jobList(), QStringList());
}

QTEST_GUILESS_MAIN(KilledSchedulerTest)
#include "tst_killedscheduler.moc"
