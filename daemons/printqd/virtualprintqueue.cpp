// Checks what it is given, and hands it over.
#include "virtualprintqueue.h"

#include "printqueue.h"

namespace {

constexpr uint mostAtOnce = 100000;
constexpr int longestGuid = 64;

} // namespace

VirtualPrintQueue::VirtualPrintQueue(PrintQueue &queue, QObject *parent)
    : CallTarget(parent)
    , m_queue(queue)
{
}

void VirtualPrintQueue::AddJobs(uint count)
{
    if (count > mostAtOnce)
        refuse(QDBusError::InvalidArgs,
               QStringLiteral("at most %1 jobs at once, not %2").arg(mostAtOnce).arg(count));
    else if (count > 0)
        refuseIf(m_queue.addJobs(int(count)));
}

void VirtualPrintQueue::SetJob(const PrintJobMetaData &job)
{
    // It is part of the name of the job's picture.
    const bool isName =
        !job.GUID.isEmpty() && job.GUID.size() <= longestGuid && !job.GUID.contains(QLatin1Char('/'));
    if (isName)
        refuseIf(m_queue.setJob(job));
    else
        refuse(QDBusError::InvalidArgs,
               QStringLiteral("a GUID has 1 to %1 characters and no slash").arg(longestGuid));
}

void VirtualPrintQueue::RemoveJobs(const QStringList &guids)
{
    refuseIf(m_queue.removeJobs(guids));
}

void VirtualPrintQueue::refuseIf(const QString &failure)
{
    if (!failure.isEmpty())
        refuse(QDBusError::Failed, failure);
}
