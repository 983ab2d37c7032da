// Keeps the finished list of keyboard layouts in a file of the user's cache folder, since making it (parsing
// and validating XML, translating, sorting) is most of what starting an application with this library costs.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>

#include <functional>

/// What the files and folders at \a paths are told apart by: path, inode, size and times of change of each.
QByteArray fingerprintOf(const QByteArrayList &paths);

/// The cache's bytes for \a packed layouts that were made from what \a fingerprint names.
QByteArray cacheOf(const QByteArray &packed, const QByteArray &fingerprint);

/// The packed layouts in a cache's bytes; nothing when they were made from something else, or are cut or
/// damaged.
QByteArray layoutsIn(const QByteArray &cache, const QByteArray &fingerprint);

/// The layouts kept for \a fingerprint, else what \a make returns, which is then kept. A cache that cannot be
/// read or written is no failure.
QByteArray cachedLayouts(const QByteArray &fingerprint, const std::function<QByteArray()> &make);
