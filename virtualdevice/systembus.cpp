// Runs dbus-daemon in the foreground. It writes its address to a pipe once it listens, which is the sign that
// it is ready.
#include "systembus.h"

#include "failure.h"
#include "files.h"

#include <array>
#include <cerrno>
#include <fcntl.h>

namespace {

// Limits are left at what dbus-daemon has for a system bus, so that a program which goes beyond them on a
// real device, for instance with more than 128 calls under way, does so here too. Anybody may own and call
// anything; only what the service folder names is started by being called.
std::string configuration(const std::string &address, const SystemBusOfAMachine &machine)
{
    std::string places = "  <listen>" + address + "</listen>\n";
    if (!machine.address.empty())
        places += "  <listen>" + machine.address + "</listen>\n";
    if (!machine.serviceFolder.empty())
        places += "  <servicedir>" + machine.serviceFolder + "</servicedir>\n";
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <keep_umask/>
)" + places
        + R"(  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
  </policy>
</busconfig>
)";
}

} // namespace

SystemBus::SystemBus(const DeviceDirectory &directory, SystemBusOfAMachine machine)
    : DevicePart("dbus-daemon", directory)
    , m_machine(std::move(machine))
{
}

pid_t SystemBus::start(const ChildProgram &surroundings)
{
    const std::string configurationFile = directory().bus() + "/system.conf";
    writeFile(configurationFile, configuration(directory().busAddress(), m_machine));

    std::array<int, 2> ends = {};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw systemFailure("cannot make a pipe");
    m_address = FileDescriptor(ends[0]);
    const FileDescriptor writeEnd(ends[1]);

    ChildProgram program = surroundings;
    program.arguments = {name(),
                         "--nofork",
                         "--nopidfile",
                         "--nosyslog",
                         "--config-file=" + configurationFile,
                         "--print-address=" + std::to_string(passedDescriptorNumber)};
    const pid_t process = startInBackground(program, logFile(), writeEnd.get());
    if (process < 0 && errno == ENOENT)
        throw Failure("dbus-daemon is not in PATH; on Debian it is in the package dbus-daemon");
    if (process < 0)
        throw systemFailure("cannot run dbus-daemon");
    return process;
}

bool SystemBus::isReady()
{
    std::array<char, 512> address = {};
    const ssize_t size = read(m_address.get(), address.data(), address.size());
    // Nothing more can come from a dbus-daemon that has closed the pipe.
    if (size == 0)
        m_address.close();
    return size > 0;
}
