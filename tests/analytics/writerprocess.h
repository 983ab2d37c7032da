// A process of its own that writes numbered events to a spool: the test program, started again with
// arguments.
#pragma once

#include <QtCore/QProcess>
#include <QtCore/QString>

#include <optional>

class WriterProcess
{
public:
    /// Will write \a count events of the writer \a name to the spool in \a folder, which may grow to \a
    /// limit.
    WriterProcess(const QString &folder, const QString &name, int count, qint64 limit);

    /// Starts the process and waits until it is about to write.
    bool prepare();
    /// Lets it write.
    void go();
    bool isRunning();
    /// Waits for its end; true when it wrote every event.
    bool finish();

    QProcess &process() { return m_process; }

private:
    QProcess m_process;
};

/// For main(): the exit status if this process was started as a writer, after it has written.
std::optional<int> runAsWriter(int argc, char **argv);
