// The text of one analytics event in the spool.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QJsonObject>

/**
 * The event as one line with its line end: a JSON object (RFC 8259) in UTF-8 with the members "time" (ISO
 * 8601, UTC, milliseconds), "hitType" and "hit", in this order and without blanks.
 *
 * The line end is the only one in the text, also for a reader that takes U+0085, U+2028 or U+2029 for one.
 */
QByteArray analyticsLine(const QDateTime &time, int hitType, const QJsonObject &hit);
