// When a file's times tell it from what is written next.
#include "filestate.h"

namespace {

// The clock of most kernels goes in ticks of 1 to 10 ms.
constexpr qint64 longestTick = 20;
// A disk that keeps no parts of a second may keep every other second only.
constexpr qint64 twoSeconds = 2000;

} // namespace

bool FileState::isSettledAt(const timespec &now) const
{
    if (!m_isThere)
        return true;
    const bool hasWholeSeconds = m_modified.tv_nsec == 0 && m_changed.tv_nsec == 0;
    const qint64 tick = hasWholeSeconds ? twoSeconds : longestTick;
    return millisecondsFrom(m_modified, now) > tick && millisecondsFrom(m_changed, now) > tick;
}
