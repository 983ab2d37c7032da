// Whether the disk has room for a file that is about to be replaced.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

/**
 * Whether a new version of \a fileName that is \a growth bytes longer fits on the disk beside the old one, as
 * statvfs(3) and the process's limit for file sizes (getrlimit(2)) tell. True when they do not tell.
 *
 * Qt 5.15's QSaveFile does not notice when its last buffer finds no room: it then replaces a whole file by
 * one that is cut. So the room is looked for before the file is touched.
 */
bool hasRoomFor(const QByteArray &fileName, qint64 growth);
