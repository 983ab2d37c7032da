// Does nothing.
#include "emptytransport.h"

void EmptyTransport::start() { }

void EmptyTransport::submit(const TransportOrder &order)
{
    Q_UNUSED(order)
}

void EmptyTransport::keepDocument(const QString &uuid, int number, const QString &path)
{
    Q_UNUSED(number)
    Q_UNUSED(path)
    emit documentNotKept(uuid, QStringLiteral("there is no scheduler"));
}

void EmptyTransport::forget(const QString &uuid, int number)
{
    Q_UNUSED(uuid)
    Q_UNUSED(number)
}

void EmptyTransport::stop() { }
