// Folders and texts, made with a Failure that names the path.
#include "files.h"

#include "failure.h"

#include <cerrno>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t publicFolderMode = 0755;
constexpr mode_t publicFileMode = 0644;

void setMode(const std::string &path, mode_t mode)
{
    if (chmod(path.c_str(), mode) != 0)
        throw systemFailure("cannot set the rights of '" + path + "'");
}

} // namespace

void makePrivateFolder(const std::string &path)
{
    if (mkdir(path.c_str(), S_IRWXU) != 0)
        throw systemFailure("cannot make the folder '" + path + "'");
}

void makePublicFolders(const std::string &path)
{
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string folder = path.substr(0, end);
        if (mkdir(folder.c_str(), publicFolderMode) == 0)
            setMode(folder, publicFolderMode);
        else if (errno != EEXIST)
            throw systemFailure("cannot make the folder '" + folder + "'");
        if (end == std::string::npos)
            return;
    }
}

void makeLink(const std::string &target, const std::string &path)
{
    if (symlink(target.c_str(), path.c_str()) != 0)
        throw systemFailure("cannot make the link '" + path + "'");
}

void writeFile(const std::string &path, const std::string &content)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    file.close();
    if (!file)
        throw Failure("cannot write '" + path + "'");
}

void writePublicFile(const std::string &path, const std::string &content)
{
    writeFile(path, content);
    setMode(path, publicFileMode);
}
