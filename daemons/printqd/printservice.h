// The daemon's own interface: local.IZBIPCPRINTQD.
#pragma once

#include "calltarget.h"
#include "jobwire.h"

#include <QtCore/QStringList>

#include <deque>

class PrintQueue;

/// One method a method of the interface, which the interface's XML file documents.
class PrintService : public CallTarget
{
    Q_OBJECT

public:
    /// \a queue must outlive this object.
    explicit PrintService(PrintQueue &queue, QObject *parent = nullptr);

    QStringList getJobList() const;
    PrintJobMetaData getJobInfo(const QString &guid);
    QString getChangedJobs(const QString &knownEpoch, qulonglong knownRevision, qulonglong &revision,
                           bool &complete, PrintJobMetaDataList &jobs, QStringList &removed, bool &more);
    void reprintPrintJob(const QString &guid);
    void clearPrintJob();

private:
    /// A caller that is in the middle of a complete answer.
    struct Reader
    {
        QString caller;
        quint64 revision; ///< how far it is
        quint64 begun; ///< the store's revision when it began
    };

    quint64 takeReader(const QString &caller, quint64 revision);

    PrintQueue &m_queue;
    std::deque<Reader> m_readers;
};
