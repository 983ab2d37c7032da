// Asks the print queue daemon, and starts and kills it.
#include "printqueuecontrol.h"

#include <QtCore/QProcess>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusReply>

#include <algorithm>
#include <csignal>

namespace {

constexpr int answerMilliseconds = 5000;

const QString &service()
{
    static const QString name = QStringLiteral("com.corvanta.printqd");
    return name;
}

QDBusMessage callQueue(const QString &interface, const QString &method, const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(service(), QStringLiteral("/"), interface, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return QDBusConnection::systemBus().call(message, QDBus::Block, answerMilliseconds);
}

} // namespace

bool PrintQueueControl::isThere() const
{
    return callQueue(QStringLiteral("com.corvanta.VirtualDevice1"), QStringLiteral("Calls")).type()
        == QDBusMessage::ReplyMessage;
}

QVector<PrintQueueControl::Job> PrintQueueControl::jobs() const
{
    QVector<Job> jobs;
    const QDBusMessage reply =
        callQueue(QStringLiteral("local.IZBIPCPRINTQD"), QStringLiteral("getChangedJobs"),
                  {QString(), QVariant::fromValue(qulonglong(0))});
    if (!reply.signature().startsWith(QLatin1String("stba(ssss")))
        return jobs;
    const auto list = reply.arguments().at(3).value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        Job job;
        list.beginStructure();
        list >> job.timeStamp >> job.guid >> job.name >> job.status;
        list.endStructure();
        jobs += job;
    }
    list.endArray();
    std::sort(jobs.begin(), jobs.end(),
              [](const Job &a, const Job &b) { return a.timeStamp.toLongLong() > b.timeStamp.toLongLong(); });
    return jobs;
}

QStringList PrintQueueControl::names() const
{
    QStringList names;
    for (const Job &job : jobs())
        names += job.name;
    return names;
}

QStringList PrintQueueControl::guids() const
{
    QStringList guids;
    for (const Job &job : jobs())
        guids += job.guid;
    guids.sort();
    return guids;
}

bool PrintQueueControl::kill() const
{
    const QDBusReply<uint> process = QDBusConnection::systemBus().interface()->servicePid(service());
    return process.isValid() && process.value() > 1 && ::kill(pid_t(process.value()), SIGKILL) == 0;
}

bool PrintQueueControl::startAgain()
{
    const QString directory = qEnvironmentVariable("ZBVIRTUALDEVICE_DIRECTORY") + QStringLiteral("/printqd");
    return QProcess::startDetached(qEnvironmentVariable("ZBVIRTUALDEVICE_PRINTQD"),
                                   {QStringLiteral("--virtual-device"), QStringLiteral("--state-directory"),
                                    directory, QStringLiteral("--printer"),
                                    qEnvironmentVariable("ZBVIRTUALDEVICE_PRINTER")});
}
