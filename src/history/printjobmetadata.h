// PrintJobMetaData: one print job as the print queue daemon reports it.
#pragma once

#include <QtCore/QString>

/// The members, their order and their types are those of the device's IPC library, which returns it by value.
/// The meaning of the codes, heats, tensions and mileages is the daemon's.
struct PrintJobMetaData
{
    QString timeStamp; ///< milliseconds since the Unix epoch, decimal
    QString GUID; ///< the daemon's identifier of the job
    QString jobName; ///< name of the document
    QString jobStatus;
    int appName = 0; ///< code of the application that submitted the job
    int errorValue = 0;
    int copyCount = 0; ///< a job with less than one is not listed
    int seriesCount = 0;
    int heat1 = 0;
    int heat2 = 0;
    int tension1 = 0;
    int tension2 = 0;
    int eventType = 0;
    QString supplySKU;
    QString supplyColor;
    double supplyMileage = 0;
    QString ribbon1SKU;
    QString ribbon1Color;
    double ribbon1Mileage = 0;
    QString ribbon2SKU;
    QString ribbon2Color;
    double ribbon2Mileage = 0;
    QString imagePath; ///< path of the job's picture; may be empty
};
