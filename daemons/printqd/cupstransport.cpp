// The course of the work, and the jobs as they are looked at. Orders and documents: cupsorders.cpp.
#include "cupstransport.h"

#include <QtCore/QDateTime>
#include <QtCore/QLoggingCategory>
#include <QtCore/QThread>

#include <utility>

namespace {

/// The scheduler gives no more jobs at once, whatever it is asked for.
constexpr int pageSize = 500;
/// Jobs whose numbers lie so near to each other are asked for together.
constexpr int nearNumbers = 16;
/// A subscription ends by itself after so many seconds, should nobody be left to end it.
constexpr int leaseSeconds = 3600;
/// After the scheduler refused a subscription.
constexpr int refusalMilliseconds = 60000;
/// For the last request, at the end.
constexpr int lastPatienceMilliseconds = 300;
/// Events come in groups.
constexpr int groupMilliseconds = 4;
/// How often it is looked whether the document of a new job has arrived, of which there is no event.
constexpr int incomingMilliseconds = 200;
/// The scheduler does one thing at a time: looks are to take a small part of it.
constexpr int restPerLook = 4;
/// So often the pause after the scheduler was not reached doubles: it may just have been started again.
constexpr int retryDoublings = 4;

const char *const events[] = {"job-created", "job-completed", "job-stopped", "job-state-changed",
                              "job-config-changed"};

} // namespace

CupsTransport::CupsTransport(const Settings &settings, QObject *parent)
    : PrintTransport(parent)
    , m_settings(settings)
    , m_connection(CupsQueue(settings.printer))
    , m_timer(this)
{
    m_connection.setPatience(settings.patienceMilliseconds);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &CupsTransport::work);
    qRegisterMetaType<QVector<TransportJob>>();
}

CupsTransport::~CupsTransport() = default;

void CupsTransport::start()
{
    if (m_isStarted || m_isStopped)
        return;
    m_isStarted = true;
    if (!m_connection.queue().isValid)
        qWarning("\"%s\" is no address of a printer; there is no printing", qPrintable(m_settings.printer));
    if (!m_settings.notificationSocket.isEmpty()) {
        m_notifications = std::make_unique<CupsNotifications>();
        if (!m_notifications->listen(m_settings.notificationSocket))
            qWarning("No socket at %s; the jobs are looked at every %d ms",
                     qPrintable(m_settings.notificationSocket), m_settings.pollMilliseconds);
        connect(m_notifications.get(), &CupsNotifications::received, this, &CupsTransport::note);
    }
    workAgainIn(0);
}

void CupsTransport::stop()
{
    m_isStopped = true;
    if (QThread::currentThread() != thread()) {
        m_connection.giveUp();
        QMetaObject::invokeMethod(this, &CupsTransport::stop, Qt::QueuedConnection);
        return;
    }
    m_timer.stop();
    m_end.reset();
    endSubscription();
    m_connection.giveUp();
    m_connection.close();
    m_notifications.reset();
}

void CupsTransport::workAgainIn(int milliseconds)
{
    if (m_isStarted && !m_isStopped)
        m_timer.start(milliseconds);
}

// A scheduler that was not reached is not tried for each thing that is asked of it.
void CupsTransport::beginSoon()
{
    m_isInAHurry = true;
    if (m_isReachable && m_timer.isActive())
        workAgainIn(0);
}

// Where a job is being printed, more events are about to come, and none is to be missed for long.
int CupsTransport::lookMilliseconds() const
{
    const int interval =
        m_isPushed && m_printing.empty() ? heartbeatMilliseconds : m_settings.pollMilliseconds;
    return qMax(interval, int(restPerLook * m_lookDuration));
}

int CupsTransport::restingMilliseconds() const
{
    int resting = lookMilliseconds();
    if (!m_orders.empty() || !m_keepings.empty())
        resting = qMin(resting, m_settings.pollMilliseconds);
    if (!m_incoming.empty())
        resting = qMin(resting, incomingMilliseconds);
    if (!m_keepings.empty() && !m_rest.hasExpired())
        resting = qMin(resting, int(m_rest.remainingTime()));
    return m_settling ? qMin(resting, int(m_settling->remainingTime())) : resting;
}

