// Starts, steers and ends the utility daemon of a test.
#include "utilitydaemon.h"

#include "childprocess.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusServiceWatcher>

#include <csignal>
#include <functional>

namespace {

constexpr int patienceMilliseconds = 10000;

const QString service = QStringLiteral("com.corvanta.zbutility");
const QString path = QStringLiteral("/");
const QString ownInterface = QStringLiteral("local.ZBUtilityd.UtilityDaemon");
const QString controlInterface = QStringLiteral("com.corvanta.VirtualDevice1");

bool isOnTheBus()
{
    const QDBusConnectionInterface *const bus = QDBusConnection::systemBus().interface();
    return bus && bus->isServiceRegistered(service);
}

/// Runs the event loop until \a isReached, which is looked at again after each of the events that \a
/// connectEvents connects to the function that it is given.
bool waitUntil(const std::function<bool()> &isReached,
               const std::function<void(QEventLoop &, const std::function<void()> &)> &connectEvents)
{
    QEventLoop loop;
    const std::function<void()> look = [&] {
        if (isReached())
            loop.quit();
    };
    QTimer patience;
    patience.setSingleShot(true);
    QObject::connect(&patience, &QTimer::timeout, &loop, [&loop] { loop.exit(1); });
    connectEvents(loop, look);
    patience.start(patienceMilliseconds);
    return isReached() || loop.exec() == 0;
}

} // namespace

UtilityDaemon::UtilityDaemon(QObject *parent)
    : QObject(parent)
{
    QDBusConnection bus = QDBusConnection::systemBus();
    bus.connect(service, path, controlInterface, QStringLiteral("Called"), this,
                SIGNAL(called(QString, QString, QVariantList)));
    bus.connect(service, path, ownInterface, QStringLiteral("onInternetConnectionChanged"), this,
                SIGNAL(onInternetConnectionChanged(bool)));
}

UtilityDaemon::~UtilityDaemon()
{
    if (m_process && m_process->state() != QProcess::NotRunning) {
        m_process->kill();
        m_process->waitForFinished(patienceMilliseconds);
    }
}

bool UtilityDaemon::start(const QStringList &arguments, const QString &stateDirectory)
{
    if (isOnTheBus())
        return fail(QStringLiteral("a daemon is on the bus already"));

    QDBusServiceWatcher watcher(service, QDBusConnection::systemBus(),
                                QDBusServiceWatcher::WatchForRegistration);
    // The answer to this call comes after the bus has taken up the watch.
    isOnTheBus();

    if (!launch(arguments, stateDirectory))
        return false;
    const bool reached = waitUntil(
        [this] { return isOnTheBus() || m_process->state() == QProcess::NotRunning; },
        [this, &watcher](QEventLoop &loop, const std::function<void()> &look) {
            connect(&watcher, &QDBusServiceWatcher::serviceRegistered, &loop, look);
            connect(m_process.get(), qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &loop, look);
        });
    if (!reached)
        return fail(QStringLiteral("the daemon's name did not appear on the bus"));
    if (!isRunning())
        return fail(QStringLiteral("the daemon ended at once: ") + standardError());
    return true;
}

bool UtilityDaemon::startAndWaitForEnd(const QStringList &arguments)
{
    if (!launch(arguments, {}))
        return false;
    return m_process->waitForFinished(patienceMilliseconds)
        || fail(QStringLiteral("the daemon goes on running"));
}

bool UtilityDaemon::launch(const QStringList &arguments, const QString &stateDirectory)
{
    const QString program = qEnvironmentVariable("ZBVIRTUALDEVICE_UTILITYD");
    if (program.isEmpty())
        return fail(QStringLiteral("ZBVIRTUALDEVICE_UTILITYD names no program"));
    if (isRunning())
        return fail(QStringLiteral("the daemon runs already"));

    m_standardError.clear();
    m_process = std::make_unique<ChildProcess>();
    m_process->setProcessChannelMode(QProcess::SeparateChannels);
    const QString directory = stateDirectory.isEmpty() ? m_stateDirectory.path() : stateDirectory;
    m_process->start(program, QStringList{QStringLiteral("--state-directory"), directory} + arguments);
    if (!m_process->waitForStarted(patienceMilliseconds))
        return fail(m_process->errorString());
    return true;
}

bool UtilityDaemon::terminate()
{
    return sendSignal(SIGTERM) && waitForEnd();
}

bool UtilityDaemon::kill()
{
    return sendSignal(SIGKILL) && waitForEnd();
}

bool UtilityDaemon::stop()
{
    return sendSignal(SIGSTOP);
}

bool UtilityDaemon::resume()
{
    return sendSignal(SIGCONT);
}

