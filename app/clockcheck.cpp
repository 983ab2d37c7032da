// Looks at the clock several times a second until it shows what was set, or the patience ends.
#include "clockcheck.h"

namespace {
constexpr int lookMilliseconds = 100;
}

ClockCheck::ClockCheck(QObject *parent)
    : QObject(parent)
{
    m_timer.setInterval(lookMilliseconds);
    connect(&m_timer, &QTimer::timeout, this, &ClockCheck::look);
}

ClockCheck::State ClockCheck::state() const
{
    return m_state;
}

void ClockCheck::begin(int year, int month, int day, int hour, int minute)
{
    m_date = QDate(year, month, day);
    m_time = QTime(hour, minute);
    m_elapsed.start();
    m_timer.start();
    setState(Watching);
}

void ClockCheck::reset()
{
    m_timer.stop();
    setState(Idle);
}

void ClockCheck::look()
{
    const qint64 elapsed = m_elapsed.elapsed();
    const ClockOutcome outcome = clockOutcome(m_date, m_time, QDateTime::currentDateTimeUtc(), elapsed);
    // The date comes first, so midnight of the right day is a stage on the way.
    if (outcome != ClockOutcome::Set && elapsed < m_patience)
        return;
    m_timer.stop();
    switch (outcome) {
    case ClockOutcome::Set:
        return setState(Set);
    case ClockOutcome::OnlyDateSet:
        return setState(OnlyDateSet);
    case ClockOutcome::NotSet:
        return setState(NotSet);
    }
}

void ClockCheck::setState(State state)
{
    if (state == m_state)
        return;
    m_state = state;
    Q_EMIT stateChanged();
}
