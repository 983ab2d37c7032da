// Asks the clock service and listens to it.
#include "networktime.h"

#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusVariant>

namespace {

constexpr int answerMilliseconds = 5000;

const QString &service()
{
    static const QString name = QStringLiteral("org.freedesktop.timedate1");
    return name;
}

const QString &path()
{
    static const QString name = QStringLiteral("/org/freedesktop/timedate1");
    return name;
}

const QString &propertiesInterface()
{
    static const QString name = QStringLiteral("org.freedesktop.DBus.Properties");
    return name;
}

} // namespace

NetworkTime::NetworkTime(QObject *parent)
    : QObject(parent)
    , m_bus(QDBusConnection::systemBus())
    , m_serviceWatcher(service(), m_bus, QDBusServiceWatcher::WatchForRegistration)
{
    connect(&m_serviceWatcher, &QDBusServiceWatcher::serviceRegistered, this, &NetworkTime::refresh);
    m_bus.connect(service(), path(), propertiesInterface(), QStringLiteral("PropertiesChanged"), this,
                  SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
    refresh();
}

NetworkTime::State NetworkTime::state() const
{
    return State(m_state);
}

void NetworkTime::refresh()
{
    if (m_state == NetworkTimeState::Unknown)
        setState(NetworkTimeState::Asking);
    QDBusMessage question =
        QDBusMessage::createMethodCall(service(), path(), propertiesInterface(), QStringLiteral("Get"));
    question.setArguments({service(), QStringLiteral("NTP")});
    auto *const call = new QDBusPendingCallWatcher(m_bus.asyncCall(question, answerMilliseconds), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
        answered(call->reply());
        call->deleteLater();
    });
}

void NetworkTime::propertiesChanged(const QString &interfaceName, const QVariantMap &changed,
                                    const QStringList &invalidated)
{
    if (interfaceName != service())
        return;
    setState(networkTimeStateAfter(m_state, changed, invalidated));
    if (m_state == NetworkTimeState::Asking)
        refresh();
}

void NetworkTime::answered(const QDBusMessage &reply)
{
    const QVariant value = reply.arguments().value(0);
    setState(reply.type() == QDBusMessage::ReplyMessage
                 ? networkTimeState(value.value<QDBusVariant>().variant())
                 : NetworkTimeState::Unknown);
}

void NetworkTime::setState(NetworkTimeState state)
{
    if (state == m_state)
        return;
    m_state = state;
    Q_EMIT stateChanged();
}
