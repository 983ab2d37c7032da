// Starts, steers and ends the utility daemon of the benchmarks.
#include "utilitydaemonstage.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusServiceWatcher>

namespace {

constexpr int patience = 10000;

const QString connectionName = QStringLiteral("stage");
const QString service = QStringLiteral("com.corvanta.zbutility");
const QString controlInterface = QStringLiteral("com.corvanta.VirtualDevice1");

QVariantList callFrom(const QDBusArgument &argument)
{
    QString method;
    QString signature;
    QVariantList arguments;
    argument.beginStructure();
    argument >> method >> signature >> arguments;
    argument.endStructure();
    return {method, signature, arguments};
}

} // namespace

UtilityDaemonStage &UtilityDaemonStage::instance()
{
    static UtilityDaemonStage stage;
    return stage;
}

UtilityDaemonStage::UtilityDaemonStage()
    : m_bus(QDBusConnection::connectToBus(QDBusConnection::SystemBus, connectionName))
{
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
}

UtilityDaemonStage::~UtilityDaemonStage()
{
    m_process.kill();
    m_process.waitForFinished(patience);
    QDBusConnection::disconnectFromBus(connectionName);
}

void UtilityDaemonStage::wantPresent()
{
    if (m_process.state() != QProcess::NotRunning)
        return;
    if (isOnTheBus())
        qFatal("Another utility daemon is on the bus; run the benchmarks in a virtual device without one");
    m_process.start(
        qEnvironmentVariable("ZBVIRTUALDEVICE_UTILITYD"),
        {QStringLiteral("--virtual-device"), QStringLiteral("--state-directory"), m_state.path()});
    waitUntilOnTheBus(true);
}

void UtilityDaemonStage::wantAbsent()
{
    m_process.terminate();
    m_process.waitForFinished(patience);
    waitUntilOnTheBus(false);
}

bool UtilityDaemonStage::isOnTheBus() const
{
    return m_bus.interface()->isServiceRegistered(service);
}

void UtilityDaemonStage::waitUntilOnTheBus(bool wanted)
{
    QEventLoop loop;
    const QDBusServiceWatcher watcher(service, m_bus);
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceOwnerChanged, &loop, [&] {
        if (isOnTheBus() == wanted)
            loop.exit(0);
    });
    QTimer::singleShot(patience, &loop, [&loop] { loop.exit(1); });
    if (isOnTheBus() != wanted && loop.exec() != 0)
        qFatal("The utility daemon did not %s", wanted ? "start" : "end");
}

QDBusMessage UtilityDaemonStage::control(const QString &method, const QVariantList &arguments) const
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, QStringLiteral("/"), controlInterface, method);
    call.setArguments(arguments);
    const QDBusMessage reply = m_bus.call(call);
    if (reply.type() != QDBusMessage::ReplyMessage)
        qFatal("%s: %s", qPrintable(method), qPrintable(reply.errorMessage()));
    return reply;
}

QVariantList UtilityDaemonStage::takeCalls() const
{
    const QDBusMessage reply = control(QStringLiteral("Calls"));
    control(QStringLiteral("ClearCalls"));

    QVariantList calls;
    const auto argument = reply.arguments().constFirst().value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd())
        calls.append(QVariant(callFrom(argument)));
    argument.endArray();
    return calls;
}
