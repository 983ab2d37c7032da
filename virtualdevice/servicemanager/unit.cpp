// State of the unit, and the signal when it changes.
#include "unit.h"

#include <QtDBus/QDBusMessage>

Unit::Unit(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
}

QString Unit::path() const
{
    // The name as systemd escapes it: every byte but letters and digits as _ and two hexadecimal digits.
    return QStringLiteral("/org/freedesktop/systemd1/unit/systemd_2dtimesyncd_2eservice");
}

QString Unit::activeState() const
{
    return m_active ? QStringLiteral("active") : QStringLiteral("inactive");
}

QString Unit::subState() const
{
    return m_active ? QStringLiteral("running") : QStringLiteral("dead");
}

QString Unit::unitFileState() const
{
    return m_enabled ? QStringLiteral("enabled") : QStringLiteral("disabled");
}

void Unit::setActive(bool active)
{
    if (active == m_active)
        return;
    m_active = active;
    announce({{QStringLiteral("ActiveState"), activeState()}, {QStringLiteral("SubState"), subState()}});
}

void Unit::setEnabled(bool enabled)
{
    if (enabled == m_enabled)
        return;
    m_enabled = enabled;
    announce({{QStringLiteral("UnitFileState"), unitFileState()}});
}

void Unit::announce(const QVariantMap &changes) const
{
    QDBusMessage signal = QDBusMessage::createSignal(
        path(), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
    signal << QStringLiteral("org.freedesktop.systemd1.Unit") << changes << QStringList();
    m_bus.send(signal);
}
