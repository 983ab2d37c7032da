// A print queue daemon whose jobs the test decides.
#include "printqueue.h"

#include <QtCore/QThread>
#include <QtTest/QtTest>

PrintQueue::PrintQueue(int count)
{
    registerJobTypes();
    for (int minute = 0; minute < count; ++minute)
        m_jobs.insert(job(minute).GUID, job(minute));
    appear();
}

PrintQueue::~PrintQueue()
{
    goOn();
}

void PrintQueue::appear()
{
    m_daemon =
        std::make_unique<FakePrintQueueDaemon>([this](const QDBusMessage &call) { return answer(call); });
    if (!m_daemon->isOnTheBus())
        qFatal("The print queue is not on the bus.");
}

PrintJobMetaData PrintQueue::job(int minute)
{
    constexpr qint64 start = 1614902400000; // 5 March 2021, 00:00 UTC
    PrintJobMetaData job;
    job.timeStamp = QString::number(start + minute * 60000);
    job.GUID = QStringLiteral("guid-%1").arg(minute, 6, 10, QLatin1Char('0'));
    job.jobName = QStringLiteral("job %1").arg(minute);
    job.jobStatus = QStringLiteral("Printed");
    job.copyCount = 2;
    job.seriesCount = 1;
    job.heat1 = 104;
    job.heat2 = 98;
    job.tension1 = 3;
    job.tension2 = -2;
    job.supplySKU = QStringLiteral("BM-4000");
    job.supplyColor = QStringLiteral("White");
    job.supplyMileage = 812.5;
    job.ribbon1SKU = QStringLiteral("RB-110");
    job.ribbon1Color = QStringLiteral("Black");
    job.ribbon1Mileage = 40;
    return job;
}

void PrintQueue::set(const PrintJobMetaData &job)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_jobs.insert(job.GUID, job);
        ++m_revision;
    }
    announce({job.GUID});
}

void PrintQueue::remove(const QString &guid)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_jobs.remove(guid);
        ++m_revision;
    }
    announce({guid});
}

PrintJobMetaData PrintQueue::at(const QString &guid)
{
    const QMutexLocker lock(&m_mutex);
    return m_jobs.value(guid);
}

void PrintQueue::answerReprint(Reprint reprint)
{
    const QMutexLocker lock(&m_mutex);
    m_reprint = reprint;
}

void PrintQueue::delayOrders(unsigned long milliseconds)
{
    const QMutexLocker lock(&m_mutex);
    m_delay = milliseconds;
}

void PrintQueue::failLists(bool fails)
{
    const QMutexLocker lock(&m_mutex);
    m_failsLists = fails;
}

void PrintQueue::hang()
{
    const QMutexLocker lock(&m_mutex);
    m_isHanging = true;
}

void PrintQueue::goOn()
{
    const QMutexLocker lock(&m_mutex);
    m_isHanging = false;
    m_goesOn.wakeAll();
}

QStringList PrintQueue::orders()
{
    const QMutexLocker lock(&m_mutex);
    return m_orders;
}

void PrintQueue::announce(const QStringList &guids)
{
    m_daemon->sendSignal(QStringLiteral("jobInfoChanged"), {guids});
}

QDBusMessage PrintQueue::answer(const QDBusMessage &call)
{
    const QMutexLocker lock(&m_mutex);
    while (m_isHanging)
        m_goesOn.wait(&m_mutex);
    const QString method = call.member();
    if (m_failsLists && method.startsWith(QLatin1String("get")))
        return call.createErrorReply(QDBusError::Failed, QStringLiteral("the jobs cannot be read"));
    if (method == QLatin1String("getJobList"))
        return call.createReply(QStringList(m_jobs.keys()));
    if (method == QLatin1String("getChangedJobs"))
        return call.createReply({QStringLiteral("epoch"), QVariant::fromValue(m_revision), true,
                                 QVariant::fromValue(PrintJobMetaDataList(m_jobs.values())), QStringList(),
                                 false});
    QThread::msleep(m_delay);
    m_orders += method + call.arguments().value(0).toString();
    if (method == QLatin1String("reprintPrintJob"))
        return reprint(call);
    if (method != QLatin1String("clearPrintJob"))
        return call.createErrorReply(QDBusError::UnknownMethod, method);
    QStringList gone;
    for (const PrintJobMetaData &job : m_jobs.values()) {
        if (job.jobStatus == QLatin1String("Printed"))
            gone += job.GUID;
    }
    for (const QString &guid : qAsConst(gone))
        m_jobs.remove(guid);
    ++m_revision;
    announce(gone);
    return call.createReply();
}

QDBusMessage PrintQueue::reprint(const QDBusMessage &call)
{
    PrintJobMetaData again = m_jobs.value(call.arguments().value(0).toString());
    if (m_reprint == Reprint::Refused)
        return call.createErrorReply(QDBusError::Failed, QStringLiteral("the document is not kept"));
    again.GUID = QStringLiteral("guid-again");
    again.timeStamp = QStringLiteral("1614999999000");
    again.jobStatus = QStringLiteral("Waiting");
    again.eventType = 3;
    again.appName = 2;
    m_jobs.insert(again.GUID, again);
    ++m_revision;
    announce({again.GUID});
    return call.createReply();
}
