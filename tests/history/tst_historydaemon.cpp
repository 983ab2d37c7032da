// The history with the real IPC library and the real print queue daemon: what comes by itself, and what a
// daemon that fails or dies in the middle leaves.
#include "printqueuedaemon.h"
#include "zbprinterhistory.h"

#include <QtDBus/QDBusConnection>
#include <QtTest/QtTest>

namespace {

QStringList column(const ZBPrinterHistory &history, const char *key)
{
    QStringList result;
    const QVariantList list = history.getPrintJobsHistory();
    for (const QVariant &row : list)
        result.append(row.toMap().value(QLatin1String(key)).toString());
    return result;
}

QStringList guids(const ZBPrinterHistory &history)
{
    return column(history, "GUID");
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

PrintJobMetaData job(const QString &guid, const QString &name)
{
    PrintJobMetaData result;
    result.timeStamp = QStringLiteral("4000000000000");
    result.GUID = guid;
    result.jobName = name;
    result.jobStatus = QStringLiteral("Printed");
    result.copyCount = 1;
    return result;
}

bool setJob(const PrintJobMetaData &job)
{
    return PrintQueueDaemon::control("SetJob", {QVariant::fromValue(job)}).type()
        == QDBusMessage::ReplyMessage;
}

/// Prepares a fault of the next call, after those that were prepared before.
bool prepare(const char *fault, const QVariantList &arguments = {})
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("com.corvanta.printqd"), QStringLiteral("/"),
                                       QStringLiteral("com.corvanta.VirtualDevice1"), QLatin1String(fault));
    call.setArguments(arguments);
    return QDBusConnection::systemBus().call(call).type() == QDBusMessage::ReplyMessage;
}

} // namespace

class TestHistoryDaemon : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void allJobsAreThereWhenTheObjectIs();
    void whatChangesAppearsAndGoesComesByItself();
    void aJobPrintedAgainIsThereAtOnce();
    void aJobThatCannotBePrintedAgainChangesNothing();
    void clearTakesTheFinishedJobsAwayByItself();
    void aDaemonThatFailsKeepsTheList();
    void aDaemonThatDiesLeavesTheListAndComesBackWithIt();
    void aDaemonThatDiesInTheMiddleOfAFetchComesBackWithTheList();
    void aDaemonThatComesLaterIsSeenByItself();

private:
    std::unique_ptr<PrintQueueDaemon> m_daemon;
};

void TestHistoryDaemon::init()
{
    m_daemon = std::make_unique<PrintQueueDaemon>();
    QVERIFY2(m_daemon->start({QStringLiteral("--jobs"), QStringLiteral("30")}),
             qPrintable(m_daemon->standardError()));
}

void TestHistoryDaemon::cleanup()
{
    m_daemon.reset();
}

void TestHistoryDaemon::allJobsAreThereWhenTheObjectIs()
{
    const ZBPrinterHistory history(nullptr, true);
    QCOMPARE(guids(history).size(), 30);
    QCOMPARE(sorted(guids(history)), sorted(PrintQueueDaemon::jobList()));

    // Newest first, by what the daemon says of them.
    QMap<QString, qint64> times;
    for (const PrintJobMetaData &each : PrintQueueDaemon::allJobs())
        times.insert(each.GUID, each.timeStamp.toLongLong());
    const QStringList listed = guids(history);
    for (int i = 1; i < listed.size(); ++i)
        QVERIFY(times.value(listed.at(i - 1)) >= times.value(listed.at(i)));
}

void TestHistoryDaemon::whatChangesAppearsAndGoesComesByItself()
{
    const ZBPrinterHistory history(nullptr, true);
    QSignalSpy changes(&history, &ZBPrinterHistory::printJobsHistoryChanged);
    QVERIFY(setJob(job(QStringLiteral("new"), QStringLiteral("Shoes.tavo"))));
    QTRY_COMPARE(column(history, "jobName").value(0), QStringLiteral("Shoes"));
    QCOMPARE(changes.count(), 2);
    QCOMPARE(guids(history).size(), 31);

    QVERIFY(setJob(job(QStringLiteral("new"), QStringLiteral("Boots.tavo"))));
    QTRY_COMPARE(column(history, "jobName").value(0), QStringLiteral("Boots"));
    QCOMPARE(changes.count(), 4);

    PrintQueueDaemon::control("RemoveJobs", {QStringList(QStringLiteral("new"))});
    QTRY_COMPARE(guids(history).size(), 30);
    QCOMPARE(changes.count(), 6);
}

