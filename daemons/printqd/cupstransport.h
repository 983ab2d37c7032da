// Follows the jobs of one queue of a CUPS scheduler and submits documents to it.
#pragma once

#include "cupsconnection.h"
#include "cupsjobs.h"
#include "cupsnotifications.h"
#include "printtransport.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QElapsedTimer>
#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <atomic>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <vector>

/**
 * What a job is, its uuid says: numbers are given out again by a scheduler that lost its state. So each
 * connection begins with a look at all jobs, in pages, and nothing is done to a number on another connection
 * than the one on which the number was seen.
 *
 * Changes are told by the scheduler where it has our notifier (see notifier/); then it is looked every
 * heartbeatMilliseconds whether something was missed. Until the first such event, and where there is no
 * notifier, it is looked every Settings::pollMilliseconds. A look asks for the states of the unfinished jobs
 * and for new ones; only what changed is asked for whole. Where numbers of events are missing, all jobs are
 * looked at again.
 *
 * An order is two requests: Create-Job with the order's token, and Send-Document. By the first the scheduler
 * has noted the job before it can print it, so that one that was killed says how far it came: without a
 * document it has printed nothing, and the document is sent; with one it is not sent again. By a single
 * Print-Job a killed scheduler begins to print jobs that it does not know afterwards, and they are printed
 * twice. Where an answer is missing, all jobs are looked at for the token before anything is sent again. A
 * scheduler that hung may still find the first request in its socket after that; so for
 * Settings::settleMilliseconds after it answers again no order is given, and then all jobs are looked at once
 * more. What it lost altogether after the document was sent is not given again either.
 *
 * A scheduler that is killed after it noted the first request, and not the second one, holds the job for
 * ever. So it does with those of all clients. They count as failed, whether they were printed or not (see
 * CupsJob::isAbandoned).
 *
 * TransportJob::createdMilliseconds is best at the first sight of a job: who comes later, after a restart, is
 * told whole seconds, and the order within them.
 */
class CupsTransport : public PrintTransport
{
    Q_OBJECT

public:
    struct Settings
    {
        QString printer = QStringLiteral("ipp://localhost/printers/BrackenXL");
        /// Path of the socket at which the notifier reaches the daemon. Empty: it is looked at intervals.
        QString notificationSocket;
        /// A document with more bytes is not kept.
        qint64 largestDocument = qint64(64) * 1024 * 1024;
        /// For the next byte of an answer.
        int patienceMilliseconds = CupsConnection::requestMilliseconds;
        /// After the scheduler was not reached, at most: at first it is tried again much sooner.
        int retryMilliseconds = 1000;
        /// Between two looks where nobody tells of changes.
        int pollMilliseconds = 700;
        /// After the disk did not take a document; twice as long each time, up to longestRestMilliseconds.
        int restMilliseconds = 1000;
        /// After a scheduler that hung answers again.
        int settleMilliseconds = 500;
    };

    /// A document is tried so often, which takes a day.
    static constexpr int mostTries = 300;
    static constexpr int longestRestMilliseconds = 300000;
    static constexpr int heartbeatMilliseconds = 5000;

    explicit CupsTransport(const Settings &settings, QObject *parent = nullptr);
    ~CupsTransport() override;

public Q_SLOTS:
    void start() override;
    /// Orders are carried out in the order in which they come.
    void submit(const TransportOrder &order) override;
    /// Waits for a document that has not arrived yet, and for a disk that is full or fails, though not for
    /// ever. Of a job with several documents none is kept.
    void keepDocument(const QString &uuid, int number, const QString &path) override;
    /// A job that the scheduler does not know counts as forgotten, and so does one that is being printed
    /// again. Where the scheduler refuses, that is logged, and nothing is told.
    void forget(const QString &uuid, int number) override;
    /// The only one that may be called from any thread, and then ends a request that is under way at once; so
    /// does QThread::requestInterruption(). As a queued call it is reached after the present request.
    void stop() override;

private:
    struct Keeping
    {
        QString uuid;
        int number;
        QString path;
        int tries = 0;
    };
    struct Forgetting
    {
        QString uuid;
        int number;
    };
    /// What became of a piece of work: it is done, refused for good, to be tried again, the disk did not take
    /// it, or the scheduler was not reached.
    enum class Outcome { Done, Refused, Waits, NoRoom, Unreached };

