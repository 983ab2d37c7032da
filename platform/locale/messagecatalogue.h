// MessageCatalogue: looks up translations in the bytes of a gettext .mo file.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

/**
 * A compiled message catalogue, as the GNU gettext manual describes it ("The Format of GNU MO Files"), of
 * either byte order, without looking at contexts and plural forms. Every number in the bytes is checked
 * against their length; rubbish finds nothing.
 */
class MessageCatalogue
{
public:
    /// Knows no translation.
    MessageCatalogue() = default;
    /// Bytes that are no catalogue in UTF-8 know no translation either.
    explicit MessageCatalogue(const QByteArray &bytes);

    /// Whether the bytes are a catalogue in UTF-8.
    bool isValid() const;
    /// Translation of \a message; null when there is none, or one that is empty or no valid UTF-8.
    QString translation(const QByteArray &message) const;

private:
    QByteArray text(quint64 table, quint32 index) const;
    QByteArray translatedBytes(const QByteArray &message) const;
    quint32 number(quint64 offset) const;

    QByteArray m_bytes;
    bool m_bigEndian = false;
    quint32 m_count = 0;
    quint32 m_messages = 0;
    quint32 m_translations = 0;
};

/// Path of the catalogue of \a domain that fits \a locale best ("pt_BR", else "pt") in the folders for shared
/// data (XDG_DATA_DIRS); empty when there is none.
QString installedCatalogue(const QString &domain, const QString &locale);

/// The catalogue at \a path; one that knows no translation when there is none.
MessageCatalogue readCatalogue(const QString &path);
