// How long an operation may hold the event loop.
//
// What a loaded machine adds comes and goes, what the code waits for is there every time. So several attempts
// are made where the first took long, and the shortest has to be close to what the code may wait for.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>

/// A tool that is read back is waited for so long, in milliseconds.
constexpr int toolTime = 500;
/// What a loaded machine may add to one attempt.
constexpr int loadTime = 400;

#ifdef __SANITIZE_ADDRESS__
/// Starting a process costs a program with a sanitizer's memory tens of milliseconds.
constexpr int sanitizerFactor = 2;
#else
constexpr int sanitizerFactor = 1;
#endif

/// The longest pauses that an operation may make, in milliseconds.
struct Patience
{
    int shortestAttempt;
    int anyAttempt;
};

/// For an operation with one wait for a tool.
constexpr Patience oneWait{toolTime + 60 * sanitizerFactor, toolTime + loadTime};
/// For one whose tool has printed for all of that time: its output is taken in and decoded on top of the
/// wait.
constexpr Patience oneWaitAndMegabytes{toolTime + 250 * sanitizerFactor, toolTime + 2 * loadTime};
/// For an operation without a wait.
constexpr Patience noWait{100 * sanitizerFactor, loadTime};
/// For three detached starts, each of which copies the process twice: up to 60 ms a copy with a sanitizer.
constexpr Patience threeDetachedStarts{sanitizerFactor == 1 ? 100 : 500, loadTime *sanitizerFactor};

/// What is wrong with the pauses that \a attempt returns, each of an attempt of its own; empty when nothing
/// is. The attempt is repeated, up to five in all, only while it takes too long.
template <typename Attempt> QByteArray complaintAbout(const Attempt &attempt, const Patience &allowed)
{
    constexpr int mostAttempts = 5;
    QByteArrayList pauses;
    for (int i = 0; i < mostAttempts; ++i) {
        const qint64 pause = attempt();
        pauses.append(QByteArray::number(pause));
        if (pause <= allowed.shortestAttempt)
            return {};
        if (pause > allowed.anyAttempt)
            break;
    }
    return pauses.join(", ") + " ms in place of " + QByteArray::number(allowed.shortestAttempt);
}
