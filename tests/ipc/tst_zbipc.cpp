// ZBIPC beside a daemon whose answers the test sets: what travels, what a fetch is, what goes wrong, and who
// is told.
#include "printqueue.h"
#include "zbipc.h"

#include <QtDBus/QDBusConnectionInterface>
#include <QtTest/QtTest>

#include <memory>
#include <optional>

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString c = QStringLiteral("c");

QStringList numbers(int count)
{
    QStringList result;
    for (int i = 0; i < count; ++i)
        result.append(QUuid::createUuidV5(QUuid(), QString::number(i)).toString(QUuid::WithoutBraces));
    return result;
}

/// Delivers what waits, once: one turn of an event loop.
void returnToEventLoop()
{
    QCoreApplication::processEvents();
}

/// Returns when all that the bus has said so far has arrived here, and waits to be delivered.
void hearTheBus()
{
    QDBusConnection::systemBus().interface()->isServiceRegistered(a);
}

/// A ZBIPC and who was told; \a read is what the one who is told reads, as a history does.
struct Reader
{
    explicit Reader(const QStringList &read = {})
    {
        QObject::connect(&ipc, &ZBIPC::PrintJobInfoChanged, &ipc, [this, read](const QString &guid) {
            isInside = isInside || isReading;
            told.append(guid);
            for (const QString &each : read)
                record(each);
        });
    }
    PrintJobMetaData record(const QString &guid)
    {
        isReading = true;
        const PrintJobMetaData result = ipc.getJobInfo(guid);
        isReading = false;
        return result;
    }
    /// The times of the records, which sampleJob() makes differ; "-" for an empty record.
    QString records(const QStringList &guids)
    {
        QString result;
        for (const QString &guid : guids) {
            const PrintJobMetaData job = record(guid);
            result +=
                job.copyCount == 0 ? QStringLiteral("-") : QString::number(job.timeStamp.toLongLong() % 10);
        }
        return result;
    }
    QStringList toldInOrder()
    {
        QStringList result = told;
        result.sort();
        told.clear();
        return result;
    }

    ZBIPC ipc{nullptr};
    QStringList told;
    bool isReading = false;
    bool isInside = false; ///< told while reading
};

} // namespace

Q_DECLARE_METATYPE(std::function<void(PrintQueueStore &)>)

class TestZbipc : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void fetchOfTenThousandTakesThreeCallsAndTheNextOne();
    void allMembersArrive();
    void fetchEndsWhereItsReaderBeginsAgain_data();
    void fetchEndsWhereItsReaderBeginsAgain();
    void fetchEndsBeforeTheEventsThatWait();
    void newsEndAFetchWithoutAnEventLoop();
    void newsDuringAnAnswerEndsTheFetchAndIsToldToWhoConnectsLater();
    void jobsThatAreGoneCostNoCall();
    void eachObjectHasItsOwnFetches();

    void faultLeavesEmptyRecordsAndComesRightByItself_data();
    void faultLeavesEmptyRecordsAndComesRightByItself();
    void faultsComeRightByThemselvesAgainAndAgain();
    void daemonThatAlwaysFailsIsNotAskedWithoutEnd();
    void daemonOfSingleJobsIsAskedForEach();
    void daemonOfSingleJobsThatFailsIsNotAskedOn();

    void everyNamedJobIsToldOnce();
    void everyJobIsToldBehindTheOtherEvents();
    void whoReadsAllJobsIsToldOfFiftyOfHundreds();
    void signalsOfOtherTypesAreIgnored();
    void readerMayDeleteTheObject();
    void objectWhoseReaderIsGoneForgetsAndAsksNothing_data();
    void objectWhoseReaderIsGoneForgetsAndAsksNothing();
    void hangingDaemonHoldsNobodyWhoDoesNotRead();
    void lookStartsNoDaemon();
    void whoWaitsForAHangingDaemonIsToldOfTheOthersWhenItAnswers();

    void restartTellsWhatChanged_data();
    void restartTellsWhatChanged();
    void restartOfADaemonOfSingleJobsTellsAll();
    void daemonThatAppearsTellsItsJobs();
    void daemonThatGoesAgainLosesNoNotice();
    void daemonThatIsANewOneWhenItAnswersTellsWhatWasNotRead();
    void failedFetchTellsOfJobsThatWent();

