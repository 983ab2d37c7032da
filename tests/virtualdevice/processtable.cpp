// Reads /proc.
#include "processtable.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>

namespace {

QByteArray contentOf(qint64 process, const QString &name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(process).arg(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QVector<qint64> allProcesses()
{
    QVector<qint64> result;
    const QStringList names = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &name : names) {
        if (const qint64 process = name.toLongLong(); process > 0)
            result.append(process);
    }
    return result;
}

qint64 parentOf(qint64 process)
{
    const QByteArray status = contentOf(process, QStringLiteral("stat"));
    return status.mid(status.lastIndexOf(')') + 2).split(' ').value(1).toLongLong();
}

} // namespace

QVector<qint64> processesThatMention(const QString &text)
{
    QVector<qint64> result;
    const QByteArray wanted = QFile::encodeName(text);
    for (const qint64 process : allProcesses()) {
        const bool mentioned = contentOf(process, QStringLiteral("cmdline")).contains(wanted)
            || contentOf(process, QStringLiteral("environ")).contains(wanted);
        if (mentioned && process != QCoreApplication::applicationPid())
            result.append(process);
    }
    return result;
}

QString describeProcess(qint64 process)
{
    const QByteArray commandLine = contentOf(process, QStringLiteral("cmdline")).replace('\0', ' ');
    return QStringLiteral("%1 %2").arg(process).arg(QString::fromLocal8Bit(commandLine));
}

QVector<qint64> childrenOf(qint64 parent)
{
    QVector<qint64> result;
    for (const qint64 process : allProcesses()) {
        if (parentOf(process) == parent)
            result.append(process);
    }
    return result;
}

QVector<qint64> processesWithCommandLine(const QString &text)
{
    QVector<qint64> result;
    for (const qint64 process : allProcesses()) {
        if (contentOf(process, QStringLiteral("cmdline")).contains(QFile::encodeName(text)))
            result.append(process);
    }
    return result;
}
