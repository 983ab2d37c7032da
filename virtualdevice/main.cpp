// zbvirtualdevice: runs a command in a private label printer that is gone when the command ends.
#include "commandline.h"
#include "failure.h"
#include "launcher.h"

#include <fcntl.h>
#include <iostream>
#include <unistd.h>

namespace {

// A caller may have closed a standard stream; its number must not go to a file of ours.
void openStandardStreams()
{
    int descriptor = -1;
    do
        descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0)
        close(descriptor);
}

} // namespace

int main(int argumentCount, char **arguments)
{
    openStandardStreams();
    try {
        const CommandLine commandLine = parseCommandLine({arguments + 1, arguments + argumentCount});
        if (commandLine.help) {
            std::cout << helpText();
            return 0;
        }
        return runLauncher(commandLine);
    } catch (const std::exception &error) {
        complain(error.what());
        return ownFailureStatus;
    }
}