void CupsTransport::setReachable(bool isReachable)
{
    if (m_wasReachabilityTold && isReachable == m_isReachable)
        return;
    m_isReachable = isReachable;
    m_wasReachabilityTold = true;
    Q_EMIT reachableChanged(isReachable);
}

void CupsTransport::work()
{
    if (m_isStopped)
        return;
    m_end.reset();
    const bool isReached = workOnConnection();
    if (m_isStopped)
        return;
    watchConnection();
    if (!isReached && m_connection.isWorthAnotherTry()) {
        workAgainIn(0);
        return;
    }
    setReachable(isReached);
    if (!isReached) {
        workAgainIn(m_settings.retryMilliseconds >> (retryDoublings - m_failures));
        m_failures = qMin(m_failures + 1, retryDoublings);
        return;
    }
    m_failures = 0;
    workAgainIn(m_isInAHurry || m_hasToLookAtAll ? 0 : restingMilliseconds());
}

// Between two looks there is nothing to read but its end.
void CupsTransport::watchConnection()
{
    if (m_connection.descriptor() < 0)
        return;
    m_end = std::make_unique<QSocketNotifier>(m_connection.descriptor(), QSocketNotifier::Read);
    connect(m_end.get(), &QSocketNotifier::activated, this, [this] {
        m_end->setEnabled(false);
        workAgainIn(0);
    });
}

bool CupsTransport::workOnConnection()
{
    m_isInAHurry = false;
    if (!m_connection.open())
        return false;
    const bool isNew = m_connection.generation() != m_generation;
    if (isNew) {
        m_generation = m_connection.generation();
        m_subscription = 0;
        m_hasToLookAtAll = true;
    }
    if (m_settling && m_settling->hasExpired()) {
        m_settling.reset();
        m_hasToLookAtAll = true;
    }
    m_isUnsettled = m_isUnsettled || isNew;
    if (!subscribe() || !look())
        return false;
    settle(std::exchange(m_isUnsettled, false));
    setReachable(true);
    return carryOutOrders() && keepDocuments() && forgetJobs();
}

// Where the daemon was started anew, it may have been one before it whose request the scheduler finds.
void CupsTransport::settle(bool isNewConnection)
{
    if (isNewConnection && m_connection.takeSlowness())
        m_settling = QDeadlineTimer(m_settings.settleMilliseconds);
}

// To the events of all queues: those of jobs that are not being printed are told as events of no queue.
// Before the look, so that nothing happens between the two that nobody tells of.
bool CupsTransport::subscribe()
{
    if (!m_notifications || !m_notifications->isListening())
        return true;
    // Where there is no notifier, one may be installed some day.
    const qint64 validity = m_subscription != 0 ? leaseSeconds * 500 : refusalMilliseconds;
    if (m_subscriptionGeneration == m_generation && m_sinceSubscription.elapsed() < validity)
        return true;
    if (!cancelOldSubscriptions())
        return false;
    m_subscription = 0;
    m_isPushed = false;
    const IppMessage request = m_connection.requestForScheduler(IPP_OP_CREATE_PRINTER_SUBSCRIPTIONS);
    ippAddString(request.get(), IPP_TAG_SUBSCRIPTION, IPP_TAG_URI, "notify-recipient-uri", nullptr,
                 m_notifications->recipient().constData());
    ippAddStrings(request.get(), IPP_TAG_SUBSCRIPTION, IPP_CONST_TAG(IPP_TAG_KEYWORD), "notify-events",
                  sizeof events / sizeof *events, nullptr, events);
    ippAddOctetString(request.get(), IPP_TAG_SUBSCRIPTION, "notify-user-data",
                      m_notifications->token().constData(), m_notifications->token().size());
    ippAddInteger(request.get(), IPP_TAG_SUBSCRIPTION, IPP_TAG_INTEGER, "notify-lease-duration",
                  leaseSeconds);
    const CupsAnswer answer = m_connection.send(request);
    if (!answer)
        return false;
    m_sinceSubscription.start();
    m_subscriptionGeneration = m_generation;
    ipp_attribute_t *const number =
        ippFindAttribute(answer.message.get(), "notify-subscription-id", IPP_TAG_INTEGER);
    if (answer.isGood() && number) {
        m_subscription = ippGetInteger(number, 0);
        m_expectedSequence = 1;
        m_hasToLookAtAll = true;
    }
    return true;
}

