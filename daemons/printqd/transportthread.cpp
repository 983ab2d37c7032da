// Hands everything over to the thread.
#include "transportthread.h"

#include <QtCore/QVector>

#include <cstdlib>

TransportThread::TransportThread(std::unique_ptr<PrintTransport> transport)
    : m_transport(transport.release())
{
    // Under the names that the signals have for them.
    qRegisterMetaType<TransportJob>();
    qRegisterMetaType<QVector<TransportJob>>("QVector<TransportJob>");
    m_transport->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_transport, &QObject::deleteLater);
    m_thread.setObjectName(QStringLiteral("transport"));
    m_thread.start();
}

TransportThread::~TransportThread()
{
    constexpr unsigned long patienceMilliseconds = 5000;
    // Ends what is under way, behind which the call waits.
    m_thread.requestInterruption();
    post([transport = m_transport] {
        transport->stop();
        transport->thread()->quit();
    });
    // A thread that is in a call without an end cannot be stopped otherwise. What matters is on the disk.
    if (!m_thread.wait(patienceMilliseconds))
        std::_Exit(EXIT_SUCCESS);
}

void TransportThread::start()
{
    post([transport = m_transport] { transport->start(); });
}

void TransportThread::submit(const TransportOrder &order)
{
    post([transport = m_transport, order] { transport->submit(order); });
}

void TransportThread::keepDocument(const QString &uuid, int number, const QString &path)
{
    post([=, transport = m_transport] { transport->keepDocument(uuid, number, path); });
}

void TransportThread::forget(const QString &uuid, int number)
{
    post([=, transport = m_transport] { transport->forget(uuid, number); });
}
