// The walls of a whole device: namespaces of its own, so that what it changes is seen by it alone.
#pragma once

#include "filedescriptor.h"

#include <string>
#include <sys/types.h>

/// Moves this process, and with it all that it starts later, into new namespaces for mounts, network, IPC and
/// host name; where it is not root, through a user namespace in which every process keeps its user and group
/// (user_namespaces(7)) and only this process may do the work of root. Nothing mounted later is seen outside.
/// Nothing that is started later may set the machine's clock. Throws Failure; with forbiddenStatus if the
/// machine does not allow it. Returns the mounts that were left.
FileDescriptor enterNamespaces();

/// A shell command before which one puts a program that is to run in the namespaces of PROCESS.
std::string commandToEnter(pid_t process);

/// Goes back to MOUNTS, where nothing that was mounted in the device is in the way of removing its folder.
/// Only root can do that; for an ordinary user, nothing in a device can mount anything in its folder.
void returnToMounts(const FileDescriptor &mounts);
