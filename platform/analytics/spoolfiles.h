// The files of the spool on the disk: making the folder, adding a line, replacing the whole.
#pragma once

#include "filedescriptor.h"

#include <QtCore/QByteArray>

/// Opens the folder \a path for the calls below, and makes it and what is missing above it, accessible to the
/// user alone. A symbolic link in the place of the folder itself is not followed.
FileDescriptor openSpoolFolder(const QByteArray &path);

/**
 * Adds \a line, which ends with its line end, to "events.jsonl" in the open folder \a folder. The caller
 * holds the SpoolLock.
 *
 * \a line begins on a line of its own also when the file ends inside a line. If the file would grow beyond \a
 * limit bytes, its older lines go first (trimmedToFit()) and the file is replaced in one step; \a line must
 * not be longer than \a limit.
 *
 * Returns 0, or the errno value with which it failed. The file is then as it was.
 */
int addToSpool(int folder, const QByteArray &line, qint64 limit);
