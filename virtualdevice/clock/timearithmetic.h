// Times of day as one number: nanoseconds since 1970, which last until the year 2262.
#pragma once

#include <cstdint>
#include <ctime>

constexpr std::int64_t nanosecondsInASecond = 1000000000;

constexpr std::int64_t nanosecondsOf(const timespec &time)
{
    return std::int64_t{time.tv_sec} * nanosecondsInASecond + time.tv_nsec;
}

constexpr timespec timeOf(std::int64_t nanoseconds)
{
    std::int64_t seconds = nanoseconds / nanosecondsInASecond;
    std::int64_t rest = nanoseconds % nanosecondsInASecond;
    // Division rounds towards 1970, and the part below a second counts up from the second.
    if (rest < 0) {
        --seconds;
        rest += nanosecondsInASecond;
    }
    return {static_cast<time_t>(seconds), static_cast<long>(rest)};
}

static_assert(timeOf(-1).tv_sec == -1 && timeOf(-1).tv_nsec == nanosecondsInASecond - 1);
static_assert(nanosecondsOf(timeOf(-1500000000)) == -1500000000);
