// Runs a tool and waits for it. The keeper may wait here: the tools of the set-up take a few milliseconds.
#include "setuptool.h"

#include "failure.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/wait.h>

namespace {

const char *const logName = "set-up";

// An ordinary user's PATH often lacks the folders in which Debian has such tools.
std::string findProgram(const std::string &name)
{
    const char *const variable = std::getenv("PATH");
    std::istringstream folders(std::string(variable ? variable : "/usr/bin:/bin") + ":/usr/sbin:/sbin");
    for (std::string path; std::getline(folders, path, ':');) {
        path += "/" + name;
        if (access(path.c_str(), X_OK) == 0)
            return path;
    }
    return {};
}

} // namespace

bool runSetUpTool(const SetUpTool &tool, const ChildProgram &surroundings, const DeviceDirectory &directory)
{
    const std::string path = findProgram(tool.name);
    if (path.empty())
        throw Failure(tool.name + " is not in PATH; on Debian it is in the package " + tool.package);
    ChildProgram program = surroundings;
    program.arguments = {path};
    program.arguments.insert(program.arguments.end(), tool.arguments.begin(), tool.arguments.end());
    const pid_t process = startInBackground(program, directory.logFile(logName));
    if (process < 0)
        throw systemFailure("cannot run " + tool.name);
    int waitStatus = 0;
    while (waitpid(process, &waitStatus, 0) < 0 && errno == EINTR) { }
    return WIFEXITED(waitStatus) && WEXITSTATUS(waitStatus) == 0;
}

std::string lastWordOfSetUp(const DeviceDirectory &directory)
{
    std::ifstream file(directory.logFile(logName));
    std::string result = "it wrote nothing";
    for (std::string line; std::getline(file, line);) {
        if (!line.empty())
            result = line;
    }
    return result;
}
