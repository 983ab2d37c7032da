// Exports the object, takes the name, and notices when the bus goes.
#include "busservice.h"

#include "callgate.h"
#include "virtualdevice_adaptor.h"
#include "virtualdevicecontrol.h"

#include <QtCore/QDebug>
#include <QtDBus/QDBusConnectionInterface>

#include <cstdlib>

namespace {

QString objectPath()
{
    return QStringLiteral("/");
}

} // namespace

BusService::BusService(const QDBusConnection &bus, const QString &name, CallGate *gate)
    : m_bus(bus)
    , m_name(name)
    , m_gate(gate)
{
    m_bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                  SLOT(endWithoutBus()));
}

BusService::~BusService()
{
    m_bus.unregisterObject(objectPath());
}

void BusService::addInterface(QDBusAbstractAdaptor &adaptor, CallTarget &target)
{
    m_object.addInterface(adaptor, target, m_gate);
}

void BusService::addControlInterface(QDBusAbstractAdaptor &adaptor, CallTarget &target)
{
    m_object.addInterface(adaptor, target);
}

void BusService::addVirtualDevice(VirtualDeviceControl &control)
{
    auto *const adaptor = new VirtualDevice1Adaptor(&control);
    addControlInterface(*adaptor, control);
    connect(m_gate, &CallGate::recorded, adaptor, [this, adaptor](const RecordedCall &call) {
        send(*adaptor, QStringLiteral("Called"), {call.method, call.signature, QVariant(call.arguments)});
    });
    // Queued, so that the call is answered first.
    connect(
        &control, &VirtualDeviceControl::vanishing, this, [this] { emit ended(EXIT_SUCCESS); },
        Qt::QueuedConnection);
}

QString BusService::start()
{
    if (!m_bus.isConnected())
        return QStringLiteral("no system bus: ") + m_bus.lastError().message();
    // The object first, so that it is there for whoever sees the name. Calls wait until the event loop runs.
    if (!m_bus.registerVirtualObject(objectPath(), &m_object))
        return QStringLiteral("the object cannot be exported");
    return takeName();
}

QString BusService::takeName()
{
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        m_bus.interface()->registerService(m_name, QDBusConnectionInterface::DontQueueService,
                                           QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid())
        return QStringLiteral("the bus refuses the name %1: %2").arg(m_name, reply.error().message());
    if (reply.value() != QDBusConnectionInterface::ServiceRegistered)
        return QStringLiteral("another process has the name %1 already").arg(m_name);
    return {};
}

void BusService::stop()
{
    m_bus.unregisterService(m_name);
}

void BusService::send(const QDBusAbstractAdaptor &adaptor, const QString &name, const QVariantList &arguments)
{
    sendSignal(m_bus, objectPath(), adaptor, name, arguments);
}

void BusService::endWithoutBus()
{
    qCritical("the system bus has gone");
    emit ended(EXIT_FAILURE);
}
