// Stands before the C library's calls.
#include "diskcalls.h"

#include <QtCore/QFile>

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool isSyncDone = true;
bool isRecording = false;
QStringList recorded;
std::array<int, 2> refusals{};

void note(int result, const QString &step)
{
    if (result == 0)
        recorded.append(step);
}

long unlessRefused(DiskCalls::Call call, const std::function<long()> &work)
{
    const int error = refusals.at(size_t(call));
    if (error == 0)
        return work();
    errno = error;
    return -1;
}

QString renaming(const char *from, const char *to)
{
    return QStringLiteral("rename %1 %2").arg(QFile::decodeName(from), QFile::decodeName(to));
}

} // namespace

#define ZB_EXPORTED extern "C" __attribute__((visibility("default")))

ZB_EXPORTED int fsync(int file)
{
    const int result = isSyncDone ? int(syscall(SYS_fsync, file)) : 0;
    if (isRecording)
        note(result,
             QStringLiteral("sync ") + QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(file)));
    return result;
}

ZB_EXPORTED int mkdir(const char *path, mode_t mode) noexcept
{
    const int result = int(syscall(SYS_mkdirat, AT_FDCWD, path, mode));
    if (isRecording)
        note(result, QStringLiteral("make ") + QFile::decodeName(path));
    return result;
}

ZB_EXPORTED int renameat(int fromFolder, const char *from, int toFolder, const char *to) noexcept
{
    const int result = int(syscall(SYS_renameat2, fromFolder, from, toFolder, to, 0));
    if (isRecording)
        note(result, renaming(from, to));
    return result;
}

ZB_EXPORTED int renameat2(int fromFolder, const char *from, int toFolder, const char *to,
                          unsigned flags) noexcept
{
    const int result = int(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
    if (isRecording)
        note(result, renaming(from, to));
    return result;
}

ZB_EXPORTED int flock(int file, int operation) noexcept
{
    return int(unlessRefused(DiskCalls::Call::Lock, [=] { return syscall(SYS_flock, file, operation); }));
}

ZB_EXPORTED int fchown(int file, uid_t user, gid_t group) noexcept
{
    return int(
        unlessRefused(DiskCalls::Call::ChangeOwner, [=] { return syscall(SYS_fchown, file, user, group); }));
}

void DiskCalls::setSyncing(bool isSyncing)
{
    isSyncDone = isSyncing;
}

DiskCalls::Refusal::Refusal(Call call, int error)
    : m_call(call)
{
    refusals.at(size_t(m_call)) = error;
}

DiskCalls::Refusal::~Refusal()
{
    refusals.at(size_t(m_call)) = 0;
}

DiskCalls::Record::Record()
{
    recorded.clear();
    isRecording = true;
}

DiskCalls::Record::~Record()
{
    isRecording = false;
}

QStringList DiskCalls::Record::steps(const QString &home) const
{
    QStringList result = recorded;
    return result.replaceInStrings(home, QStringLiteral("~"));
}
