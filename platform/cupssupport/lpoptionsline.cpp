// Splits the options of a line.
#include "lpoptionsline.h"

#include <algorithm>

namespace {

/// Goes through a text once, from left to right.
class Reader
{
public:
    Reader(const QByteArray &text, int begin, int end)
        : m_text(text)
        , m_position(begin)
        , m_end(end)
    {
    }

    int position() const { return m_position; }
    bool isAtEnd() const { return m_position >= m_end; }
    bool isAt(char character) const { return !isAtEnd() && m_text.at(m_position) == character; }
    bool isAtSpace() const { return !isAtEnd() && isLpSpace(m_text.at(m_position)); }

    void skip() { ++m_position; }
    void skipSpaces()
    {
        while (isAtSpace())
            skip();
    }

    QByteArray name()
    {
        const int begin = m_position;
        while (!isAtEnd() && !isAtSpace() && !isAt('='))
            skip();
        return m_text.mid(begin, m_position - begin);
    }

    QByteArray value()
    {
        QByteArray result("");
        while (!isAtEnd() && !isAtSpace()) {
            if (isAt(','))
                take(result);
            else if (isAt('\'') || isAt('"'))
                takeQuoted(result);
            else if (isAt('{'))
                takeCollection(result);
            else
                takeWord(result);
        }
        return result;
    }

private:
    void take(QByteArray &result) { result += m_text.at(m_position++); }

    /// Takes one character, without the backslash that may stand before it.
    void takeUnescaped(QByteArray &result)
    {
        if (isAt('\\') && m_position + 1 < m_end)
            skip();
        take(result);
    }

    void takeQuoted(QByteArray &result)
    {
        const char quote = m_text.at(m_position);
        skip();
        while (!isAtEnd() && !isAt(quote))
            takeUnescaped(result);
        if (!isAtEnd())
            skip();
    }

    void takeCollection(QByteArray &result)
    {
        int depth = 0;
        while (!isAtEnd()) {
            if (isAt('{'))
                ++depth;
            else if (isAt('}'))
                --depth;
            const bool isLast = isAt('}') && depth == 0;
            takeUnescaped(result);
            if (isLast)
                return;
        }
    }

    // A quotation mark inside a word is a character like any other.
    void takeWord(QByteArray &result)
    {
        while (!isAtEnd() && !isAtSpace()) {
            const int begin = m_position;
            while (!isAtEnd() && !isAtSpace() && !isAt('\\'))
                skip();
            result.append(m_text.constData() + begin, m_position - begin);
            if (isAt('\\'))
                takeUnescaped(result);
        }
    }

    const QByteArray &m_text;
    int m_position;
    const int m_end;
};

void appendNameAlone(QVector<LpOption> &options, const QByteArray &name, int begin, int end)
{
    const bool isFalse = isSameLpName(name.left(2), QByteArrayLiteral("no"));
    const QByteArray bareName = isFalse ? name.mid(2) : name;
    if (!bareName.isEmpty())
        options.append(
            {bareName, isFalse ? QByteArrayLiteral("false") : QByteArrayLiteral("true"), begin, end});
}

} // namespace

bool isLpSpace(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

bool isSameLpName(const QByteArray &left, const QByteArray &right)
{
    return left.size() == right.size()
        && qstrnicmp(left.constData(), right.constData(), uint(left.size())) == 0;
}

bool isBraced(const QByteArray &text)
{
    return text.size() > 1 && text.startsWith('{') && text.endsWith('}');
}

QVector<LpOption> lpOptionsIn(const QByteArray &text)
{
    QVector<LpOption> options;
    Reader reader = isBraced(text) ? Reader(text, 1, text.size() - 1) : Reader(text, 0, text.size());
    reader.skipSpaces();
    while (!reader.isAtEnd()) {
        const int begin = reader.position();
        const QByteArray name = reader.name();
        if (name.isEmpty())
            break;
        const int nameEnd = reader.position();
        reader.skipSpaces();
        if (!reader.isAt('=')) {
            appendNameAlone(options, name, begin, nameEnd);
            continue;
        }
        reader.skip();
        const QByteArray value = reader.value();
        options.append({name, value, begin, reader.position()});
        reader.skipSpaces();
    }
    return options;
}

QByteArray lpOptionValue(const QVector<LpOption> &options, const QByteArray &name)
{
    const auto isNamed = [&name](const LpOption &option) { return isSameLpName(option.name, name); };
    const auto last = std::find_if(options.crbegin(), options.crend(), isNamed);
    return last == options.crend() ? QByteArray() : last->value;
}
