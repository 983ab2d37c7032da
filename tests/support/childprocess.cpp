// Ties a started program to the life of the test.
#include "childprocess.h"

#include <csignal>
#include <sys/prctl.h>

void ChildProcess::setupChildProcess()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}
