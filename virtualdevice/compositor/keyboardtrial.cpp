// Starts screen, compositor and client, types, and reads what the client reports.
#include "keyboardtrial.h"

#include "endrequest.h"
#include "processend.h"

#include <QtCore/QElapsedTimer>

namespace {

constexpr int patience = 10000;
constexpr int slice = 100;

} // namespace

KeyboardTrial::KeyboardTrial(const QString &client)
    : m_clientProgram(client)
{
}

KeyboardTrial::~KeyboardTrial()
{
    endProcess(m_client);
}

QString KeyboardTrial::start(const QByteArray &environmentFile)
{
    QString complaint = m_screen.start();
    if (!complaint.isEmpty())
        return complaint;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), m_screen.display());
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.remove(QStringLiteral("XAUTHORITY"));
    complaint = m_compositor.start(environment, environmentFile);
    if (!complaint.isEmpty())
        return complaint;

    m_client.setProcessEnvironment(m_compositor.clientEnvironment());
    // Until it has become the client it is still this program, which does not die of SIGTERM.
    m_client.start(m_clientProgram, {QStringLiteral("--report")});
    if (!m_client.waitForStarted())
        return QStringLiteral("cannot run ") + m_clientProgram;
    while (!m_hasFocus) {
        if (!readLine())
            return QStringLiteral("the text field got no focus: ")
                + QString::fromLocal8Bit(m_client.readAllStandardError()).trimmed();
    }
    return {};
}

QString KeyboardTrial::type(const QStringList &keyCodes)
{
    const QString complaint = m_screen.type(keyCodes);
    if (!complaint.isEmpty())
        return complaint;
    const int expected = m_typed.size() + keyCodes.size();
    while (m_typed.size() < expected) {
        if (!readLine())
            return QStringLiteral("the text field has received %1 of %2 keys")
                .arg(m_typed.size())
                .arg(expected);
    }
    return {};
}

QString KeyboardTrial::writePicture(const QString &fileName)
{
    while (m_shown != m_typed.join(QString())) {
        if (!readLine())
            return QStringLiteral("the text field does not show what was typed");
    }
    QProcess tool;
    tool.setProcessEnvironment(m_compositor.clientEnvironment());
    tool.start(QStringLiteral("grim"), {fileName});
    if (!tool.waitForStarted())
        return QStringLiteral("cannot run grim; on Debian it is in the package grim");
    const bool hasEnded = waitForEnd(tool);
    if (hasEnded && tool.exitStatus() == QProcess::NormalExit && tool.exitCode() == 0)
        return {};
    endProcess(tool);
    return QStringLiteral("grim failed: ") + QString::fromLocal8Bit(tool.readAllStandardError()).trimmed();
}

// Takes in one line of the client's report; false when none comes.
bool KeyboardTrial::readLine()
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (!m_client.canReadLine()) {
        if (EndRequest::hasCome() || elapsed.hasExpired(patience) || m_client.state() == QProcess::NotRunning)
            return false;
        m_client.waitForReadyRead(slice);
    }
    QString line = QString::fromUtf8(m_client.readLine());
    line.chop(1);
    const QString kind = line.section(QLatin1Char(' '), 0, 0);
    const QString text = line.mid(kind.size() + 1);
    if (kind == QLatin1String("focus"))
        m_hasFocus = true;
    if (kind == QLatin1String("text"))
        m_typed << text;
    if (kind == QLatin1String("shown"))
        m_shown = text;
    return true;
}
