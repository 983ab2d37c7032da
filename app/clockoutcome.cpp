// Compares the clock with what it was set to.
#include "clockoutcome.h"

#include <QtCore/QVector>

#include <algorithm>
#include <ctime>

namespace {

// The time begins at some moment between the request and its end; more than that is another time.
constexpr qint64 early = -1000;
constexpr qint64 late = 1000;
constexpr qint64 dayMilliseconds = 86400000;

/// How far the zone's clocks are ahead of UTC at a moment, in milliseconds. QDateTime takes every change for
/// one of a whole hour.
qint64 offsetAt(qint64 moment)
{
    const auto seconds = std::time_t(moment / 1000);
    std::tm local = {};
    // Alone, localtime_r() need not notice that the zone has changed.
    tzset();
    return localtime_r(&seconds, &local) ? qint64(local.tm_gmtoff) * 1000 : 0;
}

/// The moments for which a time that a person reads off a clock stands, as milliseconds since 1970 UTC.
QVector<qint64> momentsOf(const QDate &date, const QTime &time)
{
    const qint64 shown = QDateTime(date, time, Qt::UTC).toMSecsSinceEpoch();
    const qint64 onTheDayBefore = shown - offsetAt(shown - dayMilliseconds);
    const qint64 onTheDayAfter = shown - offsetAt(shown + dayMilliseconds);
    QVector<qint64> real;
    for (const qint64 moment : {onTheDayBefore, onTheDayAfter}) {
        if (moment + offsetAt(moment) == shown)
            real += moment;
    }
    return real.isEmpty() ? QVector<qint64>{onTheDayBefore, onTheDayAfter} : real;
}

bool hasRunFrom(const QDate &date, const QTime &time, const QDateTime &now, qint64 elapsed)
{
    const QVector<qint64> starts = momentsOf(date, time);
    return std::any_of(starts.begin(), starts.end(), [&now, elapsed](qint64 start) {
        const qint64 since = now.toMSecsSinceEpoch() - start;
        return since >= early && since <= elapsed + late;
    });
}

} // namespace

ClockOutcome clockOutcome(const QDate &date, const QTime &time, const QDateTime &now, qint64 elapsed)
{
    if (!date.isValid() || !time.isValid() || !now.isValid())
        return ClockOutcome::NotSet;
    if (hasRunFrom(date, time, now, elapsed))
        return ClockOutcome::Set;
    return hasRunFrom(date, QTime(0, 0), now, elapsed) ? ClockOutcome::OnlyDateSet : ClockOutcome::NotSet;
}
