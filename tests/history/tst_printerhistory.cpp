// The object with an IPC library and a print queue daemon of the test: what is asked in which order, how
// often the list is announced, and what it holds each time.
#include "emissionrecorder.h"
#include "fakeprintqueuedaemon.h"
#include "messagelog.h"
#include "metaobjecttext.h"
#include "recordingipc.h"
#include "texts.h"
#include "zbprinterhistory.h"

#include <QtCore/QMetaProperty>
#include <QtCore/QMutex>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <thread>

namespace {

PrintJobMetaData job(const QString &timeStamp, const QString &name, int copies = 1)
{
    PrintJobMetaData result;
    result.timeStamp = timeStamp;
    result.GUID = QStringLiteral("record of ") + name;
    result.jobName = name;
    result.copyCount = copies;
    return result;
}

/// What the daemon of a test answers and was asked. Its calls run on another thread, while the test waits.
class Answers
{
public:
    QDBusMessage operator()(const QDBusMessage &call)
    {
        const QMutexLocker locker(&m_mutex);
        QStringList texts = {QStringLiteral("daemon"), call.member()};
        for (const QVariant &argument : call.arguments())
            texts.append(QString::fromLatin1(argument.typeName()) + QLatin1Char(':') + argument.toString());
        recordingIpc().log.append(texts.join(QLatin1Char(' ')));
        if (m_fails)
            return call.createErrorReply(QStringLiteral("com.example.Error"), QStringLiteral("on purpose"));
        if (call.member() == QLatin1String("getJobList"))
            return call.createReply(m_listReply);
        return call.createReply();
    }

    void setList(const QStringList &guids) { setListReply({guids}); }
    void setListReply(const QVariantList &arguments)
    {
        const QMutexLocker locker(&m_mutex);
        m_listReply = arguments;
    }
    void setFails(bool fails)
    {
        const QMutexLocker locker(&m_mutex);
        m_fails = fails;
    }

private:
    QMutex m_mutex;
    QVariantList m_listReply = {QStringList()};
    bool m_fails = false;
};

QStringList names(const QVariantList &list)
{
    QStringList result;
    for (const QVariant &row : list)
        result.append(row.toMap().value(QStringLiteral("jobName")).toString());
    return result;
}

/// What the list holds at each announcement.
class Announcements
{
public:
    explicit Announcements(const ZBPrinterHistory &history)
    {
        QObject::connect(&history, &ZBPrinterHistory::printJobsHistoryChanged, &m_context, [this, &history] {
            m_lists.append(names(history.getPrintJobsHistory()).join(QLatin1Char(' ')));
        });
    }

    /// One text an announcement: the names, in their order.
    QStringList lists() const { return m_lists; }

private:
    QObject m_context;
    QStringList m_lists;
};

bool call(ZBPrinterHistory &history, const char *slot)
{
    return QMetaObject::invokeMethod(&history, slot, Qt::DirectConnection);
}

bool update(ZBPrinterHistory &history, const QString &guid)
{
    return QMetaObject::invokeMethod(&history, "updatePrintJobHistory", Qt::DirectConnection,
                                     Q_ARG(QString, guid));
}

} // namespace

class TestPrinterHistory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void membersAreInOrder();
    void constructionAsksForTheListAndThenForEachJob();
    void theIpcObjectHasNoParentAndOutlivesTheHistory();
    void eachHistoryHasAnIpcObjectOfItsOwn();
    void changesDuringTheFirstFetchAreNotSeen();
    void withoutADaemonTheListIsEmptyAndNothingIsAnnounced();
    void withoutABusTheListIsEmpty();
    void theDaemonMayHaveNoIntrospectionData();

    void theNewestJobIsFirstAndTidied();
    void jobsWithoutCopiesAreNotListed();
    void theGuidOfTheListCountsAndNotThatOfTheRecord();
    void aGuidThatIsNamedTwiceIsListedOnce();
    void theClockFlagChoosesTheText_data();
    void theClockFlagChoosesTheText();

    void aChangeIsAnnouncedBeforeAndAfterTheFetch();
    void aChangeThatEmptiesTheListIsAnnouncedTwice();
    void aFailedFetchKeepsTheListAndAnnouncesOnce_data();
    void aFailedFetchKeepsTheListAndAnnouncesOnce();
    void aFailedFetchLeavesTheMapEmpty();
    void aFetchAloneIsAnnouncedOnce();
    void aReplyWithMoreThanTheListIsRead();
    void aChangeFromAnotherThreadIsHandledOnThisOne();
    void aChangeDuringAFetchIsHandledAtOnce();

    void aSlotMayDeleteTheObject();

    void reprintSendsTheGuidAndRefreshes();
    void reprintThatFailsRefreshesAllTheSame();
    void clearSendsTheCommandAndNothingElse();
    void clearThatFailsIsIgnored();

