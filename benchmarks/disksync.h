// The process's disk syncs: how many there were, and a way to leave them out.
//
// Every fdatasync(2) of the process, those of its libraries included, passes through here.
#pragma once

namespace DiskSync {

/// How often the process has asked for a sync so far, left out or not.
long count();

/// While one exists, syncs are counted but not done: what is left of a write is the work of the processor.
class LeftOut
{
public:
    LeftOut();
    ~LeftOut();
    LeftOut(const LeftOut &) = delete;
    LeftOut &operator=(const LeftOut &) = delete;
};

} // namespace DiskSync
