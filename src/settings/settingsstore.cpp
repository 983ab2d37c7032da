// Opens the settings file and writes it back.
#include "settingsstore.h"

#include "diskroom.h"
#include "settingsfilelock.h"

#include <QtCore/QDataStream>
#include <QtCore/QFile>

namespace {

/// An upper bound of what \a value takes in the file: a character of a text is two bytes in the stream and at
/// most six in the file, and a byte of any other value at most four.
qint64 writtenSize(const QVariant &value)
{
    constexpr qint64 perByte = 4;
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << value;
    return bytes.size() * perByte;
}

} // namespace

SettingsStore::SettingsStore()
    : m_file(std::in_place, QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Corvanta"),
             QStringLiteral("Brindlemark"))
{
}

SettingsStore::~SettingsStore()
{
    if (!m_changed)
        return;
    const SettingsFileLock lock(m_file->fileName());
    m_file.reset();
}

QVariant SettingsStore::value(const QString &path, const QVariant &defaultValue) const
{
    return m_file->value(path, defaultValue);
}

void SettingsStore::setValue(const QString &path, const QVariant &value)
{
    if (!hasRoomFor(QFile::encodeName(m_file->fileName()), writtenSize(value)))
        return;
    m_changed = true;
    m_file->setValue(path, value);
}
