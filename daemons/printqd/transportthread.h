// The thread on which a transport lives.
#pragma once

#include "printtransport.h"

#include <QtCore/QThread>

#include <memory>

/// Every function returns at once, whatever the transport waits for, except the end.
class TransportThread
{
public:
    explicit TransportThread(std::unique_ptr<PrintTransport> transport);
    /// Stops the transport and waits for it, for five seconds at most; ends the process where it goes on
    /// then.
    ~TransportThread();

    /// To connect to its signals, which arrive by the event loop.
    PrintTransport &transport() { return *m_transport; }

    void start();
    void submit(const TransportOrder &order);
    void keepDocument(const QString &uuid, int number, const QString &path);
    void forget(const QString &uuid, int number);

private:
    Q_DISABLE_COPY(TransportThread)
    template <typename Work> void post(const Work &work)
    {
        QMetaObject::invokeMethod(m_transport, work, Qt::QueuedConnection);
    }

    // Deleted on its thread, at the end of that.
    PrintTransport *m_transport;
    QThread m_thread;
};