// Those of a daemon before this one, whose notifiers would have nobody to tell.
bool CupsTransport::cancelOldSubscriptions()
{
    const IppMessage request = m_connection.requestForScheduler(IPP_OP_GET_SUBSCRIPTIONS);
    const CupsAnswer answer = m_connection.send(request);
    if (!answer)
        return false;
    int number = 0;
    bool isOurs = false;
    std::vector<int> numbers;
    const auto finish = [&] {
        if (number != 0 && isOurs)
            numbers.push_back(number);
        number = 0;
        isOurs = false;
    };
    for (ipp_attribute_t *attribute = ippFirstAttribute(answer.message.get()); attribute;
         attribute = ippNextAttribute(answer.message.get())) {
        const QByteArray name = ippGetName(attribute);
        if (ippGetGroupTag(attribute) != IPP_TAG_SUBSCRIPTION || name.isEmpty())
            finish();
        else if (name == "notify-subscription-id")
            number = ippGetInteger(attribute, 0);
        else if (name == "notify-recipient-uri")
            isOurs = m_notifications->recipient() == ippGetString(attribute, 0, nullptr);
    }
    finish();
    for (const int old : numbers) {
        const IppMessage cancellation = m_connection.requestForScheduler(IPP_OP_CANCEL_SUBSCRIPTION);
        ippAddInteger(cancellation.get(), IPP_TAG_OPERATION, IPP_TAG_INTEGER, "notify-subscription-id", old);
        if (!m_connection.send(cancellation))
            return false;
    }
    return true;
}

void CupsTransport::endSubscription()
{
    if (m_subscription == 0 || !m_isReachable)
        return;
    m_connection.setPatience(lastPatienceMilliseconds);
    const IppMessage request = m_connection.requestForScheduler(IPP_OP_CANCEL_SUBSCRIPTION);
    ippAddInteger(request.get(), IPP_TAG_OPERATION, IPP_TAG_INTEGER, "notify-subscription-id",
                  m_subscription);
    m_connection.send(request);
    m_subscription = 0;
}

void CupsTransport::note(const CupsEvent &event)
{
    if (event.subscription != m_subscription)
        return;
    if (event.sequence != m_expectedSequence)
        m_hasToLookAtAll = true;
    m_expectedSequence = event.sequence + 1;
    m_isPushed = true;
    if (event.job > 0)
        m_changed.insert(event.job);
    // Not anew for each event: many would put it off for long.
    m_isInAHurry = true;
    if (m_timer.remainingTime() > groupMilliseconds)
        workAgainIn(groupMilliseconds);
}

void CupsTransport::takeEvents()
{
    if (m_notifications)
        m_notifications->receive();
}

bool CupsTransport::look()
{
    QElapsedTimer sinceBegin;
    sinceBegin.start();
    if (m_hasToLookAtAll) {
        if (!lookAtAll())
            return false;
        m_sinceLook.start();
        m_lookDuration = sinceBegin.elapsed();
        return true;
    }
    std::set<int> numbers;
    numbers.swap(m_changed);
    const bool isComplete = m_sinceLook.elapsed() >= lookMilliseconds();
    if (isComplete) {
        const size_t told = numbers.size();
        if (!addChangedStates(&numbers) || !lookAtNewest())
            return false;
        // Something happened of which no event told.
        if (numbers.size() > told)
            m_isPushed = false;
        m_sinceLook.start();
    }
    numbers.insert(m_incoming.cbegin(), m_incoming.cend());
    const bool isReached = lookAt(numbers);
    if (isComplete)
        m_lookDuration = sinceBegin.elapsed();
    return isReached;
}

