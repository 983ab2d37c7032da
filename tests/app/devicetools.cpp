// Scripts in a folder of their own at the head of the search path.
#include "devicetools.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace {

void write(const QString &name, const QByteArray &content)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %s.", qPrintable(name));
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

} // namespace

DeviceTools::DeviceTools()
    : m_searchPath(qgetenv("PATH"))
{
    for (const char *tool : {"timedatectl", "fw_printenv", "fw_setenv", "df", "cat"})
        setScript(QString::fromLatin1(tool), QByteArray());
    qputenv("PATH", m_folder.path().toLocal8Bit() + ':' + m_searchPath);
}

DeviceTools::~DeviceTools()
{
    qputenv("PATH", m_searchPath);
}

void DeviceTools::setScript(const QString &tool, const QByteArray &lines)
{
    const QByteArray folder = m_folder.path().toLocal8Bit();
    write(m_folder.filePath(tool),
          "#!/bin/sh\nPATH=" + m_searchPath + "\nvalues=" + folder + "/values\necho " + tool.toLatin1()
              + " \"$@\" >> " + folder + "/runs\n" + lines + '\n');
}

void DeviceTools::setBootValues(const QList<QPair<QByteArray, QByteArray>> &values)
{
    QDir(m_folder.filePath(QStringLiteral("values"))).removeRecursively();
    QDir(m_folder.path()).mkdir(QStringLiteral("values"));
    for (const auto &value : values)
        write(m_folder.filePath(QStringLiteral("values/") + QString::fromLatin1(value.first)), value.second);
    setScript(QStringLiteral("fw_printenv"),
              "shift\nfor name; do test -e $values/$name && cat $values/$name; echo; done");
    setScript(QStringLiteral("fw_setenv"), "rm -f $values/$1");
}

QStringList DeviceTools::runs() const
{
    QFile file(m_folder.filePath(QStringLiteral("runs")));
    return file.open(QIODevice::ReadOnly)
        ? QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts)
        : QStringList();
}

QStringList DeviceTools::runs(const QString &tool) const
{
    QStringList found;
    for (const QString &run : runs()) {
        if (run.startsWith(tool + QLatin1Char(' ')))
            found += run.mid(tool.size() + 1);
    }
    return found;
}

void DeviceTools::clear()
{
    QFile::remove(m_folder.filePath(QStringLiteral("runs")));
}
