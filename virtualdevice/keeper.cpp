// The keeper starts the parts and COMMAND, waits, and ends what is left. As the subreaper of its descendants
// it inherits every process that they leave behind, so that when it has no child any more nothing of the
// device runs.
#include "keeper.h"

#include "deviceclock.h"
#include "deviceparts.h"
#include "failure.h"
#include "leftovers.h"
#include "namespaces.h"
#include "signalqueue.h"
#include "treeremoval.h"
#include "wholedevice.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <poll.h>
#include <set>
#include <sys/prctl.h>
#include <sys/wait.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds startLimit{20};
constexpr std::chrono::seconds commandEndLimit{5};
constexpr std::chrono::seconds partEndLimit{5};
// Room for what a sanitizer has to say.
constexpr std::size_t logLinesShown = 60;

std::string endOfLog(const std::string &path)
{
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    const auto first = lines.end() - static_cast<std::ptrdiff_t>(std::min(lines.size(), logLinesShown));
    std::string result;
    for (auto line = first; line != lines.end(); ++line)
        result += "\n  " + *line;
    return result.empty() ? " (it wrote nothing)" : "; it wrote last:" + result;
}

std::string describeEnd(int waitStatus)
{
    if (WIFSIGNALED(waitStatus))
        return "was ended by signal " + std::to_string(WTERMSIG(waitStatus)) + " ("
            + strsignal(WTERMSIG(waitStatus)) + ")";
    return "ended with exit status " + std::to_string(WEXITSTATUS(waitStatus));
}

// Of a folder that the device hides, the path only: an open one would stay the machine's. Of any other, which
// need not even be reachable by its path, nothing.
std::string workingFolderToEnter()
{
    std::error_code error;
    const std::string folder = std::filesystem::current_path(error);
    return isHiddenInDevices(folder) ? folder : std::string();
}

bool isCrash(int waitStatus)
{
    static const std::set<int> signals{SIGILL, SIGTRAP, SIGABRT, SIGBUS, SIGFPE, SIGSEGV, SIGSYS};
    return WIFSIGNALED(waitStatus) && signals.count(WTERMSIG(waitStatus)) > 0;
}

bool isFailure(int waitStatus)
{
    return WIFEXITED(waitStatus) && WEXITSTATUS(waitStatus) != 0;
}

int exitStatusFor(int waitStatus)
{
    return WIFSIGNALED(waitStatus) ? signalStatusBase + WTERMSIG(waitStatus) : WEXITSTATUS(waitStatus);
}

struct RunningPart
{
    std::unique_ptr<DevicePart> part;
    // 0 before the start and after the end.
    pid_t process = 0;
    bool ready = false;
};

class Keeper
{
public:
    Keeper(const CommandLine &commandLine, KeeperLink link, const sigset_t &mask)
        : m_commandLine(commandLine)
        , m_link(std::move(link))
        , m_mask(mask)
    {
    }

    int run();

private:
    int runDevice();
    void bringUp(RunningPart *running);
    void holdCommand();
    int runCommand();
    void announce() const;
    void clearUp();
    void endPart(RunningPart *running);
    void endLeftovers(const std::set<pid_t> &spared);
    std::set<pid_t> partProcesses() const;

    bool mustStop() const { return m_endNow || m_stopSignal != 0; }
    void waitForEvents(int descriptor, std::optional<Clock::time_point> deadline);
    void takeMessage();
    void takeSignal(int number, bool fromTerminal);
    void reapChildren();
    void partEnded(RunningPart *running, int waitStatus);
    void fail(const std::string &sentence);

    const CommandLine m_commandLine;
    KeeperLink m_link;
    const sigset_t m_mask;
    const SignalQueue m_signals{{SIGCHLD, SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE, SIGTTOU}};

    std::optional<DeviceDirectory> m_directory;
    SchedulerPlace m_schedulerPlace;
    FileDescriptor m_mountsOutside;
    ChildProgram m_surroundings;
    std::vector<RunningPart> m_parts;
    std::optional<HeldProgram> m_held;
    // The process of COMMAND; 0 before there is one and after its end.
    pid_t m_command = 0;
    bool m_commandRuns = false;
    std::optional<int> m_commandStatus;
    std::optional<Clock::time_point> m_killCommandAt;
    int m_stopSignal = 0;
    bool m_endNow = false;
    bool m_clearingUp = false;
    bool m_failed = false;
};

void Keeper::fail(const std::string &sentence)
{
    complain(sentence);
    m_failed = true;
}

