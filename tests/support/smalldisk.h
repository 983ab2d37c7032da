// A small disk in memory that only this process and its children see, to be filled or made read-only.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace SmallDisk {

/// Mounts one of 512 KiB on \a folder, in a mount namespace that ends with the process. Before anything makes
/// a thread, since a user namespace is for a process of one thread. False where it is not allowed.
bool mountOn(const QByteArray &folder);
/// Fills it until \a kilobytes are free.
bool fill(const QString &folder, int kilobytes);
/// Makes room again.
bool clear(const QString &folder);
bool makeReadOnly(const QByteArray &folder, bool isReadOnly);

} // namespace SmallDisk
