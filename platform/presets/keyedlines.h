// The form that all files of the folder share: a title, lines "key: value" about the whole, and one section
// of further lines "key: value".
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

/// The lines of a file without its title.
struct KeyedLines
{
    QStringList head; ///< key, value, key, value
    QStringList body; ///< the same; the last value may be missing
};

/**
 * The text, in UTF-8 and with a last line that says that it is whole.
 *
 * Any text may be a key or a value: what would be taken for something else, or would not be seen in an
 * editor, is written with a backslash. \a section is the name of the section with the body.
 */
QByteArray keyedLinesText(const QString &title, const QString &section, const KeyedLines &lines);

/// The first line of \a text, without its line end; nothing when the whole is not UTF-8.
std::optional<QString> titleOfKeyedLines(const QByteArray &text);

/// What keyedLinesText() made the text of, whatever its title; nothing when it is damaged. Empty lines, lines
/// that begin with #, blanks around keys and values, and carriage returns make no difference.
std::optional<KeyedLines> keyedLinesIn(const QByteArray &text, const QString &section);
