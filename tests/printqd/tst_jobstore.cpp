// The job store with a real database, and what the queue makes of what the transport tells: without a bus.
#include "believablejobs.h"
#include "filebytes.h"
#include "filesizelimit.h"
#include "jobstore.h"
#include "messagelog.h"
#include "picturemaker.h"
#include "printqueue.h"
#include "statefolder.h"
#include "supplies.h"
#include "transportjobs.h"
#include "transportthread.h"

#include <QtCore/QRandomGenerator>
#include <QtTest/QtTest>

#include <cerrno>
#include <limits>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

/// A disk of which one read, or each from that one on, fails; stands before the C library's call.
namespace BadDisk {
int readsUntilFailure = std::numeric_limits<int>::max();
bool failsForEver = false;
} // namespace BadDisk

extern "C" __attribute__((visibility("default"))) ssize_t pread64(int file, void *bytes, size_t size,
                                                                  off64_t place)
{
    const int left = --BadDisk::readsUntilFailure;
    if (left == 0 || (left < 0 && BadDisk::failsForEver)) {
        errno = EIO;
        return -1;
    }
    return syscall(SYS_pread64, file, bytes, size, place);
}

/// Does and tells what the test wants, and keeps what it was asked for.
class ScriptedTransport : public PrintTransport
{
    Q_OBJECT

public:
    void start() override { emit asked(QStringLiteral("start")); }
    void submit(const TransportOrder &order) override
    {
        emit asked(QStringLiteral("submit %1 %2 x%3 %4 %5")
                       .arg(order.guid, order.name)
                       .arg(order.copies)
                       .arg(order.format, order.originalUuid));
    }
    void keepDocument(const QString &uuid, int number, const QString &path) override
    {
        emit asked(QStringLiteral("keep %1 %2").arg(uuid).arg(number));
        if (uuid.startsWith(QLatin1String("no document"))) {
            emit documentNotKept(uuid, QStringLiteral("it is gone"));
            return;
        }
        FileBytes::write(path, "a text of " + uuid.toUtf8());
        emit documentKept(uuid, path, QStringLiteral("text/plain"));
    }
    void forget(const QString &uuid, int number) override
    {
        emit asked(QStringLiteral("forget %1 %2").arg(uuid).arg(number));
    }
    void stop() override { }

Q_SIGNALS:
    void asked(const QString &what);
};

/// A queue with its store in a folder, as after a start of the daemon.
class Fixture : public QObject
{
    Q_OBJECT

public:
    explicit Fixture(const QString &path, const StoreLimits &limits = {})
        : folder(path)
        , store(path + QStringLiteral("/jobs.db"), limits)
        , transport(std::make_unique<ScriptedTransport>())
        , queue(store, folder, transport, pictures)
    {
        connect(static_cast<ScriptedTransport *>(&transport.transport()), &ScriptedTransport::asked, this,
                [this](const QString &what) { asked.append(what); });
        connect(&queue, &PrintQueue::changed, this,
                [this](const QStringList &guids) { changed.append(guids); });
        failure = folder.open();
        if (failure.isEmpty())
            failure = store.open();
        if (failure.isEmpty())
            queue.start();
    }

    void tell(const QVector<TransportJob> &jobs) { emit transport.transport().jobsSeen(jobs); }
    /// Whether the document and then the picture of a job have been dealt with.
    bool isSettled(const QString &uuid) const
    {
        const StoredJob *const job = store.findUuid(uuid);
        return job && store.documentOf(*job) && !job->wantsPicture;
    }
    /// Orders the job again and returns the GUID of the order.
    QString reprint(const QString &uuid)
    {
        QString reason;
        return queue.reprint(record(uuid).GUID, &reason) == PrintQueue::Refused::No
            ? changed.constLast().constFirst()
            : reason;
    }
    QString tokenOf(const QString &guid) const { return store.find(guid)->orderToken; }
    PrintJobMetaData record(const QString &uuid) const
    {
        const StoredJob *const job = store.findUuid(uuid);
        return job ? job->record : PrintJobMetaData();
    }

    StateFolder folder;
    JobStore store;
    PictureMaker pictures;
    TransportThread transport;
    PrintQueue queue;
    QStringList asked;
    QVector<QStringList> changed;
    QString failure;
};

class JobStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void everythingIsThereAfterTheNextStart();
    void onlyAChangeOfTheRecordIsARevision();
    void aUuidIsThereOnce();
    void differencesMakeEveryReaderEqual();
    void whatWasWrittenLastIsKnownAfterTheNextStart();
    void theOldestFinishedJobsGoFirst();
    void aFullStoreStaysFullWhenItsOldestJobChanges();
    void documentsGoWithTheirLastJobAndWhenTheyAreTooMany();
    void whatIsNoStoreIsSetAside_data();
    void whatIsNoStoreIsSetAside();
    void whatCannotBeOpenedStays_data();
    void whatCannotBeOpenedStays();
    void aDiskThatCannotBeReadLosesNothing();
    void filesOfAStoreThatIsGoneAreKept();
    void aFullDiskKeepsWhatWas();

    void jobsOfTheTransportBecomeRecords();
    void jobsThatTheSchedulerLostFail();
    void ordersAreGivenAgainUntilTheyAreFulfilled();
    void aForeignJobCannotPassForAnOrder();
    void anOrderOfWhichAnotherJobSaysItWasIsGivenAgain();
    void anOrderThatTheSchedulerForgotWasPrinted();
    void noMoreThanAThousandOrdersWait();
    void whatIsPrintedAgainIsInUse();
    void aReprintHasThePictureAndMissingOnesAreMadeLater();
    void clearedJobsDoNotComeBack();
    void whatCannotBeWrittenIsTriedAgain();
    void filesThatNobodyNeedsAreRemoved();
    void rubbishAsSuppliesIsNothing_data();
    void rubbishAsSuppliesIsNothing();

