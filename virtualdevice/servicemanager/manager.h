// The service manager: units are looked up, started and stopped here. What it is asked to start takes a
// moment, as a real job does, and its end is told by a signal.
#pragma once

#include "unit.h"
#include "unitfilechange.h"

#include <QtDBus/QDBusContext>
#include <QtDBus/QDBusObjectPath>

class Manager : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.systemd1.Manager")

public:
    /// UNIT is the only one that there is.
    Manager(const QDBusConnection &bus, Unit *unit, QObject *parent = nullptr);

    /// How long a job takes from now on.
    void setJobTime(int milliseconds) { m_jobTime = milliseconds; }

    // Spelled as they are called.
    Q_INVOKABLE Q_SCRIPTABLE QDBusObjectPath LoadUnit(const QString &name);
    Q_INVOKABLE Q_SCRIPTABLE QDBusObjectPath GetUnit(const QString &name);
    Q_INVOKABLE Q_SCRIPTABLE QDBusObjectPath StartUnit(const QString &name, const QString &mode);
    Q_INVOKABLE Q_SCRIPTABLE QDBusObjectPath StopUnit(const QString &name, const QString &mode);
    Q_INVOKABLE Q_SCRIPTABLE bool EnableUnitFiles(const QStringList &names, bool runtime, bool force,
                                                  UnitFileChanges &changes);
    Q_INVOKABLE Q_SCRIPTABLE UnitFileChanges DisableUnitFiles(const QStringList &names, bool runtime);
    Q_INVOKABLE Q_SCRIPTABLE void Reload() { }
    Q_INVOKABLE Q_SCRIPTABLE void Subscribe() { }

signals:
    Q_SCRIPTABLE void JobRemoved(uint id, const QDBusObjectPath &job, const QString &unit,
                                 const QString &result);

private:
    bool isKnown(const QString &name);
    QDBusObjectPath startJob(const QString &name, bool active);
    void endJob(uint id, bool active);

    const QDBusConnection m_bus;
    Unit *const m_unit;
    int m_jobTime = 50;
    uint m_lastJob = 0;
};

/// What tests steer the service manager with.
class ManagerControl : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.corvanta.VirtualServiceManager1")

public:
    explicit ManagerControl(Manager *manager)
        : QObject(manager)
        , m_manager(manager)
    {
    }

    /// Jobs that begin from now on take so long; 50 ms from the start.
    Q_INVOKABLE Q_SCRIPTABLE void SetJobTime(uint milliseconds)
    {
        m_manager->setJobTime(static_cast<int>(milliseconds));
    }

private:
    Manager *const m_manager;
};
