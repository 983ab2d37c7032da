// A virtual D-Bus object on a second connection, in front of a plain store.
#include "printqueue.h"

#include "jobwire.h"

#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusVirtualObject>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

const QString serviceName = QStringLiteral("com.corvanta.printqd");
const QString interfaceName = QStringLiteral("local.IZBIPCPRINTQD");

} // namespace

PrintJobMetaData sampleJob(const QString &guid, int change)
{
    PrintJobMetaData job;
    job.timeStamp = QString::number(1614953220000 + change);
    job.GUID = guid;
    job.jobName = QStringLiteral("Label %1.tavo").arg(change);
    job.jobStatus = QStringLiteral("Printed");
    job.appName = 1;
    job.errorValue = -2;
    job.copyCount = 3;
    job.seriesCount = 4;
    job.heat1 = 5;
    job.heat2 = 6;
    job.tension1 = -7;
    job.tension2 = 8;
    job.eventType = 9;
    job.supplySKU = QStringLiteral("BX-4100");
    job.supplyColor = QStringLiteral("wei\u00df");
    job.supplyMileage = 10.5;
    job.ribbon1SKU = QStringLiteral("BX-R100");
    job.ribbon1Color = QStringLiteral("black");
    job.ribbon1Mileage = 11.25;
    job.ribbon2SKU = QStringLiteral("BX-R200");
    job.ribbon2Color = QStringLiteral("red");
    job.ribbon2Mileage = 12.125;
    job.imagePath = QStringLiteral("/var/lib/printqd/pictures/%1.png").arg(guid);
    return job;
}

bool isSame(const PrintJobMetaData &a, const PrintJobMetaData &b)
{
    return a.timeStamp == b.timeStamp && a.GUID == b.GUID && a.jobName == b.jobName
        && a.jobStatus == b.jobStatus && a.appName == b.appName && a.errorValue == b.errorValue
        && a.copyCount == b.copyCount && a.seriesCount == b.seriesCount && a.heat1 == b.heat1
        && a.heat2 == b.heat2 && a.tension1 == b.tension1 && a.tension2 == b.tension2
        && a.eventType == b.eventType && a.supplySKU == b.supplySKU && a.supplyColor == b.supplyColor
        && a.supplyMileage == b.supplyMileage && a.ribbon1SKU == b.ribbon1SKU
        && a.ribbon1Color == b.ribbon1Color && a.ribbon1Mileage == b.ribbon1Mileage
        && a.ribbon2SKU == b.ribbon2SKU && a.ribbon2Color == b.ribbon2Color
        && a.ribbon2Mileage == b.ribbon2Mileage && a.imagePath == b.imagePath;
}

void PrintQueueStore::set(const PrintJobMetaData &job)
{
    m_jobs.insert(job.GUID, job);
    m_revisions.insert(job.GUID, ++revision);
}

void PrintQueueStore::remove(const QString &guid)
{
    m_jobs.remove(guid);
    m_revisions.insert(guid, ++revision);
}

void PrintQueueStore::lose(const QString &nextEpoch)
{
    *this = PrintQueueStore();
    epoch = nextEpoch;
}

QVariantList PrintQueueStore::changesSince(const QString &knownEpoch, quint64 knownRevision) const
{
    const bool isComplete = knownEpoch != epoch || knownRevision > revision;
    const quint64 from = isComplete ? 0 : knownRevision;
    std::vector<std::pair<quint64, QString>> changed;
    for (auto entry = m_revisions.cbegin(); entry != m_revisions.cend(); ++entry) {
        if (*entry > from)
            changed.emplace_back(*entry, entry.key());
    }
    std::sort(changed.begin(), changed.end());

    PrintJobMetaDataList jobs;
    QStringList removed;
    quint64 last = from;
    bool isMore = false;
    for (const auto &[at, guid] : changed) {
        if (jobs.size() == mostInAnAnswer) {
            isMore = true;
            break;
        }
        last = at;
        if (m_jobs.contains(guid))
            jobs.append(m_jobs.value(guid));
        else
            removed.append(guid);
    }
    return {epoch, last, isComplete, QVariant::fromValue(jobs), removed, isMore};
}

