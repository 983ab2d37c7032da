// One opening of the settings file: made for one read or one write and dropped at once.
#pragma once

#include <QtCore/QSettings>
#include <QtCore/QVariant>

#include <optional>

/**
 * The user-scope INI file of organisation "Corvanta" and application "Brindlemark".
 *
 * What setValue() was given reaches the file when the object is destroyed, under a SettingsFileLock, so that
 * processes of the device that write different keys at the same time do not undo one another.
 */
class SettingsStore
{
public:
    SettingsStore();
    ~SettingsStore();

    /// The stored value, or \a defaultValue as it is when \a path is absent.
    QVariant value(const QString &path, const QVariant &defaultValue) const;
    /// Nothing happens when the disk has no room for the file: it keeps what it holds.
    void setValue(const QString &path, const QVariant &value);

private:
    Q_DISABLE_COPY(SettingsStore)
    std::optional<QSettings> m_file;
    bool m_changed = false;
};
