// Puts a file on the disk in steps that a power cut may end anywhere: the old or the new one is there whole.
//
// The functions return 0, or the errno value (errno(3)) with which they failed.
#pragma once

#include <QtCore/QByteArray>

#include <functional>
#include <sys/types.h>

/// What is done with the new file, which is open for writing, before it is synced.
using FileFinish = std::function<int(int file)>;

/**
 * Writes \a content to the new file \a name of \a folder and syncs it. A file or link of that name, which a
 * process left that was killed, is taken away first, so the name is for the holder of the folder's lock. A
 * folder of that name stays, and is EEXIST. After a failure there is no such file.
 */
int writeSyncedFile(int folder, const QByteArray &name, const QByteArray &content, mode_t mode,
                    const FileFinish &finish = {});
/// Gives the file \a from, which writeSyncedFile() wrote, the name \a to, in place of what has it. After a
/// failure there is no \a from. Durable after syncFolder().
int moveIntoPlace(int folder, const QByteArray &from, const QByteArray &to);
/// Puts the folder's names on the disk.
int syncFolder(int folder);
