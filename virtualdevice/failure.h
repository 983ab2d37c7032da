// The one exception of the launcher: a sentence for the person at the terminal, and the exit status
// that goes with it.
#pragma once

#include <stdexcept>
#include <string>

/// This machine does not allow what the device needs; ctest and automake take it as "skipped".
constexpr int forbiddenStatus = 77;
/// Exit status of the launcher for failures of its own; the same number that env(1) and timeout(1) use.
constexpr int ownFailureStatus = 125;
/// COMMAND was found but could not be run.
constexpr int cannotRunStatus = 126;
/// COMMAND was not found.
constexpr int notFoundStatus = 127;
/// Added to the number of the signal that ended COMMAND, as shells do.
constexpr int signalStatusBase = 128;

class Failure : public std::runtime_error
{
public:
    explicit Failure(const std::string &sentence, int exitStatus = ownFailureStatus)
        : std::runtime_error(sentence)
        , m_exitStatus(exitStatus)
    {
    }

    int exitStatus() const { return m_exitStatus; }

private:
    int m_exitStatus;
};

/// "SENTENCE: text of errno", for a system call that has just failed.
Failure systemFailure(const std::string &sentence);

/// For a system call that has just failed because this machine does not allow WHAT.
Failure forbiddenByMachine(const std::string &what);

/// Writes "zbvirtualdevice: SENTENCE" and a line end to standard error, in one piece.
void complain(const std::string &sentence);
