// Reads KEY=VALUE lines.
#include "environmentfile.h"

#include <QtCore/QList>

QProcessEnvironment withVariables(QProcessEnvironment base, const QByteArray &content)
{
    const QList<QByteArray> lines = content.split('\n');
    for (const QByteArray &line : lines) {
        const QByteArray text = line.trimmed();
        const int equals = text.indexOf('=');
        if (equals < 1 || text.startsWith('#') || text.startsWith(';'))
            continue;
        base.insert(QString::fromLocal8Bit(text.left(equals).trimmed()),
                    QString::fromLocal8Bit(text.mid(equals + 1).trimmed()));
    }
    return base;
}
