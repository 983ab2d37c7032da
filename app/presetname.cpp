// Goes through a name character by character.
#include "presetname.h"

#include <QtCore/QChar>
#include <QtCore/QTextBoundaryFinder>

namespace {

bool isBetween(uint character, uint first, uint last)
{
    return character >= first && character <= last;
}

/// Shows only in how the characters around it look.
bool joins(uint character)
{
    constexpr uint graphemeJoiner = 0x34f;
    constexpr uint zeroWidthNonJoiner = 0x200c;
    constexpr uint zeroWidthJoiner = 0x200d;
    return character == graphemeJoiner || isBetween(character, zeroWidthNonJoiner, zeroWidthJoiner);
}

/// Shows only in how the character before it looks: variation selectors, and the tags that make one flag
/// another one.
bool varies(uint character)
{
    return isBetween(character, 0xfe00, 0xfe0f) || isBetween(character, 0xe0020, 0xe007f)
        || isBetween(character, 0xe0100, 0xe01ef);
}

/// Signs around or above numbers and words, which can be seen though Unicode calls them format characters.
bool isVisibleFormat(uint character)
{
    constexpr uint endOfAyah = 0x6dd;
    constexpr uint syriacAbbreviation = 0x70f;
    constexpr uint disputedEndOfAyah = 0x8e2;
    constexpr uint kaithiNumber = 0x110bd;
    constexpr uint kaithiNumberAbove = 0x110cd;
    return isBetween(character, 0x600, 0x605) || character == endOfAyah || character == syriacAbbreviation
        || character == disputedEndOfAyah || character == kaithiNumber || character == kaithiNumberAbove;
}

/// Takes room and shows nothing, though Unicode calls it a letter or a symbol.
bool isFiller(uint character)
{
    constexpr uint emptyBraille = 0x2800;
    constexpr uint hangulFiller = 0x3164;
    constexpr uint halfWidthHangulFiller = 0xffa0;
    return character == emptyBraille || isBetween(character, 0x115f, 0x1160) || character == hangulFiller
        || character == halfWidthHangulFiller;
}

bool isHidden(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Format:
        return !isVisibleFormat(character);
    case QChar::Other_Control:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return isFiller(character);
    }
}

/// The character at this position, or the half of one.
uint characterAt(const QString &text, int position)
{
    const QChar first = text.at(position);
    const bool isPair =
        first.isHighSurrogate() && position + 1 < text.size() && text.at(position + 1).isLowSurrogate();
    return isPair ? QChar::surrogateToUcs4(first, text.at(position + 1)) : first.unicode();
}

} // namespace

QString visibleName(const QString &text)
{
    QString name;
    bool isGap = true;
    bool wasHidden = true;
    for (int position = 0; position < text.size();) {
        const uint character = characterAt(text, position);
        const int length = QChar::requiresSurrogates(character) ? 2 : 1;
        if (joins(character) || varies(character) ? isGap : isHidden(character)) {
            if (!wasHidden)
                name += QLatin1Char(' ');
            wasHidden = true;
            isGap = true;
        } else {
            name += text.midRef(position, length);
            wasHidden = false;
            isGap = QChar::isSpace(character);
        }
        position += length;
    }
    while (!name.isEmpty() && (name.back().isSpace() || joins(name.back().unicode())))
        name.chop(1);
    return name.trimmed();
}

QString shortened(const QString &text, int characters)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (int count = 0; count < characters; ++count) {
        if (finder.toNextBoundary() < 0)
            return text;
    }
    const int end = finder.position();
    return end < text.size() ? text.left(end) + QStringLiteral("…") : text;
}
