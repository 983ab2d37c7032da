// Asks the kernel for its routes and hears from it when they change.
#pragma once

#include "filedescriptor.h"

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

#include <memory>
#include <optional>

/// The routes of the network namespace in which the process runs; see rtnetlink(7).
class RouteMonitor : public QObject
{
    Q_OBJECT

public:
    /// Listens for changes from now on. If the kernel does not allow that it is logged, and changed() never
    /// comes.
    explicit RouteMonitor(QObject *parent = nullptr);

    /// Asks the kernel afresh whether there is a way to the internet. Nothing is returned, and the failure is
    /// logged, if the kernel does not answer.
    std::optional<bool> hasWayToInternet() const;

Q_SIGNALS:
    /// Something about interfaces or routes has changed, or so much has that the kernel could not tell it
    /// all.
    void changed();

private:
    void takeNews();

    FileDescriptor m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
