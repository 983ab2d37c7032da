// Runs the utility daemon. It is ready when its name is on the bus.
#include "utilitydaemon.h"

#include "failure.h"

UtilityDaemon::UtilityDaemon(const DeviceDirectory &directory, const std::string &program)
    : DevicePart("zbutilityd", directory)
    , m_program(program)
{
    if (access(m_program.c_str(), X_OK) != 0)
        throw systemFailure("cannot run the utility daemon '" + m_program
                            + "'; build it, name another with --utilityd, or go --without-daemon");
}

pid_t UtilityDaemon::start(const ChildProgram &surroundings)
{
    m_watch = std::make_unique<BusNameWatch>(directory().busAddress(), "com.corvanta.zbutility");
    ChildProgram program = surroundings;
    program.arguments = {m_program, "--virtual-device", "--state-directory",
                         directory().utilityDaemonState()};
    const pid_t process = startInBackground(program, logFile());
    if (process < 0)
        throw systemFailure("cannot run the utility daemon '" + m_program + "'");
    return process;
}

int UtilityDaemon::readinessDescriptor() const
{
    return m_watch->descriptor();
}

bool UtilityDaemon::isReady()
{
    const bool ready = m_watch->isOwned();
    if (ready)
        m_watch.reset();
    return ready;
}
