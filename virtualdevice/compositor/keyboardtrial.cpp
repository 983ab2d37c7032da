// Starts screen, compositor and client, types, and reads what the client says.
#include "keyboardtrial.h"

#include "processend.h"

namespace {

constexpr int patience = 10000;

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
    complaint = m_compositor.start(environment, environmentFile);
    if (!complaint.isEmpty())
        return complaint;

    m_client.setProcessEnvironment(m_compositor.clientEnvironment());
    m_client.start(m_clientProgram, QStringList());
    QString line;
    while (readLine(&line)) {
        if (line == QLatin1String("focus"))
            return {};
    }
    return QStringLiteral("the client got no focus: ")
        + QString::fromLocal8Bit(m_client.readAllStandardError()).trimmed();
}

QStringList KeyboardTrial::type(const QStringList &keyCodes)
{
    const QString complaint = m_screen.type(keyCodes);
    if (!complaint.isEmpty())
        return {complaint};
    const QString mark = QStringLiteral("text ");
    QStringList texts;
    for (QString line; texts.size() < keyCodes.size() && readLine(&line);) {
        if (line.startsWith(mark))
            texts << line.mid(mark.size());
    }
    return texts;
}

bool KeyboardTrial::readLine(QString *line)
{
    while (!m_client.canReadLine()) {
        if (!m_client.waitForReadyRead(patience))
            return false;
    }
    *line = QString::fromUtf8(m_client.readLine());
    line->chop(1);
    return true;
}

QString KeyboardTrial::writePicture(const QString &fileName) const
{
    QProcess tool;
    tool.setProcessEnvironment(m_compositor.clientEnvironment());
    tool.start(QStringLiteral("grim"), {fileName});
    if (!tool.waitForStarted())
        return QStringLiteral("cannot run grim; on Debian it is in the package grim");
    if (!tool.waitForFinished() || tool.exitCode() != 0)
        return QStringLiteral("grim: ") + QString::fromLocal8Bit(tool.readAllStandardError()).trimmed();
    return {};
}
