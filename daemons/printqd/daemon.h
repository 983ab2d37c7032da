// Puts the parts of the daemon together and on the bus.
#pragma once

#include "busservice.h"
#include "commandline.h"
#include "jobstore.h"
#include "picturemaker.h"
#include "printqueue.h"
#include "printqueue_adaptor.h"
#include "printservice.h"
#include "statefolder.h"
#include "transportthread.h"

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>

#include <memory>

class Daemon : public QObject
{
    Q_OBJECT

public:
    Daemon(const Options &options, const QDBusConnection &bus);
    ~Daemon() override;

    /// Takes the name on the bus, reads the jobs and begins to follow the scheduler. Returns an empty text,
    /// or why that is not possible.
    QString start();
    /// Gives the name away.
    void stop();

Q_SIGNALS:
    /// The process is to end with this exit status.
    void ended(int exitStatus);

private:
    struct VirtualDevice;

    static std::unique_ptr<PrintTransport> makeTransport(const Options &options, const StateFolder &folder);
    QString addJobs();
    void announce(const QStringList &guids);

    const int m_jobs;
    StateFolder m_folder;
    JobStore m_store;
    PictureMaker m_pictures;
    TransportThread m_transport;
    PrintQueue m_queue;
    PrintService m_service;
    PrintQueueAdaptor m_adaptor;
    std::unique_ptr<VirtualDevice> m_virtualDevice;
    BusService m_bus;
};
