// mount(2) with a sentence for the machine that refuses it.
#pragma once

#include <string>

struct MountRequest
{
    std::string source;
    std::string target;
    std::string type;
    unsigned long flags = 0;
    std::string options;
};

/// Returns whether it worked; if not, errno is set.
bool tryToMount(const MountRequest &request);

/// Throws Failure with forbiddenStatus, saying that WHAT is not allowed.
void mountOrGiveUp(const MountRequest &request, const std::string &what);