void Keeper::takeMessage()
{
    const LinkMessage message = m_link.receive();
    if (message.kind == LinkMessage::Signal)
        takeSignal(message.value, message.text == "terminal");
    if (message.kind == LinkMessage::Closed)
        m_link.close();
    if (message.kind == LinkMessage::Closed || message.kind == LinkMessage::End)
        m_endNow = true;
}

void Keeper::takeSignal(int number, bool fromTerminal)
{
    if (m_clearingUp)
        return;
    if (!m_commandRuns) {
        m_stopSignal = number;
        return;
    }
    if (m_command == 0)
        return;
    // The terminal has sent these two to COMMAND as well, which is in the same process group.
    if (fromTerminal && (number == SIGINT || number == SIGQUIT))
        return;
    kill(m_command, number);
    if (number == SIGTERM && !m_killCommandAt)
        m_killCommandAt = Clock::now() + commandEndLimit;
}

void Keeper::partEnded(RunningPart *running, int waitStatus)
{
    running->process = 0;
    if (!running->ready)
        return;
    std::string sentence = running->part->name() + " " + describeEnd(waitStatus);
    if (isCrash(waitStatus) || isFailure(waitStatus))
        sentence += endOfLog(running->part->logFile());
    if (isCrash(waitStatus) || (m_clearingUp && isFailure(waitStatus)))
        fail(sentence);
    else if (!m_clearingUp && waitStatus != 0)
        complain(sentence);
}

void Keeper::reapChildren()
{
    int waitStatus = 0;
    for (pid_t process = 0; (process = waitpid(-1, &waitStatus, WNOHANG)) > 0;) {
        if (process == m_command) {
            m_command = 0;
            m_commandStatus = exitStatusFor(waitStatus);
        }
        for (RunningPart &running : m_parts) {
            if (running.process == process)
                partEnded(&running, waitStatus);
        }
    }
}

// Waits until something has happened, DESCRIPTOR is readable or DEADLINE has come.
void Keeper::waitForEvents(int descriptor, std::optional<Clock::time_point> deadline)
{
    int milliseconds = -1;
    if (deadline) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now());
        milliseconds = std::max(0, static_cast<int>(left.count()));
    }
    std::array<pollfd, 3> events = {
        {{m_signals.descriptor(), POLLIN, 0}, {m_link.descriptor(), POLLIN, 0}, {descriptor, POLLIN, 0}}};
    poll(events.data(), events.size(), milliseconds);
    if (events[1].revents)
        takeMessage();
    while (const auto signal = m_signals.next()) {
        const int number = static_cast<int>(signal->ssi_signo);
        if (number == SIGCHLD)
            reapChildren();
        else if (number != SIGPIPE && number != SIGTTOU)
            takeSignal(number, false);
    }
}

void Keeper::bringUp(RunningPart *running)
{
    DevicePart *const part = running->part.get();
    running->process = part->start(m_surroundings);
    const Clock::time_point deadline = Clock::now() + startLimit;
    while (!part->isReady()) {
        waitForEvents(part->readinessDescriptor(), deadline);
        if (mustStop())
            return;
        if (running->process == 0)
            throw Failure(part->name() + " did not come up" + endOfLog(part->logFile()));
        if (Clock::now() >= deadline)
            throw Failure(part->name() + " did not come up within " + std::to_string(startLimit.count())
                          + " seconds" + endOfLog(part->logFile()));
    }
    running->ready = true;
}

void Keeper::holdCommand()
{
    if (m_commandLine.command.empty())
        return;
    ChildProgram program = m_surroundings;
    program.arguments = m_commandLine.command;
    if (!m_commandLine.busOnly)
        program.workingFolder = workingFolderToEnter();
    // Not in that of the parts, which may have a sanitizer that wants to be first.
    if (m_commandLine.deviceClock && !m_commandLine.busOnly)
        deviceClockInSight(program.environment).applyTo(&program.environment);
    m_held.emplace(program);
    m_command = m_held->process();
}

int Keeper::runCommand()
{
    m_commandRuns = true;
    if (!m_held->run()) {
        const int error = errno;
        m_command = 0;
        throw Failure("cannot run '" + m_commandLine.command.front() + "': " + std::strerror(error),
                      error == ENOENT ? notFoundStatus : cannotRunStatus);
    }
    while (!m_commandStatus && !m_endNow) {
        waitForEvents(-1, m_killCommandAt);
        if (m_command != 0 && m_killCommandAt && Clock::now() >= *m_killCommandAt) {
            kill(m_command, SIGKILL);
            m_killCommandAt.reset();
        }
    }
    return m_commandStatus.value_or(ownFailureStatus);
}

