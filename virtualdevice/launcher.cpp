// The launcher owns nothing of the device. It starts the keeper and watches, so that whoever kills the
// launcher leaves the keeper alive to clear up; and it clears up itself if it is the keeper that was killed.
#include "launcher.h"

#include "failure.h"
#include "keeper.h"
#include "keeperlink.h"
#include "leftovers.h"
#include "signalqueue.h"
#include "treeremoval.h"

#include <array>
#include <csignal>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>

namespace {

// A signal of our own for the parent's end, so that it is not taken for one that somebody sent.
int parentEndedSignal()
{
    return SIGRTMIN + 1;
}

class Launcher
{
public:
    explicit Launcher(const CommandLine &commandLine)
        : m_commandLine(commandLine)
    {
    }

    int run();

private:
    void startKeeper();
    void watchKeeper();
    void passSignalsOn();
    bool takeMessage();
    void clearUpAfterKeeper() const;

    const CommandLine m_commandLine;
    const sigset_t m_originalMask = currentSignalMask();
    const pid_t m_parent = getppid();
    const SignalQueue m_signals{{SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE, parentEndedSignal()}};
    std::pair<KeeperLink, KeeperLink> m_link = KeeperLink::makePair();
    pid_t m_keeper = 0;
    std::string m_directory;
};

void Launcher::startKeeper()
{
    m_keeper = fork();
    if (m_keeper < 0)
        throw systemFailure("cannot start another process");
    if (m_keeper == 0) {
        m_link.first.close();
        exit(runKeeper(m_commandLine, std::move(m_link.second), m_originalMask));
    }
    m_link.second.close();
}

void Launcher::passSignalsOn()
{
    while (const auto signal = m_signals.next()) {
        const int number = static_cast<int>(signal->ssi_signo);
        if (number == SIGPIPE)
            continue;
        if (number != parentEndedSignal())
            m_link.first.send({LinkMessage::Signal, number, signal->ssi_code == SI_KERNEL ? "terminal" : ""});
        else if (getppid() != m_parent)
            // Otherwise only the thread that started us has ended, and its process goes on.
            m_link.first.send({LinkMessage::End, 0, {}});
    }
}

bool Launcher::takeMessage()
{
    const LinkMessage message = m_link.first.receive();
    if (message.kind == LinkMessage::Directory)
        m_directory = message.text;
    return message.kind != LinkMessage::Closed;
}

void Launcher::watchKeeper()
{
    bool connected = true;
    while (connected) {
        std::array<pollfd, 2> events = {
            {{m_signals.descriptor(), POLLIN, 0}, {m_link.first.descriptor(), POLLIN, 0}}};
        poll(events.data(), events.size(), -1);
        if (events[0].revents)
            passSignalsOn();
        if (events[1].revents)
            connected = takeMessage();
    }
}

void Launcher::clearUpAfterKeeper() const
{
    complain("the keeper of the device was killed");
    for (const std::string &complaint : killLeftovers({}))
        complain(complaint);
    if (m_directory.empty())
        return;
    for (const std::string &complaint : removeTree(m_directory))
        complain(complaint);
}

int Launcher::run()
{
    // Ignored, as some callers leave it, children would end without a status.
    std::signal(SIGCHLD, SIG_DFL);
    prctl(PR_SET_PDEATHSIG, parentEndedSignal());
    if (getppid() != m_parent)
        return ownFailureStatus;
    // What the keeper leaves, if it is killed, comes to us.
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    startKeeper();
    watchKeeper();
    int waitStatus = 0;
    waitpid(m_keeper, &waitStatus, 0);
    if (WIFEXITED(waitStatus))
        return WEXITSTATUS(waitStatus);
    clearUpAfterKeeper();
    return ownFailureStatus;
}

} // namespace

int runLauncher(const CommandLine &commandLine)
{
    return Launcher(commandLine).run();
}