bool CupsTransport::lookAtAll()
{
    QMap<int, CupsJob> found;
    m_numbersByGuid.clear();
    for (int first = 1;;) {
        QVector<CupsJob> page;
        if (!lookAtRange(first, pageSize, &page)) {
            // They were told, and are not to be told again.
            for (const CupsJob &job : qAsConst(found))
                m_jobs.insert(job.job.number, job);
            return false;
        }
        if (page.isEmpty())
            break;
        first = page.last().job.number + 1;
        tell(page, &found);
    }
    m_hasToLookAtAll = false;
    m_jobs.swap(found);
    m_incoming.clear();
    m_printing.clear();
    QStringList uuids;
    for (const CupsJob &job : qAsConst(m_jobs)) {
        watch(job);
        if (!job.isEmptyOrder())
            uuids.append(job.job.uuid);
    }
    Q_EMIT listCompleted(uuids);
    return true;
}

bool CupsTransport::addChangedStates(std::set<int> *numbers)
{
    const IppMessage request = m_connection.request(IPP_OP_GET_JOBS);
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_CONST_TAG(IPP_TAG_KEYWORD), "which-jobs", nullptr,
                 "not-completed");
    CupsJobs::askForStates(request.get());
    const CupsAnswer answer = m_connection.send(request);
    if (!answer.isGood())
        return false;
    std::set<int> unfinished;
    const QVector<CupsJob> jobs = CupsJobs::jobsIn(answer.message.get());
    for (const CupsJob &job : jobs) {
        unfinished.insert(job.job.number);
        const auto known = m_jobs.constFind(job.job.number);
        if (known == m_jobs.cend() || known->state != job.state
            || known->creationSeconds != job.creationSeconds || known->isIncoming())
            numbers->insert(job.job.number);
    }
    for (const CupsJob &job : qAsConst(m_jobs)) {
        if (job.state < IPP_JSTATE_CANCELED && unfinished.count(job.job.number) == 0)
            numbers->insert(job.job.number);
    }
    return true;
}

// Jobs that came and went between two looks.
bool CupsTransport::lookAtNewest()
{
    const int newest = m_jobs.isEmpty() ? 1 : m_jobs.lastKey();
    QVector<CupsJob> jobs;
    if (!lookAtRange(newest, pageSize, &jobs))
        return false;
    if (!m_jobs.isEmpty() && (jobs.isEmpty() || jobs.first().job.uuid != m_jobs.last().job.uuid))
        m_hasToLookAtAll = true;
    else
        tell(jobs, &m_jobs);
    return true;
}

bool CupsTransport::lookAt(const std::set<int> &numbers)
{
    QVector<CupsJob> jobs;
    for (auto first = numbers.cbegin(); first != numbers.cend();) {
        auto last = first;
        auto next = std::next(first);
        while (next != numbers.cend() && *next - *last <= nearNumbers && *next - *first < pageSize)
            last = next++;
        const bool isReached = first == last ? lookAtOne(*first, &jobs) != Outcome::Unreached
                                             : lookAtRange(*first, *last - *first + 1, &jobs);
        if (!isReached)
            return false;
        first = next;
    }
    std::set<int> seen;
    for (const CupsJob &job : qAsConst(jobs))
        seen.insert(job.job.number);
    for (const int number : numbers) {
        if (seen.count(number) == 0 && m_jobs.contains(number))
            m_hasToLookAtAll = true;
    }
    tell(jobs, &m_jobs);
    return true;
}

