// ServicePresence: whether a service is on the system bus.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusServiceWatcher>

/**
 * Follows the owner of a name on the system bus. Never waits and never starts the service: what is asked is
 * answered by stateChanged(). Without a bus the service is absent.
 */
class ServicePresence : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString service READ service WRITE setService NOTIFY serviceChanged)
    Q_PROPERTY(State state READ state NOTIFY stateChanged)

public:
    enum State {
        Unknown, ///< until the bus has answered, a moment after the name was set
        Absent,
        Present
    };
    Q_ENUM(State)

    explicit ServicePresence(QObject *parent = nullptr);

    QString service() const;
    void setService(const QString &service);
    State state() const;

Q_SIGNALS:
    void serviceChanged();
    void stateChanged();

private:
    void ask();
    void setState(State state);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QString m_service;
    State m_state = Unknown;
};
