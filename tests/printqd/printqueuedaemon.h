// A print queue daemon of the test's own: starts the real program on the bus that the test sees as its system
// bus, ends and kills it, and leaves no process behind.
#pragma once

#include "childprocess.h"
#include "jobwire.h"

#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusServiceWatcher>

#include <memory>

/// What getChangedJobs answers.
struct ChangedJobs
{
    QString epoch;
    quint64 revision = 0;
    bool isComplete = false;
    PrintJobMetaDataList jobs;
    QStringList removed;
    bool hasMore = false;
};

class PrintQueueDaemon
{
public:
    PrintQueueDaemon();
    ~PrintQueueDaemon();

    /// Starts the program on a virtual device, without scheduler unless \a arguments name one, and waits
    /// until it answers. Where it does not, standardError() says why.
    bool start(const QStringList &arguments = {});
    /// Starts the program and waits for its end: the exit status.
    int startAndWaitForEnd(const QStringList &arguments);
    bool terminate();
    void kill();

    /// All that has been said in this folder, also by those that were started before.
    QString standardError() const;
    QString stateDirectory() const { return m_directory.filePath(QStringLiteral("state")); }
    QString statePath(const QString &name) const { return stateDirectory() + QLatin1Char('/') + name; }

    static QDBusMessage call(const char *method, const QVariantList &arguments = {});
    /// A call of com.corvanta.VirtualPrintQueue1.
    static QDBusMessage control(const char *method, const QVariantList &arguments = {});
    static QDBusPendingCall send(const char *method, const QVariantList &arguments = {});
    static QDBusPendingCall sendControl(const char *method, const QVariantList &arguments = {});
    static QStringList jobList();
    static ChangedJobs changedJobs(const QString &epoch = {}, quint64 revision = 0);
    /// All of them, however many answers that takes.
    static PrintJobMetaDataList allJobs();

private:
    void launch(const QStringList &arguments);
    QString errorPath() const { return m_directory.filePath(QStringLiteral("errors")); }
    static void waitUntilNameIsFree();

    QTemporaryDir m_directory;
    QDBusServiceWatcher m_watcher;
    std::unique_ptr<ChildProcess> m_process;
};