private:
    void keep(const QStringList &guids, int change);
    void failOnce();
    bool restart();

    std::optional<PrintQueue> m_queue;
};

void TestZbipc::init()
{
    m_queue.emplace();
    QVERIFY(m_queue->start());
}

void TestZbipc::cleanup()
{
    m_queue.reset();
}

void TestZbipc::keep(const QStringList &guids, int change)
{
    m_queue->withStore([&](PrintQueueStore &store) {
        for (const QString &guid : guids)
            store.set(sampleJob(guid, change));
    });
}

/// The daemon's next answer makes no sense.
void TestZbipc::failOnce()
{
    m_queue->setAnswer([this](const QDBusMessage &call) {
        m_queue->setAnswer();
        return call.createReply();
    });
}

bool TestZbipc::restart()
{
    m_queue->end();
    return m_queue->start();
}

void TestZbipc::fetchOfTenThousandTakesThreeCallsAndTheNextOne()
{
    const QStringList guids = numbers(10000);
    keep(guids, 1);
    Reader reader;
    QCOMPARE(reader.records(guids).count(QLatin1Char('1')), 10000);
    const QString call = QStringLiteral("getChangedJobs");
    QCOMPARE(m_queue->takeCalls(), QStringList({call, call, call}));

    keep({guids.at(5000)}, 2);
    m_queue->withStore([&guids](PrintQueueStore &store) { store.remove(guids.at(7000)); });
    returnToEventLoop();
    const QString records = reader.records(guids);
    QCOMPARE(records.count(QLatin1Char('1')), 9998);
    QCOMPARE(records.at(5000), QLatin1Char('2'));
    QCOMPARE(records.at(7000), QLatin1Char('-'));
    QCOMPARE(m_queue->takeCalls(), QStringList(call));
    returnToEventLoop();
    QCOMPARE(reader.told, QStringList());
}

void TestZbipc::allMembersArrive()
{
    keep({a}, 1);
    Reader reader;
    const PrintJobMetaData job = reader.record(a);
    QVERIFY(isSame(job, sampleJob(a, 1)));
    QCOMPARE(job.supplyColor, QStringLiteral("wei\u00df"));
    QCOMPARE(job.tension1, -7);
    QCOMPARE(job.ribbon2Mileage, 12.125);
}

void TestZbipc::fetchEndsWhereItsReaderBeginsAgain_data()
{
    QTest::addColumn<int>("how");
    QTest::addColumn<QString>("records");
    QTest::newRow("it does not end") << 0 << QStringLiteral("11");
    QTest::newRow("asked again") << 1 << QStringLiteral("222");
    QTest::newRow("back in the event loop") << 2 << QStringLiteral("22");
    QTest::newRow("in a nested event loop") << 3 << QStringLiteral("22");
}

void TestZbipc::fetchEndsWhereItsReaderBeginsAgain()
{
    QFETCH(int, how);
    keep({a, b, c}, 1);
    Reader reader;
    QCOMPARE(reader.records({a}), QStringLiteral("1"));
    keep({a, b, c}, 2);
    QEventLoop loop;
    if (how == 2)
        returnToEventLoop();
    if (how == 3) {
        QTimer::singleShot(0, &loop, [&loop] {
            QEventLoop nested;
            QTimer::singleShot(0, &nested, &QEventLoop::quit);
            nested.exec();
            loop.quit();
        });
        loop.exec();
    }
    QTEST(reader.records(how == 1 ? QStringList{a, b, c} : QStringList{b, c}), "records");
    QCOMPARE(m_queue->takeCalls().size(), how == 0 ? 1 : 2);
}

void TestZbipc::fetchEndsBeforeTheEventsThatWait()
{
    keep({a, b}, 1);
    Reader reader;
    QString records;
    QMetaObject::invokeMethod(
        &reader.ipc, [&] { records = reader.records({b}); }, Qt::QueuedConnection);
    QCOMPARE(reader.records({a}), QStringLiteral("1"));
    keep({b}, 2);
    returnToEventLoop();
    QCOMPARE(records, QStringLiteral("2"));
}

