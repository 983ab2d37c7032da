// A daemon that answers as no real one would.
#pragma once

#include <QtCore/QThread>
#include <QtCore/QVariant>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

#include <functional>
#include <memory>

/**
 * Owns a daemon's name on the test's system bus, on a connection and a thread of its own, and
 * answers every call with what the test decides: for replies of a wrong type, a daemon without introspection
 * data, and looks at what the caller has done by the time of the call. The ordinary tests use the real
 * daemons.
 */
class FakeDaemon
{
public:
    /// Makes the reply to a call. Runs on the daemon's thread, one call at a time, while the caller waits.
    using Answer = std::function<QDBusMessage(const QDBusMessage &call)>;

    FakeDaemon(const QString &serviceName, const QString &interfaceName, const Answer &answer);
    /// Gives the name away and ends the thread.
    ~FakeDaemon();

    /// Whether the name is owned; look before going on.
    bool isOnTheBus() const;
    /// Calls \a note whenever the daemon is asked for its introspection data, which it does not have. Set
    /// before the first call.
    void noteIntrospection(const std::function<void()> &note);
    /// Sends a signal of the interface.
    bool sendSignal(const QString &name, const QVariantList &arguments) const;

private:
    Q_DISABLE_COPY(FakeDaemon)
    class Object;
    const QString m_serviceName;
    const QString m_interfaceName;
    QThread m_thread;
    QDBusConnection m_connection;
    std::unique_ptr<Object> m_object;
    bool m_isOnTheBus = false;
};
