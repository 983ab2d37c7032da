// Signals through signalfd(2), so that one poll waits for all that can happen.
#include "signalqueue.h"

#include "failure.h"

SignalQueue::SignalQueue(const std::vector<int> &signals)
{
    sigset_t set = {};
    sigemptyset(&set);
    for (const int number : signals)
        sigaddset(&set, number);
    if (sigprocmask(SIG_BLOCK, &set, nullptr) != 0)
        throw systemFailure("cannot block signals");
    m_descriptor = FileDescriptor(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!m_descriptor.isOpen())
        throw systemFailure("cannot read signals");
}

std::optional<signalfd_siginfo> SignalQueue::next() const
{
    signalfd_siginfo information = {};
    if (read(m_descriptor.get(), &information, sizeof information) != sizeof information)
        return std::nullopt;
    return information;
}

sigset_t currentSignalMask()
{
    sigset_t mask = {};
    sigprocmask(SIG_BLOCK, nullptr, &mask);
    return mask;
}