private:
    Answers m_answers;
    std::unique_ptr<FakePrintQueueDaemon> m_daemon;
    std::unique_ptr<MessageLog> m_messages;
};

void TestPrinterHistory::init()
{
    recordingIpc().clear();
    m_answers.setFails(false);
    m_answers.setList({});
    m_daemon =
        std::make_unique<FakePrintQueueDaemon>([this](const QDBusMessage &call) { return m_answers(call); });
    QVERIFY(m_daemon->isOnTheBus());
    m_messages = std::make_unique<MessageLog>();
}

void TestPrinterHistory::cleanup()
{
    const QStringList logged = m_messages->texts();
    m_messages.reset();
    m_daemon.reset();
    QCOMPARE(recordingIpc().destroyed, 0);
    // They live as long as the process, which the library means; the test ends them for the next one.
    qDeleteAll(recordingIpc().made);
    QCOMPARE(logged, QStringList());
}

void TestPrinterHistory::membersAreInOrder()
{
    const QMetaObject &historyClass = ZBPrinterHistory::staticMetaObject;
    QCOMPARE(methodTexts(historyClass, QMetaMethod::Signal),
             texts({"public signal void printJobsHistoryChanged()"}));
    QCOMPARE(
        methodTexts(historyClass, QMetaMethod::Slot),
        texts({"public slot void reprintPrintJob(QString GUID)", "public slot void cancelPrintJob()",
               "private slot void populatePrintJobHistoryMap()", "private slot void setPrintJobsHistory()",
               "private slot void updatePrintJobHistory(QString guid)"}));
    QCOMPARE(methodTexts(historyClass, QMetaMethod::Method), QStringList());
    QCOMPARE(historyClass.methodCount() - historyClass.methodOffset(), 6);
    QCOMPARE(historyClass.propertyCount() - historyClass.propertyOffset(), 1);
    QCOMPARE(historyClass.enumeratorCount() - historyClass.enumeratorOffset(), 0);
    QCOMPARE(historyClass.superClass(), &QObject::staticMetaObject);

    const QMetaProperty property = historyClass.property(historyClass.propertyOffset());
    QCOMPARE(property.name(), "printJobsHistory");
    QCOMPARE(property.typeName(), "QVariantList");
    QCOMPARE(property.notifySignal().name(), QByteArray("printJobsHistoryChanged"));
    QVERIFY(property.isReadable() && property.isDesignable() && property.isScriptable()
            && property.isStored());
    QVERIFY(!property.isWritable() && !property.isConstant() && !property.isFinal()
            && !property.isResettable());
}

void TestPrinterHistory::constructionAsksForTheListAndThenForEachJob()
{
    m_daemon->noteIntrospection([] { recordingIpc().log.append(QStringLiteral("daemon interface")); });
    m_answers.setList(texts({"z", "a", "m"}));
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("A"))},
                              {QStringLiteral("m"), job(QStringLiteral("2"), QStringLiteral("M"))},
                              {QStringLiteral("z"), job(QStringLiteral("3"), QStringLiteral("Z"))}};
    const ZBPrinterHistory history(nullptr, true);
    QCOMPARE(recordingIpc().log,
             texts({"daemon interface", "made", "daemon getJobList", "getJobInfo z", "getJobInfo a",
                    "getJobInfo m"}));
    QCOMPARE(names(history.getPrintJobsHistory()), texts({"Z", "M", "A"}));
    QCOMPARE(history.property("printJobsHistory").toList(), history.getPrintJobsHistory());
}