private:
    QString path(const char *name) const { return m_directory->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

namespace {

StoredJob aJob(const QString &guid, const QString &status = QStringLiteral("Printed"), qint64 time = 1000)
{
    StoredJob job;
    job.record.timeStamp = QString::number(time);
    job.record.GUID = guid;
    job.record.jobStatus = status;
    job.record.copyCount = 1;
    return job;
}

JobChange putting(const QVector<StoredJob> &jobs)
{
    JobChange change;
    change.put = jobs;
    return change;
}

JobChange removing(const QStringList &guids)
{
    JobChange change;
    change.removed = guids;
    return change;
}

TransportJob seen(const char *uuid, TransportJob::State state = TransportJob::State::Waiting)
{
    TransportJob job;
    job.uuid = QLatin1String(uuid);
    job.number = 12;
    job.name = QStringLiteral("a name");
    job.copies = 3;
    job.documents = 1;
    job.tension1 = 4;
    job.tension2 = -5;
    job.state = state;
    job.createdMilliseconds = 1614953220123;
    return job;
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

} // namespace

void JobStoreTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

void JobStoreTest::everythingIsThereAfterTheNextStart()
{
    StoredJob job = believableJobs(1, 3, 1614953220123).constFirst();
    job.record.GUID = QStringLiteral("one");
    job.record.jobName = QStringLiteral("ä \"quoted\" 'n' \U0001F5A8;");
    job.record.imagePath = QStringLiteral("/p.png");
    job.record.errorValue = 2;
    job.record.ribbon2Mileage = 0.1;
    job.record.heat2 = -1;
    job.uuid = QStringLiteral("uuid");
    job.number = 5;
    job.document = QStringLiteral("document");
    job.originalUuid = QStringLiteral("original");
    job.orderToken = QStringLiteral("token");
    job.wantsDocument = job.wantsPicture = true;
    QString epoch;
    {
        JobStore store(path("jobs.db"), {});
        QCOMPARE(store.open(), QString());
        JobChange change = putting({job, aJob(QStringLiteral("two")), aJob(QStringLiteral("three"))});
        change.document = KeptDocument{QStringLiteral("document"), QStringLiteral("text/plain"), 7, 0};
        QCOMPARE(sorted(store.commit(change).changed).join(QLatin1Char(' ')),
                 QStringLiteral("one three two"));
        QCOMPARE(store.commit(removing({QStringLiteral("two")})).failure, QString());
        epoch = store.epoch();
    }
    JobStore store(path("jobs.db"), {});
    QCOMPARE(store.open(), QString());
    QCOMPARE(store.epoch(), epoch);
    QCOMPARE(store.revision(), 4ULL);
    const StoredJob *const kept = store.find(QStringLiteral("one"));
    QVERIFY(kept && isSameRecord(kept->record, job.record));
    QCOMPARE(kept->revision, 1ULL);
    QCOMPARE(kept->uuid, QStringLiteral("uuid"));
    QCOMPARE(kept->number, 5);
    QCOMPARE(kept->originalUuid, QStringLiteral("original"));
    QVERIFY(kept->wantsDocument && kept->wantsPicture);
    QCOMPARE(store.findOrder(QStringLiteral("token")), kept);
    QCOMPARE(kept->arrival, 1ULL);
    QVERIFY(store.documentOf(*kept));
    QCOMPARE(store.documentOf(*kept)->format, QStringLiteral("text/plain"));
    QCOMPARE(store.documentOf(*kept)->bytes, 7);
    QCOMPARE(store.difference(epoch, 3).removed, QStringList{QStringLiteral("two")});
    struct stat status = {};
    QCOMPARE(stat(QFile::encodeName(path("jobs.db")).constData(), &status), 0);
    QCOMPARE(int(status.st_mode & 0777), 0600);
    // And a change is on the disk when it is answered.
    const QSqlDatabase database = QSqlDatabase::database(QSqlDatabase::connectionNames().constFirst());
    QSqlQuery query(QStringLiteral("PRAGMA synchronous"), database);
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toInt(), 2);
    QVERIFY(query.exec(QStringLiteral("PRAGMA journal_mode")) && query.next());
    QCOMPARE(query.value(0).toString(), QStringLiteral("wal"));
}

void JobStoreTest::whatWasWrittenLastIsKnownAfterTheNextStart()
{
    StoreLimits limits;
    limits.tombstones = 1;
    StoredJob known = aJob(QStringLiteral("known"));
    known.uuid = QStringLiteral("uuid");
    QString epoch;
    {
        JobStore store(path("jobs.db"), limits);
        QCOMPARE(store.open(), QString());
        epoch = store.epoch();
        store.commit(putting({known, aJob(QStringLiteral("back")), aJob(QStringLiteral("gone"))}));
        store.commit(removing({QStringLiteral("gone")}));
        store.commit(removing({QStringLiteral("known")}));
        JobChange forgotten;
        forgotten.forgettingDone = QStringList{QStringLiteral("uuid")};
        store.commit(forgotten);
    }
    {
        JobStore store(path("jobs.db"), limits);
        QCOMPARE(store.open(), QString());
        // The tombstone of the one has been given up for that of the other.
        QVERIFY(store.difference(epoch, 3).isComplete);
        QCOMPARE(store.difference(epoch, 4).removed, QStringList{QStringLiteral("known")});
        QVERIFY(!store.isForgotten(QStringLiteral("uuid")));
        store.commit(removing({QStringLiteral("back")}));
        store.commit(putting({aJob(QStringLiteral("back"))}));
    }
    JobStore store(path("jobs.db"), limits);
    QCOMPARE(store.open(), QString());
    QVERIFY(!store.difference(epoch, 5).isComplete);
    QCOMPARE(store.difference(epoch, 5).removed, QStringList());
    QCOMPARE(store.guids(), QStringList{QStringLiteral("back")});
}

void JobStoreTest::onlyAChangeOfTheRecordIsARevision()
{
    JobStore store(path("jobs.db"), {});
    QCOMPARE(store.open(), QString());
    StoredJob job = aJob(QStringLiteral("one"));
    store.commit(putting({job}));
    QCOMPARE(store.revision(), 1ULL);
    job.wantsPicture = true;
    QCOMPARE(store.commit(putting({job})).changed, QStringList());
    QCOMPARE(store.revision(), 1ULL);
    QVERIFY(store.find(QStringLiteral("one"))->wantsPicture);
    job.record.heat2 = 1;
    QCOMPARE(store.commit(putting({job})).changed, QStringList{QStringLiteral("one")});
    QCOMPARE(store.revision(), 2ULL);
    QCOMPARE(store.commit(removing({QStringLiteral("nobody")})).changed, QStringList());
    QCOMPARE(store.revision(), 2ULL);
}

void JobStoreTest::aUuidIsThereOnce()
{
    JobStore store(path("jobs.db"), {});
    QCOMPARE(store.open(), QString());
    StoredJob one = aJob(QStringLiteral("one"));
    one.uuid = QStringLiteral("uuid");
    StoredJob two = aJob(QStringLiteral("two"));
    two.uuid = QStringLiteral("uuid");
    QCOMPARE(store.commit(putting({one})).failure, QString());
    QVERIFY(!store.commit(putting({aJob(QStringLiteral("three")), two})).failure.isEmpty());
    QCOMPARE(store.guids(), QStringList{QStringLiteral("one")});
    QCOMPARE(store.revision(), 1ULL);
    // In one change the one takes it over from the other.
    JobChange change = putting({two});
    change.removed = QStringList{QStringLiteral("one")};
    QCOMPARE(store.commit(change).failure, QString());
    QCOMPARE(store.findUuid(QStringLiteral("uuid"))->record.GUID, QStringLiteral("two"));
}

void JobStoreTest::differencesMakeEveryReaderEqual()
{
    StoreLimits limits;
    limits.jobs = 40;
    limits.tombstones = 15;
    struct Reader
    {
        QString epoch;
        quint64 revision = 0;
        QMap<QString, QString> known;
    };
    QVector<Reader> readers(4);
    QRandomGenerator random(5);
    auto store = std::make_unique<JobStore>(path("jobs.db"), limits);
    QCOMPARE(store->open(), QString());
    int complete = 0;
    int differences = 0;
    for (int round = 0; round < 600; ++round) {
        JobChange change;
        QSet<QString> used;
        const int count = 1 + random.bounded(round % 50 == 0 ? 30 : 3);
        for (int index = 0; index < count; ++index) {
            const QString guid = QString::number(random.bounded(60));
            if (used.contains(guid))
                continue;
            used.insert(guid);
            if (random.bounded(3) != 0) {
                const QString status =
                    random.bounded(4) == 0 ? QStringLiteral("Held") : QStringLiteral("Printed");
                change.put.append(aJob(guid, status, round));
                change.put.last().record.jobName = QString::number(random.bounded(3));
            } else if (store->find(guid)) {
                change.removed.append(guid);
            }
        }
        const quint64 before = store->revision();
        QCOMPARE(store->commit(change).failure, QString());
        QVERIFY(store->revision() >= before);
        if (round % 150 == 149) {
            store.reset();
            store = std::make_unique<JobStore>(path("jobs.db"), limits);
            QCOMPARE(store->open(), QString());
        }
        Reader &reader = readers[random.bounded(random.bounded(4) + 1)];
        const JobDifference difference = store->difference(reader.epoch, reader.revision);
        QVERIFY(!difference.hasMore);
        (difference.isComplete ? complete : differences) += 1;
        if (difference.isComplete)
            reader.known.clear();
        for (const QString &guid : difference.removed)
            reader.known.remove(guid);
        for (const PrintJobMetaData &job : difference.jobs)
            reader.known.insert(job.GUID, job.timeStamp + job.jobName + job.jobStatus);
        reader.epoch = difference.epoch;
        reader.revision = difference.revision;
        QMap<QString, QString> expected;
        store->forEach([&expected](const StoredJob &job) {
            expected.insert(job.record.GUID,
                            job.record.timeStamp + job.record.jobName + job.record.jobStatus);
        });
        QCOMPARE(reader.known, expected);
    }
    // Both ways were gone.
    QVERIFY2(complete > 3 && differences > 200, qPrintable(QString::number(complete)));
}

void JobStoreTest::theOldestFinishedJobsGoFirst()
{
    StoreLimits limits;
    limits.jobs = 3;
    JobStore store(path("jobs.db"), limits);
    QCOMPARE(store.open(), QString());
    const QString held = QStringLiteral("Held");
    const QString printed = QStringLiteral("Printed");
    StoredJob middle = aJob(QStringLiteral("middle"), printed, 20);
    middle.uuid = QStringLiteral("uuid of middle");
    store.commit(
        putting({aJob(QStringLiteral("held"), held, 1), middle, aJob(QStringLiteral("young"), printed, 30)}));
    // Whatever the clock said: it may have gone back.
    const ChangeResult result = store.commit(putting({aJob(QStringLiteral("younger"), printed, 5)}));
    QCOMPARE(sorted(store.guids()).join(QLatin1Char(' ')), QStringLiteral("held young younger"));
    QCOMPARE(sorted(result.changed).join(QLatin1Char(' ')), QStringLiteral("middle younger"));
    QCOMPARE(result.toForget.size(), 1);
    QVERIFY(store.isForgotten(QStringLiteral("uuid of middle")));

    // What is not finished stays, whatever the limit.
    store.commit(putting({aJob(QStringLiteral("a"), held, 3), aJob(QStringLiteral("b"), held, 4),
                          aJob(QStringLiteral("c"), held, 5)}));
    QCOMPARE(sorted(store.guids()).join(QLatin1Char(' ')), QStringLiteral("a b c held"));
    // A finished job for which there is no room does not come, and is not asked for again.
    StoredJob more = aJob(QStringLiteral("more"), printed, 50);
    more.uuid = QStringLiteral("uuid of more");
    QCOMPARE(store.commit(putting({more})).changed, QStringList());
    QVERIFY(store.isForgotten(QStringLiteral("uuid of more")));
}

void JobStoreTest::aFullStoreStaysFullWhenItsOldestJobChanges()
{
    StoreLimits limits;
    limits.jobs = 3;
    JobStore store(path("jobs.db"), limits);
    QCOMPARE(store.open(), QString());
    store.commit(putting({aJob(QStringLiteral("a")), aJob(QStringLiteral("b")), aJob(QStringLiteral("c"))}));
    const QString failed = QStringLiteral("Failed");
    store.commit(
        putting({aJob(QStringLiteral("a"), failed), aJob(QStringLiteral("d")), aJob(QStringLiteral("e"))}));
    QCOMPARE(store.guids().join(QLatin1Char(' ')), QStringLiteral("c d e"));
}

void JobStoreTest::documentsGoWithTheirLastJobAndWhenTheyAreTooMany()
{
    StoreLimits limits;
    limits.documentBytes = 100;
    JobStore store(path("jobs.db"), limits);
    QCOMPARE(store.open(), QString());
    const auto put = [&store](const char *guid, const char *name, qint64 bytes, const char *token = "") {
        StoredJob job = aJob(QLatin1String(guid));
        job.document = QLatin1String(name);
        job.orderToken = QLatin1String(token);
        JobChange change = putting({job});
        change.document = KeptDocument{job.document, {}, bytes, 0};
        return store.commit(change).removedDocuments;
    };
    put("one", "A", 40);
    put("two", "A", 40);
    QCOMPARE(store.commit(removing({QStringLiteral("one")})).removedDocuments, QStringList());
    QCOMPARE(store.commit(removing({QStringLiteral("two")})).removedDocuments,
             QStringList{QStringLiteral("A")});

    put("order", "B", 40, "token");
    put("three", "C", 40);
    QCOMPARE(put("four", "D", 20), QStringList());
    // C goes, though B is older: that is still to be printed.
    QCOMPARE(put("five", "E", 10), QStringList{QStringLiteral("C")});
    QVERIFY(!store.documentOf(*store.find(QStringLiteral("three"))));
    QCOMPARE(sorted(store.documentNames()).join(QLatin1Char(' ')), QStringLiteral("B D E"));
    // The new one is kept, however large.
    QCOMPARE(sorted(put("six", "F", 1000)).join(QLatin1Char(' ')), QStringLiteral("D E"));
}

void JobStoreTest::whatIsNoStoreIsSetAside_data()
{
    QTest::addColumn<QByteArray>("statement");
    QTest::newRow("rubbish") << QByteArray();
    QTest::newRow("of another program") << QByteArray("PRAGMA application_id=5");
    QTest::newRow("of no version") << QByteArray("PRAGMA user_version=0");
    QTest::newRow("a table is missing") << QByteArray("DROP TABLE tombstones");
    QTest::newRow("a column is missing") << QByteArray("ALTER TABLE jobs DROP COLUMN heat2");
    QTest::newRow("no state") << QByteArray("DELETE FROM state");
    QTest::newRow("cut") << QByteArray("cut");
    QTest::newRow("overwritten") << QByteArray("overwritten");
}

void JobStoreTest::whatIsNoStoreIsSetAside()
{
    QFETCH(QByteArray, statement);
    const QString file = path("jobs.db");
    QString epoch;
    {
        JobStore store(file, {});
        QCOMPARE(store.open(), QString());
        store.commit(putting({aJob(QStringLiteral("one"))}));
        QVector<StoredJob> many = believableJobs(200, 0, 1000000000000);
        for (StoredJob &job : many)
            job.record.GUID = QUuid::createUuid().toString();
        store.commit(putting(many));
        epoch = store.epoch();
    }
    QByteArray content = FileBytes::read(file);
    if (statement.isEmpty())
        content.fill('x');
    else if (statement == "cut")
        content.truncate(content.size() / 2 / 4096 * 4096);
    else if (statement == "overwritten")
        content.replace(8192, 8192, QByteArray(8192, 'y'));
    if (statement.isEmpty() || !statement.contains(' ')) {
        QVERIFY(FileBytes::write(file, content));
    } else {
        QSqlDatabase database =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("damage"));
        database.setDatabaseName(file);
        QVERIFY(database.open());
        QVERIFY2(QSqlQuery(database).exec(QString::fromLatin1(statement)), statement);
    }
    QSqlDatabase::removeDatabase(QStringLiteral("damage"));

    MessageLog log;
    JobStore store(file, {});
    QCOMPARE(store.open(), QString());
    QCOMPARE(store.size(), 0);
    QVERIFY(store.epoch() != epoch && !store.epoch().isEmpty());
    QCOMPARE(log.texts().size(), 1);
    QVERIFY2(log.texts().constFirst().contains(QStringLiteral("jobs.db.damaged-1")),
             qPrintable(log.texts().join(QLatin1Char(' '))));
    QVERIFY(QFile::exists(file + QStringLiteral(".damaged-1")));
    QCOMPARE(store.commit(putting({aJob(QStringLiteral("one"))})).failure, QString());
}

