// Runs a system tool and reads it back.
#include "toolrun.h"

#include <QtCore/QProcess>

QString outputOfTool(QProcess &process, const QString &program, const QStringList &arguments)
{
    process.start(program, arguments, QIODevice::ReadWrite);
    process.waitForFinished(toolPatience);
    return QString::fromUtf8(process.readAllStandardOutput().constData());
}
