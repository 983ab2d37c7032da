// What the processes of a whole device may do; see capabilities(7).
#pragma once

/// Takes the right to set the machine's clock from this process and from all that it starts later. Throws
/// Failure, with forbiddenStatus, if it cannot be taken.
void giveUpTheClock();

/// While it lives, programs that this process starts have its capabilities even though they do not run as
/// root: ip(8) needs them to make an interface.
class InheritedCapabilities
{
public:
    /// Throws Failure.
    InheritedCapabilities();
    ~InheritedCapabilities();
    InheritedCapabilities(const InheritedCapabilities &) = delete;
    InheritedCapabilities &operator=(const InheritedCapabilities &) = delete;
};
