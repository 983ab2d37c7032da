// Reads one value of an INI file as it stands on the disk.
#include "storedvalue.h"

#include <QtCore/QFile>

QString storedValue(const QString &fileName, const QString &section, const QString &key)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    const QString heading = QLatin1Char('[') + section + QLatin1Char(']');
    const QString beginning = key + QLatin1Char('=');
    bool isInSection = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(QLatin1Char('[')))
            isInSection = line == heading;
        else if (isInSection && line.startsWith(beginning))
            return line.mid(beginning.size());
    }
    return QString();
}
