// Stands between the library and two functions of the C library: opening a file, and sync(2).
//
// A test that links it must be linked with its symbols exported, so that the libraries find these first.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QVector>

namespace SystemCalls {

/// From now on the opens of \a path whose numbers, from 0, are in \a failing end with EACCES.
void failOpens(const QByteArray &path, const QVector<int> &failing);
/// How often the path of failOpens() was opened, or tried to.
int openCount();
/// Forgets failOpens() and the calls of sync().
void reset();
/// What \a path holds at each sync() from now on; the sync itself is left out, since it is the machine's.
void watchSyncs(const QByteArray &path);
QVector<QByteArray> contentsAtSyncs();

} // namespace SystemCalls