    void beginSoon();
    void work();
    bool workOnConnection();
    void workAgainIn(int milliseconds);
    void watchConnection();
    bool isConnected() const { return m_connection.descriptor() >= 0; }
    int lookMilliseconds() const;
    int restingMilliseconds() const;
    void setReachable(bool isReachable);
    void settle(bool isNewConnection);

    bool subscribe();
    bool cancelOldSubscriptions();
    void note(const CupsEvent &event);
    void takeEvents();
    void endSubscription();

    bool look();
    bool lookAtAll();
    bool lookForChanges();
    bool addChangedStates(std::set<int> *numbers);
    bool lookAtNewest();
    bool lookAt(const std::set<int> &numbers);
    bool lookAtRange(int first, int count, QVector<CupsJob> *jobs);
    Outcome lookAtOne(int number, QVector<CupsJob> *jobs);
    void tell(const QVector<CupsJob> &jobs, QMap<int, CupsJob> *known);
    void noteOrder(CupsJob *job);
    void watch(const CupsJob &job);
    const CupsJob *jobWith(int number, const QString &uuid) const;
    void forgetNumber(int number);

    bool carryOutOrders();
    Outcome carryOut(const TransportOrder &order);
    Outcome create(const TransportOrder &order, int *number);
    Outcome sendDocument(const TransportOrder &order, int number);
    Outcome refuse(const TransportOrder &order, const QString &reason);
    bool addOptionsOf(const QString &uuid, ipp_t *request);
    Outcome confirm(const TransportOrder &order, int number);

    bool keepDocuments();
    Outcome keep(Keeping *keeping);
    void rest(const QString &reason);
    bool forgetJobs();
    Outcome purge(int number);

    const Settings m_settings;
    CupsConnection m_connection;
    std::unique_ptr<CupsNotifications> m_notifications;
    std::unique_ptr<QSocketNotifier> m_end; ///< of the connection
    QTimer m_timer;
    QElapsedTimer m_sinceLook;
    QElapsedTimer m_sinceSubscription;
    QMap<int, CupsJob> m_jobs;
    QHash<QString, int> m_numbersByGuid;
    std::set<int> m_changed;
    std::set<int> m_printing;
    std::set<int> m_incoming; ///< jobs whose documents have not arrived
    std::deque<TransportOrder> m_orders;
    QString m_sent; ///< token of the first order, where the scheduler may have its document
    std::vector<Keeping> m_keepings;
    QDeadlineTimer m_rest; ///< of the disk
    int m_restMilliseconds = 0;
    std::optional<QDeadlineTimer> m_settling;
    int m_failures = 0; ///< to reach the scheduler, in a row
    std::deque<Forgetting> m_forgettings;
    qint64 m_lookDuration = 0;
    qint64 m_previousCreation = 0;
    int m_generation = 0;
    int m_subscription = 0;
    int m_subscriptionGeneration = 0;
    int m_expectedSequence = 0;
    bool m_isStarted = false;
    bool m_isReachable = false;
    bool m_wasReachabilityTold = false;
    bool m_hasToLookAtAll = true;
    /// The present connection is new, and nothing was looked at on it yet.
    bool m_isUnsettled = false;
    /// There is more to do, which does not wait for the next look.
    bool m_isInAHurry = false;
    /// Events of this subscription arrive, and none was missed since.
    bool m_isPushed = false;
    std::atomic<bool> m_isStopped{false};
};
