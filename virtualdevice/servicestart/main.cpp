// zbservicestart KEEPER PROGRAM [ARGUMENT...]: starts PROGRAM so that it ends with the process KEEPER of a
// virtual device, however that ends. What the bus starts has a helper of the bus for its parent, which ends
// once the service has its name; so the program is started by a child that waits until it is KEEPER's own, as
// what loses its parent in a device becomes. The bus takes a service that ends at once without an error for
// one that goes on in the background.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/prctl.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

constexpr int failed = 1;

void waitForEndOfParent(pid_t parent)
{
    sigset_t ended;
    sigset_t before;
    sigemptyset(&ended);
    sigaddset(&ended, SIGUSR1);
    sigprocmask(SIG_BLOCK, &ended, &before);
    prctl(PR_SET_PDEATHSIG, SIGUSR1);
    int number = 0;
    while (getppid() == parent)
        sigwait(&ended, &number);
    // One that came between the question and the wait would be the program's death.
    const timespec atOnce = {};
    prctl(PR_SET_PDEATHSIG, 0);
    sigtimedwait(&ended, nullptr, &atOnce);
    sigprocmask(SIG_SETMASK, &before, nullptr);
}

} // namespace

int main(int argumentCount, char **arguments)
{
    if (argumentCount < 3) {
        std::fputs("Usage: zbservicestart KEEPER PROGRAM [ARGUMENT...]\n", stderr);
        return failed;
    }
    const auto keeper = static_cast<pid_t>(std::strtol(arguments[1], nullptr, 10));
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child != 0)
        return child > 0 ? 0 : failed;

    waitForEndOfParent(parent);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != keeper)
        _exit(failed);
    execv(arguments[2], arguments + 2);
    std::perror(arguments[2]);
    _exit(failed);
}
