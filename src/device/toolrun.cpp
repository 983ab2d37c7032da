// Runs a system tool and reads it back.
#include "toolrun.h"

#include <QtCore/QProcess>

QString outputOfTool(QProcess &process, const QString &program, const QStringList &arguments)
{
    // df(1) translates its header and its decimal point, which the pages read.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    process.setProcessEnvironment(environment);
    // The object outlives the run, and with it all that is received and never read.
    process.setStandardErrorFile(QProcess::nullDevice());

    process.start(program, arguments, QIODevice::ReadWrite);
    process.waitForFinished(toolPatience);
    const QString output = QString::fromUtf8(process.readAllStandardOutput().constData());
    process.closeReadChannel(QProcess::StandardOutput);
    return output;
}
