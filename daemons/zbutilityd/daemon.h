// Puts the parts of the daemon together and on the bus.
#pragma once

#include "busservice.h"
#include "commandline.h"
#include "internetstate.h"
#include "routemonitor.h"
#include "statestore.h"
#include "utilitydaemon_adaptor.h"
#include "utilityservice.h"

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>

#include <memory>

class Daemon : public QObject
{
    Q_OBJECT

public:
    Daemon(const Options &options, const QDBusConnection &bus);
    ~Daemon() override;

    /// Takes the name on the bus and reads the state. Returns an empty text, or why that is not possible.
    QString start();
    /// Gives the name away.
    void stop();

Q_SIGNALS:
    /// The process is to end with this exit status.
    void ended(int exitStatus);

private:
    struct VirtualDevice;

    StateStore m_store;
    RouteMonitor m_routes;
    InternetState m_internet;
    UtilityService m_service;
    UtilityDaemonAdaptor m_adaptor;
    std::unique_ptr<VirtualDevice> m_virtualDevice;
    BusService m_bus;
};
