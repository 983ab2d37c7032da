// Methods of the service manager.
#include "manager.h"

#include <QtCore/QTimer>
#include <QtDBus/QDBusMessage>

namespace {

QDBusObjectPath pathOfJob(uint id)
{
    return QDBusObjectPath(QStringLiteral("/org/freedesktop/systemd1/job/%1").arg(id));
}

} // namespace

Manager::Manager(const QDBusConnection &bus, Unit *unit, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , m_unit(unit)
{
}

bool Manager::isKnown(const QString &name)
{
    if (name == m_unit->name())
        return true;
    sendErrorReply(QStringLiteral("org.freedesktop.systemd1.NoSuchUnit"),
                   QStringLiteral("Unit %1 not found.").arg(name));
    return false;
}

QDBusObjectPath Manager::LoadUnit(const QString &name)
{
    return isKnown(name) ? QDBusObjectPath(m_unit->path()) : QDBusObjectPath();
}

QDBusObjectPath Manager::GetUnit(const QString &name)
{
    return LoadUnit(name);
}

QDBusObjectPath Manager::startJob(const QString &name, bool active)
{
    if (!isKnown(name))
        return {};
    const uint id = ++m_lastJob;
    auto *const timer = new QTimer(this);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, this, [this, id, active] { endJob(id, active); });
    connect(timer, &QTimer::timeout, timer, &QObject::deleteLater);
    timer->start(m_jobTime);
    return pathOfJob(id);
}

void Manager::endJob(uint id, bool active)
{
    m_unit->setActive(active);
    emit JobRemoved(id, pathOfJob(id), m_unit->name(), QStringLiteral("done"));
}

QDBusObjectPath Manager::StartUnit(const QString &name, const QString &)
{
    return startJob(name, true);
}

QDBusObjectPath Manager::StopUnit(const QString &name, const QString &)
{
    return startJob(name, false);
}

bool Manager::EnableUnitFiles(const QStringList &names, bool, bool, UnitFileChanges &)
{
    if (names.contains(m_unit->name()))
        m_unit->setEnabled(true);
    return true;
}

UnitFileChanges Manager::DisableUnitFiles(const QStringList &names, bool)
{
    if (names.contains(m_unit->name()))
        m_unit->setEnabled(false);
    return {};
}
