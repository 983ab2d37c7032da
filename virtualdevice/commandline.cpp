// The launcher's own options. The first word that is no option begins COMMAND, whose options are its own.
#include "commandline.h"

#include "failure.h"

#include <optional>

namespace {

const std::string tryHelp = "; 'zbvirtualdevice --help' lists the options";

bool beginsWith(const std::string &text, const std::string &beginning)
{
    return text.compare(0, beginning.size(), beginning) == 0;
}

// Takes the path that goes with OPTION, in the same argument or in the next. False if the argument is no such
// option.
bool takePath(const std::string &option, std::vector<std::string>::const_iterator *argument,
              std::vector<std::string>::const_iterator end, std::string *path)
{
    const bool isNext = **argument == option;
    if (!isNext && !beginsWith(**argument, option + "="))
        return false;
    if (!isNext)
        *path = (*argument)->substr(option.size() + 1);
    else
        *path = *argument + 1 == end ? std::string() : *++*argument;
    if (path->empty())
        throw Failure(option + " needs the path of a program" + tryHelp);
    return true;
}

// What the device with a bus only leaves to the machine is not its own to change.
void refuseWithBusOnly(bool given, const std::string &option)
{
    if (given)
        throw Failure(option + " needs a whole device and cannot go with --bus-only" + tryHelp);
}

} // namespace

CommandLine parseCommandLine(const std::vector<std::string> &arguments)
{
    CommandLine result;
    std::optional<bool> printing;
    std::optional<bool> printQueueDaemon;
    auto argument = arguments.begin();
    for (; argument != arguments.end() && beginsWith(*argument, "-") && *argument != "-"; ++argument) {
        if (*argument == "--") {
            ++argument;
            break;
        }
        if (*argument == "--help" || *argument == "-h")
            result.help = true;
        else if (*argument == "--without-daemon")
            result.withoutDaemon = true;
        else if (*argument == "--bus-only")
            result.busOnly = true;
        else if (*argument == "--device-clock")
            result.deviceClock = true;
        else if (*argument == "--with-data-partition")
            result.withDataPartition = true;
        else if (*argument == "--with-printing" || *argument == "--without-printing")
            printing = *argument == "--with-printing";
        else if (*argument == "--with-printqd" || *argument == "--without-printqd")
            printQueueDaemon = *argument == "--with-printqd";
        else if (!takePath("--utilityd", &argument, arguments.end(), &result.utilityDaemon)
                 && !takePath("--printqd", &argument, arguments.end(), &result.printQueueDaemonPath))
            throw Failure("there is no option '" + *argument + "'" + tryHelp);
    }
    result.command.assign(argument, arguments.end());
    result.printing = printing.value_or(!result.busOnly);
    result.printQueueDaemon = printQueueDaemon.value_or(!result.busOnly);
    refuseWithBusOnly(result.busOnly && result.deviceClock, "--device-clock");
    refuseWithBusOnly(result.busOnly && result.withDataPartition, "--with-data-partition");
    return result;
}

std::string helpText()
{
    return R"(Usage: zbvirtualdevice [OPTION...] [--] [COMMAND [ARGUMENT...]]

Starts a private label printer on this PC and runs COMMAND in it: a system bus and its daemons, a home
folder, /etc, /run and /var/lib, a network interface, a boot environment, a print queue and a clock of its own.
The machine stays as it is. The device ends with COMMAND and leaves no process and no file. Without COMMAND it prints the
device's environment for a shell to read, and waits for Ctrl-C.

  --bus-only             only the bus, the daemon and the home folder; needs no namespaces
  --without-daemon       without the utility daemon; COMMAND starts it itself, or does without
  --utilityd PATH        the utility daemon to use, instead of the zbutilityd beside this program
  --device-clock         COMMAND sees the device's clock, which it can set, instead of the machine's
  --with-data-partition  an ext4 file system of its own on /var/lib/corvanta/data; needs root
  --without-printing     without the print scheduler and its queue BrackenXL
  --with-printing        with them, also with --bus-only
  --without-printqd      without the print queue daemon
  --with-printqd         with it, also with --bus-only
  --printqd PATH         the print queue daemon to use, instead of the printqd beside this program
  -h, --help             print this text

The exit status is COMMAND's own, or 128 + N if signal N ended it, 127 if there is no such command, 126 if
it cannot be run, 125 if the device itself failed, and 77 if this machine does not allow a whole device.
)";
}
