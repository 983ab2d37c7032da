// What becomes of a store that cannot be used: it is kept, with the files that belong to it, under other
// names.
#pragma once

#include <QtCore/QString>

namespace SetAside {

/// Whether there are documents or pictures beside the database at \a path.
bool hasFilesBeside(const QString &path);

/**
 * Renames the database at \a path, where it is one, with its log, to "<path>.damaged-1" or up to "-5", and
 * the folders "documents" and "pictures" beside it to that name with ".documents" and ".pictures"; empty
 * folders come in their place. Where no number is free, the highest is replaced whose name no folder has.
 * Puts the new name into \a place and returns an empty text, or why it could not be done; nothing is lost
 * then.
 */
QString rename(const QString &path, QString *place);

} // namespace SetAside
