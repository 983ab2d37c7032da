// MessageCatalogue: looks up translations in the bytes of a gettext .mo file.
// Not gettext() itself: it follows the locale of the whole process, and a small device has none generated.
#include "messagecatalogue.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>
#include <QtCore/QtEndian>

#include <algorithm>

namespace {

constexpr quint32 magicNumber = 0x950412de;
constexpr int headerSize = 28;
constexpr int largestFile = 4 * 1024 * 1024;

// Offsets within the header.
constexpr quint64 revisionAt = 4;
constexpr quint64 countAt = 8;
constexpr quint64 messagesAt = 12;
constexpr quint64 translationsAt = 16;

// A table holds a length and an offset for each text.
constexpr quint64 tableRow = 8;

} // namespace

MessageCatalogue::MessageCatalogue(const QByteArray &bytes)
    : m_bytes(bytes)
{
    if (bytes.size() < headerSize)
        return;
    m_bigEndian = qFromBigEndian<quint32>(bytes.constData()) == magicNumber;
    if (number(0) != magicNumber || (number(revisionAt) >> 16) > 1)
        return;
    m_messages = number(messagesAt);
    m_translations = number(translationsAt);
    const quint64 tableSize = number(countAt) * tableRow;
    if (std::max(m_messages, m_translations) + tableSize > quint64(bytes.size()))
        return;
    m_count = number(countAt);
    if (!translatedBytes(QByteArray("")).toLower().contains("charset=utf-8"))
        m_count = 0;
}

bool MessageCatalogue::isValid() const
{
    return m_count > 0;
}

QString MessageCatalogue::translation(const QByteArray &message) const
{
    // The translation of the empty message is the catalogue's header.
    if (message.isEmpty())
        return QString();
    const QString text = QString::fromUtf8(translatedBytes(message));
    return text.isEmpty() || text.contains(QChar::ReplacementCharacter) ? QString() : text;
}

QByteArray MessageCatalogue::translatedBytes(const QByteArray &message) const
{
    quint32 first = 0;
    quint32 end = m_count;
    while (first < end) {
        const quint32 middle = first + (end - first) / 2;
        const QByteArray candidate = text(m_messages, middle);
        if (candidate == message)
            return text(m_translations, middle);
        if (candidate < message)
            first = middle + 1;
        else
            end = middle;
    }
    return QByteArray();
}

// Up to the first NUL, which separates plural forms. Not a copy: the bytes live as long as the catalogue.
QByteArray MessageCatalogue::text(quint64 table, quint32 index) const
{
    const quint64 length = number(table + index * tableRow);
    const quint64 offset = number(table + index * tableRow + sizeof(quint32));
    if (offset + length > quint64(m_bytes.size()))
        return QByteArray();
    const char *start = m_bytes.constData() + offset;
    return QByteArray::fromRawData(start, int(std::find(start, start + length, '\0') - start));
}

quint32 MessageCatalogue::number(quint64 offset) const
{
    const char *bytes = m_bytes.constData() + offset;
    return m_bigEndian ? qFromBigEndian<quint32>(bytes) : qFromLittleEndian<quint32>(bytes);
}

QString installedCatalogue(const QString &domain, const QString &locale)
{
    const QString language = locale.section(QLatin1Char('_'), 0, 0);
    for (const QString &folder : {locale, language}) {
        QString path =
            QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                   QStringLiteral("locale/%1/LC_MESSAGES/%2.mo").arg(folder, domain));
        if (!path.isEmpty())
            return path;
    }
    return QString();
}

MessageCatalogue readCatalogue(const QString &path)
{
    QFile file(path);
    const bool isFile = !path.isEmpty() && QFileInfo(path).isFile();
    if (!isFile || !file.open(QIODevice::ReadOnly) || file.size() > largestFile)
        return MessageCatalogue();
    return MessageCatalogue(file.readAll());
}
