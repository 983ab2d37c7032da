// The transport against a real scheduler: what anyone prints is seen, what is ordered is printed once, and
// nothing is mixed up when the scheduler hangs, is killed or loses what it knew.
#include "cupstransport.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QThread>
#include <QtCore/QUuid>
#include <QtTest/QtTest>

#include <atomic>
#include <cerrno>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using State = TransportJob::State;

class CupsTransportTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void eventsAreReadExactly_data();
    void eventsAreReadExactly();
    void timesGrowWithTheOrder_data();
    void timesGrowWithTheOrder();
    void printedDocumentsAppearByThemselves_data();
    void printedDocumentsAppearByThemselves();
    void statesFollow();
    void orderIsCarriedOutOnceWithTheOriginalsOptions();
    void halfAnOrderIsCompleted_data();
    void halfAnOrderIsCompleted();
    void halfAnOrderThatSomebodyCancelledHasFailed();
    void jobsThatAKilledSchedulerAbandonedHaveFailed();
    void hopelessOrdersAreRefused();
    void documentsAreKeptByteForByteOrNotAtAll();
    void documentWaitsForTheDisk();
    void forgottenJobsAreGone();
    void manyJobsAreAllSeen();
    void pausedSchedulerIsGivenUpAndCaughtUpWith();
    void stopEndsARequestThatHangs();
    void killedSchedulerIsFoundAgain();
    void orderOfADeadDaemonIsFoundInASchedulerThatHung();
    void ordersAreCarriedOutOnceWhileTheSchedulerIsKilled();
    void numbersGivenOutAgainAreOtherJobs();
    void notificationsOfOthersAreNotBelieved();

private:
    void startTransport(bool isPushed = true);
    void stopTransport();
    TransportJob jobNumber(int number) const;
    bool waitForState(int number, State state);
    QString document(const QByteArray &content);
    int print(const QByteArray &content, const QStringList &options = {});
    void submit(const TransportOrder &order);
    void keep(const TransportJob &job, const QString &path);
    void forget(const TransportJob &job);
    int timesSeen(const QString &guid) const;
    State stateOf(const QString &guid) const;

    std::unique_ptr<CupsTransport> m_transport;
    std::unique_ptr<QThread> m_thread;
    CupsTransport::Settings m_settings;
    QMap<QString, TransportJob> m_jobs; ///< by uuid, as they were told last
    QStringList m_order; ///< uuids as they were told first
    QStringList m_listed;
    QStringList m_events; ///< what else was told
    int m_lists = 0;
    int m_failures = 0; ///< how often it was told that the scheduler is not reached
    bool m_isReachable = false;
};

namespace {

std::atomic<int> syncError{0};
std::atomic<int> syncs{0};

} // namespace

/// In place of the C library's: a disk that is full says so here at the latest.
extern "C" int fsync(int file)
{
    ++syncs;
    errno = syncError;
    return errno == 0 ? fdatasync(file) : -1;
}

namespace {

const auto guidA = QStringLiteral("11111111-1111-4111-8111-111111111111");

QString variable(const char *name)
{
    return qEnvironmentVariable(name);
}

QByteArray output(const QString &program, const QStringList &arguments, int *status = nullptr)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    process.closeWriteChannel();
    process.waitForFinished();
    if (status)
        *status = process.exitCode();
    return process.readAll();
}

// Whether the scheduler may not be running as it should.
bool isDisturbed = false;

bool control(const char *word)
{
    isDisturbed = true;
    int status = -1;
    const QByteArray said = output(variable("ZBVIRTUALDEVICE_SCHEDULER"), {QLatin1String(word)}, &status);
    return status == 0;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

QString printedFile(int number, const char *ending)
{
    return QStringLiteral("%1/job-%2.%3")
        .arg(variable("ZBVIRTUALDEVICE_PRINTED"))
        .arg(number)
        .arg(QLatin1String(ending));
}

QString newGuid()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

QString folder()
{
    return QDir::homePath();
}

// A file of IPP requests for ipptool, for what the command-line programs cannot ask.
bool ipp(const QByteArray &operation, const QByteArray &attributes)
{
    const QString path = folder() + QStringLiteral("/request.test");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write("{ OPERATION " + operation
               + "\nGROUP operation-attributes-tag\nATTR charset attributes-charset utf-8\n"
                 "ATTR naturalLanguage attributes-natural-language en\nATTR uri printer-uri $uri\n"
                 "ATTR name requesting-user-name root\n"
               + attributes + "\n}\n");
    file.close();
    int status = -1;
    output(QStringLiteral("ipptool"), {QStringLiteral("-q"), variable("ZBVIRTUALDEVICE_PRINTER"), path},
           &status);
    return status == 0;
}

} // namespace

