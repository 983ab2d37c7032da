// The clock of a virtual device. Put before the C library by LD_PRELOAD, it catches what sets the clock: the
// machine's stays as it is, and the difference goes to a file that all programs of the device share. What
// reads the time of day adds that difference. Times that the kernel itself compares with (timers, time stamps
// of files) are the machine's.
//
// ZBVIRTUALDEVICE_CLOCK_LOG     file to which each time that was set is appended, "SECONDS.NANOSECONDS"
// ZBVIRTUALDEVICE_CLOCK_OFFSET  file that holds the difference in nanoseconds, as a 64-bit number
#include "timearithmetic.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <unistd.h>

#define ZB_BEFORE_THE_C_LIBRARY extern "C" __attribute__((visibility("default")))

namespace {

using Offset = std::atomic<std::int64_t>;
static_assert(Offset::is_always_lock_free && sizeof(Offset) == sizeof(std::int64_t),
              "processes share it, and a lock would be each one's own");

using ReadClock = int (*)(clockid_t, timespec *);

// The next library's function. Threads that come before the answer is stored ask as well, and get the same.
ReadClock nextReadClock()
{
    static std::atomic<ReadClock> found{nullptr};
    ReadClock function = found.load(std::memory_order_relaxed);
    if (!function) {
        function = reinterpret_cast<ReadClock>(dlsym(RTLD_NEXT, "clock_gettime"));
        found.store(function, std::memory_order_relaxed);
    }
    return function;
}

// The shared file's content; one that never changes if this program has no such file.
Offset *mapOffset()
{
    static Offset none{0};
    const char *const path = std::getenv("ZBVIRTUALDEVICE_CLOCK_OFFSET");
    const int file = path ? open(path, O_RDWR | O_CLOEXEC) : -1;
    if (file < 0)
        return &none;
    void *const memory = mmap(nullptr, sizeof(Offset), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return memory == MAP_FAILED ? &none : static_cast<Offset *>(memory);
}

Offset &sharedOffset()
{
    static std::atomic<Offset *> found{nullptr};
    Offset *offset = found.load(std::memory_order_acquire);
    if (!offset) {
        // Reading the time must not change errno.
        const int error = errno;
        offset = mapOffset();
        errno = error;
        found.store(offset, std::memory_order_release);
    }
    return *offset;
}

std::int64_t machineTime()
{
    timespec time = {};
    nextReadClock()(CLOCK_REALTIME, &time);
    return nanosecondsOf(time);
}

std::int64_t deviceTime()
{
    return machineTime() + sharedOffset().load();
}

void writeToLog(const timespec &time)
{
    const char *const path = std::getenv("ZBVIRTUALDEVICE_CLOCK_LOG");
    const int file = path ? open(path, O_WRONLY | O_APPEND | O_CLOEXEC) : -1;
    if (file < 0)
        return;
    std::array<char, 48> line = {};
    const int size = std::snprintf(line.data(), line.size(), "%" PRId64 ".%09ld\n", std::int64_t{time.tv_sec},
                                   time.tv_nsec);
    // In one piece, so that the lines of two programs are not mixed.
    const ssize_t written = write(file, line.data(), static_cast<std::size_t>(size));
    static_cast<void>(written);
    close(file);
}

int setDeviceTime(const timespec &time)
{
    if (time.tv_nsec < 0 || time.tv_nsec >= nanosecondsInASecond) {
        errno = EINVAL;
        return -1;
    }
    sharedOffset().store(nanosecondsOf(time) - machineTime());
    writeToLog(time);
    return 0;
}

bool isTimeOfDay(clockid_t clock)
{
    return clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE;
}

} // namespace

ZB_BEFORE_THE_C_LIBRARY int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const int result = nextReadClock()(clock, time);
    if (result == 0 && isTimeOfDay(clock))
        *time = timeOf(nanosecondsOf(*time) + sharedOffset().load());
    return result;
}

ZB_BEFORE_THE_C_LIBRARY int timespec_get(timespec *time, int base) noexcept
{
    if (base != TIME_UTC)
        return 0;
    *time = timeOf(deviceTime());
    return base;
}

ZB_BEFORE_THE_C_LIBRARY int gettimeofday(timeval *time, void *zone) noexcept
{
    // The kernel's time zone is obsolete, and zero with every service manager of today.
    if (zone)
        *static_cast<struct timezone *>(zone) = {};
    const timespec now = timeOf(deviceTime());
    *time = {now.tv_sec, static_cast<suseconds_t>(now.tv_nsec / 1000)};
    return 0;
}

ZB_BEFORE_THE_C_LIBRARY time_t time(time_t *result) noexcept
{
    const time_t now = timeOf(deviceTime()).tv_sec;
    if (result)
        *result = now;
    return now;
}

ZB_BEFORE_THE_C_LIBRARY int clock_settime(clockid_t clock, const timespec *time) noexcept
{
    if (clock != CLOCK_REALTIME) {
        errno = EINVAL;
        return -1;
    }
    return setDeviceTime(*time);
}

ZB_BEFORE_THE_C_LIBRARY int settimeofday(const timeval *time, const struct timezone *) noexcept
{
    // Without a time it sets the kernel's time zone, which the device leaves alone.
    return time ? setDeviceTime({time->tv_sec, time->tv_usec * 1000}) : 0;
}
