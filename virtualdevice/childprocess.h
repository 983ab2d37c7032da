// Starts a program as a child that cannot outlive this process.
#pragma once

#include "environment.h"
#include "filedescriptor.h"

#include <csignal>
#include <string>
#include <sys/types.h>
#include <vector>

struct ChildProgram
{
    /// The program, looked up in PATH if it has no slash, and its arguments.
    std::vector<std::string> arguments;
    Environment environment;
    /// Signals that the child blocks.
    sigset_t signalMask = {};
    /// Where the program begins, looked up when it is run; empty means in the folder of this process. If
    /// there is no such folder it begins in "/".
    std::string workingFolder;
};

/// A child that waits for the word to become a program. It belongs to the session and process group, and with
/// them to the terminal, that its parent had when it was made, whatever becomes of the parent's; the standard
/// streams are the parent's.
class HeldProgram
{
public:
    /// Throws Failure.
    explicit HeldProgram(const ChildProgram &program);

    pid_t process() const { return m_process; }
    /// Lets it run. Returns whether it could be run; if not, errno is set and the child is gone.
    bool run();

private:
    pid_t m_process;
    FileDescriptor m_word;
    FileDescriptor m_execError;
};

/// Starts PROGRAM apart from any terminal: a session of its own, nothing to read, output and errors appended
/// to LOGFILE, no other descriptor of this process but, if PASSED is not negative, that one, as descriptor
/// passedDescriptorNumber. Returns its process id, or -1 with errno set if it cannot be run.
pid_t startInBackground(const ChildProgram &program, const std::string &logFile, int passed = -1);

constexpr int passedDescriptorNumber = 3;
