// capget, capset and prctl by hand: three calls, for which a library would be one more package.
#include "capabilities.h"

#include "failure.h"

#include <array>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using Sets = std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3>;

bool getSets(Sets *sets)
{
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    return syscall(SYS_capget, &header, sets->data()) == 0;
}

Sets currentSets()
{
    Sets sets = {};
    if (!getSets(&sets))
        throw systemFailure("cannot read the capabilities");
    return sets;
}

bool setSets(const Sets &sets)
{
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    return syscall(SYS_capset, &header, sets.data()) == 0;
}

bool isPermitted(const Sets &sets, int capability)
{
    return sets.at(static_cast<std::size_t>(CAP_TO_INDEX(capability))).permitted & CAP_TO_MASK(capability);
}

} // namespace

void giveUpTheClock()
{
    Sets sets = currentSets();
    __user_cap_data_struct &word = sets.at(CAP_TO_INDEX(CAP_SYS_TIME));
    for (__u32 *const set : {&word.effective, &word.permitted, &word.inheritable})
        *set &= ~CAP_TO_MASK(CAP_SYS_TIME);
    if (prctl(PR_CAPBSET_DROP, CAP_SYS_TIME, 0, 0, 0) != 0 || !setSets(sets))
        throw forbiddenByMachine("to give up the right to set the machine's clock");
}

InheritedCapabilities::InheritedCapabilities()
{
    Sets sets = currentSets();
    for (__user_cap_data_struct &word : sets)
        word.inheritable = word.permitted;
    if (!setSets(sets))
        throw systemFailure("cannot pass capabilities on");
    for (int capability = 0; capability <= CAP_LAST_CAP; ++capability) {
        if (isPermitted(sets, capability)
            && prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_RAISE, capability, 0, 0) != 0)
            throw systemFailure("cannot pass capabilities on");
    }
}

InheritedCapabilities::~InheritedCapabilities()
{
    prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_CLEAR_ALL, 0, 0, 0);
    Sets sets = {};
    if (!getSets(&sets))
        return;
    for (__user_cap_data_struct &word : sets)
        word.inheritable = 0;
    setSets(sets);
}