void TestHistoryDaemon::aJobPrintedAgainIsThereAtOnce()
{
    ZBPrinterHistory history(nullptr, true);
    QSignalSpy changes(&history, &ZBPrinterHistory::printJobsHistoryChanged);
    const QStringList before = guids(history);
    history.reprintPrintJob(before.last());
    QCOMPARE(changes.count(), 2);
    QCOMPARE(guids(history).size(), 31);
    QCOMPARE(column(history, "jobStatus").first(), QStringLiteral("Waiting"));
    QVERIFY(!before.contains(guids(history).first()));
}

void TestHistoryDaemon::aJobThatCannotBePrintedAgainChangesNothing()
{
    ZBPrinterHistory history(nullptr, true);
    QSignalSpy changes(&history, &ZBPrinterHistory::printJobsHistoryChanged);
    const QVariantList before = history.getPrintJobsHistory();
    history.reprintPrintJob(QStringLiteral("unknown"));
    QCOMPARE(changes.count(), 2);
    QCOMPARE(history.getPrintJobsHistory(), before);
}

void TestHistoryDaemon::clearTakesTheFinishedJobsAwayByItself()
{
    ZBPrinterHistory history(nullptr, true);
    history.reprintPrintJob(guids(history).last());
    QSignalSpy changes(&history, &ZBPrinterHistory::printJobsHistoryChanged);
    history.cancelPrintJob();
    QCOMPARE(changes.count(), 0);
    QCOMPARE(guids(history).size(), 31);
    QTRY_VERIFY(guids(history).size() < 31);
    const QStringList statuses = column(history, "jobStatus");
    QVERIFY(statuses.contains(QStringLiteral("Waiting")));
    for (const char *const finished : {"Printed", "Cancelled", "Failed"})
        QVERIFY(!statuses.contains(QLatin1String(finished)));
}

void TestHistoryDaemon::aDaemonThatFailsKeepsTheList()
{
    ZBPrinterHistory history(nullptr, true);
    const QVariantList before = history.getPrintJobsHistory();
    QSignalSpy changes(&history, &ZBPrinterHistory::printJobsHistoryChanged);
    QVERIFY(prepare("FailNextCall", {QStringLiteral("com.example.Error"), QStringLiteral("on purpose")}));
    QVERIFY(
        QMetaObject::invokeMethod(&history, "updatePrintJobHistory", Q_ARG(QString, QStringLiteral("any"))));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(history.getPrintJobsHistory(), before);
}

void TestHistoryDaemon::aDaemonThatDiesLeavesTheListAndComesBackWithIt()
{
    ZBPrinterHistory history(nullptr, true);
    const QVariantList before = history.getPrintJobsHistory();
    QVERIFY(setJob(job(QStringLiteral("last"), QStringLiteral("Last"))));
    m_daemon->kill();
    QTest::qWait(50);
    QVERIFY(QMetaObject::invokeMethod(&history, "populatePrintJobHistoryMap"));
    QVERIFY(guids(history).size() >= 30);

    QVERIFY(m_daemon->start());
    QTRY_COMPARE(guids(history).size(), 31);
    QCOMPARE(guids(history).first(), QStringLiteral("last"));
    QCOMPARE(history.getPrintJobsHistory().mid(1), before);
}

void TestHistoryDaemon::aDaemonThatDiesInTheMiddleOfAFetchComesBackWithTheList()
{
    const ZBPrinterHistory other(nullptr, true);
    const QVariantList before = other.getPrintJobsHistory();
    // The list of GUIDs is still answered.
    QVERIFY(prepare("DelayNextCall", {0U}));
    QVERIFY(prepare("DieInNextCall"));
    const ZBPrinterHistory history(nullptr, true);
    QCOMPARE(history.getPrintJobsHistory(), QVariantList());
    QVERIFY(m_daemon->start());
    QTRY_COMPARE(history.getPrintJobsHistory(), before);
}

void TestHistoryDaemon::aDaemonThatComesLaterIsSeenByItself()
{
    m_daemon->kill();
    const ZBPrinterHistory history(nullptr, true);
    QCOMPARE(history.getPrintJobsHistory(), QVariantList());
    QVERIFY(m_daemon->start());
    QTRY_COMPARE(guids(history).size(), 30);
}

QTEST_GUILESS_MAIN(TestHistoryDaemon)
#include "tst_historydaemon.moc"