void TestPrinterHistory::theIpcObjectHasNoParentAndOutlivesTheHistory()
{
    {
        QObject parent;
        auto *const history = new ZBPrinterHistory(&parent, true);
        QCOMPARE(history->parent(), &parent);
        QCOMPARE(recordingIpc().parents, QVector<QObject *>{nullptr});
        QVERIFY(history->children().isEmpty());
    }
    QCOMPARE(recordingIpc().destroyed, 0);
    recordingIpc().log.clear();
    Q_EMIT recordingIpc().made.first()->PrintJobInfoChanged(QStringLiteral("a"));
    QCOMPARE(recordingIpc().log, QStringList());
}

void TestPrinterHistory::eachHistoryHasAnIpcObjectOfItsOwn()
{
    const ZBPrinterHistory one(nullptr, true);
    const ZBPrinterHistory other(nullptr, false);
    QCOMPARE(recordingIpc().made.size(), 2);
    const Announcements announcements(one);
    const Announcements otherAnnouncements(other);
    Q_EMIT recordingIpc().made.last()->PrintJobInfoChanged(QStringLiteral("a"));
    QCOMPARE(announcements.lists().size(), 0);
    QCOMPARE(otherAnnouncements.lists().size(), 2);
}

void TestPrinterHistory::changesDuringTheFirstFetchAreNotSeen()
{
    m_answers.setList(texts({"a"}));
    recordingIpc().beforeAnswer = [](const QString &guid) {
        Q_EMIT recordingIpc().made.first()->PrintJobInfoChanged(guid);
    };
    ZBPrinterHistory history(nullptr, true);
    recordingIpc().beforeAnswer = nullptr;
    QCoreApplication::processEvents();
    QCOMPARE(recordingIpc().log, texts({"made", "daemon getJobList", "getJobInfo a"}));
}

void TestPrinterHistory::withoutADaemonTheListIsEmptyAndNothingIsAnnounced()
{
    m_daemon.reset();
    ZBPrinterHistory history(nullptr, true);
    QCOMPARE(history.getPrintJobsHistory(), QVariantList());
    QCOMPARE(recordingIpc().log, texts({"made"}));
    const Announcements announcements(history);
    QVERIFY(call(history, "populatePrintJobHistoryMap"));
    QCOMPARE(announcements.lists(), QStringList());
    QVERIFY(update(history, QStringLiteral("a")));
    QCOMPARE(announcements.lists(), texts({""}));
    history.reprintPrintJob(QStringLiteral("a"));
    QCOMPARE(announcements.lists(), texts({"", ""}));
    history.cancelPrintJob();
    QCOMPARE(announcements.lists(), texts({"", ""}));
}

void TestPrinterHistory::withoutABusTheListIsEmpty()
{
    // The system bus is connected once a process.
    QProcess other;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"),
                       QStringLiteral("unix:path=/nonexistent/bus"));
    other.setProcessEnvironment(environment);
    other.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--without-bus")});
    QVERIFY(other.waitForFinished());
    QCOMPARE(other.exitStatus(), QProcess::NormalExit);
    QCOMPARE(other.readAllStandardOutput(), QByteArray("0 jobs, 2 announcements\n"));
}

void TestPrinterHistory::theDaemonMayHaveNoIntrospectionData()
{
    // The daemon of this test never has any, and answers all the same.
    m_answers.setList(texts({"a"}));
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("A"))}};
    const ZBPrinterHistory history(nullptr, true);
    QCOMPARE(names(history.getPrintJobsHistory()), texts({"A"}));
}

void TestPrinterHistory::theNewestJobIsFirstAndTidied()
{
    m_answers.setList(texts({"a", "b"}));
    PrintJobMetaData newer = job(QStringLiteral("2000"), QStringLiteral("new.tavo"));
    newer.imagePath = QStringLiteral("/var/1.png");
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1000"), QStringLiteral("old.zbzl"))},
                              {QStringLiteral("b"), newer}};
    const ZBPrinterHistory history(nullptr, true);
    const QVariantList list = history.getPrintJobsHistory();
    QCOMPARE(names(list), texts({"new", "old"}));
    QCOMPARE(list.first().toMap().value(QStringLiteral("imagePath")).toString(),
             QStringLiteral("file:////var/1.png"));
    QCOMPARE(list.last().toMap().value(QStringLiteral("imagePath")).toString(), QStringLiteral("file:///"));
    QCOMPARE(list.first().toMap().size(), 23);
}

