// Starts and ends a dbus-daemon.
#include "privatebus.h"

#include "statefile.h"

#include <QtCore/QFile>

namespace {

constexpr int patienceMilliseconds = 10000;

QString configuration(const QString &socket, const QString &rules)
{
    return QStringLiteral(R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <keep_umask/>
  <listen>unix:path=%1</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <deny own="*"/>
    <deny send_type="method_call"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
    <allow receive_type="signal"/>
    <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus"/>
  </policy>
  %2
</busconfig>
)")
        .arg(socket, rules);
}

} // namespace

PrivateBus::PrivateBus(const QString &rules)
    : m_rules(rules)
{
}

PrivateBus::~PrivateBus()
{
    kill();
}

bool PrivateBus::start()
{
    // Other users must reach the socket.
    QFile::setPermissions(m_directory.path(),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeGroup
                              | QFile::ExeOther);
    const QString configurationPath = m_directory.filePath(QStringLiteral("bus.conf"));
    if (!writeFile(configurationPath,
                   configuration(m_directory.filePath(QStringLiteral("bus")), m_rules).toUtf8())) {
        m_errorText = QStringLiteral("the configuration of the bus cannot be written");
        return false;
    }

    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    m_process.start(QStringLiteral("dbus-daemon"),
                    {QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                     QStringLiteral("--print-address=1"),
                     QStringLiteral("--config-file=") + configurationPath});
    // The bus writes its address once it listens.
    while (!m_process.canReadLine() && m_process.waitForReadyRead(patienceMilliseconds)) { }
    m_address = QString::fromUtf8(m_process.readLine()).trimmed();
    if (m_address.isEmpty())
        m_errorText =
            m_process.errorString() + QLatin1Char(' ') + QString::fromUtf8(m_process.readAllStandardError());
    return !m_address.isEmpty();
}

void PrivateBus::kill()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished(patienceMilliseconds);
}

QString PrivateBus::address() const
{
    return m_address;
}

QString PrivateBus::errorText() const
{
    return m_errorText;
}

QString openRules()
{
    return QStringLiteral(R"(<policy context="default">
    <allow own="*"/>
    <allow send_destination="*"/>
  </policy>)");
}
