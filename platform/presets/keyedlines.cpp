// Escaping, and the order of the lines.
#include "keyedlines.h"

#include <QtCore/QTextCodec>
#include <QtCore/QVector>

namespace {

constexpr QChar escape = QLatin1Char('\\');
constexpr QChar separator = QLatin1Char(':');
// Stands for a line that would be empty otherwise.
constexpr QChar nothing = QLatin1Char('.');
const QLatin1String lastLine("[end]");

struct NamedEscape
{
    char name;
    char character;
};

constexpr NamedEscape namedEscapes[] = {{'\\', '\\'}, {':', ':'}, {'n', '\n'}, {'r', '\r'}, {'t', '\t'}};

bool isHalfOfPair(const QString &text, int position)
{
    const QChar character = text.at(position);
    if (character.isHighSurrogate())
        return position + 1 == text.size() || !text.at(position + 1).isLowSurrogate();
    return character.isLowSurrogate() && (position == 0 || !text.at(position - 1).isHighSurrogate());
}

// Characters that UTF-8 has no place for, and those that an editor shows as a line end or not at all.
bool needsNumber(const QString &text, int position)
{
    const QChar character = text.at(position);
    const ushort code = character.unicode();
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x2028 || code == 0x2029 || code == 0xfeff
        || code >= 0xfffe || isHalfOfPair(text, position);
}

QString numbered(QChar character)
{
    return QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
}

QString escaped(const QString &text, int position, bool isKey)
{
    const QChar character = text.at(position);
    for (const NamedEscape &named : namedEscapes) {
        if (character == QLatin1Char(named.character) && (character != separator || isKey))
            return QString(escape) + QLatin1Char(named.name);
    }
    const bool isAtEnd = position == 0 || position == text.size() - 1;
    const bool looksLikeAnotherLine =
        isKey && position == 0 && (character == QLatin1Char('[') || character == QLatin1Char('#'));
    if (needsNumber(text, position) || looksLikeAnotherLine || (isAtEnd && character == QLatin1Char(' ')))
        return numbered(character);
    return character;
}

QString escaped(const QString &text, bool isKey)
{
    QString result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i)
        result += escaped(text, i, isKey);
    return result;
}

QString lineOf(const QString &key, const QString &value)
{
    const QString start = escaped(key, true) + separator;
    return value.isEmpty() ? start : start + QLatin1Char(' ') + escaped(value, false);
}

QString lineOf(const QString &key)
{
    return key.isEmpty() ? QString(escape) + nothing : escaped(key, true);
}

QStringList linesOf(const QStringList &keysAndValues)
{
    QStringList lines;
    int i = 0;
    for (; i + 1 < keysAndValues.size(); i += 2)
        lines.append(lineOf(keysAndValues.at(i), keysAndValues.at(i + 1)));
    if (i < keysAndValues.size())
        lines.append(lineOf(keysAndValues.at(i)));
    return lines;
}

std::optional<QString> decoded(const QByteArray &text)
{
    const QTextCodec *utf8 = QTextCodec::codecForName("UTF-8");
    QTextCodec::ConverterState state;
    const QString result = utf8->toUnicode(text.constData(), text.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0)
        return std::nullopt;
    return result;
}

// Not QString::trimmed(), which takes away blanks that were part of a name.
QStringRef trimmed(const QStringRef &text)
{
    const auto isBlank = [](QChar character) {
        return character == QLatin1Char(' ') || character == QLatin1Char('\t')
            || character == QLatin1Char('\r');
    };
    int start = 0;
    int end = text.size();
    while (start < end && isBlank(text.at(start)))
        ++start;
    while (end > start && isBlank(text.at(end - 1)))
        --end;
    return text.mid(start, end - start);
}

int separatorIn(const QStringRef &line)
{
    for (int i = 0; i < line.size(); ++i) {
        if (line.at(i) == escape)
            ++i;
        else if (line.at(i) == separator)
            return i;
    }
    return -1;
}

// The character behind a backslash at position, which moves to the escape's last character; nothing when
// there is no such escape.
std::optional<QString> unescaped(const QStringRef &text, int *position)
{
    if (++*position >= text.size())
        return std::nullopt;
    const QChar name = text.at(*position);
    if (name == nothing)
        return QString();
    for (const NamedEscape &named : namedEscapes) {
        if (name == QLatin1Char(named.name))
            return QString(QLatin1Char(named.character));
    }
    const QStringRef digits = text.mid(*position + 1, 4);
    if (name != QLatin1Char('u') || digits.size() != 4)
        return std::nullopt;
    ushort code = 0;
    for (const QChar digit : digits) {
        const int value = QStringLiteral("0123456789abcdef").indexOf(digit.toLower());
        if (value < 0)
            return std::nullopt;
        code = ushort(code * 16 + value);
    }
    *position += 4;
    return QString(QChar(code));
}

std::optional<QString> unescaped(const QStringRef &text)
{
    QString result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) != escape) {
            result += text.at(i);
            continue;
        }
        const std::optional<QString> character = unescaped(text, &i);
        if (!character)
            return std::nullopt;
        result += *character;
    }
    return result;
}

// Adds key and value, or the key alone. False when an escape is wrong.
bool addLine(const QStringRef &line, QStringList *keysAndValues)
{
    const int position = separatorIn(line);
    const std::optional<QString> key = unescaped(trimmed(position < 0 ? line : line.left(position)));
    if (!key)
        return false;
    keysAndValues->append(*key);
    if (position < 0)
        return true;
    const std::optional<QString> value = unescaped(trimmed(line.mid(position + 1)));
    if (value)
        keysAndValues->append(*value);
    return value.has_value();
}

bool isWithoutValue(const QStringList &keysAndValues)
{
    return keysAndValues.size() % 2 != 0;
}

} // namespace

QByteArray keyedLinesText(const QString &title, const QString &section, const KeyedLines &lines)
{
    const QStringList all = QStringList{title} + linesOf(lines.head)
        + QStringList{QString(), QLatin1Char('[') + section + QLatin1Char(']')} + linesOf(lines.body)
        + QStringList{QString(), lastLine};
    return (all.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
}

std::optional<QString> titleOfKeyedLines(const QByteArray &text)
{
    const std::optional<QString> all = decoded(text);
    if (!all)
        return std::nullopt;
    return trimmed(all->leftRef(all->indexOf(QLatin1Char('\n')))).toString();
}

std::optional<KeyedLines> keyedLinesIn(const QByteArray &text, const QString &section)
{
    const std::optional<QString> all = decoded(text);
    if (!all)
        return std::nullopt;
    const QString sectionLine = QLatin1Char('[') + section + QLatin1Char(']');
    KeyedLines result;
    QStringList *present = &result.head;
    const QVector<QStringRef> lines = all->splitRef(QLatin1Char('\n')).mid(1);
    for (const QStringRef &untrimmed : lines) {
        const QStringRef line = trimmed(untrimmed);
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        // Nothing comes after the last line, and only the body's last key may lack its value.
        const bool isLast = present == &result.body && line == lastLine;
        if (!present || (isWithoutValue(*present) && !isLast))
            return std::nullopt;
        if (isLast)
            present = nullptr;
        else if (present == &result.head && line == sectionLine)
            present = &result.body;
        else if (line.startsWith(QLatin1Char('[')) || !addLine(line, present))
            return std::nullopt;
    }
    if (present)
        return std::nullopt;
    return result;
}
