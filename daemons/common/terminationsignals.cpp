// SIGTERM and SIGINT as an event.
#include "terminationsignals.h"

#include <csignal>
#include <sys/signalfd.h>

namespace {

sigset_t signalsToEnd()
{
    sigset_t signalsThatEnd;
    sigemptyset(&signalsThatEnd);
    sigaddset(&signalsThatEnd, SIGTERM);
    sigaddset(&signalsThatEnd, SIGINT);
    return signalsThatEnd;
}

int openSignals()
{
    const sigset_t set = signalsToEnd();
    return ::signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
}

} // namespace

TerminationSignals::TerminationSignals()
    : m_signals(openSignals())
{
    // Without a descriptor the signals keep their usual effect.
    if (m_signals.get() < 0)
        return;
    const sigset_t set = signalsToEnd();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

void TerminationSignals::listen()
{
    if (m_signals.get() < 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_signals.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &TerminationSignals::received);
}
