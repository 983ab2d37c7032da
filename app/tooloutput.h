// Takes apart what the system tools behind the About page print.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

/// One file system in the table of df(1). Sizes are texts for people, such as "2.9 GiB".
struct StorageRow
{
    QString fileSystem;
    QString size;
    QString used;
    QString available;
    QString mountPoint;
    int usedPercent = 0; ///< as the tool gives it; 0 where it gives none
};

/// The rows of `df -h`, without the header line. Empty when any line is not of that form: the table is then
/// better shown as it is.
QVector<StorageRow> storageRows(const QString &table);

/// A size as `df -h` prints it, in powers of 1024, with a unit that says so: "2.9G" is "2.9 GiB".
QString readableSize(const QString &size);

/**
 * The values in \a output, which holds \a count of them, one a line, each trimmed. Empty when there are more
 * or fewer lines: none of them could be told then.
 */
QStringList valueLines(const QString &output, int count);

/**
 * The values of one line of ZBSettingsMain::formatOffsets(), each trimmed. Empty when the line does not hold
 * \a count values, or none of them has a text.
 */
QStringList offsetValues(const QString &line, int count);
