// Starts, asks and ends the daemon of a test.
#include "printqueuedaemon.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusReply>

namespace {

constexpr int patienceMilliseconds = 20000;

QDBusMessage message(const char *interface, const char *method, const QVariantList &arguments)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("com.corvanta.printqd"), QStringLiteral("/"),
                                       QLatin1String(interface), QLatin1String(method));
    call.setArguments(arguments);
    return call;
}

constexpr char ownInterface[] = "local.IZBIPCPRINTQD";
constexpr char controlInterface[] = "com.corvanta.VirtualPrintQueue1";

} // namespace

// In memory where the machine has such a folder: what a killed process leaves is up to the kernel and not to
// the disk.
PrintQueueDaemon::PrintQueueDaemon()
    : m_directory(QFileInfo(QStringLiteral("/dev/shm")).isWritable()
                      ? QStringLiteral("/dev/shm/printqd-XXXXXX")
                      : QDir::tempPath() + QStringLiteral("/printqd-XXXXXX"))
    , m_watcher(QStringLiteral("com.corvanta.printqd"), QDBusConnection::systemBus(),
                QDBusServiceWatcher::WatchForRegistration)
{
    registerJobTypes();
    QDir(m_directory.path()).mkdir(QStringLiteral("state"));
}

PrintQueueDaemon::~PrintQueueDaemon()
{
    kill();
}

void PrintQueueDaemon::launch(const QStringList &arguments)
{
    m_process = std::make_unique<ChildProcess>();
    QStringList all{QStringLiteral("--state-directory"), stateDirectory()};
    if (!arguments.contains(QStringLiteral("--printer")))
        all.append(QStringLiteral("--without-scheduler"));
    m_process->setStandardErrorFile(errorPath(), QIODevice::Append);
    m_process->start(QStringLiteral(PRINTQD_PROGRAM), arguments + all);
}

bool PrintQueueDaemon::start(const QStringList &arguments)
{
    launch(QStringList{QStringLiteral("--virtual-device")} + arguments);
    QEventLoop loop;
    QObject::connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, &loop, &QEventLoop::quit);
    QObject::connect(m_process.get(), qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    QTimer::singleShot(patienceMilliseconds, &loop, &QEventLoop::quit);
    loop.exec();
    // It answers once it has read its jobs; where it cannot it has ended, and the bus says so.
    return call("getJobList").type() == QDBusMessage::ReplyMessage;
}

int PrintQueueDaemon::startAndWaitForEnd(const QStringList &arguments)
{
    launch(arguments);
    return m_process->waitForFinished(patienceMilliseconds) && m_process->exitStatus() == QProcess::NormalExit
        ? m_process->exitCode()
        : -1;
}

bool PrintQueueDaemon::terminate()
{
    m_process->terminate();
    const bool isEnded = m_process->waitForFinished(patienceMilliseconds);
    waitUntilNameIsFree();
    return isEnded && m_process->exitStatus() == QProcess::NormalExit && m_process->exitCode() == 0;
}

/// The bus notices the end of a process a moment later.
void PrintQueueDaemon::waitUntilNameIsFree()
{
    const QDeadlineTimer deadline(patienceMilliseconds);
    while (
        QDBusConnection::systemBus().interface()->isServiceRegistered(QStringLiteral("com.corvanta.printqd"))
        && !deadline.hasExpired())
        QThread::msleep(1);
}

void PrintQueueDaemon::kill()
{
    if (!m_process || m_process->state() == QProcess::NotRunning)
        return;
    m_process->kill();
    m_process->waitForFinished(patienceMilliseconds);
    waitUntilNameIsFree();
}

QString PrintQueueDaemon::standardError() const
{
    QFile file(errorPath());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QDBusMessage PrintQueueDaemon::call(const char *method, const QVariantList &arguments)
{
    return QDBusConnection::systemBus().call(message(ownInterface, method, arguments), QDBus::Block,
                                             patienceMilliseconds);
}

QDBusMessage PrintQueueDaemon::control(const char *method, const QVariantList &arguments)
{
    return QDBusConnection::systemBus().call(message(controlInterface, method, arguments), QDBus::Block,
                                             patienceMilliseconds);
}

QDBusPendingCall PrintQueueDaemon::send(const char *method, const QVariantList &arguments)
{
    return QDBusConnection::systemBus().asyncCall(message(ownInterface, method, arguments),
                                                  patienceMilliseconds);
}

QDBusPendingCall PrintQueueDaemon::sendControl(const char *method, const QVariantList &arguments)
{
    return QDBusConnection::systemBus().asyncCall(message(controlInterface, method, arguments),
                                                  patienceMilliseconds);
}

QStringList PrintQueueDaemon::jobList()
{
    return QDBusReply<QStringList>(call("getJobList")).value();
}

ChangedJobs PrintQueueDaemon::changedJobs(const QString &epoch, quint64 revision)
{
    const QVariantList values = call("getChangedJobs", {epoch, qulonglong(revision)}).arguments();
    if (values.size() != 6)
        return {};
    return {values[0].toString(),     values[1].toULongLong(),
            values[2].toBool(),       qdbus_cast<PrintJobMetaDataList>(values[3]),
            values[4].toStringList(), values[5].toBool()};
}

PrintJobMetaDataList PrintQueueDaemon::allJobs()
{
    ChangedJobs part = changedJobs();
    PrintJobMetaDataList jobs = part.jobs;
    while (part.hasMore) {
        part = changedJobs(part.epoch, part.revision);
        jobs += part.jobs;
    }
    return jobs;
}
