// A system tool of the tests: notes how it was started, then does what the test has laid down for its name.
//
// No Qt, so that it starts as fast as the tools that it stands for.
#include "recordingtoolfiles.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string folder()
{
    const char *const value = std::getenv(RecordingToolFiles::folderVariable);
    return value ? value : "";
}

std::string contentOf(const std::string &path)
{
    std::string content;
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return content;
    char buffer[65536];
    for (ssize_t count = 0; (count = ::read(file, buffer, sizeof buffer)) > 0;)
        content.append(buffer, static_cast<size_t>(count));
    ::close(file);
    return content;
}

bool write(int file, const std::string &bytes)
{
    size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(file, bytes.data() + written, bytes.size() - written);
        if (count <= 0)
            return false;
        written += static_cast<size_t>(count);
    }
    return true;
}

/// What the standard input is: "pipe" for one that can still be written to, "end" for one at its end.
std::string standardInput()
{
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    struct stat status = {};
    if (::fstat(STDIN_FILENO, &status) != 0)
        return "closed";
    if (::poll(&input, 1, 0) > 0)
        return "end";
    return S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode) ? "pipe" : "other";
}

/// Appears under its final name only when it is whole.
bool record(const std::string &name, int count, char **arguments)
{
    const char *const locale = std::getenv("LC_ALL");
    std::string text;
    for (const std::string &field :
         {name, std::to_string(::getpid()), standardInput(), std::string(locale ? locale : "")}) {
        text += field;
        text += '\0';
    }
    for (int i = 1; i < count; ++i) {
        text += arguments[i];
        text += '\0';
    }

    const std::string part = folder() + RecordingToolFiles::partFolder + std::to_string(::getpid());
    const std::string whole = folder() + RecordingToolFiles::recordFolder + std::to_string(::getpid());
    const int file = ::open(part.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    return file >= 0 && write(file, text) && ::close(file) == 0 && ::rename(part.c_str(), whole.c_str()) == 0;
}

/// Waits until the test lets its tools go, which it also does by ending.
void waitForTheTest()
{
    const int file = ::open((folder() + RecordingToolFiles::holdFile).c_str(), O_RDONLY | O_CLOEXEC);
    if (file >= 0)
        ::flock(file, LOCK_SH);
}

} // namespace

int main(int count, char **arguments)
{
    const char *const slash = std::strrchr(arguments[0], '/');
    const std::string name = slash ? slash + 1 : arguments[0];
    if (!record(name, count, arguments)) {
        std::fputs("recordingtool: cannot write its record\n", stderr);
        return 125;
    }

    int exitStatus = 0;
    const std::string steps = contentOf(folder() + RecordingToolFiles::stepsFolder + name);
    for (size_t position = 0; position < steps.size();) {
        const size_t end = steps.find('\n', position);
        const std::string step = steps.substr(position, end - position);
        position = end == std::string::npos ? steps.size() : end + 1;

        const size_t space = step.find(' ');
        const std::string verb = step.substr(0, space);
        const int number = space == std::string::npos ? 0 : std::atoi(step.c_str() + space);
        if (verb == "print")
            write(STDOUT_FILENO, contentOf(folder() + RecordingToolFiles::outputFolder + name));
        else if (verb == "printforever")
            while (write(STDOUT_FILENO, std::string(4096, 'x'))) { }
        else if (verb == "complain")
            write(STDERR_FILENO, std::string(static_cast<size_t>(number), 'e'));
        else if (verb == "pause")
            ::poll(nullptr, 0, number);
        else if (verb == "closeoutput")
            ::close(STDOUT_FILENO);
        else if (verb == "stay")
            waitForTheTest();
        else if (verb == "exit")
            exitStatus = number;
        else if (verb == "crash")
            ::raise(SIGKILL);
    }
    return exitStatus;
}
