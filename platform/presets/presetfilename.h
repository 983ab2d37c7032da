// Names of files in the presets folder: safe ones from any text, and which files may be presets at all.
#pragma once

#include <QtCore/QString>

/**
 * A file name for \a wish, which is any text: letters, digits, "-" and "_" of ASCII stay, all else becomes
 * the percent-encoding of its UTF-8 (RFC 3986, 2.1), and what is longer than 120 characters is cut there.
 * "preset" for an empty text. The name never holds a dot, so it is none of the folder's own files.
 *
 * Different texts may give the same name. The second and further files of a name are told apart by \a number
 * from 2 up, which is added with a "-".
 */
QString presetFileName(const QString &wish, int number = 1);

/// Name of the file with the order of the presets of \a modelName.
QString presetOrderFileName(const QString &modelName);

/// Name for a damaged file \a fileName; \a number from 2 up where further ones are needed.
QString damagedFileName(const QString &fileName, int number = 1);

/// Whether the file may be a preset, whoever made it: not one of the folder's own other files, not set aside,
/// and not what editors leave beside the file that they edit.
bool mayBePresetFile(const QString &fileName);

/// The file that becomes another one as soon as it is whole.
QString unfinishedFileName();
