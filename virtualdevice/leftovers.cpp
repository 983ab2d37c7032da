// Kills generation after generation: the children of what is killed come to us and are next. /proc tells
// which they are: it is always there and needs neither rights nor a library.
#include "leftovers.h"

#include "filedescriptor.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds limit{5};
// A killed process takes a moment to go, which no descriptor announces for processes that we have not
// started.
constexpr std::chrono::milliseconds interval{1};

// The beginning of a file in /proc/PROCESS; empty if the process has gone, which may happen between opening
// and reading.
std::string contentOf(pid_t process, const std::string &file)
{
    const std::string path = "/proc/" + std::to_string(process) + "/" + file;
    const FileDescriptor descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 512> content = {};
    const ssize_t size = read(descriptor.get(), content.data(), content.size());
    return {content.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
}

// proc(5): "PID (NAME) STATE PPID ...", where NAME may hold blanks and brackets.
pid_t parentOf(pid_t process)
{
    const std::string status = contentOf(process, "stat");
    const std::size_t endOfName = status.rfind(") ");
    if (endOfName == std::string::npos || endOfName + 4 >= status.size())
        return 0;
    return static_cast<pid_t>(std::strtol(status.c_str() + endOfName + 4, nullptr, 10));
}

std::vector<pid_t> childrenBut(const std::set<pid_t> &spared)
{
    std::vector<pid_t> result;
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(opendir("/proc"), closedir);
    while (const dirent *const entry = folder ? readdir(folder.get()) : nullptr) {
        const auto process = static_cast<pid_t>(std::strtol(entry->d_name, nullptr, 10));
        if (process > 0 && parentOf(process) == getpid() && spared.count(process) == 0)
            result.push_back(process);
    }
    return result;
}

std::vector<std::string> complaintsAbout(const std::vector<pid_t> &processes)
{
    std::vector<std::string> result;
    for (const pid_t process : processes) {
        std::string name = contentOf(process, "comm");
        name.erase(std::remove(name.begin(), name.end(), '\n'), name.end());
        result.push_back("process " + std::to_string(process) + " (" + name + ") cannot be ended");
    }
    return result;
}

} // namespace

std::vector<std::string> killLeftovers(const std::set<pid_t> &spared)
{
    const Clock::time_point deadline = Clock::now() + limit;
    std::vector<pid_t> left = childrenBut(spared);
    while (!left.empty() && Clock::now() < deadline) {
        // A child keeps its number until we reap it, so that no other process is hit.
        for (const pid_t process : left)
            kill(process, SIGKILL);
        std::this_thread::sleep_for(interval);
        for (const pid_t process : left)
            waitpid(process, nullptr, WNOHANG);
        left = childrenBut(spared);
    }
    return complaintsAbout(left);
}
