// Runs sway. It refuses to be root, so that root hands it to the user "nobody", with a folder that this user
// can reach.
#include "compositor.h"

#include "endrequest.h"
#include "environmentfile.h"
#include "processend.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>

#include <unistd.h>

namespace {

constexpr uid_t nobody = 65534;
constexpr int startMilliseconds = 10000;

constexpr char configuration[] = "xwayland disable\n"
                                 "default_border none\n"
                                 "focus_follows_mouse no\n"
                                 "output * mode 800x480\n";

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

// Nobody could not enter root's folder for temporary files in a virtual device. With the process in the name,
// so that it can be told whose a folder is.
QString folderTemplate()
{
    const QString place = geteuid() == 0 ? QStringLiteral("/tmp") : QDir::tempPath();
    return place + QStringLiteral("/zbcompositor-%1-XXXXXX").arg(getpid());
}

} // namespace

Compositor::Compositor()
    : m_runtime(folderTemplate())
{
}

Compositor::~Compositor()
{
    endProcess(m_process);
}

QString Compositor::start(const QProcessEnvironment &environment, const QByteArray &environmentFile)
{
    const QString configurationFile = m_runtime.filePath(QStringLiteral("configuration"));
    if (!m_runtime.isValid() || !writeFile(configurationFile, configuration))
        return QStringLiteral("cannot make a folder like %1: %2")
            .arg(m_runtime.path(), m_runtime.errorString());

    m_clientEnvironment = environment;
    m_clientEnvironment.remove(QStringLiteral("DISPLAY"));
    m_environment = withVariables(environment, environmentFile);
    m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime.path());
    m_environment.insert(QStringLiteral("WLR_RENDERER"), QStringLiteral("pixman"));
    const bool inWayland = environment.contains(QStringLiteral("WAYLAND_DISPLAY"));
    m_environment.insert(QStringLiteral("WLR_BACKENDS"),
                         inWayland ? QStringLiteral("wayland") : QStringLiteral("x11"));

    QStringList command{QStringLiteral("sway"), QStringLiteral("-c"), configurationFile};
    if (geteuid() == 0) {
        if (inWayland)
            return QStringLiteral(
                "as root there is no window in a Wayland display; be an ordinary user, or use --type");
        const QString complaint = handFolderToNobody();
        if (!complaint.isEmpty())
            return complaint;
        const QString user = QString::number(nobody);
        command = QStringList{QStringLiteral("setpriv"),
                              QStringLiteral("--reuid"),
                              user,
                              QStringLiteral("--regid"),
                              user,
                              QStringLiteral("--clear-groups")}
            + command;
    }
    m_process.setProcessEnvironment(m_environment);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(command.takeFirst(), command);
    if (!m_process.waitForStarted())
        return QStringLiteral("cannot run the compositor; on Debian it is in the package sway");

    QElapsedTimer elapsed;
    elapsed.start();
    while (socket().isEmpty()) {
        if (EndRequest::hasCome() || m_process.waitForFinished(10) || elapsed.hasExpired(startMilliseconds)
            || m_process.state() == QProcess::NotRunning)
            return QStringLiteral("the compositor did not come up:\n")
                + QString::fromLocal8Bit(m_process.readAll());
    }
    return {};
}

// With the key of the X display, which nobody could not read where it lies.
QString Compositor::handFolderToNobody()
{
    const QString key = m_environment.value(QStringLiteral("XAUTHORITY"));
    const QString copiedKey = m_runtime.filePath(QStringLiteral("xauthority"));
    if (!key.isEmpty() && QFile::copy(key, copiedKey))
        m_environment.insert(QStringLiteral("XAUTHORITY"), copiedKey);
    for (const QString &path :
         {m_runtime.path(), m_runtime.filePath(QStringLiteral("configuration")), copiedKey}) {
        if (QFile::exists(path) && chown(QFile::encodeName(path).constData(), nobody, nobody) != 0)
            return QStringLiteral("cannot give %1 to the user nobody").arg(path);
    }
    return {};
}

QString Compositor::socket() const
{
    const QStringList sockets =
        QDir(m_runtime.path()).entryList({QStringLiteral("wayland-*")}, QDir::System | QDir::AllEntries);
    for (const QString &name : sockets) {
        if (!name.endsWith(QLatin1String(".lock")))
            return m_runtime.filePath(name);
    }
    return {};
}

QProcessEnvironment Compositor::clientEnvironment() const
{
    QProcessEnvironment result = m_clientEnvironment;
    result.insert(QStringLiteral("WAYLAND_DISPLAY"), socket());
    result.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland"));
    return result;
}
