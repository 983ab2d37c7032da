// The schema of the settings file: every key with its group and its description.
#pragma once

#include <QtCore/QString>

#include <map>
#include <string>

namespace SettingsSchema {

/// Description of each key, for documentation and tools.
const std::map<std::string, std::string> &descriptions();

/// Group of each key; empty for a key at the top level of the file.
const std::map<std::string, std::string> &groups();

/**
 * Where getSetting() finds \a key in the file: group/key, or the key alone when it has no group.
 * \throws std::out_of_range ("map::at") for a key outside the schema
 */
QString readPath(const QString &key);

/**
 * Where setSetting() puts \a key: always group/key. With an empty group that is "/key", which QSettings takes
 * for the top level too. \throws std::out_of_range ("map::at") for a key outside the schema
 */
QString writePath(const QString &key);

} // namespace SettingsSchema
