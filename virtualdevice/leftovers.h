// Ends the processes that a subreaper has been left with.
#pragma once

#include <set>
#include <string>
#include <sys/types.h>
#include <vector>

/// Kills the children of this process but those in SPARED, then the children that these leave to it, and so
/// on until there are none, reaping all but the spared ones. This process has to be a subreaper
/// (PR_SET_CHILD_SUBREAPER), else grandchildren escape. Returns a sentence for each process that would not go
/// within five seconds.
std::vector<std::string> killLeftovers(const std::set<pid_t> &spared);
