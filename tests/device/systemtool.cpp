// Runs a tool to its end.
#include "systemtool.h"

#include "childprocess.h"

namespace {

bool run(ChildProcess &process, const QString &program, const QStringList &arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

} // namespace

QByteArray outputOfSystemTool(const QString &program, const QStringList &arguments)
{
    ChildProcess process;
    return run(process, program, arguments) ? QByteArray("").append(process.readAllStandardOutput())
                                            : QByteArray();
}

bool runSystemTool(const QString &program, const QStringList &arguments)
{
    ChildProcess process;
    return run(process, program, arguments);
}
