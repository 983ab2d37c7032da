// Runs a system tool.
#include "toolrun.h"

#include <QtCore/QProcess>

namespace {

/// No tool of the device prints nearly as much; one that runs wild must not fill the memory meanwhile.
constexpr qint64 largestOutput = 16 * 1024 * 1024;

// df(1) translates its header and its decimal point, which the pages read.
QProcessEnvironment environmentWithoutLanguage()
{
    QProcessEnvironment result = QProcessEnvironment::systemEnvironment();
    result.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    return result;
}

} // namespace

QString outputOfTool(QProcess &process, const QString &program, const QStringList &arguments)
{
    process.setProcessEnvironment(environmentWithoutLanguage());
    process.setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &process, [&process] {
        if (process.bytesAvailable() > largestOutput)
            process.closeReadChannel(QProcess::StandardOutput);
    });

    process.start(program, arguments, QIODevice::ReadWrite);
    process.waitForFinished(toolPatience);
    const QString output = QString::fromUtf8(process.readAllStandardOutput().constData());

    // The object stays: without what a tool still prints, and without its copy of the environment.
    process.closeReadChannel(QProcess::StandardOutput);
    process.setProcessEnvironment({});
    return output;
}

void startUnread(QProcess &process, const QStringList &arguments)
{
    // The object would refuse it too, with two warnings.
    if (process.state() != QProcess::NotRunning)
        return;
    process.setArguments(arguments);
    process.start(QIODevice::ReadWrite);
    process.closeReadChannel(QProcess::StandardOutput);
    process.closeReadChannel(QProcess::StandardError);
}

void startDetached(const QString &program, const QStringList &arguments)
{
    // What it prints is nobody's, and one that hangs shall not keep the caller's channels open.
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.startDetached();
}
