// Opens a folder, which is made where it is missing.
#pragma once

#include "filedescriptor.h"

#include <QtCore/QByteArray>

enum class MissingFolders {
    Fail, ///< ENOENT
    LastIsMade, ///< the folder itself, in a folder that is there
    AllAreMade ///< also what is missing above it
};

/**
 * The folder \a path for fsync(2), flock(2) and the calls that take a folder. What is made is for the user
 * alone (mode 0700), and its name is on the disk when this returns: the folder above each one is synced.
 */
FileDescriptor openFolder(const QByteArray &path, MissingFolders missing);
