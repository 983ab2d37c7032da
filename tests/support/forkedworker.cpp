// Signals and waiting for one process.
#include "forkedworker.h"

#include <cerrno>
#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>

ForkedWorker::~ForkedWorker()
{
    kill();
}

bool ForkedWorker::isRunning() const
{
    siginfo_t information = {};
    return waitid(P_PID, id_t(m_process), &information, WEXITED | WNOHANG | WNOWAIT) == 0
        && information.si_pid == 0;
}

void ForkedWorker::stop()
{
    ::kill(m_process, SIGSTOP);
    waitpid(m_process, nullptr, WUNTRACED);
}

void ForkedWorker::kill()
{
    if (m_process <= 0)
        return;
    ::kill(m_process, SIGKILL);
    finish();
}

int ForkedWorker::finish()
{
    int status = 0;
    while (waitpid(m_process, &status, 0) < 0 && errno == EINTR) { }
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void ForkedWorker::endWithTest()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}