// In one write, so that a reader who sees the last line has seen all.
void Keeper::announce() const
{
    std::string text = "# A virtual device runs in " + m_directory->path()
        + " until Ctrl-C here, or SIGTERM.\n" + "# Another shell uses it once it has read these lines.\n"
        + environmentOutside(m_commandLine, *m_directory, m_schedulerPlace, Environment::ofThisProcess())
              .asShellText();
    if (!m_commandLine.busOnly)
        text +=
            "# They do not bring it into /etc, /run, /var/lib and the network of the device; this does, for "
            "one program:\n"
            "in_device() { "
            + commandToEnter(getpid()) + " -- "
            + (m_commandLine.deviceClock ? deviceClockInSightAsShellText() + " " : std::string())
            + "\"$@\"; }\n";
    if (!m_commandLine.withoutDaemon)
        text += "# The daemon's control interface, for example to take the internet away:\n"
                "#   dbus-send --system --print-reply --dest=com.corvanta.zbutility / "
                "com.corvanta.VirtualDevice1.SetInternetState boolean:false\n";
    text += "# The device is ready.\n";
    const ssize_t written = write(STDOUT_FILENO, text.data(), text.size());
    if (written != static_cast<ssize_t>(text.size()))
        complain("cannot write the environment to standard output");
}

int Keeper::runDevice()
{
    m_directory = DeviceDirectory::create();
    m_link.send({LinkMessage::Directory, 0, m_directory->path()});
    const Environment callers = Environment::ofThisProcess();
    m_surroundings.environment = callers;
    m_surroundings.signalMask = m_mask;
    m_schedulerPlace = chooseSchedulerPlace(m_commandLine, *m_directory);
    deviceEnvironment(m_commandLine, *m_directory, m_schedulerPlace, callers)
        .applyTo(&m_surroundings.environment);
    // COMMAND cannot be moved into them later.
    if (!m_commandLine.busOnly)
        m_mountsOutside = enterNamespaces();
    holdCommand();
    // Out of reach of what is sent to the launcher's group: Ctrl-C and Ctrl-Z, and SIGKILL by timeout(1). A
    // group of our own in the same session would do that too, but as a parent in the session of COMMAND we
    // would have a say in whether the caller's group is orphaned: at COMMAND's end the kernel would hang up
    // the group if anything in it is stopped.
    setsid();
    if (!m_commandLine.busOnly)
        setUpWholeDevice(m_commandLine, *m_directory, m_surroundings, callers);
    for (std::unique_ptr<DevicePart> &part : makeDeviceParts(m_commandLine, *m_directory, m_schedulerPlace))
        m_parts.push_back({std::move(part), 0, false});
    for (RunningPart &running : m_parts) {
        bringUp(&running);
        if (mustStop())
            return signalStatusBase + m_stopSignal;
    }
    if (m_held)
        return runCommand();
    announce();
    while (!mustStop())
        waitForEvents(-1, std::nullopt);
    return 0;
}

std::set<pid_t> Keeper::partProcesses() const
{
    std::set<pid_t> result;
    for (const RunningPart &running : m_parts)
        result.insert(running.process);
    return result;
}

void Keeper::endPart(RunningPart *running)
{
    if (running->process == 0)
        return;
    kill(running->process, running->part->endSignal());
    const Clock::time_point deadline = Clock::now() + partEndLimit;
    while (running->process != 0 && Clock::now() < deadline)
        waitForEvents(-1, deadline);
    if (running->process != 0)
        fail(running->part->name() + " does not end when told to" + endOfLog(running->part->logFile()));
}

void Keeper::endLeftovers(const std::set<pid_t> &spared)
{
    for (const std::string &complaint : killLeftovers(spared))
        fail(complaint);
    reapChildren();
}

void Keeper::clearUp()
{
    m_clearingUp = true;
    endLeftovers(partProcesses());
    for (auto running = m_parts.rbegin(); running != m_parts.rend(); ++running)
        endPart(&*running);
    endLeftovers({});
    if (!m_directory)
        return;
    returnToMounts(m_mountsOutside);
    for (const std::string &complaint : removeTree(m_directory->path()))
        fail(complaint);
}

int Keeper::run()
{
    prctl(PR_SET_NAME, "zbvd-keeper");
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    int status = ownFailureStatus;
    try {
        status = runDevice();
    } catch (const Failure &failure) {
        complain(failure.what());
        status = failure.exitStatus();
    } catch (const std::exception &error) {
        complain(error.what());
    }
    clearUp();
    if (m_failed && status == 0)
        status = ownFailureStatus;
    return status;
}

} // namespace

int runKeeper(const CommandLine &commandLine, KeeperLink link, const sigset_t &mask)
{
    try {
        return Keeper(commandLine, std::move(link), mask).run();
    } catch (const std::exception &error) {
        complain(error.what());
        return ownFailureStatus;
    }
}
