// The daemon: its parts, its start, its signal.
#include "daemon.h"

#include "callgate.h"
#include "cupstransport.h"
#include "emptytransport.h"
#include "virtualdevicecontrol.h"
#include "virtualprintqueue.h"
#include "virtualprintqueue_adaptor.h"

namespace {

/// So many GUIDs go into one signal, which keeps it far below what a bus carries in one message (32 MiB).
constexpr int mostAnnounced = 100000;

StoreLimits limitsOf(const Options &options)
{
    StoreLimits limits;
    limits.jobs = options.historyLimit;
    return limits;
}

} // namespace

/// What there is besides on a virtual device.
struct Daemon::VirtualDevice
{
    explicit VirtualDevice(PrintQueue &printQueue)
        : control(gate)
        , queue(printQueue)
        , adaptor(&queue)
    {
    }

    CallGate gate;
    VirtualDeviceControl control;
    VirtualPrintQueue queue;
    VirtualPrintQueue1Adaptor adaptor;
};

Daemon::Daemon(const Options &options, const QDBusConnection &bus)
    : m_jobs(qMin(options.jobs, options.historyLimit))
    , m_folder(options.stateDirectory)
    , m_store(m_folder.databasePath(), limitsOf(options))
    , m_transport(makeTransport(options, m_folder))
    , m_queue(m_store, m_folder, m_transport, m_pictures)
    , m_service(m_queue)
    , m_adaptor(&m_service)
    , m_virtualDevice(options.isVirtualDevice ? std::make_unique<VirtualDevice>(m_queue) : nullptr)
    , m_bus(bus, QStringLiteral("com.corvanta.printqd"), m_virtualDevice ? &m_virtualDevice->gate : nullptr)
{
    m_bus.addInterface(m_adaptor, m_service);
    if (m_virtualDevice) {
        m_bus.addVirtualDevice(m_virtualDevice->control);
        m_bus.addControlInterface(m_virtualDevice->adaptor, m_virtualDevice->queue);
    }
    connect(&m_queue, &PrintQueue::changed, this, &Daemon::announce);
    connect(&m_bus, &BusService::ended, this, &Daemon::ended);
}

Daemon::~Daemon() = default;

std::unique_ptr<PrintTransport> Daemon::makeTransport(const Options &options, const StateFolder &folder)
{
    if (!options.hasScheduler)
        return std::make_unique<EmptyTransport>();
    CupsTransport::Settings settings;
    settings.printer = options.printer;
    settings.notificationSocket = folder.notificationSocketPath();
    return std::make_unique<CupsTransport>(settings);
}

QString Daemon::start()
{
    // Only who has the name, and the lock, may touch the jobs.
    QString failure = m_bus.start();
    if (failure.isEmpty())
        failure = m_folder.open();
    if (failure.isEmpty())
        failure = m_store.open();
    if (!failure.isEmpty())
        return failure;
    m_folder.sync();
    failure = addJobs();
    if (failure.isEmpty())
        m_queue.start();
    return failure;
}

/// As many as are missing, so that a restart adds none.
QString Daemon::addJobs()
{
    const int missing = m_jobs - m_store.size();
    QString failure;
    if (missing > 0)
        m_queue.addJobs(missing, [&failure](const QString &text) { failure = text; });
    m_queue.finishWork();
    return failure;
}

void Daemon::stop()
{
    m_bus.stop();
}

void Daemon::announce(const QStringList &guids)
{
    for (int first = 0; first < guids.size(); first += mostAnnounced)
        m_bus.send(m_adaptor, QStringLiteral("jobInfoChanged"), {QVariant(guids.mid(first, mostAnnounced))});
}
