// Checks what it is given, and hands it over.
#include "virtualprintqueue.h"

#include "printqueue.h"

#include <cmath>

namespace {

constexpr uint mostAtOnce = 100000;
constexpr int longestGuid = 64;
// What a scheduler allows for a name, in octets (RFC 8011).
constexpr int longestText = 1023;

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
        m_queue.addJobs(int(count),
                        [answer = answerLater()](const QString &failure) { answer(refusalOf(failure)); });
}

void VirtualPrintQueue::SetJob(const PrintJobMetaData &job)
{
    const QString complaint = complaintAbout(job);
    if (!complaint.isEmpty()) {
        refuse(QDBusError::InvalidArgs, complaint);
        return;
    }
    const QString failure = m_queue.setJob(job);
    if (!failure.isEmpty())
        refuse(QDBusError::Failed, failure);
}

/// What the store or the bus could not carry; empty where there is nothing like that.
QString VirtualPrintQueue::complaintAbout(const PrintJobMetaData &job)
{
    // It is part of the name of the job's picture.
    if (job.GUID.isEmpty() || job.GUID.size() > longestGuid || job.GUID.contains(QLatin1Char('/')))
        return QStringLiteral("a GUID has 1 to %1 characters and no slash").arg(longestGuid);
    for (const QString *const text :
         {&job.timeStamp, &job.jobName, &job.jobStatus, &job.supplySKU, &job.supplyColor, &job.ribbon1SKU,
          &job.ribbon1Color, &job.ribbon2SKU, &job.ribbon2Color, &job.imagePath}) {
        if (text->size() > longestText)
            return QStringLiteral("a text has at most %1 characters").arg(longestText);
    }
    for (const double mileage : {job.supplyMileage, job.ribbon1Mileage, job.ribbon2Mileage}) {
        if (!std::isfinite(mileage))
            return QStringLiteral("a mileage is a finite number");
    }
    return {};
}

void VirtualPrintQueue::RemoveJobs(const QStringList &guids)
{
    m_queue.removeJobs(guids,
                       [answer = answerLater()](const QString &failure) { answer(refusalOf(failure)); });
}
