// The device's system bus: a dbus-daemon of its own.
#pragma once

#include "devicepart.h"
#include "filedescriptor.h"

/// What the bus has beside its socket in the device's folder, if it plays the one bus of a machine. Both
/// texts are put into XML as they are.
struct SystemBusOfAMachine
{
    std::string address;
    /// Services described there are started by being called.
    std::string serviceFolder;
};

class SystemBus : public DevicePart
{
public:
    SystemBus(const DeviceDirectory &directory, SystemBusOfAMachine machine);

    pid_t start(const ChildProgram &surroundings) override;
    int readinessDescriptor() const override { return m_address.get(); }
    bool isReady() override;

private:
    const SystemBusOfAMachine m_machine;
    FileDescriptor m_address;
};