void CupsTransportTest::init()
{
    m_settings = CupsTransport::Settings();
    QCOMPARE(m_settings.patienceMilliseconds, 2000);
    QCOMPARE(m_settings.retryMilliseconds, 1000);
    QCOMPARE(m_settings.pollMilliseconds, 700);
    m_settings.printer = variable("ZBVIRTUALDEVICE_PRINTER");
    m_settings.patienceMilliseconds = 1000;
    m_settings.retryMilliseconds = 100;
    m_settings.pollMilliseconds = 100;
    m_settings.notificationSocket = folder() + QStringLiteral("/notify");
    m_jobs.clear();
    m_order.clear();
    m_events.clear();
    m_listed.clear();
    m_lists = 0;
    m_failures = 0;
    m_isReachable = false;
    syncError = 0;
}

void CupsTransportTest::cleanup()
{
    stopTransport();
    if (isDisturbed) {
        output(variable("ZBVIRTUALDEVICE_SCHEDULER"), {QStringLiteral("resume")});
        output(variable("ZBVIRTUALDEVICE_SCHEDULER"), {QStringLiteral("start")});
    }
    isDisturbed = false;
}

void CupsTransportTest::startTransport(bool isPushed)
{
    if (!isPushed)
        m_settings.notificationSocket.clear();
    m_transport = std::make_unique<CupsTransport>(m_settings);
    m_thread = std::make_unique<QThread>();
    m_transport->moveToThread(m_thread.get());
    CupsTransport *const transport = m_transport.get();
    connect(transport, &CupsTransport::jobsSeen, this, [this](const QVector<TransportJob> &jobs) {
        for (const TransportJob &job : jobs) {
            if (!m_jobs.contains(job.uuid))
                m_order.append(job.uuid);
            m_jobs.insert(job.uuid, job);
        }
    });
    connect(transport, &CupsTransport::listCompleted, this, [this](const QStringList &uuids) {
        m_listed = uuids;
        ++m_lists;
    });
    connect(transport, &CupsTransport::submitted, this, [this](const QString &guid, const QString &uuid) {
        m_events += QStringLiteral("submitted %1 %2").arg(guid, uuid);
    });
    connect(transport, &CupsTransport::submissionFailed, this,
            [this](const QString &guid, const QString &reason) {
                m_events += QStringLiteral("failed %1 %2").arg(guid, reason);
            });
    connect(transport, &CupsTransport::documentKept, this,
            [this](const QString &uuid, const QString &, const QString &format) {
                m_events += QStringLiteral("kept %1 %2").arg(uuid, format);
            });
    connect(transport, &CupsTransport::documentNotKept, this,
            [this](const QString &uuid, const QString &reason) {
                m_events += QStringLiteral("not kept %1 %2").arg(uuid, reason);
            });
    connect(transport, &CupsTransport::forgotten, this,
            [this](const QString &uuid) { m_events += QStringLiteral("forgotten %1").arg(uuid); });
    connect(transport, &CupsTransport::reachableChanged, this, [this](bool isReachable) {
        m_isReachable = isReachable;
        m_failures += isReachable ? 0 : 1;
    });
    m_thread->start();
    QMetaObject::invokeMethod(transport, &CupsTransport::start, Qt::QueuedConnection);
}

void CupsTransportTest::stopTransport()
{
    if (!m_thread)
        return;
    QMetaObject::invokeMethod(m_transport.get(), &CupsTransport::stop, Qt::QueuedConnection);
    // Queued as well: otherwise the thread might end before it comes to stop().
    QMetaObject::invokeMethod(
        m_transport.get(), [] { QThread::currentThread()->quit(); }, Qt::QueuedConnection);
    m_thread->wait();
    m_transport.reset();
    m_thread.reset();
}

TransportJob CupsTransportTest::jobNumber(int number) const
{
    for (const TransportJob &job : m_jobs) {
        if (job.number == number)
            return job;
    }
    return {};
}

bool CupsTransportTest::waitForState(int number, State state)
{
    return QTest::qWaitFor(
        [&] { return jobNumber(number).number == number && jobNumber(number).state == state; }, 10000);
}

QString CupsTransportTest::document(const QByteArray &content)
{
    const QString path = folder() + QStringLiteral("/document.txt");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        return {};
    return path;
}

// The number of the job.
int CupsTransportTest::print(const QByteArray &content, const QStringList &options)
{
    const QByteArray said = output(QStringLiteral("lp"),
                                   QStringList{QStringLiteral("-d"), QStringLiteral("BrackenXL")} + options
                                       + QStringList{document(content)});
    // "request id is BrackenXL-7 (1 file(s))"
    return said.startsWith("request id is BrackenXL-") ? said.mid(24, said.indexOf(' ', 24) - 24).toInt() : 0;
}

void CupsTransportTest::submit(const TransportOrder &order)
{
    QMetaObject::invokeMethod(m_transport.get(), [this, order] { m_transport->submit(order); });
}

void CupsTransportTest::keep(const TransportJob &job, const QString &path)
{
    QMetaObject::invokeMethod(m_transport.get(),
                              [this, job, path] { m_transport->keepDocument(job.uuid, job.number, path); });
}

void CupsTransportTest::forget(const TransportJob &job)
{
    QMetaObject::invokeMethod(m_transport.get(), [this, job] { m_transport->forget(job.uuid, job.number); });
}

