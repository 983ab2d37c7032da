// The network of a whole device: a wireless interface with an address and a route to the world.
#pragma once

#include "childprocess.h"
#include "devicedirectory.h"

/// Makes the interface wlan0, with the hardware address 02:00:5e:10:00:01 and a default route, and lets
/// /sys/class/net show it and nothing of the machine's. The world ends at the other end of the wire. Throws
/// Failure, with forbiddenStatus if the machine does not allow it.
void makeNetworkInterface(const ChildProgram &surroundings, const DeviceDirectory &directory);
