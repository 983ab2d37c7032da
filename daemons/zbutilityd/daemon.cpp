// The daemon: its parts, its name on the bus, its end.
#include "daemon.h"

#include "callgate.h"
#include "utilitydevicecontrol.h"

/// What there is besides on a virtual device.
struct Daemon::VirtualDevice
{
    VirtualDevice(StateStore &store, InternetState &internet)
        : control(store, internet, gate)
    {
    }

    CallGate gate;
    UtilityDeviceControl control;
};

Daemon::Daemon(const Options &options, const QDBusConnection &bus)
    : m_store(options.stateDirectory)
    , m_internet(m_routes)
    , m_service(m_store, m_internet)
    , m_adaptor(&m_service)
    , m_virtualDevice(options.isVirtualDevice ? std::make_unique<VirtualDevice>(m_store, m_internet)
                                              : nullptr)
    , m_bus(bus, QStringLiteral("com.corvanta.zbutility"), m_virtualDevice ? &m_virtualDevice->gate : nullptr)
{
    m_bus.addInterface(m_adaptor, m_service);
    if (m_virtualDevice)
        m_bus.addVirtualDevice(m_virtualDevice->control);

    connect(&m_internet, &InternetState::told, this, [this](bool connected) {
        m_bus.send(m_adaptor, QStringLiteral("onInternetConnectionChanged"), {connected});
    });
    connect(&m_bus, &BusService::ended, this, &Daemon::ended);
}

Daemon::~Daemon() = default;

QString Daemon::start()
{
    const QString failure = m_bus.start();
    // Only who has the name may touch the state.
    if (failure.isEmpty())
        m_store.load();
    return failure;
}

void Daemon::stop()
{
    m_bus.stop();
}