bool CupsTransport::lookAtRange(int first, int count, QVector<CupsJob> *jobs)
{
    const IppMessage request = m_connection.request(IPP_OP_GET_JOBS);
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_CONST_TAG(IPP_TAG_KEYWORD), "which-jobs", nullptr,
                 "all");
    ippAddInteger(request.get(), IPP_TAG_OPERATION, IPP_TAG_INTEGER, "first-job-id", first);
    ippAddInteger(request.get(), IPP_TAG_OPERATION, IPP_TAG_INTEGER, "limit", count);
    CupsJobs::askForDetails(request.get());
    const CupsAnswer answer = m_connection.send(request);
    if (!answer.isGood())
        return false;
    *jobs += CupsJobs::jobsIn(answer.message.get());
    return true;
}

// Done without a job where the scheduler knows none.
CupsTransport::Outcome CupsTransport::lookAtOne(int number, QVector<CupsJob> *jobs)
{
    const IppMessage request = m_connection.requestForJob(IPP_OP_GET_JOB_ATTRIBUTES, number);
    CupsJobs::askForDetails(request.get());
    const CupsAnswer answer = m_connection.send(request);
    if (!answer)
        return Outcome::Unreached;
    if (!answer.isGood())
        return answer.status() == IPP_STATUS_ERROR_NOT_FOUND ? Outcome::Done : Outcome::Refused;
    *jobs += CupsJobs::jobsIn(answer.message.get());
    return Outcome::Done;
}

// To KNOWN go all; jobsSeen() tells of those that are not as they were.
void CupsTransport::tell(const QVector<CupsJob> &jobs, QMap<int, CupsJob> *known)
{
    QVector<TransportJob> changed;
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    for (CupsJob job : jobs) {
        if (job.job.uuid.isEmpty() || !job.queueUri.endsWith(m_connection.queue().resource))
            continue;
        const auto before = m_jobs.constFind(job.job.number);
        const bool isKnown = before != m_jobs.cend() && before->job.uuid == job.job.uuid;
        if (before != m_jobs.cend() && !isKnown && known == &m_jobs)
            m_hasToLookAtAll = true;
        if (isKnown) {
            job.job.createdMilliseconds = before->job.createdMilliseconds;
            // The scheduler keeps documents for a time, and then counts none.
            job.job.documents = qMax(job.job.documents, before->job.documents);
            job.hadDocument = job.hadDocument || before->hadDocument;
        } else {
            job.job.createdMilliseconds =
                CupsJobs::creationTime(job.creationSeconds, now, m_previousCreation);
            m_previousCreation = job.job.createdMilliseconds;
        }
        noteOrder(&job);
        if (!job.isEmptyOrder() && (!isKnown || before->isEmptyOrder() || before->job != job.job))
            changed.append(job.job);
        watch(job);
        known->insert(job.job.number, job);
    }
    if (!changed.isEmpty())
        Q_EMIT jobsSeen(changed);
}

// Of several jobs with the same token the first is ours, before which it was a secret.
void CupsTransport::noteOrder(CupsJob *job)
{
    if (job->job.guid.isEmpty())
        return;
    const auto first = m_numbersByGuid.constFind(job->job.guid);
    if (first == m_numbersByGuid.cend())
        m_numbersByGuid.insert(job->job.guid, job->job.number);
    else if (*first != job->job.number)
        job->job.guid.clear();
}

void CupsTransport::watch(const CupsJob &job)
{
    const auto keep = [&job](std::set<int> *numbers, bool isOne) {
        if (isOne)
            numbers->insert(job.job.number);
        else
            numbers->erase(job.job.number);
    };
    keep(&m_incoming, job.isIncoming());
    keep(&m_printing, job.state == IPP_JSTATE_PROCESSING);
}

const CupsJob *CupsTransport::jobWith(int number, const QString &uuid) const
{
    const auto job = m_jobs.constFind(number);
    return job != m_jobs.cend() && job->job.uuid == uuid ? &*job : nullptr;
}

void CupsTransport::forgetNumber(int number)
{
    const auto job = m_jobs.find(number);
    if (job == m_jobs.end())
        return;
    if (m_numbersByGuid.value(job->job.guid) == number)
        m_numbersByGuid.remove(job->job.guid);
    m_incoming.erase(number);
    m_printing.erase(number);
    m_jobs.erase(job);
}
