// The time between two points of time, and the present one.
#pragma once

#include <QtCore/qglobal.h>

#include <ctime>

/// The present time as file systems know it.
inline timespec presentTime()
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return now;
}

/// Negative when \a end is before \a begin.
inline qint64 millisecondsFrom(const timespec &begin, const timespec &end)
{
    constexpr qint64 thousand = 1000;
    constexpr qint64 million = 1000000;
    return (qint64(end.tv_sec) - begin.tv_sec) * thousand + (end.tv_nsec - begin.tv_nsec) / million;
}