int CupsTransportTest::timesSeen(const QString &guid) const
{
    return int(std::count_if(m_jobs.cbegin(), m_jobs.cend(),
                             [&](const TransportJob &job) { return job.guid == guid; }));
}

State CupsTransportTest::stateOf(const QString &guid) const
{
    const auto job = std::find_if(m_jobs.cbegin(), m_jobs.cend(),
                                  [&](const TransportJob &other) { return other.guid == guid; });
    return job != m_jobs.cend() ? job->state : State::Waiting;
}

void CupsTransportTest::eventsAreReadExactly_data()
{
    QTest::addColumn<QByteArray>("datagram");
    QTest::addColumn<bool>("isEvent");
    QTest::newRow("event") << QByteArray("7 12 345 0123abcd") << true;
    QTest::newRow("without job") << QByteArray("7 12 0 0123abcd") << true;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("too few") << QByteArray("7 12 345") << false;
    QTest::newRow("too many") << QByteArray("7 12 345 a b") << false;
    QTest::newRow("negative") << QByteArray("7 -12 345 a") << false;
    QTest::newRow("too large") << QByteArray("7 12 99999999999 a") << false;
    QTest::newRow("no number") << QByteArray("7 x 345 a") << false;
}

void CupsTransportTest::eventsAreReadExactly()
{
    QFETCH(QByteArray, datagram);
    CupsEvent event;
    QTEST(CupsEvent::read(datagram, &event), "isEvent");
    if (datagram == "7 12 345 0123abcd") {
        QCOMPARE(event.subscription, 7);
        QCOMPARE(event.sequence, 12);
        QCOMPARE(event.job, 345);
        QCOMPARE(event.token, QByteArray("0123abcd"));
    }
}

void CupsTransportTest::timesGrowWithTheOrder_data()
{
    QTest::addColumn<qint64>("second");
    QTest::addColumn<qint64>("now");
    QTest::addColumn<qint64>("previous");
    QTest::addColumn<qint64>("time");
    QTest::newRow("just now") << qint64(1000) << qint64(1000123) << qint64(0) << qint64(1000123);
    QTest::newRow("almost two seconds ago")
        << qint64(1000) << qint64(1001999) << qint64(0) << qint64(1001999);
    QTest::newRow("long ago") << qint64(1000) << qint64(1002001) << qint64(0) << qint64(1000000);
    QTest::newRow("in the future") << qint64(1000) << qint64(999999) << qint64(0) << qint64(1000000);
    QTest::newRow("same second") << qint64(1000) << qint64(9000000) << qint64(1000000) << qint64(1000001);
    QTest::newRow("same moment") << qint64(1000) << qint64(1000123) << qint64(1000123) << qint64(1000124);
    QTest::newRow("after one seen late")
        << qint64(1001) << qint64(1002500) << qint64(1002500) << qint64(1002501);
    QTest::newRow("clock was set back")
        << qint64(1000) << qint64(9000000) << qint64(5000000) << qint64(1000000);
}

void CupsTransportTest::timesGrowWithTheOrder()
{
    QFETCH(qint64, second);
    QFETCH(qint64, now);
    QFETCH(qint64, previous);
    QTEST(CupsJobs::creationTime(second, now, previous), "time");
}

void CupsTransportTest::printedDocumentsAppearByThemselves_data()
{
    QTest::addColumn<bool>("isPushed");
    QTest::newRow("told by the notifier") << true;
    QTest::newRow("looked for") << false;
}

