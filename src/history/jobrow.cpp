// Fills a copy of a map that has all keys already: its keys need neither memory nor comparisons a job.
#include "jobrow.h"

#include "printjobmetadata.h"

#include <cstring>
#include <new>

namespace {

const QVariantMap &rowWithoutValues()
{
    static const QVariantMap row = [] {
        QVariantMap result;
        for (const QString &key :
             {QStringLiteral("timeStamp"),      QStringLiteral("GUID"),        QStringLiteral("jobName"),
              QStringLiteral("jobStatus"),      QStringLiteral("appName"),     QStringLiteral("errorValue"),
              QStringLiteral("copyCount"),      QStringLiteral("seriesCount"), QStringLiteral("heat1"),
              QStringLiteral("heat2"),          QStringLiteral("tension1"),    QStringLiteral("tension2"),
              QStringLiteral("eventType"),      QStringLiteral("supplySKU"),   QStringLiteral("supplyColor"),
              QStringLiteral("supplyMileage"),  QStringLiteral("ribbon1SKU"),  QStringLiteral("ribbon1Color"),
              QStringLiteral("ribbon1Mileage"), QStringLiteral("ribbon2SKU"),  QStringLiteral("ribbon2Color"),
              QStringLiteral("ribbon2Mileage"), QStringLiteral("imagePath")})
            result.insert(key, QVariant());
        return result;
    }();
    return row;
}

/// Bit for bit: 0.0 and -0.0 look different, and what is not a number is itself.
bool isSameNumber(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

QVariantMap jobRow(const PrintJobMetaData &job, const QString &time)
{
    QVariantMap row = rowWithoutValues();
    auto value = row.begin();
    // The values of the copy hold nothing that would have to be given back.
    const auto put = [&value](const auto &content) { new (&*value++) QVariant(content); };
    // In the order of the keys, which is that of UTF-16: capitals first.
    put(job.GUID);
    put(job.appName);
    put(job.copyCount);
    put(job.errorValue);
    put(job.eventType);
    put(job.heat1);
    put(job.heat2);
    put(job.imagePath);
    put(job.jobName);
    put(job.jobStatus);
    put(job.ribbon1Color);
    put(job.ribbon1Mileage);
    put(job.ribbon1SKU);
    put(job.ribbon2Color);
    put(job.ribbon2Mileage);
    put(job.ribbon2SKU);
    put(job.seriesCount);
    put(job.supplyColor);
    put(job.supplyMileage);
    put(job.supplySKU);
    put(job.tension1);
    put(job.tension2);
    put(time);
    return row;
}

bool isSameJob(const PrintJobMetaData &a, const PrintJobMetaData &b)
{
    const auto isSame = [&a, &b](const auto... members) {
        return (isSameText(a.*members, b.*members) && ...);
    };
    using Job = PrintJobMetaData;
    return a.appName == b.appName && a.errorValue == b.errorValue && a.copyCount == b.copyCount
        && a.seriesCount == b.seriesCount && a.heat1 == b.heat1 && a.heat2 == b.heat2
        && a.tension1 == b.tension1 && a.tension2 == b.tension2 && a.eventType == b.eventType
        && isSameNumber(a.supplyMileage, b.supplyMileage) && isSameNumber(a.ribbon1Mileage, b.ribbon1Mileage)
        && isSameNumber(a.ribbon2Mileage, b.ribbon2Mileage)
        && isSame(&Job::timeStamp, &Job::GUID, &Job::jobName, &Job::jobStatus, &Job::supplySKU,
                  &Job::supplyColor, &Job::ribbon1SKU, &Job::ribbon1Color, &Job::ribbon2SKU,
                  &Job::ribbon2Color, &Job::imagePath);
}

bool isSameText(const QString &a, const QString &b)
{
    return a.isSharedWith(b) || a == b;
}
