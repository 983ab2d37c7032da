// Measures the pauses between the beats of a timer.
#include "heartbeat.h"

#include <QtCore/QEventLoop>

Heartbeat::Heartbeat(QObject *parent)
    : QObject(parent)
{
    constexpr int intervalMilliseconds = 5;
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Heartbeat::beat);
    m_sinceLastBeat.start();
    m_timer.start(intervalMilliseconds);
}

qint64 Heartbeat::longestPause() const
{
    return m_longestPause;
}

void Heartbeat::beat()
{
    m_longestPause = qMax(m_longestPause, m_sinceLastBeat.restart());
}

qint64 Heartbeat::longestPauseAround(const std::function<void()> &work, int moreMilliseconds)
{
    QEventLoop loop;
    const Heartbeat heartbeat;
    QTimer::singleShot(0, &loop, [&] {
        work();
        QTimer::singleShot(moreMilliseconds, &loop, &QEventLoop::quit);
    });
    loop.exec();
    return heartbeat.longestPause();
}
