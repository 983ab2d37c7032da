// Signals as data: blocked for the process and read from a descriptor that can be polled.
#pragma once

#include "filedescriptor.h"

#include <csignal>
#include <optional>
#include <sys/signalfd.h>
#include <vector>

class SignalQueue
{
public:
    /// Blocks SIGNALS, which children inherit until they are given another mask. Throws Failure.
    explicit SignalQueue(const std::vector<int> &signals);

    int descriptor() const { return m_descriptor.get(); }
    /// The oldest signal that waits, if any.
    std::optional<signalfd_siginfo> next() const;

private:
    FileDescriptor m_descriptor;
};

/// The signals that the calling thread blocks now.
sigset_t currentSignalMask();
