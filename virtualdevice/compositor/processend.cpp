// SIGTERM, then SIGKILL.
#include "processend.h"

#include <QtCore/QProcess>

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
