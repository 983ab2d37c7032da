// Asks the bus who owns a name and listens to it.
#include "servicepresence.h"

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>

ServicePresence::ServicePresence(QObject *parent)
    : QObject(parent)
    , m_bus(QDBusConnection::systemBus())
{
    m_watcher.setConnection(m_bus);
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                setState(owner.isEmpty() ? Absent : Present);
            });
}

QString ServicePresence::service() const
{
    return m_service;
}

void ServicePresence::setService(const QString &service)
{
    if (service == m_service)
        return;
    m_service = service;
    m_watcher.setWatchedServices({service});
    setState(Unknown);
    ask();
    Q_EMIT serviceChanged();
}

ServicePresence::State ServicePresence::state() const
{
    return m_state;
}

void ServicePresence::ask()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    question << m_service;
    auto *const call = new QDBusPendingCallWatcher(m_bus.asyncCall(question), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, asked = m_service] {
        const QDBusPendingReply<bool> reply = *call;
        call->deleteLater();
        // What the watcher said meanwhile is newer.
        if (asked == m_service && m_state == Unknown)
            setState(reply.isValid() && reply.value() ? Present : Absent);
    });
}

void ServicePresence::setState(State state)
{
    if (state == m_state)
        return;
    m_state = state;
    Q_EMIT stateChanged();
}
