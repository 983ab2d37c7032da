// SIGTERM and SIGINT as an event.
#include "terminationsignals.h"

#include <csignal>
#include <sys/signalfd.h>

TerminationSignals::TerminationSignals()
{
    sigset_t signalsToEnd;
    sigemptyset(&signalsToEnd);
    sigaddset(&signalsToEnd, SIGTERM);
    sigaddset(&signalsToEnd, SIGINT);
    m_signals = FileDescriptor(::signalfd(-1, &signalsToEnd, SFD_NONBLOCK | SFD_CLOEXEC));
    // Without a descriptor the signals keep their usual effect.
    if (m_signals.isOpen())
        pthread_sigmask(SIG_BLOCK, &signalsToEnd, nullptr);
}

void TerminationSignals::listen()
{
    if (!m_signals.isOpen())
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_signals.number(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &TerminationSignals::received);
}