class PrintQueue::Object : public QDBusVirtualObject
{
public:
    explicit Object(PrintQueue *queue)
        : m_queue(queue)
    {
    }

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &call, const QDBusConnection &connection) override
    {
        if (call.interface() != interfaceName)
            return false;
        Answer answer;
        {
            const QMutexLocker lock(&m_queue->m_mutex);
            m_queue->m_calls.append(call.member());
            answer = m_queue->m_answer;
        }
        const QDBusMessage reply = answer ? answer(call) : m_queue->rightAnswer(call);
        if (reply.type() != QDBusMessage::InvalidMessage)
            connection.send(reply);
        return true;
    }

private:
    PrintQueue *const m_queue;
};

PrintQueue::PrintQueue()
    : m_object(std::make_unique<Object>(this))
{
    registerJobTypes();
    m_thread.start();
    m_object->moveToThread(&m_thread);
}

PrintQueue::~PrintQueue()
{
    end();
    m_thread.quit();
    m_thread.wait();
}

bool PrintQueue::start()
{
    static int number = 0;
    m_connection = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(
        QDBusConnection::SystemBus, QStringLiteral("print queue %1").arg(++number)));
    return m_connection->registerVirtualObject(QStringLiteral("/"), m_object.get())
        && m_connection->registerService(serviceName);
}

void PrintQueue::end()
{
    if (!m_connection)
        return;
    m_connection->unregisterService(serviceName);
    m_connection->unregisterObject(QStringLiteral("/"));
    die();
}

void PrintQueue::die()
{
    const QString name = m_connection->name();
    m_connection.reset();
    QDBusConnection::disconnectFromBus(name);
}

void PrintQueue::takeNameAgain()
{
    m_connection->unregisterService(serviceName);
    m_connection->registerService(serviceName);
}

void PrintQueue::withStore(const std::function<void(PrintQueueStore &)> &work)
{
    const QMutexLocker lock(&m_mutex);
    work(m_store);
}

void PrintQueue::setAnswer(const Answer &answer)
{
    const QMutexLocker lock(&m_mutex);
    m_answer = answer;
}

QDBusMessage PrintQueue::rightAnswer(const QDBusMessage &call)
{
    const QMutexLocker lock(&m_mutex);
    const QVariantList arguments = call.arguments();
    if (call.member() == QLatin1String("getJobList"))
        return call.createReply(QVariant(QStringList(m_store.jobs().keys())));
    if (call.member() == QLatin1String("getChangedJobs"))
        return call.createReply(
            m_store.changesSince(arguments.at(0).toString(), arguments.at(1).toULongLong()));
    if (call.member() != QLatin1String("getJobInfo"))
        return call.createErrorReply(QDBusError::UnknownMethod, {});
    const auto job = m_store.jobs().constFind(arguments.at(0).toString());
    return job == m_store.jobs().cend() ? call.createErrorReply(QDBusError::InvalidArgs, {})
                                        : call.createReply(QVariant::fromValue(*job));
}

QStringList PrintQueue::takeCalls()
{
    const QMutexLocker lock(&m_mutex);
    return std::exchange(m_calls, {});
}

int PrintQueue::callCount()
{
    const QMutexLocker lock(&m_mutex);
    return m_calls.size();
}

void PrintQueue::sendJobInfoChanged(const QVariantList &arguments)
{
    QDBusMessage message =
        QDBusMessage::createSignal(QStringLiteral("/"), interfaceName, QStringLiteral("jobInfoChanged"));
    message.setArguments(arguments);
    m_connection->send(message);
    // The bus answers behind it.
    m_connection->interface()->isServiceRegistered(serviceName);
}
