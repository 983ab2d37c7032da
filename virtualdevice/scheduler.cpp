// Runs cupsd in the foreground. It gives no sign when it listens, so it is tried at short intervals.
#include "scheduler.h"

#include "failure.h"
#include "schedulerfiles.h"

#include <csignal>
#include <cstdint>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <sys/un.h>

namespace {

constexpr long tickNanoseconds = 2'000'000;

bool accepts(const std::string &path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        throw Failure("the path '" + path + "' is too long for a socket");
    path.copy(&address.sun_path[0], path.size());
    const FileDescriptor client(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    return connect(client.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
}

} // namespace

Scheduler::Scheduler(const DeviceDirectory &directory, SchedulerPlace place)
    : DevicePart("cupsd", directory)
    , m_place(std::move(place))
{
    if (access(schedulerProgram, X_OK) != 0)
        throw Failure(std::string("there is no ") + schedulerProgram
                      + "; on Debian it is in the package cups-daemon, and --without-printing goes without");
}

pid_t Scheduler::start(const ChildProgram &surroundings)
{
    makeSchedulerFiles(directory(), m_place);
    m_tick = FileDescriptor(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));
    const itimerspec interval = {{0, tickNanoseconds}, {0, tickNanoseconds}};
    if (timerfd_settime(m_tick.get(), 0, &interval, nullptr) != 0)
        throw systemFailure("cannot set a timer");
    ChildProgram program = surroundings;
    program.arguments = {m_place.control(), "run"};
    const pid_t process = startInBackground(program, logFile());
    if (process < 0)
        throw systemFailure("cannot run '" + m_place.control() + "'");
    return process;
}

bool Scheduler::isReady()
{
    std::uint64_t ticks = 0;
    while (read(m_tick.get(), &ticks, sizeof ticks) > 0) { }
    if (!accepts(m_place.socket()))
        return false;
    m_tick.close();
    return true;
}

int Scheduler::endSignal() const
{
    // It takes more than a second to end when it is asked to, and what it would save is thrown away.
    return SIGKILL;
}
