// Asks the print queue for its list of jobs, and again where the answer does not come.
#include "printqueueprobe.h"

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingCallWatcher>

namespace {

constexpr int patienceMilliseconds = 2000;
constexpr int pauseMilliseconds = 1000;

bool isAbsence(const QString &error)
{
    const QDBusError::ErrorType absences[] = {QDBusError::ServiceUnknown, QDBusError::Disconnected};
    for (const QDBusError::ErrorType absence : absences) {
        if (error == QDBusError::errorString(absence))
            return true;
    }
    return error == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner")
        || error.startsWith(QLatin1String("org.freedesktop.DBus.Error.Spawn."));
}

/// Nobody says so but the bus: the daemon went without an answer, or the question timed out.
bool isSilence(const QString &error)
{
    return error == QDBusError::errorString(QDBusError::NoReply)
        || error == QDBusError::errorString(QDBusError::TimedOut)
        || error == QDBusError::errorString(QDBusError::Timeout);
}

} // namespace

PrintQueueProbe::PrintQueueProbe(QObject *parent)
    : QObject(parent)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(patienceMilliseconds);
    connect(&m_patience, &QTimer::timeout, this, [this] { setState(Silent); });
    m_pause.setSingleShot(true);
    m_pause.setInterval(pauseMilliseconds);
    connect(&m_pause, &QTimer::timeout, this, &PrintQueueProbe::send);
}

PrintQueueProbe::State PrintQueueProbe::state() const
{
    return m_state;
}

int PrintQueueProbe::jobCount() const
{
    return m_jobCount;
}

int PrintQueueProbe::patience() const
{
    return m_patience.interval();
}

void PrintQueueProbe::setPatience(int milliseconds)
{
    m_patience.setInterval(milliseconds);
}

void PrintQueueProbe::ask()
{
    if (isAsking())
        return;
    m_patience.start();
    setState(Asking);
    send();
}

bool PrintQueueProbe::isAsking() const
{
    return m_state == Asking || m_state == Silent;
}

void PrintQueueProbe::send()
{
    const QDBusMessage question =
        QDBusMessage::createMethodCall(QStringLiteral("com.corvanta.printqd"), QStringLiteral("/"),
                                       QStringLiteral("local.IZBIPCPRINTQD"), QStringLiteral("getJobList"));
    auto *const call = new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(question), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
        answered(call->reply());
        call->deleteLater();
    });
}

void PrintQueueProbe::answered(const QDBusMessage &reply)
{
    if (isSilence(reply.errorName())) {
        m_pause.start();
        return;
    }
    m_patience.stop();
    const bool isList =
        reply.type() == QDBusMessage::ReplyMessage && reply.signature() == QLatin1String("as");
    m_jobCount = isList ? reply.arguments().at(0).toStringList().size() : 0;
    setState(isList ? Answering : isAbsence(reply.errorName()) ? Absent : Failing);
}

void PrintQueueProbe::setState(State state)
{
    if (state == m_state)
        return;
    m_state = state;
    Q_EMIT stateChanged();
}
