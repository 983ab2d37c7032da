// Construction of ZBPrinterHistory, its fetch, and its two commands.
#include "zbprinterhistory.h"

#include "jobtidying.h"
#include "keptforever.h"
#include "zbipc.h"
#include "zbprinterhistory_p.h"

#include <QtCore/QPointer>
#include <QtDBus/QDBusReply>

#include <utility>

ZBPrinterHistory::ZBPrinterHistory(QObject *parent, bool is24HourClock)
    : QObject(parent)
    , d(std::make_unique<ZBPrinterHistoryPrivate>(is24HourClock))
{
    d->ipc = new ZBIPC(nullptr);
    keepForever(d->ipc);
    populatePrintJobHistoryMap();
    // Only now: a change during the first fetch is in its result or is not asked for.
    connect(d->ipc, &ZBIPC::PrintJobInfoChanged, this, &ZBPrinterHistory::updatePrintJobHistory);
}

ZBPrinterHistory::~ZBPrinterHistory() = default;

QVariantList ZBPrinterHistory::getPrintJobsHistory() const
{
    return d->printJobsHistory;
}

void ZBPrinterHistory::populatePrintJobHistoryMap()
{
    d->jobs.clear();
    const QDBusReply<QStringList> reply = d->daemon.call(QStringLiteral("getJobList"));
    if (!reply.isValid())
        return;
    const QStringList guids = reply.value();
    for (const QString &guid : guids) {
        PrintJobMetaData job = d->ipc->getJobInfo(guid);
        tidyJob(job);
        if (!isListed(job))
            continue;
        // The same text, where it is the same: the list of the next fetch then finds its rows sooner. A
        // daemon that names its jobs in their order spares the search for the place of each.
        const QString &key = guid == job.GUID ? job.GUID : guid;
        *d->jobs.insert(d->jobs.cend(), key, PrintJobMetaData()) = std::move(job);
    }
    setPrintJobsHistory();
}

void ZBPrinterHistory::setPrintJobsHistory()
{
    d->printJobsHistory = d->list.rebuilt(d->jobs);
    Q_EMIT printJobsHistoryChanged();
}

void ZBPrinterHistory::updatePrintJobHistory(QString guid)
{
    d->jobs.remove(guid);
    // A slot may delete the object.
    const QPointer<ZBPrinterHistory> isThere(this);
    Q_EMIT printJobsHistoryChanged();
    if (isThere)
        populatePrintJobHistoryMap();
}

void ZBPrinterHistory::reprintPrintJob(QString GUID)
{
    d->daemon.call(QStringLiteral("reprintPrintJob"), GUID);
    updatePrintJobHistory(GUID);
}

void ZBPrinterHistory::cancelPrintJob()
{
    d->daemon.call(QStringLiteral("clearPrintJob"));
}
