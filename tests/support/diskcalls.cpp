// Stands before the C library's calls.
#include "diskcalls.h"

#include <QtCore/QFile>

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool isSyncDone = true;
bool isRecording = false;
QStringList recorded;

void note(int result, const QString &step)
{
    if (result == 0)
        recorded.append(step);
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

void DiskCalls::setSyncing(bool isSyncing)
{
    isSyncDone = isSyncing;
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