void JobStoreTest::whatCannotBeOpenedStays_data()
{
    QTest::addColumn<QString>("complaint");
    QTest::newRow("folder") << QStringLiteral("Is a directory");
    QTest::newRow("pipe") << QStringLiteral("no regular file");
    QTest::newRow("link") << QStringLiteral("Too many levels of symbolic links");
    QTest::newRow("later") << QStringLiteral("of a later version of this daemon");
    QTest::newRow("no name") << QString();
}

void JobStoreTest::whatCannotBeOpenedStays()
{
    QFETCH(QString, complaint);
    const QByteArray kind = QTest::currentDataTag();
    const QString file = path("jobs.db");
    const QByteArray name = QFile::encodeName(file);
    if (kind == "folder") {
        QVERIFY(QDir().mkdir(file));
    } else if (kind == "pipe") {
        QCOMPARE(mkfifo(name.constData(), 0600), 0);
    } else if (kind == "link") {
        QVERIFY(QFile::link(QStringLiteral("/dev/null"), file));
    } else if (kind == "later") {
        QSqlDatabase database =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("damage"));
        database.setDatabaseName(file);
        QVERIFY(database.open());
        for (const char *const text :
             {"PRAGMA application_id=0x5a425051", "PRAGMA user_version=2", "CREATE TABLE other (thing)"})
            QVERIFY(QSqlQuery(database).exec(QLatin1String(text)));
    } else {
        QVERIFY(FileBytes::write(file, QByteArray(5000, 'x')));
        for (int number = 1; number <= 5; ++number)
            QVERIFY(QDir().mkdir(file + QStringLiteral(".damaged-%1").arg(number)));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("damage"));
    QVERIFY(QDir().mkdir(path("documents")));
    QVERIFY(FileBytes::write(path("documents/a"), "x"));
    struct stat before = {};
    QCOMPARE(lstat(name.constData(), &before), 0);

    MessageLog log;
    JobStore store(file, {});
    const QString failure = store.open();
    QVERIFY2(failure.startsWith(file + QStringLiteral(": ") + complaint), qPrintable(failure));
    QVERIFY2(!failure.contains(QLatin1Char('\n')), qPrintable(failure));
    struct stat after = {};
    QCOMPARE(lstat(name.constData(), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(FileBytes::read(path("documents/a")), QByteArray("x"));
    QCOMPARE(log.texts(), QStringList());
}

void JobStoreTest::aDiskThatCannotBeReadLosesNothing()
{
    const QString file = path("jobs.db");
    {
        JobStore store(file, {});
        QCOMPARE(store.open(), QString());
        QVector<StoredJob> many = believableJobs(200, 0, 1000000000000);
        for (StoredJob &job : many)
            job.record.GUID = QUuid::createUuid().toString();
        store.commit(putting(many));
    }
    QVERIFY(QDir().mkdir(path("documents")));
    QVERIFY(FileBytes::write(path("documents/a"), "x"));
    MessageLog log;
    int refused = 0;
    int reads = 0;
    for (const bool isForEver : {false, true}) {
        for (reads = 1;; ++reads) {
            BadDisk::failsForEver = isForEver;
            BadDisk::readsUntilFailure = reads;
            bool isOpened = false;
            {
                JobStore store(file, {});
                isOpened = store.open().isEmpty();
                QVERIFY2(!isOpened || store.size() == 200, qPrintable(QString::number(reads)));
            }
            const bool hasFailed = BadDisk::readsUntilFailure <= 0;
            BadDisk::readsUntilFailure = std::numeric_limits<int>::max();
            BadDisk::failsForEver = false;
            refused += isOpened ? 0 : 1;
            QVERIFY2(!QFile::exists(file + QStringLiteral(".damaged-1")), qPrintable(QString::number(reads)));
            if (!hasFailed)
                break;
            QVERIFY2(!isForEver || !isOpened, qPrintable(QString::number(reads)));
        }
    }
    QVERIFY2(reads > 10 && refused > 10, qPrintable(QStringLiteral("%1 %2").arg(reads).arg(refused)));
    QCOMPARE(log.texts(), QStringList());
    QCOMPARE(FileBytes::read(path("documents/a")), QByteArray("x"));
}

void JobStoreTest::filesOfAStoreThatIsGoneAreKept()
{
    {
        Fixture device(m_directory->path());
        device.tell({seen("A")});
        QTRY_VERIFY(device.isSettled(QStringLiteral("A")));
    }
    QVERIFY(FileBytes::write(path("pictures/a.png"), "y"));
    const QString document = QDir(path("documents")).entryList(QDir::Files).constFirst();
    const auto lost = [this](const QString &name) {
        return FileBytes::read(path("jobs.db.damaged-") + name);
    };
    MessageLog log;
    for (int number = 1; number <= 6; ++number) {
        // Damaged, and then just gone.
        if (number == 1)
            QVERIFY(FileBytes::write(path("jobs.db"), QByteArray(5000, 'x')));
        else
            QVERIFY(QFile::remove(path("jobs.db")));
        QVERIFY(FileBytes::write(path("documents/of") + QString::number(number), "z"));
        Fixture device(m_directory->path());
        QCOMPARE(device.failure, QString());
        QCOMPARE(log.texts().size(), number);
        QVERIFY(QDir(path("documents")).isEmpty() && QDir(path("pictures")).isEmpty());
        struct stat status = {};
        QCOMPARE(stat(QFile::encodeName(path("pictures")).constData(), &status), 0);
        QCOMPARE(int(status.st_mode & 0777), 0755);
    }
    QCOMPARE(lost(QStringLiteral("1")), QByteArray(5000, 'x'));
    QCOMPARE(lost(QStringLiteral("1.documents/") + document), QByteArray("a text of A"));
    QCOMPARE(lost(QStringLiteral("1.pictures/a.png")), QByteArray("y"));
    QCOMPARE(lost(QStringLiteral("4.documents/of4")), QByteArray("z"));
    // The last one is replaced.
    QCOMPARE(QDir(path("jobs.db.damaged-5.documents")).entryList(QDir::Files),
             QStringList{QStringLiteral("of6")});
    QVERIFY(log.texts().constLast().contains(QStringLiteral("missing or empty; set aside as")));
}

void JobStoreTest::aFullDiskKeepsWhatWas()
{
    auto store = std::make_unique<JobStore>(path("jobs.db"), StoreLimits());
    QCOMPARE(store->open(), QString());
    QCOMPARE(store->commit(putting({aJob(QStringLiteral("one"))})).failure, QString());
    {
        const FileSizeLimit limit(rlim_t(QFileInfo(path("jobs.db-wal")).size()));
        const ChangeResult result = store->commit(putting({aJob(QStringLiteral("two"))}));
        QVERIFY2(result.failure.startsWith(path("jobs.db") + QStringLiteral(": ")),
                 qPrintable(result.failure));
        QCOMPARE(result.changed, QStringList());
        QVERIFY(!store->commit(removing({QStringLiteral("one")})).failure.isEmpty());
        QCOMPARE(store->guids(), QStringList{QStringLiteral("one")});
        QCOMPARE(store->revision(), 1ULL);
    }
    QCOMPARE(store->commit(putting({aJob(QStringLiteral("three"))})).failure, QString());
    QCOMPARE(store->revision(), 2ULL);
    store.reset();
    JobStore again(path("jobs.db"), {});
    QCOMPARE(again.open(), QString());
    QCOMPARE(sorted(again.guids()).join(QLatin1Char(' ')), QStringLiteral("one three"));
}

void JobStoreTest::jobsOfTheTransportBecomeRecords()
{
    QVERIFY(FileBytes::write(path("supplies.json"),
                             R"({"heat1": 7, "ribbon1Color": "Red", "supplyMileage": 1.5})"));
    Fixture device(m_directory->path());
    QCOMPARE(device.failure, QString());
    device.tell({seen("A"), seen("B", TransportJob::State::Held)});
    QTRY_COMPARE(device.asked.size(), 3);
    // Both in one message, and no more for what nobody sees.
    QTRY_VERIFY(device.isSettled(QStringLiteral("A")) && device.isSettled(QStringLiteral("B")));
    QCOMPARE(device.changed.size(), 1);
    QCOMPARE(device.changed.constFirst().size(), 2);
    const PrintJobMetaData first = device.record(QStringLiteral("A"));
    QCOMPARE(first.timeStamp, QStringLiteral("1614953220123"));
    QCOMPARE(QUuid(first.GUID).toString(QUuid::WithoutBraces), first.GUID);
    QCOMPARE(first.jobName, QStringLiteral("a name"));
    QCOMPARE(first.jobStatus, QStringLiteral("Waiting"));
    QCOMPARE(first.appName, 1);
    QCOMPARE(first.errorValue, 0);
    QCOMPARE(first.copyCount, 3);
    QCOMPARE(first.seriesCount, 1);
    QCOMPARE(first.heat1, 7);
    QCOMPARE(first.tension1, 4);
    QCOMPARE(first.tension2, -5);
    QCOMPARE(first.eventType, 1);
    QCOMPARE(first.supplyMileage, 1.5);
    QCOMPARE(first.ribbon1Color, QStringLiteral("Red"));

    const struct
    {
        TransportJob::State state;
        const char *status;
        int error;
    } steps[] = {
        {TransportJob::State::Printing, "Printing", 0}, {TransportJob::State::Stopped, "Stopped", 0},
        {TransportJob::State::Held, "Held", 0},         {TransportJob::State::Cancelled, "Cancelled", 2},
        {TransportJob::State::Failed, "Failed", 1},     {TransportJob::State::Printed, "Printed", 0}};
    for (const auto &step : steps) {
        device.tell({seen("A", step.state), seen("A", step.state)});
        QTRY_COMPARE(device.record(QStringLiteral("A")).jobStatus, QLatin1String(step.status));
        QCOMPARE(device.record(QStringLiteral("A")).errorValue, step.error);
        QCOMPARE(device.record(QStringLiteral("A")).eventType, 2);
    }
    QCOMPARE(device.changed.size(), 7);
    device.tell({seen("A", TransportJob::State::Printed)});
    device.tell({seen("C")});
    QTRY_COMPARE(device.store.size(), 3);
    QCOMPARE(device.changed.size(), 8);
    const StoredJob *const job = device.store.findUuid(QStringLiteral("A"));
    QCOMPARE(FileBytes::read(device.folder.documentPath(job->document)), QByteArray("a text of A"));
}

void JobStoreTest::jobsThatTheSchedulerLostFail()
{
    Fixture device(m_directory->path());
    device.tell({seen("A", TransportJob::State::Printed), seen("B"), seen("C"),
                 seen("D", TransportJob::State::Printed)});
    QTRY_VERIFY(device.isSettled(QStringLiteral("D")));
    device.queue.removeJobs({device.record(QStringLiteral("D")).GUID}, [](const QString &) {});
    QVERIFY(device.store.isForgotten(QStringLiteral("D")));
    emit device.transport.transport().listCompleted({QStringLiteral("C")});
    QTRY_COMPARE(device.record(QStringLiteral("B")).jobStatus, QStringLiteral("Failed"));
    QCOMPARE(device.record(QStringLiteral("B")).errorValue, 3);
    QCOMPARE(device.record(QStringLiteral("A")).jobStatus, QStringLiteral("Printed"));
    QCOMPARE(device.record(QStringLiteral("C")).jobStatus, QStringLiteral("Waiting"));
    QVERIFY(!device.store.isForgotten(QStringLiteral("D")));
}

void JobStoreTest::ordersAreGivenAgainUntilTheyAreFulfilled()
{
    QStringList orders;
    QStringList asked{QStringLiteral("start")};
    QString token;
    {
        Fixture device(m_directory->path());
        device.tell({seen("A", TransportJob::State::Printed)});
        QTRY_VERIFY(device.isSettled(QStringLiteral("A")));
        for (int number = 0; number < 6; ++number) {
            orders.append(device.reprint(QStringLiteral("A")));
            token = device.tokenOf(orders.last());
            QCOMPARE(QUuid(token).toString(QUuid::WithoutBraces), token);
            QVERIFY(token != orders.last());
            asked.append(QStringLiteral("submit %1 a name x3 text/plain A").arg(token));
        }
    }
    {
        // In their order, except what the transport had taken.
        Fixture device(m_directory->path());
        QTRY_COMPARE(device.asked, asked);
        for (int number = 0; number < 5; ++number)
            emit device.transport.transport().submitted(device.tokenOf(orders.at(number)), orders.at(number));
        QTRY_COMPARE(device.store.orderCount(), 1);
    }
    {
        Fixture device(m_directory->path());
        QTRY_COMPARE(device.asked, (QStringList{QStringLiteral("start"), asked.last()}));
        const QString order = orders.last();
        TransportJob job = seen("R", TransportJob::State::Printing);
        job.guid = token;
        device.tell({job});
        emit device.transport.transport().submitted(token, QStringLiteral("R"));
        QTRY_COMPARE(device.record(QStringLiteral("R")).jobStatus, QStringLiteral("Printing"));
        QCOMPARE(device.record(QStringLiteral("R")).GUID, order);
        QCOMPARE(device.store.size(), 7);

        const QString refused = device.reprint(QStringLiteral("R"));
        MessageLog log;
        emit device.transport.transport().submissionFailed(device.tokenOf(refused),
                                                           QStringLiteral("no such printer"));
        QTRY_COMPARE(device.store.find(refused)->record.jobStatus, QStringLiteral("Failed"));
        QCOMPARE(device.store.find(refused)->record.errorValue, 1);
        QCOMPARE(log.texts(),
                 QStringList{QStringLiteral("job %1 cannot be submitted: no such printer").arg(refused)});
    }
    // Nothing is left to be ordered, nor to be copied.
    Fixture device(m_directory->path());
    device.tell({seen("X")});
    QTRY_COMPARE(device.asked, (QStringList{QStringLiteral("start"), QStringLiteral("keep X 12")}));
}

void JobStoreTest::aForeignJobCannotPassForAnOrder()
{
    Fixture device(m_directory->path());
    device.tell({seen("A", TransportJob::State::Printed)});
    QTRY_COMPARE(device.store.size(), 1);
    QTRY_VERIFY(device.isSettled(QStringLiteral("A")));
    const QString order = device.reprint(QStringLiteral("A"));
    // What everybody can read says nothing in a job, nor to the transport.
    TransportJob foreign = seen("B", TransportJob::State::Printed);
    foreign.guid = order;
    device.tell({foreign});
    QTRY_COMPARE(device.store.size(), 3);
    QCOMPARE(device.store.find(order)->record.jobStatus, QStringLiteral("Waiting"));
    QVERIFY(device.record(QStringLiteral("B")).GUID != order);
    emit device.transport.transport().submitted(order, QStringLiteral("B"));
    // A token that has become public is good for one job.
    TransportJob real = seen("R");
    real.guid = device.tokenOf(order);
    foreign = seen("C");
    foreign.guid = real.guid;
    device.tell({real, foreign});
    QTRY_COMPARE(device.record(QStringLiteral("R")).GUID, order);
    QVERIFY(!device.record(QStringLiteral("C")).GUID.isEmpty());
    QVERIFY(device.record(QStringLiteral("C")).GUID != order);
    QCOMPARE(QSet<QString>(device.changed.constLast().cbegin(), device.changed.constLast().cend()).size(),
             device.changed.constLast().size());
    QCOMPARE(device.store.size(), 4);
}

void JobStoreTest::anOrderOfWhichAnotherJobSaysItWasIsGivenAgain()
{
    Fixture device(m_directory->path());
    device.tell({seen("A", TransportJob::State::Printed), seen("H", TransportJob::State::Held)});
    QTRY_VERIFY(device.isSettled(QStringLiteral("A")) && device.isSettled(QStringLiteral("H")));
    const QString order = device.reprint(QStringLiteral("A"));
    const QString before = device.tokenOf(order);
    TransportJob held = seen("H", TransportJob::State::Held);
    held.guid = before;
    device.tell({held});
    MessageLog log;
    emit device.transport.transport().submitted(before, QStringLiteral("H"));
    QTRY_VERIFY(device.tokenOf(order) != before);
    QVERIFY(device.store.find(order)->isOrder());
    QTRY_COMPARE(device.asked.last(),
                 QStringLiteral("submit %1 a name x3 text/plain A").arg(device.tokenOf(order)));
    QCOMPARE(device.record(QStringLiteral("H")).jobStatus, QStringLiteral("Held"));
    QCOMPARE(
        log.texts(),
        QStringList{QStringLiteral("job %1 is ordered again: another job carries its order").arg(order)});
}

void JobStoreTest::anOrderThatTheSchedulerForgotWasPrinted()
{
    Fixture device(m_directory->path());
    device.tell({seen("A", TransportJob::State::Printed)});
    QTRY_VERIFY(device.isSettled(QStringLiteral("A")));
    const QString order = device.reprint(QStringLiteral("A"));
    emit device.transport.transport().submitted(device.tokenOf(order), QString());
    QTRY_COMPARE(device.store.find(order)->record.jobStatus, QStringLiteral("Printed"));
    QVERIFY(!device.store.find(order)->isOrder());
    QCOMPARE(device.store.find(order)->record.errorValue, 0);
}

void JobStoreTest::noMoreThanAThousandOrdersWait()
{
    Fixture device(m_directory->path());
    device.tell({seen("A", TransportJob::State::Printed)});
    QTRY_VERIFY(device.isSettled(QStringLiteral("A")));
    JobChange change;
    for (int number = 0; number < 999; ++number) {
        change.put.append(aJob(QString::number(number), QStringLiteral("Waiting")));
        change.put.last().orderToken = QStringLiteral("token %1").arg(number);
    }
    QCOMPARE(device.store.commit(change).failure, QString());
    QVERIFY(device.store.find(device.reprint(QStringLiteral("A"))));
    QString reason;
    QCOMPARE(device.queue.reprint(device.record(QStringLiteral("A")).GUID, &reason),
             PrintQueue::Refused::TooManyOrders);
    QCOMPARE(reason, QStringLiteral("1000 orders wait to be submitted already"));
    QCOMPARE(device.store.size(), 1001);
}

void JobStoreTest::whatIsPrintedAgainIsInUse()
{
    StoreLimits limits;
    limits.documentBytes = 35; // of 11 bytes each
    Fixture device(m_directory->path(), limits);
    MessageLog log;
    device.tell({seen("A"), seen("B"), seen("C"), seen("no document")});
    QTRY_VERIFY(device.isSettled(QStringLiteral("C")));
    emit device.transport.transport().submitted(device.tokenOf(device.reprint(QStringLiteral("A"))),
                                                QStringLiteral("R"));
    QTRY_COMPARE(device.store.orderCount(), 0);
    device.tell({seen("D")});
    QTRY_VERIFY(device.isSettled(QStringLiteral("D")));
    const auto hasDocument = [&device](const char *uuid) {
        return device.store.documentOf(*device.store.findUuid(QLatin1String(uuid))) != nullptr;
    };
    QVERIFY(hasDocument("A"));
    QVERIFY(!hasDocument("B"));
    QVERIFY(!hasDocument("no document"));
}

void JobStoreTest::aReprintHasThePictureAndMissingOnesAreMadeLater()
{
    QString guid;
    {
        Fixture device(m_directory->path());
        device.tell({seen("A", TransportJob::State::Printed)});
        QTRY_VERIFY(device.isSettled(QStringLiteral("A")));
        PrintJobMetaData record = device.record(QStringLiteral("A"));
        guid = record.GUID;
        record.imagePath = device.folder.picturePath(guid);
        QVERIFY(FileBytes::write(record.imagePath, "a picture"));
        QCOMPARE(device.queue.setJob(record), QString());
        const QString order = device.reprint(QStringLiteral("A"));
        QCOMPARE(device.store.find(order)->record.imagePath, device.folder.picturePath(order));
        QCOMPARE(FileBytes::read(device.folder.picturePath(order)), QByteArray("a picture"));
        QVERIFY(!device.store.find(order)->wantsPicture);
        // As after an end while the picture was being made.
        StoredJob job = *device.store.find(guid);
        job.wantsPicture = true;
        QCOMPARE(device.store.commit(putting({job})).failure, QString());
    }
    Fixture device(m_directory->path());
    QTRY_VERIFY(!device.store.find(guid)->wantsPicture);
}

void JobStoreTest::clearedJobsDoNotComeBack()
{
    {
        Fixture device(m_directory->path());
        device.tell({seen("A", TransportJob::State::Printed), seen("B")});
        QTRY_COMPARE(device.asked.size(), 3);
        QTRY_VERIFY(device.isSettled(QStringLiteral("A")) && device.isSettled(QStringLiteral("B")));
        QString failure = QStringLiteral("not done");
        device.queue.clear([&failure](const QString &text) { failure = text; });
        QCOMPARE(failure, QString());
        QTRY_COMPARE(device.asked.constLast(), QStringLiteral("forget A 12"));
        QTRY_COMPARE(QDir(path("documents")).entryList(QDir::Files).size(), 1);
    }
    Fixture device(m_directory->path());
    QTRY_COMPARE(device.asked, (QStringList{QStringLiteral("start"), QStringLiteral("forget A 12")}));
    device.tell({seen("A", TransportJob::State::Printed), seen("C")});
    QTRY_COMPARE(device.store.size(), 2);
    QVERIFY(!device.store.findUuid(QStringLiteral("A")));
    emit device.transport.transport().forgotten(QStringLiteral("A"));
    QTRY_VERIFY(!device.store.isForgotten(QStringLiteral("A")));
}

void JobStoreTest::whatCannotBeWrittenIsTriedAgain()
{
    Fixture device(m_directory->path());
    device.tell({seen("A")});
    QTRY_VERIFY(device.isSettled(QStringLiteral("A")));
    MessageLog log;
    {
        const FileSizeLimit limit(rlim_t(QFileInfo(path("jobs.db-wal")).size()));
        device.tell({seen("B")});
        QTRY_COMPARE(log.texts().size(), 1);
        QCOMPARE(device.store.size(), 1);
        QString reason;
        QCOMPARE(device.queue.reprint(device.record(QStringLiteral("A")).GUID, &reason),
                 PrintQueue::Refused::NotWritten);
        QVERIFY(!reason.isEmpty());
        device.tell({seen("B", TransportJob::State::Printing)});
    }
    QTRY_COMPARE_WITH_TIMEOUT(device.record(QStringLiteral("B")).jobStatus, QStringLiteral("Printing"),
                              10000);
    QCOMPARE(device.store.size(), 2);
    // Nothing is printed of what was refused.
    QCOMPARE(device.asked.filter(QStringLiteral("submit")), QStringList());
}

void JobStoreTest::filesThatNobodyNeedsAreRemoved()
{
    {
        Fixture device(m_directory->path());
        device.tell({seen("A", TransportJob::State::Printed)});
        QTRY_VERIFY(device.isSettled(QStringLiteral("A")));
    }
    QVERIFY(FileBytes::write(path("documents/left-over"), "x"));
    QVERIFY(FileBytes::write(path("pictures/left-over.png"), "x"));
    Fixture device(m_directory->path());
    QCOMPARE(QDir(path("documents")).entryList(QDir::Files),
             QStringList{device.store.findUuid(QStringLiteral("A"))->document});
    QVERIFY(QDir(path("pictures")).isEmpty());
    struct stat status = {};
    QCOMPARE(stat(QFile::encodeName(path("documents")).constData(), &status), 0);
    QCOMPARE(int(status.st_mode & 0777), 0700);
    // And nobody else gets the folder meanwhile.
    StateFolder second(m_directory->path());
    QCOMPARE(second.open(),
             QStringLiteral("the state directory %1 is in use by another process").arg(m_directory->path()));
}

void JobStoreTest::rubbishAsSuppliesIsNothing_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("heat1");
    QTest::addColumn<QString>("color");
    QTest::newRow("missing") << QByteArray() << 0 << QString();
    QTest::newRow("rubbish") << QByteArray("{\"heat1\": 5,") << 0 << QString();
    QTest::newRow("a list") << QByteArray("[1, 2]") << 0 << QString();
    QTest::newRow("other types") << QByteArray(R"({"heat1": "5", "supplyColor": 5})") << 0 << QString();
    QTest::newRow("too large a number")
        << QByteArray(R"({"heat1": 1e300, "supplyColor": "W"})") << 0 << QStringLiteral("W");
    QTest::newRow("too long a text") << QByteArray("{\"heat1\": 5, \"supplyColor\": \"")
            + QByteArray(200, 'x')
            + "\"}" << 5 << QString(100, QLatin1Char('x'));
}

void JobStoreTest::rubbishAsSuppliesIsNothing()
{
    QFETCH(QByteArray, text);
    PrintJobMetaData job;
    job.heat1 = 1;
    job.supplyColor = QStringLiteral("before");
    putSupplies(text, &job);
    QTEST(job.heat1, "heat1");
    QTEST(job.supplyColor, "color");
}

QTEST_GUILESS_MAIN(JobStoreTest)
#include "tst_jobstore.moc"
