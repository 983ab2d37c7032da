// The printer's offsets as display lines.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/**
 * Two display lines from \a toolOutput, which holds one value a line: values 0 to 4, then values 5 to 9, each
 * line joined by ", ". A value that is missing is empty; what follows the tenth is ignored.
 */
QStringList offsetLines(const QString &toolOutput);
