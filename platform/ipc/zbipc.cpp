// ZBIPC: fetches of records, and the notices of changes.
#include "zbipc.h"

#include "zbipc_p.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>

#include <utility>

namespace {

/// Of the jobs that changed at once, so many are told to somebody who reads all jobs each time. Reading
/// thousands of jobs thousands of times would keep a program busy for minutes, and tell it nothing new.
constexpr int mostToldToAReaderOfAll = 50;

/// A turn in which nothing is read takes less, unless it waits.
constexpr int longTurnMilliseconds = 200;

} // namespace

ZBIPC::ZBIPC(QObject *parent)
    : QObject(parent)
    , d(new Private(this))
{
}

ZBIPC::~ZBIPC()
{
    delete d;
}

PrintJobMetaData ZBIPC::getJobInfo(QString guid) const
{
    return d->jobInfo(guid);
}

ZBIPC::Private::Private(ZBIPC *ipc)
    : q(ipc)
    , listener(ipc)
    , bounds(ipc)
    , looking(ipc, [this] { look(); })
    , telling(ipc, [this] { tellNext(); })
{
    connect(&listener, &JobDaemonListener::jobsChanged, q,
            [this](const QStringList &guids) { jobsChanged(guids); });
    connect(&listener, &JobDaemonListener::daemonAppeared, q, [this] { daemonAppeared(); });
    connect(&listener, &JobDaemonListener::daemonVanished, q, [this] { daemonVanished(); });
}

PrintJobMetaData ZBIPC::Private::jobInfo(const QString &guid)
{
    ++reads;
    // What the daemon said before it answered whatever led to this question: without an event loop, nothing
    // else tells that a new fetch has begun.
    listener.catchUp();
    if (!bounds.goesOnWith(guid)) {
        // News that arrives meanwhile ends it again.
        bounds.beginWith(guid);
        readInFetch = 0;
        fetch();
    }
    if (hasFetchFailed)
        return {};
    if (daemonKnowsSingleJobsOnly)
        return singleJob(guid);
    notices.noteRead(guid);
    const auto job = records.jobs.constFind(guid);
    if (job == records.jobs.constEnd())
        return {};
    if (++readInFetch == records.jobs.size())
        notices.keepNext(mostToldToAReaderOfAll);
    return *job;
}

void ZBIPC::Private::fetch()
{
    hasFetchFailed = false;
    if (daemonKnowsSingleJobsOnly)
        return;

    JobUpdate update(std::exchange(records, JobRecords()));
    JobUpdate::Step step = JobUpdate::Step::AskAgain;
    while (step == JobUpdate::Step::AskAgain) {
        JobChanges changes;
        const CallOutcome outcome = JobDaemon::changedJobs(update.epoch(), update.revision(), &changes);
        if (outcome == CallOutcome::UnknownMethod) {
            records = update.takeBlank();
            daemonKnowsSingleJobsOnly = true;
            return;
        }
        step = outcome == CallOutcome::Answered ? update.take(std::move(changes)) : JobUpdate::Step::Failed;
    }
    if (step == JobUpdate::Step::Failed) {
        records = update.takeBlank();
        fail();
        return;
    }
    const bool wasBehind = isBehind;
    endLook();
    mayLookAfterFailure = true;
    // Also what arrived while this waited: that the daemon is a new one may have been told only shortly
    // before.
    listener.catchUp();
    if (wasBehind || isBehind)
        note(update.changed());
    records = update.takeRecords();
}

PrintJobMetaData ZBIPC::Private::singleJob(const QString &guid)
{
    PrintJobMetaData job;
    const CallOutcome outcome = JobDaemon::jobInfo(guid, &job);
    if (outcome != CallOutcome::Answered && outcome != CallOutcome::RefusedForThisJob) {
        fail();
        return {};
    }
    if (outcome == CallOutcome::Answered)
        records.jobs.insert(guid, PrintJobMetaData());
    else
        records.jobs.remove(guid);
    notices.noteRead(guid);
    return job;
}

void ZBIPC::Private::fail()
{
    hasFetchFailed = true;
    isBehind = true;
    if (std::exchange(mayLookAfterFailure, false)) {
        isTellingHeld = true;
        looking.post(Qt::NormalEventPriority);
    }
}

bool ZBIPC::Private::isListenedTo() const
{
    static const QMetaMethod signal = QMetaMethod::fromSignal(&ZBIPC::PrintJobInfoChanged);
    return q->isSignalConnected(signal);
}

void ZBIPC::Private::forget()
{
    bounds.forget();
    endLook();
    records = JobRecords();
    notices = PendingNotices();
}

void ZBIPC::Private::daemonAppeared()
{
    bounds.end();
    daemonKnowsSingleJobsOnly = false;
    mayLookAfterFailure = true;
    endLook();
    isBehind = true;
    looking.post(Qt::NormalEventPriority);
}

