// Stands in for a disk that fails: put before the C library by LD_PRELOAD, it lets every fsync(2) fail.
#include <cerrno>

extern "C" __attribute__((visibility("default"))) int fsync(int)
{
    errno = EIO;
    return -1;
}
