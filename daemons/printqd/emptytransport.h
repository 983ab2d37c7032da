// The transport of a daemon without a scheduler: nothing comes, and what is ordered waits.
#pragma once

#include "printtransport.h"

class EmptyTransport : public PrintTransport
{
    Q_OBJECT

public:
    using PrintTransport::PrintTransport;

public Q_SLOTS:
    void start() override;
    void submit(const TransportOrder &order) override;
    void keepDocument(const QString &uuid, int number, const QString &path) override;
    /// Does not say that it has: a scheduler may still know the job when the daemon has one again.
    void forget(const QString &uuid, int number) override;
    void stop() override;
};