void ZBIPC::Private::daemonVanished()
{
    // Nobody is told: there is nothing to be read. The records stay, to be compared when it is back.
    bounds.end();
    lookUpdate.reset();
    lookCall.reset();
    goOnTelling();
}

void ZBIPC::Private::jobsChanged(const QStringList &guids)
{
    bounds.end();
    for (const QString &guid : guids)
        notices.add(guid);
    // A daemon that speaks may have lost the question that all notices wait for.
    if (isTellingHeld && lookCall && sinceQuestion.elapsed() > JobDaemon::patienceMilliseconds)
        look();
    if (!notices.isEmpty())
        telling.post(Qt::LowEventPriority);
}

void ZBIPC::Private::look()
{
    if (!isBehind)
        return;
    if (!isListenedTo()) {
        forget();
        return;
    }
    if (daemonKnowsSingleJobsOnly) {
        waitFor(JobDaemon::askForJobList(), &Private::jobListCame);
        return;
    }
    lookUpdate.emplace(JobRecords(records));
    waitFor(JobDaemon::askForChangedJobs(lookUpdate->epoch(), lookUpdate->revision()), &Private::changesCame);
}

void ZBIPC::Private::waitFor(const QDBusPendingCall &call, void (Private::*answered)(const QDBusMessage &))
{
    sinceQuestion.start();
    lookCall = std::make_unique<QDBusPendingCallWatcher>(call, q);
    connect(lookCall.get(), &QDBusPendingCallWatcher::finished, q,
            [this, answered](QDBusPendingCallWatcher *watcher) {
                lookCall.release()->deleteLater();
                (this->*answered)(watcher->reply());
            });
}

void ZBIPC::Private::changesCame(const QDBusMessage &reply)
{
    JobChanges changes;
    const CallOutcome outcome = JobDaemon::readChangedJobs(reply, &changes);
    if (outcome == CallOutcome::UnknownMethod) {
        lookUpdate.reset();
        records.blank();
        daemonKnowsSingleJobsOnly = true;
        look();
        return;
    }
    const JobUpdate::Step step =
        outcome == CallOutcome::Answered ? lookUpdate->take(std::move(changes)) : JobUpdate::Step::Failed;
    if (step == JobUpdate::Step::AskAgain) {
        waitFor(JobDaemon::askForChangedJobs(lookUpdate->epoch(), lookUpdate->revision()),
                &Private::changesCame);
    } else if (step == JobUpdate::Step::Failed) {
        // Still behind: the next fetch that succeeds finds out what changed.
        lookUpdate.reset();
        goOnTelling();
    } else {
        const JobRecords now = lookUpdate->takeRecords();
        endLook();
        note(differingJobs(records, now));
    }
}

void ZBIPC::Private::jobListCame(const QDBusMessage &reply)
{
    QStringList guids;
    if (JobDaemon::readJobList(reply, &guids) != CallOutcome::Answered) {
        goOnTelling();
        return;
    }
    endLook();
    // What changed of them, such a daemon does not say.
    note(guids);
    note(records.jobs.keys());
}

void ZBIPC::Private::endLook()
{
    isBehind = false;
    lookUpdate.reset();
    lookCall.reset();
    goOnTelling();
}

void ZBIPC::Private::goOnTelling()
{
    isTellingHeld = false;
    if (!notices.isEmpty())
        telling.post(Qt::LowEventPriority);
}

void ZBIPC::Private::note(const QStringList &guids)
{
    for (const QString &guid : guids)
        notices.addUnlessRead(guid);
    if (!notices.isEmpty())
        telling.post(Qt::LowEventPriority);
}

void ZBIPC::Private::tellNext()
{
    if (notices.isEmpty() || isTellingHeld)
        return;
    if (!isListenedTo()) {
        forget();
        return;
    }
    const QString guid = notices.takeNext();
    // The next one in another turn, behind all other events, so that the program lives in between.
    if (!notices.isEmpty())
        telling.post(Qt::LowEventPriority);
    const QPointer<ZBIPC> isThere(q);
    const quint64 readsBefore = reads;
    QElapsedTimer turn;
    turn.start();
    Q_EMIT q->PrintJobInfoChanged(guid);
    if (!isThere)
        return;
    if (reads != readsBefore && !hasFetchFailed) {
        toldAgain.clear();
    } else if (turn.elapsed() >= longTurnMilliseconds) {
        // Whoever was told waited, as like as not for a daemon that does not answer, and would wait as long
        // for each of the others. So they are told when it has answered a look, which waits for nothing.
        if (!toldAgain.contains(guid)) {
            toldAgain.insert(guid);
            notices.addUnlessRead(guid);
        }
        isTellingHeld = true;
        isBehind = true;
        look();
    }
}
