// What a look at the clock tells about an attempt to set it.
#pragma once

#include <QtCore/QDateTime>

enum class ClockOutcome {
    NotSet, ///< the clock does not show the time that was set, or not yet
    OnlyDateSet, ///< the day is right, but the time of day began at midnight
    Set
};

/// \a target is the time that was to be set, \a now what the clock shows \a elapsed milliseconds after that.
/// A time that merely lies near the target does not count as set.
ClockOutcome clockOutcome(const QDateTime &target, const QDateTime &now, qint64 elapsed);
