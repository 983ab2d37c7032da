// A daemon's name on the bus, and its object with all interfaces.
#pragma once

#include "busobject.h"

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>

class VirtualDeviceControl;

/// The object path is "/". Everything that is added must outlive this object.
class BusService : public QObject
{
    Q_OBJECT

public:
    /// With a \a gate, which a virtual device has, the calls of the daemon's own interface go through that.
    BusService(const QDBusConnection &bus, const QString &name, CallGate *gate);
    ~BusService() override;

    /// Adds the daemon's own interface; before any other.
    void addInterface(QDBusAbstractAdaptor &adaptor, CallTarget &target);
    /// Adds an interface that is there on a virtual device only, and that no fault meets.
    void addControlInterface(QDBusAbstractAdaptor &adaptor, CallTarget &target);
    /// Adds com.corvanta.VirtualDevice1, for the gate.
    void addVirtualDevice(VirtualDeviceControl &control);

    /// Exports the object and takes the name. Returns an empty text, or why that is not possible.
    QString start();
    /// Gives the name away.
    void stop();

    /// Sends the signal \a name of \a adaptor's interface.
    void send(const QDBusAbstractAdaptor &adaptor, const QString &name, const QVariantList &arguments);

Q_SIGNALS:
    /// The process is to end with this exit status.
    void ended(int exitStatus);

private Q_SLOTS:
    void endWithoutBus();

private:
    QString takeName();

    QDBusConnection m_bus;
    const QString m_name;
    CallGate *const m_gate;
    BusObject m_object;
};
