// fork and exec. A pipe that exec closes tells the parent at once whether the program could be run.
#include "childprocess.h"

#include "failure.h"

#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/wait.h>

namespace {

std::vector<char *> asPointers(const std::vector<std::string> &texts)
{
    std::vector<char *> result;
    result.reserve(texts.size() + 1);
    for (const std::string &text : texts)
        result.push_back(const_cast<char *>(text.c_str()));
    result.push_back(nullptr);
    return result;
}

// A child must not be left behind by a parent that was killed, not even one killed before the child said so.
void dieWithParent(pid_t parent)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent)
        _exit(ownFailureStatus);
}

struct Pipe
{
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

// Both ends are out of the way of the numbers that a child gives to its own descriptors.
Pipe makePipe()
{
    std::array<int, 2> ends = {};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw systemFailure("cannot make a pipe");
    const FileDescriptor readEnd(ends[0]);
    const FileDescriptor writeEnd(ends[1]);
    constexpr int lowest = passedDescriptorNumber + 1;
    Pipe result{FileDescriptor(fcntl(readEnd.get(), F_DUPFD_CLOEXEC, lowest)),
                FileDescriptor(fcntl(writeEnd.get(), F_DUPFD_CLOEXEC, lowest))};
    if (!result.readEnd.isOpen() || !result.writeEnd.isOpen())
        throw systemFailure("cannot make a pipe");
    return result;
}

void enterWorkingFolder(const std::string &folder)
{
    if (folder.empty() || chdir(folder.c_str()) == 0)
        return;
    const Failure failure = systemFailure("cannot enter '" + folder + "' in the device, going to '/'");
    if (chdir("/") != 0)
        _exit(ownFailureStatus);
    complain(failure.what());
}

// SETUP runs in the child and returns false, with errno set, if the program must not be run. If it cannot be
// run, errno goes into EXECERROR.
template <typename Setup>
pid_t forkChild(const ChildProgram &program, const FileDescriptor &execError, Setup setUp)
{
    const std::vector<char *> arguments = asPointers(program.arguments);
    const std::vector<char *> environment = asPointers(program.environment.entries());
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child != 0)
        return child;
    dieWithParent(parent);
    if (setUp()) {
        enterWorkingFolder(program.workingFolder);
        sigprocmask(SIG_SETMASK, &program.signalMask, nullptr);
        execvpe(arguments.front(), arguments.data(), environment.data());
    }
    const int error = errno;
    const ssize_t written = write(execError.get(), &error, sizeof error);
    _exit(written == sizeof error ? cannotRunStatus : ownFailureStatus);
}

// exec closes the pipe; what comes out of it before is the reason why there was none.
bool wasRun(pid_t child, const FileDescriptor &execError)
{
    int error = 0;
    if (read(execError.get(), &error, sizeof error) != sizeof error)
        return true;
    waitpid(child, nullptr, 0);
    errno = error;
    return false;
}

bool putAt(int descriptor, int number)
{
    if (descriptor == number)
        return fcntl(number, F_SETFD, 0) == 0;
    return dup2(descriptor, number) == number;
}

bool detach(const std::string &logFile, int passed)
{
    setsid();
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    const int log = open(logFile.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (nothing < 0 || log < 0)
        return false;
    if (!putAt(nothing, STDIN_FILENO) || !putAt(log, STDOUT_FILENO) || !putAt(log, STDERR_FILENO))
        return false;
    // Whoever started the launcher may wait for the end of a pipe that it passed on.
    close_range(STDERR_FILENO + 1, UINT_MAX, CLOSE_RANGE_CLOEXEC);
    return passed < 0 || putAt(passed, passedDescriptorNumber);
}

} // namespace

HeldProgram::HeldProgram(const ChildProgram &program)
{
    Pipe word = makePipe();
    Pipe execError = makePipe();
    m_process = forkChild(program, execError.writeEnd, [&word] {
        word.writeEnd.close();
        char received = 0;
        if (read(word.readEnd.get(), &received, sizeof received) != sizeof received)
            _exit(ownFailureStatus);
        return true;
    });
    if (m_process < 0)
        throw systemFailure("cannot start another process");
    m_word = std::move(word.writeEnd);
    m_execError = std::move(execError.readEnd);
}

bool HeldProgram::run()
{
    // A child that is gone already is the business of whoever waits for children.
    const char word = 0;
    const ssize_t written = write(m_word.get(), &word, sizeof word);
    return written != sizeof word || wasRun(m_process, m_execError);
}

pid_t startInBackground(const ChildProgram &program, const std::string &logFile, int passed)
{
    Pipe execError = makePipe();
    const pid_t child =
        forkChild(program, execError.writeEnd, [&logFile, passed] { return detach(logFile, passed); });
    execError.writeEnd.close();
    return child > 0 && wasRun(child, execError.readEnd) ? child : -1;
}
