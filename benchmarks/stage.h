// What the benchmarks work on: the settings file of a virtual device and a copy of it for the plain way.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QSettings>
#include <QtCore/QString>

namespace Stage {

/// A file of settings: the one that the library reads and writes, or one beside it with a name of the same
/// length.
class SettingsFile
{
public:
    static SettingsFile library();
    /// For writing the plain way, so that neither side pays for what the other does to the file.
    static SettingsFile plain();

    /// A QSettings on the file, as an application makes one for a single access.
    QSettings open() const;
    QByteArray content() const;
    /// Puts a value for every key into the file, none of them a default; \a brightnessLevel is as given. The
    /// file gets a time that no other has, since QSettings does not see a change within one millisecond.
    void fill(int brightnessLevel = 5) const;
    void remove() const;

private:
    explicit SettingsFile(const QString &application);
    const QString m_application;
    const QString m_path;
};

} // namespace Stage