void TestPrinterHistory::jobsWithoutCopiesAreNotListed()
{
    m_answers.setList(texts({"a", "b", "c", "unknown"}));
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("A"), 0)},
                              {QStringLiteral("b"), job(QStringLiteral("2"), QStringLiteral("B"), 1)},
                              {QStringLiteral("c"), job(QStringLiteral("3"), QStringLiteral("C"), -3)}};
    const ZBPrinterHistory history(nullptr, true);
    QCOMPARE(names(history.getPrintJobsHistory()), texts({"B"}));
}

void TestPrinterHistory::theGuidOfTheListCountsAndNotThatOfTheRecord()
{
    m_answers.setList(texts({"a", "b"}));
    PrintJobMetaData one = job(QStringLiteral("1"), QStringLiteral("A"));
    PrintJobMetaData other = job(QStringLiteral("2"), QStringLiteral("B"));
    one.GUID = other.GUID = QStringLiteral("same");
    recordingIpc().records = {{QStringLiteral("a"), one}, {QStringLiteral("b"), other}};
    const ZBPrinterHistory history(nullptr, true);
    QCOMPARE(names(history.getPrintJobsHistory()), texts({"B", "A"}));
    QCOMPARE(history.getPrintJobsHistory().first().toMap().value(QStringLiteral("GUID")).toString(),
             QStringLiteral("same"));
}

void TestPrinterHistory::aGuidThatIsNamedTwiceIsListedOnce()
{
    m_answers.setList(texts({"a", "a", "a"}));
    int asked = 0;
    recordingIpc().beforeAnswer = [&asked](const QString &guid) {
        ++asked;
        // The third has no copies: it is dropped and takes nothing away.
        recordingIpc().records[guid] =
            job(QStringLiteral("1"), QStringLiteral("answer %1").arg(asked), asked == 3 ? 0 : 1);
    };
    const ZBPrinterHistory history(nullptr, true);
    QCOMPARE(asked, 3);
    QCOMPARE(names(history.getPrintJobsHistory()), texts({"answer 2"}));
}

void TestPrinterHistory::theClockFlagChoosesTheText_data()
{
    QTest::addColumn<bool>("is24HourClock");
    QTest::addColumn<QString>("time");
    QTest::newRow("24 hours") << true << QStringLiteral("03/05/2021 14:07");
    QTest::newRow("am and pm") << false << QStringLiteral("03/05/2021 14:07pm");
}

void TestPrinterHistory::theClockFlagChoosesTheText()
{
    QFETCH(bool, is24HourClock);
    m_answers.setList(texts({"a"}));
    recordingIpc().records = {
        {QStringLiteral("a"), job(QStringLiteral("1614953220000"), QStringLiteral("A"))}};
    const ZBPrinterHistory history(nullptr, is24HourClock);
    QTEST(history.getPrintJobsHistory().first().toMap().value(QStringLiteral("timeStamp")).toString(),
          "time");
}

void TestPrinterHistory::aChangeIsAnnouncedBeforeAndAfterTheFetch()
{
    m_answers.setList(texts({"a"}));
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("old"))}};
    const ZBPrinterHistory history(nullptr, true);
    const Announcements announcements(history);
    recordingIpc().log.clear();

    m_answers.setList(texts({"a", "b"}));
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("changed"))},
                              {QStringLiteral("b"), job(QStringLiteral("2"), QStringLiteral("new"))}};
    Q_EMIT recordingIpc().made.first()->PrintJobInfoChanged(QStringLiteral("anything"));
    QCOMPARE(announcements.lists(), texts({"old", "new changed"}));
    QCOMPARE(recordingIpc().log, texts({"daemon getJobList", "getJobInfo a", "getJobInfo b"}));
}

void TestPrinterHistory::aChangeThatEmptiesTheListIsAnnouncedTwice()
{
    m_answers.setList(texts({"a"}));
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("A"))}};
    ZBPrinterHistory history(nullptr, true);
    const Announcements announcements(history);
    m_answers.setList({});
    QVERIFY(update(history, QStringLiteral("a")));
    QCOMPARE(announcements.lists(), texts({"A", ""}));
    QVERIFY(update(history, QStringLiteral("a")));
    QCOMPARE(announcements.lists(), texts({"A", "", "", ""}));
}

