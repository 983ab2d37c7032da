// Compares records, and tells which are over.
#include "storedjob.h"

#include <tuple>

namespace {

auto members(const PrintJobMetaData &job)
{
    return std::tie(job.timeStamp, job.GUID, job.jobName, job.jobStatus, job.appName, job.errorValue,
                    job.copyCount, job.seriesCount, job.heat1, job.heat2, job.tension1, job.tension2,
                    job.eventType, job.supplySKU, job.supplyColor, job.supplyMileage, job.ribbon1SKU,
                    job.ribbon1Color, job.ribbon1Mileage, job.ribbon2SKU, job.ribbon2Color,
                    job.ribbon2Mileage, job.imagePath);
}

} // namespace

bool isFinished(const QString &status)
{
    return status == QLatin1String("Printed") || status == QLatin1String("Cancelled")
        || status == QLatin1String("Failed");
}

qint64 timeOf(const PrintJobMetaData &record)
{
    return record.timeStamp.toLongLong();
}

bool isSameRecord(const PrintJobMetaData &a, const PrintJobMetaData &b)
{
    return members(a) == members(b);
}
