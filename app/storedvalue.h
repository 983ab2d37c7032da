// Reads one value of an INI file as it stands on the disk.
#pragma once

#include <QtCore/QString>

/// The text behind `key=` in the section of the INI file; empty when there is none. Unlike QSettings it never
/// answers from a copy in this process, so it shows what other programs will read.
QString storedValue(const QString &fileName, const QString &section, const QString &key);
