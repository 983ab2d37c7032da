// A process that cannot open any more files.
#pragma once

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

/// While it lives, this process may open \a count more files at a time, and is refused any other (EMFILE).
class OpenFileLimit
{
public:
    explicit OpenFileLimit(int count)
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit now = m_before;
        now.rlim_cur = 0;
        // Numbers may be free below the ones in use.
        for (int free = 0; free < count || isOpen(int(now.rlim_cur)); ++now.rlim_cur)
            free += isOpen(int(now.rlim_cur)) ? 0 : 1;
        setrlimit(RLIMIT_NOFILE, &now);
    }
    ~OpenFileLimit() { setrlimit(RLIMIT_NOFILE, &m_before); }

    OpenFileLimit(const OpenFileLimit &) = delete;
    OpenFileLimit &operator=(const OpenFileLimit &) = delete;

private:
    static bool isOpen(int number) { return fcntl(number, F_GETFD) >= 0; }

    rlimit m_before = {};
};
