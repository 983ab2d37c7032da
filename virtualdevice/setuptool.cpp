// Runs a tool and waits for it. The keeper may wait here: the tools of the set-up take a few milliseconds.
#include "setuptool.h"

#include "failure.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
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

// After BEGINNING, where the tools before have ended.
std::string firstLineAfter(std::uintmax_t beginning, const std::string &path)
{
    std::ifstream file(path);
    file.seekg(static_cast<std::streamoff>(beginning));
    for (std::string line; std::getline(file, line);) {
        if (!line.empty())
            return line;
    }
    return "it wrote nothing";
}

std::uintmax_t sizeOf(const std::string &path)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    return error ? 0 : size;
}

} // namespace

std::optional<std::string> runSetUpTool(const SetUpTool &tool, const ChildProgram &surroundings,
                                        const DeviceDirectory &directory)
{
    const std::string path = findProgram(tool.name);
    if (path.empty())
        throw Failure(tool.name + " is not in PATH; on Debian it is in the package " + tool.package);
    ChildProgram program = surroundings;
    program.arguments = {path};
    program.arguments.insert(program.arguments.end(), tool.arguments.begin(), tool.arguments.end());
    const std::string log = directory.logFile(logName);
    const std::uintmax_t logged = sizeOf(log);
    const pid_t process = startInBackground(program, log);
    if (process < 0)
        throw systemFailure("cannot run " + tool.name);
    int waitStatus = 0;
    while (waitpid(process, &waitStatus, 0) < 0 && errno == EINTR) { }
    if (WIFEXITED(waitStatus) && WEXITSTATUS(waitStatus) == 0)
        return std::nullopt;
    return firstLineAfter(logged, log);
}
