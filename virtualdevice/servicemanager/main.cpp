// zbservicemanager: plays the service manager of a virtual device on its system bus. The bus starts it when
// somebody calls it, and it ends with the bus.
#include "manager.h"

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusMetaType>

#include <cstdio>

namespace {

int fail(const char *sentence, const QDBusConnection &bus)
{
    std::fprintf(stderr, "zbservicemanager: %s: %s\n", sentence, qPrintable(bus.lastError().message()));
    return 1;
}

} // namespace

int main(int argumentCount, char **arguments)
{
    const QCoreApplication application(argumentCount, arguments);
    qDBusRegisterMetaType<UnitFileChange>();
    qDBusRegisterMetaType<UnitFileChanges>();

    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return fail("cannot reach the system bus", bus);
    Unit unit(bus);
    Manager manager(bus, &unit);
    ManagerControl control(&manager);
    const QDBusConnection::RegisterOptions exported =
        QDBusConnection::ExportScriptableContents | QDBusConnection::ExportScriptableInvokables;
    if (!bus.registerObject(unit.path(), &unit, exported)
        || !bus.registerObject(QStringLiteral("/org/freedesktop/systemd1"), &manager, exported)
        || !bus.registerObject(QStringLiteral("/com/corvanta/VirtualServiceManager"), &control, exported)
        || !bus.registerService(QStringLiteral("org.freedesktop.systemd1")))
        return fail("cannot take its place on the system bus", bus);
    bus.connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), qApp,
                SLOT(quit()));
    return QCoreApplication::exec();
}
