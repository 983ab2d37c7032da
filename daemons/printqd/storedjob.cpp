// Tells which jobs are over, and from when they are.
#include "storedjob.h"

bool isFinished(const QString &status)
{
    return status == QLatin1String("Printed") || status == QLatin1String("Cancelled")
        || status == QLatin1String("Failed");
}

qint64 timeOf(const PrintJobMetaData &record)
{
    return record.timeStamp.toLongLong();
}
