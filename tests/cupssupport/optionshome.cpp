// Sets HOME and CUPS_SERVERROOT, and sets them back.
#include "optionshome.h"

#include "filebytes.h"

#include <QtCore/QDir>

OptionsHome::OptionsHome()
    : m_folder(QDir::tempPath() + QStringLiteral("/zboptions-XXXXXX"))
    , m_home(qgetenv("HOME"))
    , m_serverRoot(qgetenv("CUPS_SERVERROOT"))
    , m_hasServerRoot(qEnvironmentVariableIsSet("CUPS_SERVERROOT"))
{
    qputenv("HOME", m_folder.path().toLocal8Bit());
    qputenv("CUPS_SERVERROOT", m_folder.filePath(QStringLiteral("system")).toLocal8Bit());
}

OptionsHome::~OptionsHome()
{
    qputenv("HOME", m_home);
    if (m_hasServerRoot)
        qputenv("CUPS_SERVERROOT", m_serverRoot);
    else
        qunsetenv("CUPS_SERVERROOT");
}

QString OptionsHome::cupsFolder() const
{
    return m_folder.filePath(QStringLiteral(".cups"));
}

QString OptionsHome::userFile() const
{
    return cupsFolder() + QStringLiteral("/lpoptions");
}

QString OptionsHome::systemFile() const
{
    return m_folder.filePath(QStringLiteral("system/lpoptions"));
}

bool OptionsHome::write(const QByteArray &text) const
{
    return QDir().mkpath(cupsFolder()) && FileBytes::write(userFile(), text);
}

bool OptionsHome::writeSystem(const QByteArray &text) const
{
    return QDir().mkpath(m_folder.filePath(QStringLiteral("system"))) && FileBytes::write(systemFile(), text);
}

QByteArray OptionsHome::text() const
{
    return FileBytes::read(userFile());
}

QStringList OptionsHome::files() const
{
    return QDir(cupsFolder())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}
