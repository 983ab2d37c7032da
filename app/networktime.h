// NetworkTime: whether the device keeps its clock by the network, as the clock service says it.
#pragma once

#include "networktimestate.h"

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusServiceWatcher>

/**
 * Follows the property NTP of org.freedesktop.timedate1 on the system bus. Never waits: what is asked is
 * answered by stateChanged(). The service may come and go (it ends when idle, and is started by the
 * question); its going changes nothing, its coming asks again.
 *
 * The clock can be set by hand from the moment on which this says Off: until the service has reported that,
 * it refuses.
 */
class NetworkTime : public QObject
{
    Q_OBJECT
    Q_PROPERTY(State state READ state NOTIFY stateChanged)

public:
    enum State {
        Asking = int(NetworkTimeState::Asking),
        Unknown = int(NetworkTimeState::Unknown),
        Off = int(NetworkTimeState::Off),
        On = int(NetworkTimeState::On)
    };
    Q_ENUM(State)

    explicit NetworkTime(QObject *parent = nullptr);

    State state() const;

    /// Asks again. The state becomes Asking only where nothing was known.
    Q_INVOKABLE void refresh();

Q_SIGNALS:
    void stateChanged();

private:
    Q_SLOT void propertiesChanged(const QString &interfaceName, const QVariantMap &changed,
                                  const QStringList &invalidated);
    void answered(const QDBusMessage &reply);
    void setState(NetworkTimeState state);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_serviceWatcher;
    NetworkTimeState m_state = NetworkTimeState::Asking;
};
