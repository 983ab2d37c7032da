// How the launcher says on standard error that something is wrong.
#include "failure.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

Failure systemFailure(const std::string &sentence)
{
    return Failure(sentence + ": " + std::strerror(errno));
}

Failure forbiddenByMachine(const std::string &what)
{
    return Failure("this machine does not allow " + what + " (" + std::strerror(errno)
                       + "), which a whole device needs; a device with --bus-only does without",
                   forbiddenStatus);
}

void complain(const std::string &sentence)
{
    const std::string line = "zbvirtualdevice: " + sentence + "\n";
    // One write, so that the line is not torn apart by what COMMAND writes at the same time. A standard
    // error that is closed or full leaves nobody to tell.
    const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
    static_cast<void>(written);
}
