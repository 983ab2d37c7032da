// Shows how long a thread's event loop was held.
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>

/**
 * A timer that beats every few milliseconds while the event loop of its thread runs, and keeps the longest
 * pause between two beats.
 */
class Heartbeat : public QObject
{
    Q_OBJECT

public:
    explicit Heartbeat(QObject *parent = nullptr);

    /// The longest pause so far, in milliseconds.
    qint64 longestPause() const;

    /// Runs the event loop around \a work and for \a moreMilliseconds after it; returns the longest pause.
    static qint64 longestPauseAround(const std::function<void()> &work, int moreMilliseconds = 50);

private:
    void beat();

    QTimer m_timer;
    QElapsedTimer m_sinceLastBeat;
    qint64 m_longestPause = 0;
};
