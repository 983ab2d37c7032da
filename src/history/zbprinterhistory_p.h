// What a ZBPrinterHistory keeps.
#pragma once

#include "joblist.h"

#include <QtCore/QVariantList>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusInterface>

class ZBIPC;

struct ZBPrinterHistoryPrivate
{
    explicit ZBPrinterHistoryPrivate(bool is24HourClock)
        : list(is24HourClock)
    {
    }

    JobList list;
    JobMap jobs;
    QVariantList printJobsHistory;
    QDBusInterface daemon{QStringLiteral("com.corvanta.printqd"), QStringLiteral("/"),
                          QStringLiteral("local.IZBIPCPRINTQD"), QDBusConnection::systemBus()};
    // Never deleted: it lives as long as the process.
    ZBIPC *ipc = nullptr;
};