void CupsTransportTest::printedDocumentsAppearByThemselves()
{
    QFETCH(bool, isPushed);
    print("before\n");
    startTransport(isPushed);
    QTRY_COMPARE(m_lists, 1);
    QTRY_VERIFY(m_isReachable);
    if (isPushed) {
        // The first event shows that there is a notifier.
        waitForState(print("first\n"), State::Printed);
        QTRY_VERIFY(!m_order.isEmpty());
    }
    const int known = m_order.size();
    const qint64 begin = QDateTime::currentMSecsSinceEpoch();
    QList<int> numbers;
    for (const char *const name : {"one", "two", "three"})
        numbers +=
            print("text\n",
                  {QStringLiteral("-t"), QLatin1String(name), QStringLiteral("-n"), QStringLiteral("2"),
                   QStringLiteral("-o"), QStringLiteral("R1TensionAdjust=Custom.-3"), QStringLiteral("-o"),
                   QStringLiteral("R2TensionAdjust=0")});
    QElapsedTimer sinceLast;
    sinceLast.start();
    QTRY_COMPARE(m_order.size(), known + 3);
    QVERIFY2(sinceLast.elapsed() < 2500, qPrintable(QString::number(sinceLast.elapsed())));
    qint64 previous = begin - 1000;
    for (const int number : qAsConst(numbers)) {
        QVERIFY(waitForState(number, State::Printed));
        const TransportJob job = jobNumber(number);
        QCOMPARE(job.name,
                 QStringList({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")})
                     .at(numbers.indexOf(number)));
        QCOMPARE(job.copies, 2);
        QCOMPARE(job.documents, 1);
        QCOMPARE(job.tension1, -3);
        QCOMPARE(job.tension2, 0);
        QCOMPARE(job.guid, QString());
        QVERIFY(!QUuid(job.uuid).isNull());
        QVERIFY2(job.createdMilliseconds > previous && job.createdMilliseconds < begin + 10000,
                 qPrintable(QString::number(job.createdMilliseconds - begin)));
        previous = job.createdMilliseconds;
    }
}

void CupsTransportTest::statesFollow()
{
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    const int number = print("text\n", {QStringLiteral("-H"), QStringLiteral("hold")});
    QVERIFY(waitForState(number, State::Held));
    const QString name = QStringLiteral("BrackenXL-%1").arg(number);
    QCOMPARE(jobNumber(number).copies, 1);
    output(QStringLiteral("lp"), {QStringLiteral("-i"), name, QStringLiteral("-n"), QStringLiteral("3")});
    output(QStringLiteral("cancel"), {name});
    QElapsedTimer sinceEnd;
    sinceEnd.start();
    QVERIFY(waitForState(number, State::Cancelled));
    QVERIFY2(sinceEnd.elapsed() < 3000, "without being told, it looks after 5 s");
    QCOMPARE(jobNumber(number).copies, 3);

    output(QStringLiteral("cupsdisable"), {QStringLiteral("BrackenXL")});
    // That its document has arrived is told by nobody, and seen all the same: it can be kept.
    const int waiting = print("text\n");
    QVERIFY(waitForState(waiting, State::Waiting));
    sinceEnd.start();
    keep(jobNumber(waiting), folder() + QStringLiteral("/arrived"));
    QTRY_COMPARE(m_events.size(), 1);
    QVERIFY2(sinceEnd.elapsed() < 3000, "it has to be looked for");
    sinceEnd.start();
    output(QStringLiteral("cupsenable"), {QStringLiteral("BrackenXL")});
    QVERIFY(waitForState(waiting, State::Printed));
    QVERIFY2(sinceEnd.elapsed() < 3000, "it has to be told");
    QCOMPARE(m_lists, 1);
}

void CupsTransportTest::orderIsCarriedOutOnceWithTheOriginalsOptions()
{
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    const int original =
        print("text\n",
              {QStringLiteral("-o"), QStringLiteral("Feed=Custom.-77"), QStringLiteral("-o"),
               QStringLiteral("MirrorPrint=True"), QStringLiteral("-o"),
               QStringLiteral("orientation-requested=5"), QStringLiteral("-n"), QStringLiteral("4")});
    QVERIFY(waitForState(original, State::Printed));
    const QByteArray content("\0\1\2 kept \xff\n", 11);
    TransportOrder order;
    order.guid = newGuid();
    order.documentPath = document(content);
    order.name = QStringLiteral("Etikett \u00e4 \u2603");
    order.copies = 2;
    order.originalUuid = jobNumber(original).uuid;
    submit(order);
    submit(order);
    QVERIFY(waitForState(original + 1, State::Printed));
    const TransportJob job = jobNumber(original + 1);
    QCOMPARE(job.guid, order.guid);
    QCOMPARE(job.name, order.name);
    QCOMPARE(job.copies, 2);
    QCOMPARE(contentOf(printedFile(job.number, "prn")), content);
    const QStringList options =
        QString::fromUtf8(contentOf(printedFile(job.number, "opts"))).split(QLatin1Char(' '));
    for (const char *const option : {"Feed=Custom.-77", "MirrorPrint", "orientation-requested=5"})
        QVERIFY2(options.contains(QLatin1String(option)), qPrintable(options.join(QLatin1Char(' '))));
    submit(order);
    const QString told = QStringLiteral("submitted %1 %2").arg(order.guid, job.uuid);
    QTRY_VERIFY(m_events.count(told) >= 2);

    // The same after the daemon was started anew.
    stopTransport();
    m_jobs.clear();
    m_events.clear();
    m_lists = 0;
    startTransport(false);
    submit(order);
    QTRY_COMPARE(m_events, QStringList{told});
    QCOMPARE(timesSeen(order.guid), 1);
    QCOMPARE(print("text\n"), original + 2);
}

// The daemon was killed between the two requests.
void CupsTransportTest::halfAnOrderIsCompleted_data()
{
    QTest::addColumn<QString>("meanwhile");
    QTest::newRow("the scheduler was killed as well") << QStringLiteral("kill");
    QTest::newRow("somebody read the token") << QStringLiteral("copy");
}

void CupsTransportTest::halfAnOrderIsCompleted()
{
    QFETCH(QString, meanwhile);
    const int before = print("text\n");
    const QString guid = newGuid();
    QVERIFY(ipp("Create-Job", "GROUP job-attributes-tag\nATTR name zb-order " + guid.toUtf8()));
    if (meanwhile == QLatin1String("kill"))
        QVERIFY(control("kill") && control("start"));
    const int copy = meanwhile == QLatin1String("copy")
        ? print("another\n", {QStringLiteral("-o"), QStringLiteral("zb-order=") + guid})
        : 0;
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    QCOMPARE(timesSeen(guid), 0);
    TransportOrder order;
    order.guid = guid;
    order.documentPath = document("the document\n");
    submit(order);
    const int number = before + 1;
    QVERIFY(waitForState(number, State::Printed));
    QCOMPARE(contentOf(printedFile(number, "prn")), QByteArray("the document\n"));
    QCOMPARE(timesSeen(guid), 1);
    QCOMPARE(print("text\n"), qMax(number, copy) + 1);
}

void CupsTransportTest::halfAnOrderThatSomebodyCancelledHasFailed()
{
    const int before = print("text\n");
    TransportOrder order;
    order.guid = newGuid();
    order.documentPath = document("the document\n");
    QVERIFY(ipp("Create-Job", "GROUP job-attributes-tag\nATTR name zb-order " + order.guid.toUtf8()));
    output(QStringLiteral("cancel"), {QStringLiteral("BrackenXL-%1").arg(before + 1)});
    startTransport();
    submit(order);
    QTRY_COMPARE(m_events, QStringList{QStringLiteral("failed %1 somebody cancelled it").arg(order.guid)});
    // No other job was made for it.
    QCOMPARE(timesSeen(order.guid), 0);
    QCOMPARE(print("text\n"), before + 2);
}

// Clients print by two requests. A scheduler killed between them, or before it noted the second, holds the
// job for ever.
void CupsTransportTest::jobsThatAKilledSchedulerAbandonedHaveFailed()
{
    const int held = print("held\n", {QStringLiteral("-H"), QStringLiteral("hold")});
    QVERIFY(ipp("Create-Job", {}));
    const int empty = held + 1;
    QVERIFY(ipp("Create-Job", {}));
    const int half = held + 2;
    QVERIFY(document("half\n").size() > 0);
    QVERIFY(
        ipp("Send-Document",
            "ATTR integer job-id " + QByteArray::number(half)
                + "\nATTR mimeMediaType document-format text/plain\nATTR boolean last-document false\nFILE "
                + folder().toUtf8() + "/document.txt"));
    // As long as somebody may go on with them they wait.
    startTransport();
    QVERIFY(waitForState(empty, State::Waiting));
    QVERIFY(waitForState(half, State::Held));
    QVERIFY(control("kill"));
    QVERIFY(control("start"));
    QVERIFY(waitForState(empty, State::Failed));
    QVERIFY(waitForState(half, State::Failed));
    QCOMPARE(jobNumber(held).state, State::Held);
    QVERIFY(m_listed.contains(jobNumber(half).uuid));
    // The document is there, and nothing is printed that may have been printed.
    keep(jobNumber(half), folder() + QStringLiteral("/half"));
    QTRY_COMPARE(m_events.size(), 1);
    QCOMPARE(contentOf(folder() + QStringLiteral("/half")), QByteArray("half\n"));
    QVERIFY(!QFileInfo::exists(printedFile(half, "prn")));
    // Neither stays in the scheduler, unless somebody wants it printed.
    forget(jobNumber(empty));
    QTRY_COMPARE(m_events.size(), 2);
    QCOMPARE(m_events.last(), QStringLiteral("forgotten ") + jobNumber(empty).uuid);
    const QByteArray left = output(QStringLiteral("lpstat"), {QStringLiteral("-W"), QStringLiteral("all")});
    QVERIFY2(!left.contains("BrackenXL-" + QByteArray::number(empty) + ' '), left.constData());
    output(QStringLiteral("lp"),
           {QStringLiteral("-i"), QStringLiteral("BrackenXL-%1").arg(half), QStringLiteral("-H"),
            QStringLiteral("resume")});
    QVERIFY(waitForState(half, State::Printed));
    output(QStringLiteral("cancel"), {QStringLiteral("BrackenXL-%1").arg(held)});
    QVERIFY(waitForState(held, State::Cancelled));
}

void CupsTransportTest::hopelessOrdersAreRefused()
{
    startTransport();
    TransportOrder order;
    order.guid = newGuid();
    order.documentPath = folder() + QStringLiteral("/absent");
    submit(order);
    QTRY_COMPARE(m_events,
                 QStringList{QStringLiteral("failed %1 its document cannot be read").arg(order.guid)});
    order.documentPath = document("text\n");
    order.format = QStringLiteral("video/nothing");
    submit(order);
    QTRY_COMPARE(m_events.size(), 2);
    QVERIFY2(m_events.last().startsWith(QStringLiteral("failed %1 ").arg(order.guid)),
             qPrintable(m_events.last()));
    order.guid = QStringLiteral("no guid");
    submit(order);
    QTRY_COMPARE(m_events.size(), 3);
    // Nothing is left of them, and another order finds its way.
    order.guid = newGuid();
    order.format = QStringLiteral("text/plain");
    submit(order);
    QTRY_COMPARE(m_events.size(), 4);
    QVERIFY2(m_events.last().startsWith(QStringLiteral("submitted %1 ").arg(order.guid)),
             qPrintable(m_events.last()));
    for (const TransportJob &job : qAsConst(m_jobs))
        QVERIFY(job.guid != order.guid || job.documents == 1);
}

void CupsTransportTest::documentsAreKeptByteForByteOrNotAtAll()
{
    m_settings.largestDocument = 100000;
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    QByteArray content("%PDF-1.4\n\0\r\n\xff", 13);
    for (int index = 13; index < 100000; ++index)
        content.append(char(index * 7 + index / 251));
    const int number = print(content);
    const int larger = print(content + 'x');
    QTRY_COMPARE(jobNumber(larger).number, larger);
    const QString path = folder() + QStringLiteral("/kept");
    keep(jobNumber(number), path);
    QTRY_COMPARE(m_events,
                 QStringList{QStringLiteral("kept %1 application/pdf").arg(jobNumber(number).uuid)});
    QVERIFY(contentOf(path) == content);
    QCOMPARE(QFileInfo(path).permissions(),
             QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
    QVERIFY(!QFileInfo::exists(path + QStringLiteral(".new")));

    // What is asked for after a document that is given up is not kept waiting by that.
    keep(jobNumber(larger), path + QLatin1Char('1'));
    keep(jobNumber(number), path + QLatin1Char('0'));
    QTRY_COMPARE(m_events.size(), 3);
    QCOMPARE(m_events.at(1),
             QStringLiteral("not kept %1 it has more than 100000 bytes").arg(jobNumber(larger).uuid));
    QVERIFY(contentOf(path + QLatin1Char('0')) == content);
    QVERIFY(!QFileInfo::exists(path + QStringLiteral("1.new")));
    QVERIFY(m_isReachable);
    QCOMPARE(m_failures, 0);

    // Two documents in one job would be half kept.
    const QByteArray said =
        output(QStringLiteral("lp"),
               {QStringLiteral("-d"), QStringLiteral("BrackenXL"), document("text\n"), document("text\n")});
    QVERIFY2(said.contains("(2 file(s))"), said.constData());
    QTRY_COMPARE(jobNumber(larger + 1).documents, 2);
    keep(jobNumber(larger + 1), path + QLatin1Char('2'));
    QTRY_COMPARE(m_events.size(), 4);
    QVERIFY(m_events.last().startsWith(QStringLiteral("not kept ") + jobNumber(larger + 1).uuid));
    // Another job of that number is not meant.
    TransportJob other = jobNumber(number);
    other.uuid = newGuid();
    keep(other, path + QLatin1Char('3'));
    QTRY_COMPARE(m_events.size(), 5);
    QVERIFY(m_events.last().startsWith(QStringLiteral("not kept ") + other.uuid));
    for (const char ending : {'1', '2', '3'})
        QVERIFY(!QFileInfo::exists(path + QLatin1Char(ending)));
}

void CupsTransportTest::documentWaitsForTheDisk()
{
    m_settings.restMilliseconds = 20;
    startTransport();
    const int number = print("text\n");
    QTRY_COMPARE(jobNumber(number).number, number);
    const QString path = folder() + QStringLiteral("/waits");
    for (const int error : {ENOSPC, EDQUOT, EIO}) {
        m_events.clear();
        syncs = 0;
        syncError = error;
        keep(jobNumber(number), path);
        QTRY_VERIFY(syncs >= 2);
        QCOMPARE(m_events, QStringList());
        QVERIFY(!QFileInfo::exists(path) && !QFileInfo::exists(path + QStringLiteral(".new")));
        syncError = 0;
        QTRY_COMPARE(m_events.size(), 1);
        QVERIFY(m_events.first().startsWith(QStringLiteral("kept ")));
        QVERIFY(QFile::remove(path));
    }
    // Another error does not pass.
    syncError = EPERM;
    keep(jobNumber(number), path);
    QTRY_COMPARE(m_events.size(), 2);
    QVERIFY(m_events.last().startsWith(QStringLiteral("not kept ")));
    QVERIFY(!QFileInfo::exists(path) && !QFileInfo::exists(path + QStringLiteral(".new")));
}

void CupsTransportTest::forgottenJobsAreGone()
{
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    QList<int> numbers;
    for (int index = 0; index < 4; ++index)
        numbers += print("text\n");
    for (const int number : qAsConst(numbers))
        QVERIFY(waitForState(number, State::Printed));
    TransportJob stranger = jobNumber(numbers.at(3));
    stranger.uuid = newGuid();
    for (const TransportJob &job :
         {jobNumber(numbers.at(0)), jobNumber(numbers.at(1)), jobNumber(numbers.at(2)), stranger})
        forget(job);
    QTRY_COMPARE(m_events.size(), 4);
    for (const int number : qAsConst(numbers))
        QCOMPARE(m_events.contains(QStringLiteral("forgotten ") + jobNumber(number).uuid),
                 number != numbers.at(3));
    QVERIFY(m_events.contains(QStringLiteral("forgotten ") + stranger.uuid));
    forget(jobNumber(numbers.at(0)));
    QTRY_COMPARE(m_events.size(), 5);

    const QString kept = jobNumber(numbers.at(3)).uuid;
    const QString gone = jobNumber(numbers.at(2)).uuid;
    stopTransport();
    m_lists = 0;
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    QVERIFY(m_listed.contains(kept));
    QVERIFY(!m_listed.contains(gone));
}

void CupsTransportTest::manyJobsAreAllSeen()
{
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    TransportOrder order;
    order.documentPath = document("text\n");
    for (int index = 0; index < 20; ++index) {
        order.guid = newGuid();
        order.name = QString::number(index);
        submit(order);
    }
    const auto printed = [this] {
        return std::count_if(m_jobs.cbegin(), m_jobs.cend(), [](const TransportJob &job) {
            return !job.guid.isEmpty() && job.state == State::Printed;
        });
    };
    const auto known = printed();
    QTRY_COMPARE_WITH_TIMEOUT(printed(), known + 20, 20000);
    QMap<qint64, int> byTime;
    for (const TransportJob &job : qAsConst(m_jobs))
        byTime.insert(job.createdMilliseconds, job.number);
    QCOMPARE(byTime.size(), m_jobs.size());
    QVERIFY(std::is_sorted(byTime.cbegin(), byTime.cend()));
}

void CupsTransportTest::pausedSchedulerIsGivenUpAndCaughtUpWith()
{
    m_settings.patienceMilliseconds = 150;
    m_settings.settleMilliseconds = 100;
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    QVERIFY(control("pause"));
    TransportOrder order;
    order.guid = newGuid();
    order.documentPath = document("text\n");
    QElapsedTimer sinceOrder;
    sinceOrder.start();
    submit(order);
    QTRY_VERIFY(!m_isReachable);
    QVERIFY2(sinceOrder.elapsed() < 1000, qPrintable(QString::number(sinceOrder.elapsed())));
    QVERIFY(control("resume"));
    QTRY_VERIFY(m_isReachable);
    QTRY_COMPARE(m_events.size(), 1);
    QVERIFY(m_events.first().startsWith(QStringLiteral("submitted %1 ").arg(order.guid)));
    // What the scheduler found when it went on may have been the same order.
    QTRY_COMPARE(timesSeen(order.guid), 1);
    const int next = print("text\n");
    QVERIFY(waitForState(next, State::Printed));
    QCOMPARE(timesSeen(order.guid), 1);
    QCOMPARE(jobNumber(next - 1).guid, order.guid);
}

void CupsTransportTest::stopEndsARequestThatHangs()
{
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    QVERIFY(control("pause"));
    submit({guidA, document("text\n"), {}, {}, 1, {}});
    QTest::qWait(50);
    QElapsedTimer sinceStop;
    sinceStop.start();
    m_transport->stop();
    m_thread->quit();
    m_thread->wait();
    QVERIFY2(sinceStop.elapsed() < 500, qPrintable(QString::number(sinceStop.elapsed())));
    m_transport.reset();
    m_thread.reset();
    QVERIFY(control("resume"));
}

void CupsTransportTest::killedSchedulerIsFoundAgain()
{
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    const int held = print("text\n", {QStringLiteral("-H"), QStringLiteral("hold")});
    QVERIFY(waitForState(held, State::Held));
    const TransportJob before = jobNumber(held);
    QVERIFY(control("kill"));
    TransportOrder order;
    order.guid = newGuid();
    order.documentPath = document("text\n");
    submit(order);
    QTRY_VERIFY(!m_isReachable);
    QVERIFY(control("start"));
    QTRY_COMPARE(m_lists, 2);
    QTRY_VERIFY(m_isReachable);
    QVERIFY(m_listed.contains(before.uuid));
    QCOMPARE(jobNumber(held).createdMilliseconds, before.createdMilliseconds);
    QTRY_COMPARE(m_events.size(), 1);
    QVERIFY(waitForState(held + 1, State::Printed));
    // It is told of changes again.
    output(QStringLiteral("cancel"), {QStringLiteral("BrackenXL-%1").arg(held)});
    QVERIFY(waitForState(held, State::Cancelled));
}

void CupsTransportTest::orderOfADeadDaemonIsFoundInASchedulerThatHung()
{
    m_settings.patienceMilliseconds = 150;
    m_settings.settleMilliseconds = 100;
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    QVERIFY(control("pause"));
    TransportOrder order;
    order.guid = newGuid();
    // Much to be read from a socket, and not so much that it does not fit there.
    order.documentPath = document(QByteArray(100000, 'x'));
    submit(order);
    // What this daemon has sent is in the scheduler's socket when the daemon is gone.
    QTest::qWait(50);
    m_transport->stop();
    m_thread->quit();
    m_thread->wait();
    m_transport.reset();
    m_thread.reset();
    m_lists = 0;
    startTransport();
    submit(order);
    QTRY_VERIFY(m_failures > 0);
    QVERIFY(control("resume"));
    QTRY_COMPARE(m_events.size(), 1);
    const int next = print("text\n");
    QVERIFY(waitForState(next, State::Printed));
    QCOMPARE(timesSeen(order.guid), 1);
    QCOMPARE(jobNumber(next - 1).guid, order.guid);
}

void CupsTransportTest::ordersAreCarriedOutOnceWhileTheSchedulerIsKilled()
{
    m_settings.retryMilliseconds = 20;
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    TransportOrder order;
    order.documentPath = document("text\n");
    QStringList guids;
    for (int kill = 0; kill < 3; ++kill) {
        for (int index = 0; index < 4; ++index) {
            order.guid = newGuid();
            guids += order.guid;
            submit(order);
        }
        QTest::qWait(kill * 10);
        QVERIFY(control("kill"));
        QVERIFY(control("start"));
    }
    QTRY_COMPARE_WITH_TIMEOUT(m_events.size(), guids.size(), 20000);
    stopTransport();
    m_jobs.clear();
    m_lists = 0;
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    for (const QString &guid : qAsConst(guids)) {
        // What the scheduler lost after it took it may have been printed, and is not given again.
        const bool isLost = m_events.contains(
            QStringLiteral("failed %1 the scheduler may have taken it, and lost it").arg(guid));
        QCOMPARE(timesSeen(guid), isLost ? 0 : 1);
        QCOMPARE(m_events.filter(guid).size(), 1);
        // One that it noted, and then was killed before it noted more, has failed, whether it was printed or
        // not.
        QTRY_VERIFY(isLost || stateOf(guid) == State::Printed || stateOf(guid) == State::Failed);
    }
}

void CupsTransportTest::numbersGivenOutAgainAreOtherJobs()
{
    startTransport();
    QTRY_COMPARE(m_lists, 1);
    const int number = print("first\n", {QStringLiteral("-H"), QStringLiteral("hold")});
    QVERIFY(waitForState(number, State::Held));
    const TransportJob lost = jobNumber(number);
    QVERIFY(control("kill"));
    const QDir printing(variable("ZBVIRTUALDEVICE_DIRECTORY") + QStringLiteral("/printing"));
    QVERIFY(QFile::remove(printing.filePath(QStringLiteral("cache/job.cache"))));
    const QString kept = QStringLiteral("c%1").arg(number - 1, 5, 10, QLatin1Char('0'));
    const QDir spool(printing.filePath(QStringLiteral("spool")));
    const QStringList files = spool.entryList({QStringLiteral("c*"), QStringLiteral("d*")}, QDir::Files);
    for (const QString &file : files)
        QVERIFY(file == kept || QFile::remove(spool.filePath(file)));
    m_jobs.clear();
    QVERIFY(control("start"));
    QTRY_COMPARE(m_lists, 2);
    QVERIFY(!m_listed.contains(lost.uuid));
    const int again = print("second\n", {QStringLiteral("-H"), QStringLiteral("hold")});
    QCOMPARE(again, number);
    QVERIFY(waitForState(again, State::Held));
    const TransportJob other = jobNumber(again);
    QVERIFY(other.uuid != lost.uuid);
    // What is meant for the lost job does not reach the other.
    forget(lost);
    keep(lost, folder() + QStringLiteral("/lost"));
    QTRY_COMPARE(m_events.size(), 2);
    QVERIFY(m_events.contains(QStringLiteral("forgotten ") + lost.uuid));
    QVERIFY(!QFileInfo::exists(folder() + QStringLiteral("/lost")));
    output(QStringLiteral("cancel"), {QStringLiteral("BrackenXL-%1").arg(again)});
    QVERIFY(waitForState(again, State::Cancelled));
}

void CupsTransportTest::notificationsOfOthersAreNotBelieved()
{
    CupsNotifications notifications;
    const QString path = folder() + QStringLiteral("/mine");
    QVERIFY(notifications.listen(path));
    QSignalSpy received(&notifications, &CupsNotifications::received);
    const int sender = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const auto send = [&](const QByteArray &text) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        const QByteArray name = path.toLocal8Bit();
        std::copy(name.cbegin(), name.cend(), &address.sun_path[0]);
        return sendto(sender, text.constData(), size_t(text.size()), 0,
                      reinterpret_cast<const sockaddr *>(&address), sizeof address)
            == text.size();
    };
    QVERIFY(send("1 1 1 guess") && send(QByteArray(1000, '1')) && send("")
            && send("1 2 3 " + notifications.token().toBase64()));
    ::close(sender);
    QTRY_COMPARE(received.size(), 1);
    QVERIFY(!CupsNotifications().listen(folder() + QString(200, QLatin1Char('x'))));
    QVERIFY(!CupsNotifications().listen(folder() + QStringLiteral("/no/folder")));
}

QTEST_GUILESS_MAIN(CupsTransportTest)
#include "tst_cupstransport.moc"
