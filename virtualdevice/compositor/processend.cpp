// Waiting in slices, so that a request to end is seen; SIGTERM, then SIGKILL.
#include "processend.h"

#include "endrequest.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>

bool waitForEnd(QProcess &process)
{
    constexpr int patience = 10000;
    constexpr int slice = 100;
    QElapsedTimer elapsed;
    elapsed.start();
    while (process.state() != QProcess::NotRunning) {
        if (EndRequest::hasCome() || elapsed.hasExpired(patience))
            return false;
        process.waitForFinished(slice);
    }
    return true;
}

void endProcess(QProcess &process)
{
    constexpr int patience = 3000;
    if (process.state() == QProcess::NotRunning)
        return;
    process.terminate();
    if (process.waitForFinished(patience))
        return;
    process.kill();
    process.waitForFinished(patience);
}
