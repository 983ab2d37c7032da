// Makes calls, sorts errors and checks the types of answers.
#include "jobdaemon.h"

#include "jobwire.h"

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusError>

#include <limits>

namespace {

const QString serviceName = QStringLiteral("com.corvanta.printqd");
const QString objectPath = QStringLiteral("/");
const QString interfaceName = QStringLiteral("local.IZBIPCPRINTQD");

// D-Bus's word for "no time-out".
constexpr int endlessMilliseconds = std::numeric_limits<int>::max();

QDBusMessage callOf(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(serviceName, objectPath, interfaceName, method);
    message.setArguments(arguments);
    return message;
}

QDBusMessage changedJobsCall(const QString &epoch, quint64 revision)
{
    return callOf(QStringLiteral("getChangedJobs"), {epoch, QVariant::fromValue(revision)});
}

QDBusPendingCall ask(QDBusMessage message)
{
    message.setAutoStartService(false);
    return QDBusConnection::systemBus().asyncCall(message, endlessMilliseconds);
}

QDBusMessage answerTo(const QDBusMessage &message)
{
    return QDBusConnection::systemBus().call(message, QDBus::Block, JobDaemon::patienceMilliseconds);
}

/// Whether it is an answer, of \a signature. A reply whose types differ is read in no part.
CallOutcome outcomeOf(const QDBusMessage &reply, QLatin1String signature)
{
    if (reply.type() == QDBusMessage::ReplyMessage)
        return reply.signature() == signature ? CallOutcome::Answered : CallOutcome::Failed;

    const QString error = reply.errorName();
    if (error == QLatin1String("org.freedesktop.DBus.Error.UnknownMethod"))
        return CallOutcome::UnknownMethod;
    // What the bus and the libraries say stands under this name, but for these two that daemons use
    // themselves.
    const bool isOfDaemon = !error.startsWith(QLatin1String("org.freedesktop.DBus."))
        || error == QLatin1String("org.freedesktop.DBus.Error.InvalidArgs")
        || error == QLatin1String("org.freedesktop.DBus.Error.Failed");
    const bool isOfQt = error.startsWith(QLatin1String("org.qtproject."));
    return isOfDaemon && !isOfQt ? CallOutcome::RefusedForThisJob : CallOutcome::Failed;
}

} // namespace

CallOutcome JobDaemon::changedJobs(const QString &knownEpoch, quint64 knownRevision, JobChanges *changes)
{
    return readChangedJobs(answerTo(changedJobsCall(knownEpoch, knownRevision)), changes);
}

CallOutcome JobDaemon::jobInfo(const QString &guid, PrintJobMetaData *job)
{
    const QDBusMessage reply = answerTo(callOf(QStringLiteral("getJobInfo"), {guid}));
    const CallOutcome outcome = outcomeOf(reply, QLatin1String("(ssssiiiiiiiiissdssdssds)"));
    if (outcome == CallOutcome::Answered)
        reply.arguments().constFirst().value<QDBusArgument>() >> *job;
    return outcome;
}

QDBusPendingCall JobDaemon::askForChangedJobs(const QString &knownEpoch, quint64 knownRevision)
{
    return ask(changedJobsCall(knownEpoch, knownRevision));
}

QDBusPendingCall JobDaemon::askForJobList()
{
    return ask(callOf(QStringLiteral("getJobList"), {}));
}

CallOutcome JobDaemon::readChangedJobs(const QDBusMessage &reply, JobChanges *changes)
{
    const CallOutcome outcome = outcomeOf(reply, QLatin1String("stba(ssssiiiiiiiiissdssdssds)asb"));
    if (outcome != CallOutcome::Answered)
        return outcome;

    const QVariantList arguments = reply.arguments();
    changes->epoch = arguments.at(0).toString();
    changes->revision = arguments.at(1).toULongLong();
    changes->complete = arguments.at(2).toBool();
    const QDBusArgument jobs = arguments.at(3).value<QDBusArgument>();
    jobs.beginArray();
    while (!jobs.atEnd()) {
        changes->jobs.emplace_back();
        jobs >> changes->jobs.back();
    }
    jobs.endArray();
    changes->removed = arguments.at(4).toStringList();
    changes->more = arguments.at(5).toBool();
    return outcome;
}

CallOutcome JobDaemon::readJobList(const QDBusMessage &reply, QStringList *guids)
{
    const CallOutcome outcome = outcomeOf(reply, QLatin1String("as"));
    if (outcome == CallOutcome::Answered)
        *guids = reply.arguments().constFirst().toStringList();
    return outcome;
}

JobDaemonListener::JobDaemonListener(QObject *parent)
    : QObject(parent)
{
    // Both on one object, so that what the bus says about the daemon and what the daemon says keep their
    // order.
    QDBusConnection bus = QDBusConnection::systemBus();
    bus.connect(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameOwnerChanged"), {serviceName},
                QString(), this, SLOT(nameOwnerChanged(QString, QString, QString)));
    bus.connect(serviceName, objectPath, interfaceName, QStringLiteral("jobInfoChanged"), this,
                SLOT(jobInfoChanged(QStringList)));
}

void JobDaemonListener::catchUp()
{
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

void JobDaemonListener::jobInfoChanged(const QStringList &guids)
{
    Q_EMIT jobsChanged(guids);
}

void JobDaemonListener::nameOwnerChanged(const QString &, const QString &oldOwner, const QString &newOwner)
{
    if (!oldOwner.isEmpty())
        Q_EMIT daemonVanished();
    if (!newOwner.isEmpty())
        Q_EMIT daemonAppeared();
}
