// A command for the device: says on standard output which signals reach it, and from where; SIGTERM ends it.
#include <csignal>
#include <cstdio>

int main()
{
    sigset_t all = {};
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, nullptr);
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        siginfo_t information = {};
        const int number = sigwaitinfo(&all, &information);
        std::printf("signal %d from %s\n", number, information.si_code == SI_KERNEL ? "terminal" : "process");
        std::fflush(stdout);
        if (number == SIGTERM)
            return 0;
    }
}
