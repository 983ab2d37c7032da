// What another process writes to the local socket, read as a tab number.
#pragma once

#include <QtCore/QByteArray>

/**
 * The tab number in \a message: UTF-8 text up to the first NUL byte, either a number alone or a line "u"
 * followed by a line with the number. Anything else gives 0 or the number that it holds by the same rules;
 * nothing is refused.
 */
uint tabIndexFromMessage(const QByteArray &message);
