// A copy of the test's process that does one thing beside it.
#pragma once

#include <QtCore/QtGlobal>

#include <sys/types.h>
#include <type_traits>
#include <unistd.h>

/**
 * Does the work that it is given and ends, with what the work returns as its status where that returns a
 * number. It is killed with this object, and with the test however that ends.
 */
class ForkedWorker
{
public:
    template <typename Work>
    explicit ForkedWorker(const Work &work)
        : m_process(::fork())
    {
        if (m_process != 0)
            return;
        endWithTest();
        if constexpr (std::is_void_v<decltype(work())>) {
            work();
            ::_exit(0);
        } else {
            ::_exit(work());
        }
    }
    ~ForkedWorker();

    bool isRunning() const;
    /// Stops it, as a process that hangs.
    void stop();
    void kill();
    /// Waits for its end: its status, -1 when it was killed.
    int finish();

private:
    Q_DISABLE_COPY(ForkedWorker)
    static void endWithTest();

    pid_t m_process;
};
