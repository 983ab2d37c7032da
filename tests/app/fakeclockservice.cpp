// A clock service whose state of network time the test decides.
#include "fakeclockservice.h"

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>

namespace {

const char *const service = "org.freedesktop.timedate1";
const char *const path = "/org/freedesktop/timedate1";
const char *const connectionName = "clock service of the test";

} // namespace

FakeClockService::FakeClockService(const QVariant &ntp)
    : m_connection(QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS"),
                                                 QLatin1String(connectionName)))
    , m_ntp(ntp)
{
    if (!m_connection.registerVirtualObject(QLatin1String(path), this)
        || !m_connection.registerService(QLatin1String(service)))
        qFatal("The clock service of the test cannot be put on the bus.");
}

FakeClockService::~FakeClockService()
{
    m_connection.unregisterService(QLatin1String(service));
    QDBusConnection::disconnectFromBus(QLatin1String(connectionName));
}

void FakeClockService::setNetworkTime(bool on)
{
    m_ntp = on;
    tell(QLatin1String(service), {{QStringLiteral("NTP"), on}}, {});
}

void FakeClockService::invalidate(bool on)
{
    m_ntp = on;
    tell(QLatin1String(service), {}, {QStringLiteral("NTP")});
}

void FakeClockService::tellOfOthers()
{
    tell(QLatin1String(service), {{QStringLiteral("LocalRTC"), true}}, {QStringLiteral("Timezone")});
    tell(QStringLiteral("com.example.Other"), {{QStringLiteral("NTP"), !m_ntp.toBool()}}, {});
}

void FakeClockService::setSilent(bool silent)
{
    m_silent = silent;
}

int FakeClockService::questions() const
{
    return m_questions;
}

QString FakeClockService::introspect(const QString &) const
{
    return QString();
}

bool FakeClockService::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    ++m_questions;
    if (m_silent)
        return true;
    return connection.send(m_ntp.isValid() ? message.createReply(QVariant::fromValue(QDBusVariant(m_ntp)))
                                           : message.createErrorReply(QStringLiteral("com.example.Error"),
                                                                      QStringLiteral("on purpose")));
}

void FakeClockService::tell(const QString &interfaceName, const QVariantMap &changed,
                            const QStringList &invalidated)
{
    QDBusMessage signal =
        QDBusMessage::createSignal(QLatin1String(path), QStringLiteral("org.freedesktop.DBus.Properties"),
                                   QStringLiteral("PropertiesChanged"));
    signal.setArguments({interfaceName, changed, invalidated});
    m_connection.send(signal);
}
