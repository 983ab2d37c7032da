// Plain reading and writing of a whole file.
#include "filebytes.h"

#include <QtCore/QFile>

QByteArray FileBytes::read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QByteArray("").append(file.readAll()) : QByteArray();
}

bool FileBytes::write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size()
        && file.flush();
}
