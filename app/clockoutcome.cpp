// Compares the clock with what it was set to.
#include "clockoutcome.h"

namespace {

// The time begins at some moment between the request and its end; more than that is another time.
constexpr qint64 early = -1000;
constexpr qint64 late = 1000;

bool hasRunFrom(const QDateTime &start, const QDateTime &now, qint64 elapsed)
{
    const qint64 since = start.msecsTo(now);
    return since >= early && since <= elapsed + late;
}

} // namespace

ClockOutcome clockOutcome(const QDateTime &target, const QDateTime &now, qint64 elapsed)
{
    if (!target.isValid() || !now.isValid())
        return ClockOutcome::NotSet;
    if (hasRunFrom(target, now, elapsed))
        return ClockOutcome::Set;
    return hasRunFrom(target.date().startOfDay(), now, elapsed) ? ClockOutcome::OnlyDateSet
                                                                : ClockOutcome::NotSet;
}
