// Points of time as file systems know them: the present one, and two beside each other.
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

inline bool isSameTime(const timespec &left, const timespec &right)
{
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

/// Negative when \a end is before \a begin.
inline qint64 millisecondsFrom(const timespec &begin, const timespec &end)
{
    constexpr qint64 thousand = 1000;
    constexpr qint64 million = 1000000;
    return (qint64(end.tv_sec) - begin.tv_sec) * thousand + (end.tv_nsec - begin.tv_nsec) / million;
}
