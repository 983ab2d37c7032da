// What a look at the clock tells about an attempt to set it.
#pragma once

#include <QtCore/QDateTime>

enum class ClockOutcome {
    NotSet, ///< the clock does not show the time that was set, or not yet
    OnlyDateSet, ///< the day is right, but the time of day began at midnight
    Set
};

/**
 * \a date and \a time are what was to be set, as a person reads it off a clock in this process's time zone;
 * \a now is what the clock shows \a elapsed milliseconds after that. A time that merely lies near does not
 * count as set.
 *
 * Where the zone's clocks are put back, each time of the repeated hour stands for two moments, and both
 * count. In the hour that is left out when they are put forward no clock shows the time: there counts what
 * mktime(3) may make of it, which is the time with the offset from UTC before or with that after the change.
 */
ClockOutcome clockOutcome(const QDate &date, const QTime &time, const QDateTime &now, qint64 elapsed);
