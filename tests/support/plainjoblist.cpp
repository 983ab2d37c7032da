// Parses in comparisons, makes a map a job with all its keys, and lets QDateTime write each time.
#include "plainjoblist.h"

#include <QtCore/QDateTime>
#include <QtCore/QVector>

#include <algorithm>

QString plainJobTime(const QString &timeStamp, bool is24HourClock)
{
    return QDateTime::fromMSecsSinceEpoch(timeStamp.toLongLong())
        .toString(is24HourClock ? QStringLiteral("MM/dd/yyyy HH:mm") : QStringLiteral("MM/dd/yyyy HH:mma"));
}

QVariantList plainJobList(const QMap<QString, PrintJobMetaData> &jobs, bool is24HourClock)
{
    QVector<PrintJobMetaData> sorted;
    sorted.reserve(jobs.size());
    for (const PrintJobMetaData &record : jobs)
        sorted.append(record);
    std::sort(sorted.begin(), sorted.end(), [](const PrintJobMetaData &a, const PrintJobMetaData &b) {
        return a.timeStamp.toLongLong(nullptr, 10) > b.timeStamp.toLongLong(nullptr, 10);
    });
    QVariantList result;
    for (const PrintJobMetaData &record : qAsConst(sorted)) {
        QVariantMap row;
        row[QStringLiteral("timeStamp")] = plainJobTime(record.timeStamp, is24HourClock);
        row[QStringLiteral("GUID")] = record.GUID;
        row[QStringLiteral("jobName")] = record.jobName;
        row[QStringLiteral("jobStatus")] = record.jobStatus;
        row[QStringLiteral("appName")] = record.appName;
        row[QStringLiteral("errorValue")] = record.errorValue;
        row[QStringLiteral("copyCount")] = record.copyCount;
        row[QStringLiteral("seriesCount")] = record.seriesCount;
        row[QStringLiteral("heat1")] = record.heat1;
        row[QStringLiteral("heat2")] = record.heat2;
        row[QStringLiteral("tension1")] = record.tension1;
        row[QStringLiteral("tension2")] = record.tension2;
        row[QStringLiteral("eventType")] = record.eventType;
        row[QStringLiteral("supplySKU")] = record.supplySKU;
        row[QStringLiteral("supplyColor")] = record.supplyColor;
        row[QStringLiteral("supplyMileage")] = record.supplyMileage;
        row[QStringLiteral("ribbon1SKU")] = record.ribbon1SKU;
        row[QStringLiteral("ribbon1Color")] = record.ribbon1Color;
        row[QStringLiteral("ribbon1Mileage")] = record.ribbon1Mileage;
        row[QStringLiteral("ribbon2SKU")] = record.ribbon2SKU;
        row[QStringLiteral("ribbon2Color")] = record.ribbon2Color;
        row[QStringLiteral("ribbon2Mileage")] = record.ribbon2Mileage;
        row[QStringLiteral("imagePath")] = record.imagePath;
        result.append(row);
    }
    return result;
}