void TestPrinterHistory::aFailedFetchKeepsTheListAndAnnouncesOnce_data()
{
    QTest::addColumn<bool>("fails");
    QTest::addColumn<QVariantList>("reply");
    QTest::newRow("error") << true << QVariantList();
    QTest::newRow("a text") << false << QVariantList{QStringLiteral("a")};
    QTest::newRow("a number") << false << QVariantList{7};
    QTest::newRow("bytes") << false << QVariantList{QByteArray("a")};
    QTest::newRow("nothing") << false << QVariantList();
    QTest::newRow("a list of variants") << false << QVariantList{QVariant(QVariantList{QStringLiteral("a")})};
    QTest::newRow("a text before the list")
        << false << QVariantList{QStringLiteral("a"), QStringList{QStringLiteral("a")}};
}

void TestPrinterHistory::aFailedFetchKeepsTheListAndAnnouncesOnce()
{
    QFETCH(bool, fails);
    QFETCH(QVariantList, reply);
    m_answers.setList(texts({"a"}));
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("A"))}};
    ZBPrinterHistory history(nullptr, true);
    const Announcements announcements(history);
    recordingIpc().log.clear();

    m_answers.setFails(fails);
    m_answers.setListReply(reply);
    QVERIFY(update(history, QStringLiteral("a")));
    QCOMPARE(announcements.lists(), texts({"A"}));
    QCOMPARE(recordingIpc().log, texts({"daemon getJobList"}));
    QCOMPARE(names(history.getPrintJobsHistory()), texts({"A"}));

    m_answers.setFails(false);
    m_answers.setList(texts({"a"}));
    QVERIFY(update(history, QStringLiteral("a")));
    QCOMPARE(announcements.lists(), texts({"A", "A", "A"}));
}

void TestPrinterHistory::aFailedFetchLeavesTheMapEmpty()
{
    m_answers.setList(texts({"a"}));
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("A"))}};
    ZBPrinterHistory history(nullptr, true);
    m_answers.setFails(true);
    QVERIFY(call(history, "populatePrintJobHistoryMap"));
    QCOMPARE(names(history.getPrintJobsHistory()), texts({"A"}));
    const Announcements announcements(history);
    QVERIFY(call(history, "setPrintJobsHistory"));
    QCOMPARE(announcements.lists(), texts({""}));
}

void TestPrinterHistory::aFetchAloneIsAnnouncedOnce()
{
    ZBPrinterHistory history(nullptr, true);
    const Announcements announcements(history);
    QVERIFY(call(history, "populatePrintJobHistoryMap"));
    QCOMPARE(announcements.lists(), texts({""}));
}

void TestPrinterHistory::aReplyWithMoreThanTheListIsRead()
{
    m_answers.setListReply({texts({"a"}), QStringLiteral("more")});
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("A"))}};
    const ZBPrinterHistory history(nullptr, true);
    QCOMPARE(names(history.getPrintJobsHistory()), texts({"A"}));
}

void TestPrinterHistory::aChangeFromAnotherThreadIsHandledOnThisOne()
{
    const ZBPrinterHistory history(nullptr, true);
    QVector<QThread *> threads;
    QObject context;
    connect(
        &history, &ZBPrinterHistory::printJobsHistoryChanged, &context,
        [&threads] { threads.append(QThread::currentThread()); }, Qt::DirectConnection);
    recordingIpc().log.clear();
    std::thread([] { Q_EMIT recordingIpc().made.first()->PrintJobInfoChanged(QStringLiteral("a")); }).join();
    QCOMPARE(recordingIpc().log, QStringList());
    QTRY_COMPARE(threads, (QVector<QThread *>{QThread::currentThread(), QThread::currentThread()}));
}

void TestPrinterHistory::aChangeDuringAFetchIsHandledAtOnce()
{
    m_answers.setList(texts({"a", "b"}));
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("A"))},
                              {QStringLiteral("b"), job(QStringLiteral("2"), QStringLiteral("B"))}};
    ZBPrinterHistory history(nullptr, true);
    const Announcements announcements(history);
    recordingIpc().beforeAnswer = [](const QString &guid) {
        recordingIpc().beforeAnswer = nullptr;
        Q_EMIT recordingIpc().made.first()->PrintJobInfoChanged(guid);
    };
    QVERIFY(update(history, QStringLiteral("a")));
    QCOMPARE(announcements.lists(), texts({"B A", "B A", "B A", "B A"}));
}

