// Turns the signals that ask the process to end into a Qt signal.
#pragma once

#include "filedescriptor.h"

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

#include <memory>

/// SIGTERM and SIGINT, taken through signalfd(2).
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    /// To be made before the process starts a thread, which would receive the signals otherwise.
    TerminationSignals();

    /// Starts to report; needs the application object.
    void listen();

Q_SIGNALS:
    void received();

private:
    FileDescriptor m_signals;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
