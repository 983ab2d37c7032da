// The daemon: its parts, its name on the bus, its end.
#include "daemon.h"

#include "callgate.h"
#include "virtualdevice_adaptor.h"
#include "virtualdevicecontrol.h"

#include <QtCore/QDebug>
#include <QtDBus/QDBusConnectionInterface>

#include <cstdlib>

namespace {

QString serviceName()
{
    return QStringLiteral("com.corvanta.zbutility");
}

QString objectPath()
{
    return QStringLiteral("/");
}

} // namespace

/// What there is besides on a virtual device.
struct Daemon::VirtualDevice
{
    VirtualDevice(StateStore &store, InternetState &internet)
        : control(store, internet, gate)
        , adaptor(&control)
    {
    }

    CallGate gate;
    VirtualDeviceControl control;
    VirtualDevice1Adaptor adaptor;
};

Daemon::Daemon(const Options &options, const QDBusConnection &bus)
    : m_bus(bus)
    , m_store(options.stateDirectory)
    , m_internet(m_routes)
    , m_service(m_store, m_internet)
    , m_adaptor(&m_service)
{
    if (options.isVirtualDevice)
        m_virtualDevice = std::make_unique<VirtualDevice>(m_store, m_internet);
    m_object.addInterface(m_adaptor, m_service, m_virtualDevice ? &m_virtualDevice->gate : nullptr);
    if (m_virtualDevice)
        addVirtualDevice();

    connect(&m_internet, &InternetState::told, this, [this](bool connected) {
        sendSignal(m_bus, objectPath(), m_adaptor, QStringLiteral("onInternetConnectionChanged"),
                   {connected});
    });
    m_bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                  SLOT(endWithoutBus()));
}

Daemon::~Daemon()
{
    m_bus.unregisterObject(objectPath());
}

void Daemon::addVirtualDevice()
{
    m_object.addInterface(m_virtualDevice->adaptor, m_virtualDevice->control);

    connect(&m_virtualDevice->gate, &CallGate::recorded, this, [this](const RecordedCall &call) {
        sendSignal(m_bus, objectPath(), m_virtualDevice->adaptor, QStringLiteral("Called"),
                   {call.method, call.signature, QVariant(call.arguments)});
    });
    // Queued, so that the call is answered first.
    connect(
        &m_virtualDevice->control, &VirtualDeviceControl::vanishing, this,
        [this] { emit ended(EXIT_SUCCESS); }, Qt::QueuedConnection);
}

QString Daemon::start()
{
    if (!m_bus.isConnected())
        return QStringLiteral("no system bus: ") + m_bus.lastError().message();
    // The object first, so that it is there for whoever sees the name. Calls wait until the event loop runs.
    if (!m_bus.registerVirtualObject(objectPath(), &m_object))
        return QStringLiteral("the object cannot be exported");
    const QString failure = takeName();
    // Only who has the name may touch the state.
    if (failure.isEmpty())
        m_store.load();
    return failure;
}

QString Daemon::takeName()
{
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        m_bus.interface()->registerService(serviceName(), QDBusConnectionInterface::DontQueueService,
                                           QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid())
        return QStringLiteral("the bus refuses the name %1: %2").arg(serviceName(), reply.error().message());
    if (reply.value() != QDBusConnectionInterface::ServiceRegistered)
        return QStringLiteral("another process has the name %1 already").arg(serviceName());
    return {};
}

void Daemon::stop()
{
    m_bus.unregisterService(serviceName());
}

void Daemon::endWithoutBus()
{
    qCritical("the system bus has gone");
    emit ended(EXIT_FAILURE);
}
