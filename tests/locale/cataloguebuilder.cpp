// Makes the bytes of a gettext catalogue, so that tests can also make wrong ones.
#include "cataloguebuilder.h"

#include <QtCore/QtEndian>

QByteArray numberBytes(quint32 number, ByteOrder order)
{
    const quint32 ordered = order == ByteOrder::BigEndian ? qToBigEndian(number) : qToLittleEndian(number);
    return QByteArray(reinterpret_cast<const char *>(&ordered), sizeof ordered);
}

QByteArray catalogueBytes(QMap<QByteArray, QByteArray> translations, ByteOrder order)
{
    if (!translations.contains(""))
        translations.insert("", "Content-Type: text/plain; charset=UTF-8\n");

    constexpr int headerSize = 28;
    const int tableSize = translations.size() * 8;
    QByteArray messageTable;
    QByteArray translationTable;
    QByteArray texts;
    const auto addText = [&](QByteArray &table, const QByteArray &text) {
        table += numberBytes(quint32(text.size()), order)
            + numberBytes(quint32(headerSize + 2 * tableSize + texts.size()), order);
        texts += text + '\0';
    };
    for (auto entry = translations.begin(); entry != translations.end(); ++entry) {
        addText(messageTable, entry.key());
        addText(translationTable, entry.value());
    }

    QByteArray header;
    for (const quint32 number : {0x950412deU, 0U, quint32(translations.size()), quint32(headerSize),
                                 quint32(headerSize + tableSize), 0U, 0U})
        header += numberBytes(number, order);
    return header + messageTable + translationTable + texts;
}
