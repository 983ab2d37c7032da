// The text of an lpoptions file: finds the line of one queue in it and changes single options there.
//
// Text in, text out. The rules are those of libcups, by which lp reads the file:
//
// - A line ends with LF, CR or both, at a NUL byte, and after 8,191 bytes.
// - A "#" starts a comment. One with a backslash before it does not, if it is the first on its line.
// - The line of a queue is the first one whose first word is Dest or Default and whose second word is the
//   queue, in any case. With a "/" it is an instance's, which is another destination.
#pragma once

#include "lpoptionsline.h"

#include <optional>

/// The options of \a queue in \a text; none when the queue has no line.
QVector<LpOption> lpOptionsOf(const QByteArray &text, const QByteArray &queue);

/**
 * \a text with \a name set to \a value for \a queue, or without \a name when \a value is null. Nothing but
 * this option changes, byte for byte; a queue without a line gets one at the end. \a value has no byte that
 * would have to be quoted.
 *
 * Nothing when it cannot be done: when the line would become too long for libcups, or when another option of
 * the line, which would have to be a mess for that, would then be read in another way.
 */
std::optional<QByteArray> withLpOption(const QByteArray &text, const QByteArray &queue,
                                       const QByteArray &name, const QByteArray &value);

/// \a text with an end of line where it ends with the line of \a queue without one, as a file does that a
/// person edited. Everybody who meets a file without takes it for one that is being written.
QByteArray withEndedLine(const QByteArray &text, const QByteArray &queue);
