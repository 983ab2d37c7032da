// Runs Xvfb, which writes the number of its display to its standard output once it listens.
#include "xserver.h"

#include "endrequest.h"
#include "processend.h"

#include <QtCore/QElapsedTimer>

namespace {

constexpr int startMilliseconds = 10000;
constexpr int slice = 100;

} // namespace

XServer::~XServer()
{
    endProcess(m_process);
}

QString XServer::start()
{
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(QStringLiteral("Xvfb"),
                    {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                     QStringLiteral("0"), QStringLiteral("800x480x24"), QStringLiteral("-nolisten"),
                     QStringLiteral("tcp"), QStringLiteral("-noreset")});
    if (!m_process.waitForStarted())
        return QStringLiteral("cannot run Xvfb; on Debian it is in the package xvfb");
    QElapsedTimer elapsed;
    elapsed.start();
    QByteArray number;
    while (!number.contains('\n')) {
        if (EndRequest::hasCome() || elapsed.hasExpired(startMilliseconds)
            || m_process.state() == QProcess::NotRunning)
            return QStringLiteral("Xvfb did not come up");
        m_process.waitForReadyRead(slice);
        number += m_process.readAllStandardOutput();
    }
    m_display = QLatin1Char(':') + QString::fromLatin1(number.trimmed());
    return {};
}

QString XServer::type(const QStringList &keyCodes) const
{
    QProcess tool;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), m_display);
    tool.setProcessEnvironment(environment);
    tool.start(QStringLiteral("xdotool"), QStringList{QStringLiteral("key")} + keyCodes);
    if (!tool.waitForStarted())
        return QStringLiteral("cannot run xdotool; on Debian it is in the package xdotool");
    const bool hasEnded = waitForEnd(tool);
    if (hasEnded && tool.exitStatus() == QProcess::NormalExit && tool.exitCode() == 0)
        return {};
    endProcess(tool);
    return QStringLiteral("xdotool failed: ") + QString::fromLocal8Bit(tool.readAllStandardError()).trimmed();
}
