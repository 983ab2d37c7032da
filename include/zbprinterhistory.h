// ZBPrinterHistory: the print jobs that the print queue daemon knows, newest first, for QML and C++.
#pragma once

#include "zbsettings_export.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariantList>

#include <memory>

struct ZBPrinterHistoryPrivate;

/**
 * The print history of the device for QML.
 *
 * The object asks the daemon for everything when it is made, when a job changes, and after a reprint; it
 * never polls.
 *
 * \par One job
 * A map of 23 keys: timeStamp, GUID, jobName, jobStatus, appName, errorValue, copyCount, seriesCount, heat1,
 * heat2, tension1, tension2, eventType, supplySKU, supplyColor, supplyMileage, ribbon1SKU, ribbon1Color,
 * ribbon1Mileage, ribbon2SKU, ribbon2Color, ribbon2Mileage, imagePath. `timeStamp` is the local time as text,
 * "03/05/2021 14:07", and without the 24-hour clock "03/05/2021 14:07pm". `jobName` is without the extension
 * of a label document. `imagePath` is the daemon's path behind "file:///". Counts, codes, heats and tensions
 * are int, mileages double, the rest text, as the daemon reports them.
 *
 * \par Threads and blocking
 * Everything runs on the thread that created the object, which must have an event loop. Calls of the daemon
 * wait for its answer. One that hangs holds each for the D-Bus time-out of 25 s: making the object and a
 * reprint make two of them. One that is not running fails at once, unless the bus starts it.
 *
 * \par Errors
 * No slot returns an error and nothing is logged. Where the list cannot be had, the last one stays on show,
 * until a job changes again or another refresh runs.
 *
 * The object of the IPC library is never deleted: it lives as long as the process.
 */
class ZBSETTINGS_EXPORT ZBPrinterHistory : public QObject
{
    Q_OBJECT

    /// The jobs, newest first; replaced as a whole. Of jobs with the same time either may come first.
    Q_PROPERTY(QVariantList printJobsHistory READ getPrintJobsHistory NOTIFY printJobsHistoryChanged)

public:
    /// \param is24HourClock whether times are shown without am and pm
    ZBPrinterHistory(QObject *parent, bool is24HourClock);
    ~ZBPrinterHistory() override;

    QVariantList getPrintJobsHistory() const;

Q_SIGNALS:
    /// The list is about to be asked for again, or is new: a change of a job is announced twice, before and
    /// after, and once where the list could not be had.
    void printJobsHistoryChanged();

public Q_SLOTS:
    /// Asks the daemon to print the job once more, and refreshes the list whether it does or not.
    void reprintPrintJob(QString GUID);
    /// Asks the daemon to clear its jobs. The list changes when the daemon says that jobs have changed.
    void cancelPrintJob();

private Q_SLOTS:
    void populatePrintJobHistoryMap();
    void setPrintJobsHistory();
    void updatePrintJobHistory(QString guid);

private:
    Q_DISABLE_COPY(ZBPrinterHistory)
    const std::unique_ptr<ZBPrinterHistoryPrivate> d;
};
