// The utility daemon of the benchmarks, present or absent as a benchmark needs it.
#pragma once

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

/**
 * One daemon that lives as long as it is wanted.
 *
 * It is watched and steered on a bus connection of its own, so that the connection which the library shares
 * with the plain way looks as it does in an application.
 */
class UtilityDaemonStage
{
public:
    static UtilityDaemonStage &instance();

    /// Sees to it that the daemon runs; the process ends with a message when it cannot be started.
    void wantPresent();
    /// Sees to it that no daemon runs.
    void wantAbsent();

    /// Calls \a method of the daemon's control interface.
    QDBusMessage control(const QString &method, const QVariantList &arguments = {}) const;
    /// What the daemon was called with since the last time: method, signature and arguments of each call.
    QVariantList takeCalls() const;

private:
    UtilityDaemonStage();
    ~UtilityDaemonStage();
    Q_DISABLE_COPY(UtilityDaemonStage)

    bool isOnTheBus() const;
    void waitUntilOnTheBus(bool wanted);

    QTemporaryDir m_state;
    QProcess m_process;
    const QDBusConnection m_bus;
};
