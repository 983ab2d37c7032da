// Runs the print queue daemon. It is ready when it answers: it has its name before it has read its jobs.
#include "printqueuedaemon.h"

#include "failure.h"
#include "files.h"
#include "textfiles.h"

PrintQueueDaemon::PrintQueueDaemon(const DeviceDirectory &directory, const std::string &program,
                                   const std::string &queue)
    : DevicePart("printqd", directory)
    , m_program(program)
    , m_queue(queue)
{
    if (access(m_program.c_str(), X_OK) != 0)
        throw systemFailure("cannot run the print queue daemon '" + m_program
                            + "'; build it, name another with --printqd, or go --without-printqd");
}

pid_t PrintQueueDaemon::start(const ChildProgram &surroundings)
{
    writeFile(directory().printQueueState() + "/supplies.json", suppliesText);
    m_watch = std::make_unique<BusNameWatch>(directory().busAddress(), "com.corvanta.printqd");
    ChildProgram program = surroundings;
    program.arguments = {m_program, "--virtual-device", "--state-directory", directory().printQueueState()};
    if (m_queue.empty())
        program.arguments.emplace_back("--without-scheduler");
    else
        program.arguments.insert(program.arguments.end(), {"--printer", m_queue});
    const pid_t process = startInBackground(program, logFile());
    if (process < 0)
        throw systemFailure("cannot run the print queue daemon '" + m_program + "'");
    return process;
}

int PrintQueueDaemon::readinessDescriptor() const
{
    return m_watch->descriptor();
}

bool PrintQueueDaemon::isReady()
{
    // Not of its own interface, whose calls it records.
    const bool ready = m_watch->isAnswering("com.corvanta.VirtualDevice1", "ClearCalls");
    if (ready)
        m_watch.reset();
    return ready;
}
