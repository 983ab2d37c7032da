// A process that does not outlive the test that started it, also when the test is killed.
#pragma once

#include <QtCore/QProcess>

/// A QProcess whose program is killed when the thread that started it ends, however that happens.
class ChildProcess : public QProcess
{
    Q_OBJECT

public:
    using QProcess::QProcess;

protected:
    void setupChildProcess() override;
};
