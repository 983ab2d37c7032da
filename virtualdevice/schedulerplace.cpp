// A whole device has loopback ports and a /run of its own; otherwise those of the machine are shared.
#include "schedulerplace.h"

#include "failure.h"
#include "runtimefolder.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace {

constexpr int ippPort = 631;

int freeLoopbackPort()
{
    const FileDescriptor taken(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto *const generic = reinterpret_cast<sockaddr *>(&address);
    if (bind(taken.get(), generic, size) != 0 || getsockname(taken.get(), generic, &size) != 0)
        throw systemFailure("cannot find a free port for the print scheduler");
    return ntohs(address.sin_port);
}

} // namespace

std::string SchedulerPlace::queueAddress() const
{
    return "ipp://127.0.0.1:" + std::to_string(port) + "/printers/BrackenXL";
}

SchedulerPlace chooseSchedulerPlace(const CommandLine &commandLine, const DeviceDirectory &directory)
{
    if (!commandLine.printing)
        return {};
    if (commandLine.busOnly && directory.printing().find_first_of(":#") != std::string::npos)
        throw Failure("the print scheduler cannot lie in '" + directory.path()
                      + "'; name a folder without ':' and '#' as TMPDIR");
    if (commandLine.busOnly)
        return {directory.printing(), "", freeLoopbackPort()};
    return {printingFolder, "/run/cups/cups.sock", ippPort};
}
