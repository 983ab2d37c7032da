// The end of a process: waited for, or brought about.
#pragma once

class QProcess;

/// Waits until PROCESS has ended; false when that takes longer than ten seconds, or when this program shall
/// end.
bool waitForEnd(QProcess &process);

/// Tells PROCESS to end, and kills it when it has not in a few seconds.
void endProcess(QProcess &process);