void TestPrinterHistory::aSlotMayDeleteTheObject()
{
    for (const int last : {1, 2}) {
        auto *const history = new ZBPrinterHistory(nullptr, true);
        int announcements = 0;
        connect(history, &ZBPrinterHistory::printJobsHistoryChanged, history,
                [&announcements, last, history] {
                    if (++announcements == last)
                        delete history;
                });
        Q_EMIT recordingIpc().made.last()->PrintJobInfoChanged(QStringLiteral("a"));
        QCOMPARE(announcements, last);
    }
}

void TestPrinterHistory::reprintSendsTheGuidAndRefreshes()
{
    m_answers.setList(texts({"a"}));
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("A"))}};
    ZBPrinterHistory history(nullptr, true);
    recordingIpc().log.clear();
    QObject context;
    connect(&history, &ZBPrinterHistory::printJobsHistoryChanged, &context,
            [] { recordingIpc().log.append(QStringLiteral("announced")); });
    history.reprintPrintJob(QStringLiteral("any \"text\" ü"));
    QCOMPARE(recordingIpc().log,
             (QStringList{QStringLiteral("daemon reprintPrintJob QString:any \"text\" ü"),
                          QStringLiteral("announced"), QStringLiteral("daemon getJobList"),
                          QStringLiteral("getJobInfo a"), QStringLiteral("announced")}));
}

void TestPrinterHistory::reprintThatFailsRefreshesAllTheSame()
{
    m_answers.setList(texts({"a"}));
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("A"))}};
    ZBPrinterHistory history(nullptr, true);
    const Announcements announcements(history);
    recordingIpc().log.clear();
    m_answers.setFails(true);
    history.reprintPrintJob(QStringLiteral("unknown"));
    QCOMPARE(recordingIpc().log, texts({"daemon reprintPrintJob QString:unknown", "daemon getJobList"}));
    QCOMPARE(announcements.lists(), texts({"A"}));
}

void TestPrinterHistory::clearSendsTheCommandAndNothingElse()
{
    m_answers.setList(texts({"a"}));
    recordingIpc().records = {{QStringLiteral("a"), job(QStringLiteral("1"), QStringLiteral("A"))}};
    ZBPrinterHistory history(nullptr, true);
    const Announcements announcements(history);
    recordingIpc().log.clear();
    m_answers.setList({});
    history.cancelPrintJob();
    QCoreApplication::processEvents();
    QCOMPARE(recordingIpc().log, texts({"daemon clearPrintJob"}));
    QCOMPARE(announcements.lists(), QStringList());
    QCOMPARE(names(history.getPrintJobsHistory()), texts({"A"}));

    Q_EMIT recordingIpc().made.first()->PrintJobInfoChanged(QStringLiteral("a"));
    QCOMPARE(announcements.lists(), texts({"A", ""}));
}

void TestPrinterHistory::clearThatFailsIsIgnored()
{
    ZBPrinterHistory history(nullptr, true);
    const Announcements announcements(history);
    m_answers.setFails(true);
    history.cancelPrintJob();
    QCOMPARE(announcements.lists(), QStringList());
}

static int useWithoutBus()
{
    ZBPrinterHistory history(nullptr, true);
    int announcements = 0;
    QObject::connect(&history, &ZBPrinterHistory::printJobsHistoryChanged,
                     [&announcements] { ++announcements; });
    history.reprintPrintJob(QStringLiteral("a"));
    history.cancelPrintJob();
    Q_EMIT recordingIpc().made.first()->PrintJobInfoChanged(QStringLiteral("a"));
    std::printf("%d jobs, %d announcements\n", history.getPrintJobsHistory().size(), announcements);
    qDeleteAll(recordingIpc().made);
    return 0;
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (QCoreApplication::arguments().contains(QStringLiteral("--without-bus")))
        return useWithoutBus();
    TestPrinterHistory test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_printerhistory.moc"