void TestZbipc::newsEndAFetchWithoutAnEventLoop()
{
    keep({a, b}, 1);
    Reader reader;
    QCOMPARE(reader.records({a}), QStringLiteral("1"));
    // A new fetch, whose first jobs were not in the one before: one that is new, and one that was not read.
    keep({b, c}, 2);
    m_queue->sendJobInfoChanged({QStringList{b, c}});
    QCOMPARE(reader.records({c, b, a}), QStringLiteral("221"));
    QCOMPARE(m_queue->takeCalls().size(), 2);
    QCOMPARE(reader.told, QStringList());

    QVERIFY(restart());
    keep({c}, 3);
    QCOMPARE(reader.records({QStringLiteral("d"), c}), QStringLiteral("-3"));
    m_queue->end();
    hearTheBus();
    QCOMPARE(reader.records({a}), QStringLiteral("-"));
    QVERIFY(!reader.isInside);
}

void TestZbipc::newsDuringAnAnswerEndsTheFetchAndIsToldToWhoConnectsLater()
{
    keep({a, b, c}, 1);
    QStringList asked;
    m_queue->setAnswer([&](const QDBusMessage &call) {
        asked.append(call.arguments().constFirst().toString());
        const QDBusMessage reply = m_queue->rightAnswer(call);
        if (asked.size() == 1) {
            keep({a, b}, 2);
            m_queue->sendJobInfoChanged({QStringList{a, b}});
        }
        return reply;
    });
    QStringList told;
    const ZBIPC ipc(nullptr);
    QVERIFY(isSame(ipc.getJobInfo(a), sampleJob(a, 1)));
    QVERIFY(isSame(ipc.getJobInfo(b), sampleJob(b, 2)));
    QVERIFY(isSame(ipc.getJobInfo(c), sampleJob(c, 1)));
    QCOMPARE(asked, QStringList({QString(), QStringLiteral("first")}));
    connect(&ipc, &ZBIPC::PrintJobInfoChanged, this, [&told](const QString &guid) { told.append(guid); });
    QTRY_COMPARE(told, QStringList({a, b}));
    QCOMPARE(asked.size(), 2);
}

void TestZbipc::jobsThatAreGoneCostNoCall()
{
    keep({a}, 1);
    Reader reader;
    QCOMPARE(reader.records(QStringList(a) + numbers(1000)),
             QStringLiteral("1") + QString(1000, QLatin1Char('-')));
    QCOMPARE(m_queue->takeCalls().size(), 1);
}

void TestZbipc::eachObjectHasItsOwnFetches()
{
    keep({a, b}, 1);
    Reader first;
    Reader second;
    QCOMPARE(first.records({a}), QStringLiteral("1"));
    keep({a, b}, 2);
    QCOMPARE(second.records({a}), QStringLiteral("2"));
    QCOMPARE(first.records({b}), QStringLiteral("1"));
    QCOMPARE(m_queue->takeCalls().size(), 2);
}

void TestZbipc::faultLeavesEmptyRecordsAndComesRightByItself_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<bool>("endsByItself");
    QTest::newRow("absent") << QStringLiteral("absent") << false;
    QTest::newRow("error") << QStringLiteral("error") << true;
    QTest::newRow("wrong type") << QStringLiteral("type") << true;
    QTest::newRow("nothing in it") << QStringLiteral("nothing") << true;
    QTest::newRow("without an epoch") << QStringLiteral("epoch") << true;
    QTest::newRow("dies in the call") << QStringLiteral("dies") << false;
    QTest::newRow("dies in the second call") << QStringLiteral("dies late") << false;
    QTest::newRow("no answer") << QStringLiteral("silent") << true;
}