bool UtilityDaemon::sendSignal(int number)
{
    if (!isRunning())
        return fail(QStringLiteral("the daemon does not run"));
    return ::kill(static_cast<pid_t>(m_process->processId()), number) == 0
        || fail(QStringLiteral("the signal could not be sent"));
}

bool UtilityDaemon::waitForEnd()
{
    if (!m_process)
        return fail(QStringLiteral("the daemon was never started"));
    QDBusServiceWatcher watcher(service, QDBusConnection::systemBus(),
                                QDBusServiceWatcher::WatchForUnregistration);
    const bool reached = waitUntil(
        [this] { return m_process->state() == QProcess::NotRunning && !isOnTheBus(); },
        [this, &watcher](QEventLoop &loop, const std::function<void()> &look) {
            connect(&watcher, &QDBusServiceWatcher::serviceUnregistered, &loop, look);
            connect(m_process.get(), qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &loop, look);
        });
    return reached || fail(QStringLiteral("the daemon goes on running"));
}

bool UtilityDaemon::isRunning() const
{
    return m_process && m_process->state() != QProcess::NotRunning;
}

qint64 UtilityDaemon::processId() const
{
    return m_process ? m_process->processId() : 0;
}

int UtilityDaemon::exitCode() const
{
    if (!m_process || isRunning() || m_process->exitStatus() != QProcess::NormalExit)
        return -1;
    return m_process->exitCode();
}

QString UtilityDaemon::standardError()
{
    if (m_process)
        m_standardError += QString::fromUtf8(m_process->readAllStandardError());
    return m_standardError;
}

QString UtilityDaemon::stateDirectory() const
{
    return m_stateDirectory.path();
}

QString UtilityDaemon::errorText() const
{
    return m_errorText;
}

bool UtilityDaemon::fail(const QString &text)
{
    m_errorText = text;
    return false;
}

bool UtilityDaemon::control(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, controlInterface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = QDBusConnection::systemBus().call(message, QDBus::Block, patienceMilliseconds);
    return reply.type() == QDBusMessage::ReplyMessage
        || fail(method + QStringLiteral(": ") + reply.errorMessage());
}

bool UtilityDaemon::setInternetState(bool connected)
{
    return control(QStringLiteral("SetInternetState"), {connected});
}

bool UtilityDaemon::followRoutes()
{
    return control(QStringLiteral("FollowRoutes"));
}

bool UtilityDaemon::setShip(int mode)
{
    return control(QStringLiteral("SetShip"), {mode});
}

bool UtilityDaemon::failNextCall(const QString &errorName, const QString &message)
{
    return control(QStringLiteral("FailNextCall"), {errorName, message});
}

bool UtilityDaemon::delayNextCall(uint milliseconds)
{
    return control(QStringLiteral("DelayNextCall"), {milliseconds});
}

bool UtilityDaemon::ignoreNextCall()
{
    return control(QStringLiteral("IgnoreNextCall"));
}

bool UtilityDaemon::dieInNextCall()
{
    return control(QStringLiteral("DieInNextCall"));
}

bool UtilityDaemon::vanish()
{
    return control(QStringLiteral("Vanish")) && waitForEnd();
}

QVector<UtilityDaemon::Call> UtilityDaemon::calls()
{
    const QDBusMessage message =
        QDBusMessage::createMethodCall(service, path, controlInterface, QStringLiteral("Calls"));
    const QDBusMessage reply = QDBusConnection::systemBus().call(message, QDBus::Block, patienceMilliseconds);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QLatin1String("a(ssav)")) {
        fail(QStringLiteral("Calls: ") + reply.errorMessage());
        return {};
    }

    QVector<Call> result;
    const QDBusArgument list = reply.arguments().constFirst().value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        Call recorded;
        list.beginStructure();
        list >> recorded.method >> recorded.signature >> recorded.arguments;
        list.endStructure();
        result.append(recorded);
    }
    list.endArray();
    return result;
}

bool UtilityDaemon::clearCalls()
{
    return control(QStringLiteral("ClearCalls"));
}

bool UtilityDaemon::waitForCalls(int count)
{
    const bool reached = waitUntil([this, count] { return calls().size() >= count; },
                                   [this](QEventLoop &loop, const std::function<void()> &look) {
                                       connect(this, &UtilityDaemon::called, &loop, look);
                                   });
    return reached || fail(QStringLiteral("only %1 calls arrived").arg(calls().size()));
}

QDBusMessage UtilityDaemon::call(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, ownInterface, method);
    message.setArguments(arguments);
    return QDBusConnection::systemBus().call(message, QDBus::Block, patienceMilliseconds);
}
