// PrintQueueControl: what the print queue daemon on a virtual device says of its jobs, and what can happen to
// it.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

class PrintQueueControl
{
public:
    struct Job
    {
        QString timeStamp; ///< milliseconds since the epoch
        QString guid;
        QString name;
        QString status;
    };

    /// Whether the daemon of a virtual device is on the system bus.
    bool isThere() const;
    /// Newest first; none where the daemon does not answer.
    QVector<Job> jobs() const;
    /// Of the jobs, newest first.
    QStringList names() const;
    /// Of the jobs, sorted.
    QStringList guids() const;

    /// Ends the process as a power cut would. False where it cannot be told which one it is.
    bool kill() const;
    /// Starts the device's program with the state that it had.
    static bool startAgain();
};
