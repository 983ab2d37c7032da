// The job control of the virtual device: com.corvanta.VirtualPrintQueue1.
#pragma once

#include "calltarget.h"
#include "jobwire.h"

#include <QtCore/QStringList>

class PrintQueue;

/// One method a method of the interface, spelt as there, which the interface's XML file documents.
class VirtualPrintQueue : public CallTarget
{
    Q_OBJECT

public:
    /// \a queue must outlive this object.
    explicit VirtualPrintQueue(PrintQueue &queue, QObject *parent = nullptr);

    void AddJobs(uint count);
    void SetJob(const PrintJobMetaData &job);
    void RemoveJobs(const QStringList &guids);

private:
    static QString complaintAbout(const PrintJobMetaData &job);

    PrintQueue &m_queue;
};
