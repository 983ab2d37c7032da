// Both ends of the writer: the test's handle and the process itself.
#include "writerprocess.h"

#include "analyticsline.h"
#include "analyticsspool.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <cstdio>
#include <unistd.h>

namespace {

constexpr char writerArgument[] = "--write-events";

// Returns the exit status.
int writeEvents(const QString &folder, const QString &name, int count, qint64 limit)
{
    AnalyticsSpool spool(folder, limit);
    for (int number = 0; number < count; ++number) {
        const QJsonObject hit{{QStringLiteral("writer"), name}, {QStringLiteral("number"), number}};
        if (spool.append(analyticsLine(QDateTime::currentDateTimeUtc(), 6, hit))
            == AnalyticsSpool::Outcome::Dropped)
            return 1;
    }
    AnalyticsSpool::Outcome outcome = spool.flush();
    while (outcome == AnalyticsSpool::Outcome::Waiting)
        outcome = spool.flush();
    return outcome == AnalyticsSpool::Outcome::Written ? 0 : 1;
}

} // namespace

WriterProcess::WriterProcess(const QString &folder, const QString &name, int count, qint64 limit)
{
    m_process.setProgram(QCoreApplication::applicationFilePath());
    m_process.setArguments(
        {QLatin1String(writerArgument), folder, name, QString::number(count), QString::number(limit)});
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

bool WriterProcess::prepare()
{
    m_process.start();
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead())
            return false;
    }
    return m_process.readLine() == "ready\n";
}

void WriterProcess::go()
{
    m_process.closeWriteChannel();
}

bool WriterProcess::isRunning()
{
    // Without an event loop the state follows in this call.
    return m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(0);
}

bool WriterProcess::finish()
{
    return (m_process.state() == QProcess::NotRunning || m_process.waitForFinished(60000))
        && m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
}

std::optional<int> runAsWriter(int argc, char **argv)
{
    if (argc != 6 || qstrcmp(argv[1], writerArgument) != 0)
        return std::nullopt;
    std::puts("ready");
    std::fflush(stdout);
    char ignored = 0;
    while (read(STDIN_FILENO, &ignored, 1) > 0) { }
    return writeEvents(QFile::decodeName(argv[2]), QFile::decodeName(argv[3]), atoi(argv[4]), atoll(argv[5]));
}
