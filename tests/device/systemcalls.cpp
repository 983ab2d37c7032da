// Counts opens and syncs, and lets opens fail.
#include "systemcalls.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>

namespace {

QByteArray openPath;
QVector<int> failingOpens;
int opens = 0;
QByteArray syncPath;
QVector<QByteArray> syncs;

QByteArray contentOf(const QByteArray &path)
{
    QByteArray content;
    if (std::FILE *const file = std::fopen(path.constData(), "rb")) {
        char buffer[4096];
        for (size_t count = 0; (count = std::fread(buffer, 1, sizeof buffer, file)) > 0;)
            content.append(buffer, static_cast<int>(count));
        std::fclose(file);
    }
    return content;
}

} // namespace

extern "C" Q_DECL_EXPORT int open64(const char *path, int flags, ...)
{
    mode_t mode = 0;
    if ((flags & (O_CREAT | O_TMPFILE)) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    if (!openPath.isEmpty() && std::strcmp(path, openPath.constData()) == 0
        && failingOpens.contains(opens++)) {
        errno = EACCES;
        return -1;
    }
    using Open = int (*)(const char *, int, ...);
    static const Open next = reinterpret_cast<Open>(dlsym(RTLD_NEXT, "open64"));
    return next(path, flags, mode);
}

extern "C" Q_DECL_EXPORT void sync() noexcept
{
    syncs.append(contentOf(syncPath));
}

void SystemCalls::failOpens(const QByteArray &path, const QVector<int> &failing)
{
    openPath = path;
    failingOpens = failing;
    opens = 0;
}

int SystemCalls::openCount()
{
    return opens;
}

void SystemCalls::reset()
{
    openPath.clear();
    failingOpens.clear();
    syncs.clear();
}

void SystemCalls::watchSyncs(const QByteArray &path)
{
    syncPath = path;
    syncs.clear();
}

QVector<QByteArray> SystemCalls::contentsAtSyncs()
{
    return syncs;
}
