// The print queue daemon as a client sees it: its calls, and its answers in types of ours.
#pragma once

#include "jobrecords.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>

#include <functional>
#include <optional>

/// How a call went.
enum class CallOutcome {
    Answered,
    UnknownMethod,
    RefusedForThisJob, ///< the daemon itself said no; another job may do better
    Failed, ///< no answer, or one that is no answer to this question
};

namespace JobDaemon {

/// How long a call waits for its answer. The daemon needs some hundredths of a second for the longest; a
/// fetch that has waited for this long in vain does not call again.
constexpr int patienceMilliseconds = 2000;

CallOutcome changedJobs(const QString &knownEpoch, quint64 knownRevision, JobChanges *changes);
CallOutcome jobInfo(const QString &guid, PrintJobMetaData *job);

// The same without waiting. They have no time-out, since nobody waits: they end when the daemon does. They do
// not start a daemon.
QDBusPendingCall askForChangedJobs(const QString &knownEpoch, quint64 knownRevision);
QDBusPendingCall askForJobList();
CallOutcome readChangedJobs(const QDBusMessage &reply, JobChanges *changes);
CallOutcome readJobList(const QDBusMessage &reply, QStringList *guids);

} // namespace JobDaemon

/// Hears what the daemon and the bus say about it, without asking for anything: it blocks on no daemon.
class JobDaemonListener : public QObject
{
    Q_OBJECT

public:
    explicit JobDaemonListener(QObject *parent);

    /// Reports at once what has arrived and waits for the event loop.
    void catchUp();

Q_SIGNALS:
    void jobsChanged(const QStringList &guids);
    void daemonAppeared();
    void daemonVanished();

private Q_SLOTS:
    void jobInfoChanged(const QStringList &guids);
    void nameOwnerChanged(const QString &name, const QString &oldOwner, const QString &newOwner);
};
