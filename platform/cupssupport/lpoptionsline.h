// The options of one line of an lpoptions file, read by the rules of libcups.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QVector>

/// One "name=value", "name" or "noname" of a line. The name is as written, without the "no".
struct LpOption
{
    QByteArray name;
    QByteArray value; ///< without quotes and backslashes; "true" or "false" where only a name stands
    int begin; ///< where it stands in the text that it was read from: its first byte
    int end; ///< and the byte after its last one
};

/// White space as CUPS has it, whatever the locale.
bool isLpSpace(char character);
/// Whether two names are the same to CUPS, which knows no difference between letters of ASCII.
bool isSameLpName(const QByteArray &left, const QByteArray &right);
/// Whether \a text is in braces as a whole, which then are no part of the options.
bool isBraced(const QByteArray &text);

/**
 * The options in \a text, which is what follows the destination on its line, as cupsParseOptions(3) reads it:
 * all of them, in their order. Where a name stands twice, the last one counts. Reading ends at a "=" without
 * a name before it.
 */
QVector<LpOption> lpOptionsIn(const QByteArray &text);
/// The value of \a name in \a options, null when it is not there.
QByteArray lpOptionValue(const QVector<LpOption> &options, const QByteArray &name);
