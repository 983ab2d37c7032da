// The end of a process that was started for a while.
#pragma once

class QProcess;

/// Tells PROCESS to end, and kills it when it has not in a few seconds.
void endProcess(QProcess &process);