void TestZbipc::faultLeavesEmptyRecordsAndComesRightByItself()
{
    QFETCH(QString, fault);
    QFETCH(bool, endsByItself);
    const QStringList guids = numbers(300);
    keep(guids, 1);
    m_queue->withStore([](PrintQueueStore &store) { store.mostInAnAnswer = 200; });
    Reader reader(guids);
    QCOMPARE(reader.records(guids), QString(300, QLatin1Char('1')));
    m_queue->takeCalls();
    keep(guids, 2);
    returnToEventLoop();

    int calls = 0;
    m_queue->setAnswer([&](const QDBusMessage &call) {
        ++calls;
        if (fault == QLatin1String("dies") || (fault == QLatin1String("dies late") && calls == 2)) {
            m_queue->die();
            return QDBusMessage();
        }
        if (calls > 1 || fault == QLatin1String("dies late"))
            return m_queue->rightAnswer(call);
        if (fault == QLatin1String("error"))
            return call.createErrorReply(QStringLiteral("com.example.Error"), QStringLiteral("on purpose"));
        if (fault == QLatin1String("type"))
            return call.createReply({a, quint64(1), true, QStringList(a), QStringList(), false});
        if (fault == QLatin1String("epoch")) {
            QVariantList content = m_queue->rightAnswer(call).arguments();
            content[0] = QString();
            return call.createReply(content);
        }
        return fault == QLatin1String("silent") ? QDBusMessage() : call.createReply();
    });
    if (fault == QLatin1String("absent"))
        m_queue->end();
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(reader.records(guids), QString(300, QLatin1Char('-')));
    QVERIFY2(timer.elapsed() < (fault == QLatin1String("silent") ? 5000 : 1900),
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(m_queue->takeCalls().size(),
             fault == QLatin1String("absent")          ? 0
                 : fault == QLatin1String("dies late") ? 2
                                                       : 1);
    QCOMPARE(reader.told, QStringList());

    if (!endsByItself) {
        returnToEventLoop();
        m_queue->setAnswer();
        QVERIFY(restart());
    }
    QTRY_COMPARE(reader.told.size(), 1);
    QVERIFY(guids.contains(reader.told.first()));
    // Whoever was told has read them all, so that the other 299 are not told.
    returnToEventLoop();
    returnToEventLoop();
    QCOMPARE(reader.told.size(), 1);
    QCOMPARE(reader.records(guids), QString(300, QLatin1Char('2')));
}

void TestZbipc::faultsComeRightByThemselvesAgainAndAgain()
{
    keep({a}, 1);
    Reader readsWhenTold({a});
    for (int times = 1; times <= 2; ++times) {
        failOnce();
        QCOMPARE(readsWhenTold.records({a}), QStringLiteral("-"));
        QTRY_COMPARE(readsWhenTold.told.size(), times);
    }

    // Two faults in a row are one too many, but for another daemon.
    Reader reader;
    failOnce();
    QCOMPARE(reader.records({a}), QStringLiteral("-"));
    QTRY_COMPARE(reader.told.size(), 1);
    failOnce();
    QCOMPARE(reader.records({a}), QStringLiteral("-"));
    QVERIFY(restart());
    QTRY_COMPARE(reader.told.size(), 2);
    failOnce();
    QCOMPARE(reader.records({a}), QStringLiteral("-"));
    QTRY_COMPARE(reader.told.size(), 3);
}

void TestZbipc::daemonThatAlwaysFailsIsNotAskedWithoutEnd()
{
    keep({a, b}, 1);
    Reader reader({a, b});
    // Wrong to a reader, right to a look.
    int calls = 0;
    m_queue->setAnswer([&](const QDBusMessage &call) {
        return ++calls % 2 == 1 ? call.createReply() : m_queue->rightAnswer(call);
    });
    QCOMPARE(reader.records({a, b}), QStringLiteral("--"));
    QTRY_COMPARE(reader.told.size(), 2);
    QTest::qWait(50);
    QCOMPARE(m_queue->takeCalls().size(), 4);
    QCOMPARE(reader.told.size(), 2);
}

void TestZbipc::daemonOfSingleJobsIsAskedForEach()
{
    keep({a, b}, 1);
    m_queue->setAnswer([this](const QDBusMessage &call) {
        return call.member() == QLatin1String("getChangedJobs")
            ? call.createErrorReply(QDBusError::UnknownMethod, QString())
            : m_queue->rightAnswer(call);
    });
    Reader reader;
    QVERIFY(isSame(reader.record(a), sampleJob(a, 1)));
    keep({b}, 2);
    QCOMPARE(reader.records({QStringLiteral("gone"), b}), QStringLiteral("-2"));
    const QString single = QStringLiteral("getJobInfo");
    QCOMPARE(m_queue->takeCalls(), QStringList({QStringLiteral("getChangedJobs"), single, single, single}));
    // Another daemon may know more.
    returnToEventLoop();
    QCOMPARE(reader.records({a, b}), QStringLiteral("12"));
    QCOMPARE(m_queue->takeCalls(), QStringList({single, single}));
    m_queue->setAnswer();
    QVERIFY(restart());
    hearTheBus();
    QCOMPARE(reader.records({a, b}), QStringLiteral("12"));
    QCOMPARE(m_queue->takeCalls(), QStringList(QStringLiteral("getChangedJobs")));
}

void TestZbipc::daemonOfSingleJobsThatFailsIsNotAskedOn()
{
    keep({a, b, c}, 1);
    int answers = 0;
    m_queue->setAnswer([&](const QDBusMessage &call) {
        if (call.member() == QLatin1String("getChangedJobs"))
            return call.createErrorReply(QDBusError::UnknownMethod, QString());
        return call.member() == QLatin1String("getJobInfo") && ++answers == 2 ? call.createReply(QVariant(a))
                                                                              : m_queue->rightAnswer(call);
    });
    Reader reader({a, b, c});
    QCOMPARE(reader.records({a, b, c}), QStringLiteral("1--"));
    QCOMPARE(m_queue->takeCalls().size(), 3);
    QTRY_COMPARE(reader.told.size(), 1);
    returnToEventLoop();
    QCOMPARE(reader.told.size(), 1);
    QCOMPARE(answers, 5);
}

void TestZbipc::everyNamedJobIsToldOnce()
{
    const QStringList guids = numbers(200);
    // Not all there are.
    Reader reader(QStringList(guids.mid(0, 2)));
    int turns = 0;
    QTimer everyTurn;
    connect(&everyTurn, &QTimer::timeout, this, [&turns] { ++turns; });
    everyTurn.start(0);
    keep(guids.mid(0, 3), 1);
    m_queue->sendJobInfoChanged({QStringList(guids + guids.mid(0, 10))});
    m_queue->sendJobInfoChanged({QStringList(guids.mid(190))});
    QCOMPARE(reader.told, QStringList());
    QTRY_COMPARE(reader.told.size(), 200);
    returnToEventLoop();
    QCOMPARE(reader.told, guids);
    QVERIFY2(turns > 180, qPrintable(QString::number(turns)));
    QVERIFY(!reader.isInside);

    m_queue->sendJobInfoChanged({QStringList(guids.at(5))});
    QTRY_COMPARE(reader.told.size(), 201);
    QCOMPARE(reader.told.last(), guids.at(5));
}

void TestZbipc::everyJobIsToldBehindTheOtherEvents()
{
    QStringList events;
    const ZBIPC ipc(nullptr);
    const auto postEvent = [&] {
        QMetaObject::invokeMethod(
            const_cast<ZBIPC *>(&ipc), [&] { events.append(QStringLiteral("event")); }, Qt::QueuedConnection);
    };
    connect(&ipc, &ZBIPC::PrintJobInfoChanged, this, [&](const QString &guid) {
        events.append(guid);
        postEvent();
    });
    m_queue->sendJobInfoChanged({QStringList{a, b}});
    hearTheBus();
    ipc.getJobInfo(c);
    // It is known by now who is to be told.
    postEvent();
    const QString event = QStringLiteral("event");
    QTRY_COMPARE(events, QStringList({event, a, event, b, event}));
}

void TestZbipc::whoReadsAllJobsIsToldOfFiftyOfHundreds()
{
    const QStringList stay = {a, b};
    const QStringList go = numbers(300);
    keep(stay + go, 1);
    Reader readsAll(stay);
    Reader readsSome(stay.mid(1));
    Reader readsNone;
    for (Reader *const reader : {&readsAll, &readsSome, &readsNone})
        reader->records(stay + go);
    returnToEventLoop();
    m_queue->withStore([&go](PrintQueueStore &store) {
        for (const QString &guid : qAsConst(go))
            store.remove(guid);
    });
    m_queue->sendJobInfoChanged({go});
    QTRY_COMPARE_WITH_TIMEOUT(readsSome.told, go, 30000);
    QCOMPARE(readsNone.told, go);
    // The first, after which it read them all, and fifty more.
    QCOMPARE(readsAll.told, go.mid(0, 51));
}

void TestZbipc::signalsOfOtherTypesAreIgnored()
{
    Reader reader;
    m_queue->sendJobInfoChanged({a});
    m_queue->sendJobInfoChanged({});
    m_queue->sendJobInfoChanged({7, QStringList(a)});
    m_queue->sendJobInfoChanged({QStringList(b)});
    QTRY_COMPARE(reader.told, QStringList(b));
}

void TestZbipc::readerMayDeleteTheObject()
{
    keep({a, b}, 1);
    auto *const ipc = new ZBIPC(nullptr);
    QStringList told;
    connect(ipc, &ZBIPC::PrintJobInfoChanged, this, [&told, ipc](const QString &guid) {
        told.append(guid);
        delete ipc;
    });
    QCOMPARE(ipc->getJobInfo(a).copyCount, 3);
    m_queue->sendJobInfoChanged({QStringList{a, b}});
    QTRY_COMPARE(told, QStringList(a));
    returnToEventLoop();

    // And while it waits for an answer.
    m_queue->takeCalls();
    {
        const Reader another;
        m_queue->setAnswer([](const QDBusMessage &) { return QDBusMessage(); });
        QVERIFY(restart());
        QTRY_COMPARE(m_queue->callCount(), 1);
    }
    returnToEventLoop();
    QCOMPARE(told, QStringList(a));
}

void TestZbipc::objectWhoseReaderIsGoneForgetsAndAsksNothing_data()
{
    QTest::addColumn<bool>("isRestarted");
    QTest::newRow("news") << false;
    QTest::newRow("restart") << true;
}

void TestZbipc::objectWhoseReaderIsGoneForgetsAndAsksNothing()
{
    QFETCH(bool, isRestarted);
    keep({a, b}, 1);
    // Texts that nobody else has.
    const QString guid = QString::fromLatin1("b");
    const ZBIPC ipc(nullptr);
    auto reader = std::make_unique<QObject>();
    connect(&ipc, &ZBIPC::PrintJobInfoChanged, reader.get(), [] {});
    const PrintJobMetaData job = ipc.getJobInfo(guid);
    QVERIFY(isSame(job, sampleJob(b, 1)));
    Reader another;
    QCOMPARE(another.records({a}), QStringLiteral("1"));
    keep({a}, 2);
    const auto tell = [&] {
        if (isRestarted)
            QVERIFY(restart());
        else
            m_queue->sendJobInfoChanged({QStringList(a)});
    };
    m_queue->takeCalls();
    tell();
    QTRY_COMPARE(another.told, QStringList(a));
    QCOMPARE(m_queue->takeCalls().size(), isRestarted ? 2 : 0);
    QVERIFY(!guid.isDetached());
    QVERIFY(!job.jobName.isDetached());

    reader.reset();
    another.told.clear();
    tell();
    QTRY_COMPARE(another.told, QStringList(a));
    QCOMPARE(m_queue->takeCalls().size(), isRestarted ? 1 : 0);
    QVERIFY(guid.isDetached());
    QVERIFY(job.jobName.isDetached());
    QVERIFY(isSame(ipc.getJobInfo(a), sampleJob(a, 2)));
}

void TestZbipc::whoWaitsForAHangingDaemonIsToldOfTheOthersWhenItAnswers()
{
    keep({a, b, c}, 1);
    // One that waits for the daemon before it reads, as a history waits for the list of jobs.
    ZBIPC ipc(nullptr);
    QStringList told;
    bool isHanging = true;
    connect(&ipc, &ZBIPC::PrintJobInfoChanged, this, [&](const QString &guid) {
        told.append(guid);
        if (isHanging)
            QThread::msleep(250);
        else
            ipc.getJobInfo(guid);
    });
    QSemaphore mayGoOn;
    const auto release = qScopeGuard([&mayGoOn] { mayGoOn.release(1000); });
    m_queue->setAnswer([&](const QDBusMessage &call) {
        mayGoOn.acquire();
        return m_queue->rightAnswer(call);
    });
    m_queue->sendJobInfoChanged({QStringList{a, b, c}});
    QTRY_COMPARE(told, QStringList(a));
    QTest::qWait(50);
    QCOMPARE(told, QStringList(a));

    isHanging = false;
    mayGoOn.release(1000);
    // The first once more, since it could not be read.
    QTRY_COMPARE(told, (QStringList{a, b, c, a}));
    returnToEventLoop();
    QCOMPARE(told.size(), 4);

    // One that is slow for reasons of its own is told of each job twice at most.
    told.clear();
    isHanging = true;
    m_queue->sendJobInfoChanged({QStringList(a)});
    QTRY_COMPARE(told, (QStringList{a, a}));
    QTest::qWait(50);
    QCOMPARE(told.size(), 2);
}

void TestZbipc::hangingDaemonHoldsNobodyWhoDoesNotRead()
{
    QSemaphore arrived;
    QSemaphore mayGoOn;
    const auto release = qScopeGuard([&mayGoOn] { mayGoOn.release(1000); });
    m_queue->setAnswer([&](const QDBusMessage &call) {
        arrived.release();
        mayGoOn.acquire();
        return m_queue->rightAnswer(call);
    });
    Reader reader;
    QVERIFY(restart());
    QTRY_COMPARE(arrived.available(), 1);
    // The daemon hangs in the answer to the look.
    QElapsedTimer timer;
    timer.start();
    {
        const Reader another;
        returnToEventLoop();
    }
    QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
    keep({a}, 1);
    mayGoOn.release(1000);
    QTRY_COMPARE(reader.told, QStringList(a));
}

void TestZbipc::lookStartsNoDaemon()
{
    // The test's bus learns for a while how the daemon is started: by a program that leaves a sign and fails.
    const QTemporaryDir folder;
    const QString sign = folder.filePath(QStringLiteral("started"));
    QFile service(folder.filePath(QStringLiteral("com.corvanta.printqd.service")));
    QVERIFY(service.open(QIODevice::WriteOnly));
    service.write("[D-BUS Service]\nName=com.corvanta.printqd\nUser=root\nExec=/bin/mkdir " + sign.toUtf8()
                  + " /nowhere/at/all\n");
    service.close();
    QFile rules(qEnvironmentVariable("ZBVIRTUALDEVICE_DIRECTORY") + QStringLiteral("/bus/system.conf"));
    QVERIFY(rules.open(QIODevice::ReadWrite));
    const QByteArray before = rules.readAll();
    const auto setRules = [&rules](const QByteArray &text) {
        rules.resize(0);
        rules.seek(0);
        rules.write(text);
        rules.flush();
        QDBusConnection::systemBus().interface()->call(QStringLiteral("ReloadConfig"));
    };
    const auto restore = qScopeGuard([&] { setRules(before); });
    QByteArray after = before;
    after.replace("</busconfig>", "<servicedir>" + folder.path().toUtf8() + "</servicedir></busconfig>");
    setRules(after);

    // It appears and goes before anybody can look.
    Reader reader;
    QVERIFY(restart());
    m_queue->end();
    returnToEventLoop();
    returnToEventLoop();
    QTest::qWait(30);
    QVERIFY(!QFileInfo::exists(sign));
    // Whoever reads does start it.
    QCOMPARE(reader.records({a}), QStringLiteral("-"));
    QVERIFY(QFileInfo::exists(sign));
}

void TestZbipc::restartTellsWhatChanged_data()
{
    using Change = std::function<void(PrintQueueStore &)>;
    QTest::addColumn<Change>("change");
    QTest::addColumn<QStringList>("told");
    QTest::newRow("nothing") << Change([](PrintQueueStore &) {}) << QStringList();
    QTest::newRow("one changed, one gone, one new") << Change([](PrintQueueStore &store) {
        store.set(sampleJob(a, 2));
        store.remove(b);
        store.set(sampleJob(QStringLiteral("d"), 2));
    }) << QStringList({a, b, QStringLiteral("d")});
    QTest::newRow("changed back") << Change([](PrintQueueStore &store) {
        store.set(sampleJob(a, 2));
        store.set(sampleJob(a, 1));
    }) << QStringList();
    QTest::newRow("store lost") << Change([](PrintQueueStore &store) {
        store.lose(QStringLiteral("second"));
    }) << QStringList({a, b, c});
    QTest::newRow("store lost, one job is there again") << Change([](PrintQueueStore &store) {
        store.lose(QStringLiteral("second"));
        store.set(sampleJob(a, 1));
    }) << QStringList({b, c});
    QTest::newRow("older store") << Change([](PrintQueueStore &store) {
        store.lose(QStringLiteral("first"));
        store.set(sampleJob(a, 1));
        store.set(sampleJob(b, 0));
    }) << QStringList({b, c});
}

void TestZbipc::restartTellsWhatChanged()
{
    QFETCH(std::function<void(PrintQueueStore &)>, change);
    QFETCH(QStringList, told);
    keep({a, b, c}, 1);
    Reader reader;
    QCOMPARE(reader.records({a, b, c}), QStringLiteral("111"));

    m_queue->end();
    m_queue->withStore(change);
    QVERIFY(m_queue->start());
    m_queue->takeCalls();
    QTRY_VERIFY(m_queue->callCount() > 0);
    // Behind everything that the restart made.
    keep({QStringLiteral("last")}, 1);
    m_queue->sendJobInfoChanged({QStringList(QStringLiteral("last"))});
    QTRY_VERIFY(reader.told.contains(QStringLiteral("last")));
    QTRY_COMPARE(reader.told.size(), told.size() + 1);
    reader.told.removeOne(QStringLiteral("last"));
    QCOMPARE(reader.toldInOrder(), told);
    QVERIFY(!reader.isInside);
}

void TestZbipc::restartOfADaemonOfSingleJobsTellsAll()
{
    m_queue->setAnswer([this](const QDBusMessage &call) {
        return call.member() == QLatin1String("getChangedJobs")
            ? call.createErrorReply(QDBusError::UnknownMethod, QString())
            : m_queue->rightAnswer(call);
    });
    keep({a, b}, 1);
    Reader reader;
    QCOMPARE(reader.records({a, b}), QStringLiteral("11"));
    m_queue->end();
    m_queue->withStore([](PrintQueueStore &store) {
        store.remove(b);
        store.set(sampleJob(c, 1));
    });
    QVERIFY(m_queue->start());
    QTRY_COMPARE(reader.told.size(), 3);
    QCOMPARE(reader.toldInOrder(), QStringList({a, b, c}));
}

void TestZbipc::daemonThatAppearsTellsItsJobs()
{
    m_queue->end();
    keep({a, b, c}, 1);
    Reader nobodyReads;
    Reader readsAll({a, b, c});
    QCOMPARE(readsAll.records({a, b}), QStringLiteral("--"));
    returnToEventLoop();
    QVERIFY(m_queue->start());
    QTRY_COMPARE(nobodyReads.told.size(), 3);
    QCOMPARE(nobodyReads.toldInOrder(), QStringList({a, b, c}));
    QTRY_COMPARE(readsAll.told.size(), 1);
    returnToEventLoop();
    QCOMPARE(readsAll.told.size(), 1);

    // One that may read before it has heard of the daemon, and that reads one job only.
    Reader readsBefore;
    QVERIFY(restart());
    QCOMPARE(readsBefore.records({a}), QStringLiteral("1"));
    QTRY_COMPARE(readsBefore.told.size(), 2);
    QCOMPARE(readsBefore.toldInOrder(), QStringList({b, c}));
    QCOMPARE(readsAll.told.size(), 1);
}

void TestZbipc::daemonThatGoesAgainLosesNoNotice()
{
    keep({a, b}, 1);
    Reader reader;
    QCOMPARE(reader.records({a, b}), QStringLiteral("11"));
    m_queue->end();
    keep({a}, 2);
    QVERIFY(m_queue->start());
    QTRY_COMPARE(reader.told, QStringList(a));
    reader.told.clear();
    // The daemon is gone before the one who was told could read.
    QVERIFY(restart());
    QTRY_COMPARE(reader.told, QStringList(a));
    reader.told.clear();
    QCOMPARE(reader.records({a, b}), QStringLiteral("21"));
    m_queue->takeCalls();
    QVERIFY(restart());
    QTRY_VERIFY(m_queue->callCount() > 0);
    QTest::qWait(20);
    QCOMPARE(reader.told, QStringList());
}

void TestZbipc::daemonThatIsANewOneWhenItAnswersTellsWhatWasNotRead()
{
    keep({a, b, c}, 1);
    m_queue->setAnswer([this](const QDBusMessage &call) {
        m_queue->setAnswer();
        m_queue->takeNameAgain();
        return m_queue->rightAnswer(call);
    });
    Reader reader;
    QCOMPARE(reader.records({a}), QStringLiteral("1"));
    QTRY_COMPARE(reader.told.size(), 2);
    QCOMPARE(reader.toldInOrder(), QStringList({b, c}));
}

void TestZbipc::failedFetchTellsOfJobsThatWent()
{
    keep({a, b}, 1);
    Reader reader;
    QCOMPARE(reader.records({a, b}), QStringLiteral("11"));
    returnToEventLoop();
    m_queue->withStore([](PrintQueueStore &store) { store.remove(b); });
    failOnce();
    QCOMPARE(reader.records({a}), QStringLiteral("-"));
    QTRY_COMPARE(reader.told.size(), 2);
    QCOMPARE(reader.toldInOrder(), QStringList({a, b}));
}

QTEST_GUILESS_MAIN(TestZbipc)
#include "tst_zbipc.moc"
