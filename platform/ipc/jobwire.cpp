// The members of a job's record, in the order in which they travel.
#include "jobwire.h"

#include <QtDBus/QDBusMetaType>

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

QDBusArgument &operator<<(QDBusArgument &argument, const PrintJobMetaData &job)
{
    argument.beginStructure();
    argument << job.timeStamp << job.GUID << job.jobName << job.jobStatus << job.appName << job.errorValue
             << job.copyCount << job.seriesCount << job.heat1 << job.heat2 << job.tension1 << job.tension2
             << job.eventType << job.supplySKU << job.supplyColor << job.supplyMileage << job.ribbon1SKU
             << job.ribbon1Color << job.ribbon1Mileage << job.ribbon2SKU << job.ribbon2Color
             << job.ribbon2Mileage << job.imagePath;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PrintJobMetaData &job)
{
    argument.beginStructure();
    argument >> job.timeStamp >> job.GUID >> job.jobName >> job.jobStatus >> job.appName >> job.errorValue
        >> job.copyCount >> job.seriesCount >> job.heat1 >> job.heat2 >> job.tension1 >> job.tension2
        >> job.eventType >> job.supplySKU >> job.supplyColor >> job.supplyMileage >> job.ribbon1SKU
        >> job.ribbon1Color >> job.ribbon1Mileage >> job.ribbon2SKU >> job.ribbon2Color >> job.ribbon2Mileage
        >> job.imagePath;
    argument.endStructure();
    return argument;
}

void registerJobTypes()
{
    qDBusRegisterMetaType<PrintJobMetaData>();
    qDBusRegisterMetaType<PrintJobMetaDataList>();
}

bool isSameRecord(const PrintJobMetaData &a, const PrintJobMetaData &b)
{
    return members(a) == members(b);
}
