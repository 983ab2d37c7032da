// Opens the settings file and writes it back.
#include "settingsstore.h"

#include "diskroom.h"
#include "settingsfilelock.h"

#include <QtCore/QDataStream>
#include <QtCore/QFile>

#include <algorithm>

namespace {

/// An upper bound of what \a text takes in the file, where some characters are written as "\x" and up to four
/// digits.
qint64 writtenSize(const QString &text)
{
    constexpr qint64 asItStands = 2;
    constexpr qint64 escaped = 6;
    const qint64 plain = std::count_if(text.cbegin(), text.cend(), [](QChar character) {
        return character.unicode() >= 0x20 && character.unicode() < 0x7f;
    });
    return plain * asItStands + (text.size() - plain) * escaped;
}

/// An upper bound of what \a value takes in the file; a byte of what is no text takes at most four.
qint64 writtenSize(const QVariant &value)
{
    if (value.userType() == QMetaType::QString)
        return writtenSize(value.toString());
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
