// Finds and changes a queue's line.
#include "lpoptionstext.h"

#include <algorithm>

namespace {

constexpr int longestLine = 8191;

/// A line of the file, without what ends it.
struct Line
{
    int begin;
    int end;
    int next; ///< where the next line begins
};

Line lineAt(const QByteArray &text, int begin)
{
    int end = begin;
    const int limit = std::min(text.size(), begin + longestLine);
    while (end < limit && text.at(end) != '\n' && text.at(end) != '\r')
        ++end;
    if (end == limit)
        return {begin, end, end};
    const bool isTwo = text.at(end) == '\r' && end + 1 < text.size() && text.at(end + 1) == '\n';
    return {begin, end, end + (isTwo ? 2 : 1)};
}

/// A line as libcups sees it: without comment, and without the backslash of a "\#".
class SeenLine
{
public:
    SeenLine(const QByteArray &text, const Line &line)
        : m_begin(line.begin)
    {
        const char *const bytes = text.constData() + line.begin;
        m_bytes = QByteArray(bytes, int(std::find(bytes, bytes + (line.end - line.begin), '\0') - bytes));
        const int sign = m_bytes.indexOf('#');
        if (sign > 0 && m_bytes.at(sign - 1) == '\\') {
            m_bytes.remove(sign - 1, 1);
            m_removed = sign - 1;
        } else if (sign >= 0) {
            m_bytes.truncate(sign);
        }
        while (!m_bytes.isEmpty() && isLpSpace(m_bytes.at(m_bytes.size() - 1)))
            m_bytes.chop(1);
    }

    /// The word at or after \a position, which then is the one after it.
    QByteArray word(int &position) const
    {
        skipSpaces(position);
        const int begin = position;
        while (position < m_bytes.size() && !isLpSpace(m_bytes.at(position)))
            ++position;
        return m_bytes.mid(begin, position - begin);
    }

    void skipSpaces(int &position) const
    {
        while (position < m_bytes.size() && isLpSpace(m_bytes.at(position)))
            ++position;
    }

    QByteArray from(int position) const { return m_bytes.mid(position); }

    /// Where in the file's text the byte at \a position is, or where a piece that ends before it ends.
    int inText(int position) const { return m_begin + position + (position > m_removed ? 1 : 0); }

private:
    const int m_begin;
    QByteArray m_bytes;
    int m_removed = longestLine;
};

/// The line of a queue.
struct QueueLine
{
    Line line;
    SeenLine seen;
    int nameEnd; ///< in the file's text
    int optionsBegin; ///< in the seen line
    QByteArray options;

    int inText(int position) const { return seen.inText(optionsBegin + position); }
};

std::optional<QueueLine> lineOf(const QByteArray &text, const QByteArray &queue)
{
    for (Line line = lineAt(text, 0); line.begin < text.size(); line = lineAt(text, line.next)) {
        const SeenLine seen(text, line);
        int position = 0;
        const QByteArray kind = seen.word(position);
        if (!isSameLpName(kind, QByteArrayLiteral("Dest"))
            && !isSameLpName(kind, QByteArrayLiteral("Default")))
            continue;
        if (!isSameLpName(seen.word(position), queue))
            continue;
        const int nameEnd = seen.inText(position);
        seen.skipSpaces(position);
        return QueueLine{line, seen, nameEnd, position, seen.from(position)};
    }
    return std::nullopt;
}

/// Whether both have the same options in the same order, not counting those named \a name.
bool areOthersSame(const QVector<LpOption> &left, const QVector<LpOption> &right, const QByteArray &name)
{
    const auto isOther = [&name](const LpOption &option) { return !isSameLpName(option.name, name); };
    auto one = left.cbegin();
    auto other = right.cbegin();
    for (;;) {
        one = std::find_if(one, left.cend(), isOther);
        other = std::find_if(other, right.cend(), isOther);
        if (one == left.cend() || other == right.cend())
            return one == left.cend() && other == right.cend();
        if (one->name != other->name || one->value != other->value)
            return false;
        ++one;
        ++other;
    }
}

QByteArray appended(QByteArray text, const QByteArray &line)
{
    if (!text.isEmpty() && !text.endsWith('\n'))
        text += '\n';
    return text + line + '\n';
}

QByteArray withoutOption(QByteArray text, const QueueLine &line, const QVector<LpOption> &options,
                         const QByteArray &name)
{
    for (auto option = options.crbegin(); option != options.crend(); ++option) {
        if (!isSameLpName(option->name, name))
            continue;
        int begin = line.inText(option->begin);
        const int end = line.inText(option->end);
        if (isLpSpace(text.at(begin - 1)))
            --begin;
        text.remove(begin, end - begin);
    }
    return text;
}

QByteArray withChangedOption(QByteArray text, const QueueLine &line, const QVector<LpOption> &options,
                             const QByteArray &name, const QByteArray &assignment)
{
    for (auto option = options.crbegin(); option != options.crend(); ++option) {
        if (isSameLpName(option->name, name)) {
            const int begin = line.inText(option->begin);
            return text.replace(begin, line.inText(option->end) - begin, assignment);
        }
    }
    // Before all others, since one of them may be a quotation that never ends.
    if (isBraced(line.options))
        return text.insert(line.inText(1), assignment + ' ');
    return text.insert(line.nameEnd, ' ' + assignment);
}

} // namespace

QVector<LpOption> lpOptionsOf(const QByteArray &text, const QByteArray &queue)
{
    const std::optional<QueueLine> line = lineOf(text, queue);
    return line ? lpOptionsIn(line->options) : QVector<LpOption>();
}

std::optional<QByteArray> withLpOption(const QByteArray &text, const QByteArray &queue,
                                       const QByteArray &name, const QByteArray &value)
{
    const std::optional<QueueLine> line = lineOf(text, queue);
    if (!line && value.isNull())
        return text;
    const QVector<LpOption> before = line ? lpOptionsIn(line->options) : QVector<LpOption>();
    const QByteArray assignment = name + '=' + value;
    QByteArray result;
    if (!line)
        result = appended(text, "Dest " + queue + ' ' + assignment);
    else if (value.isNull())
        result = withoutOption(text, *line, before, name);
    else
        result = withChangedOption(text, *line, before, name, assignment);

    const int lineSize = line ? line->line.end - line->line.begin : 0;
    if (std::max(lineSize, lineSize + result.size() - text.size()) >= longestLine)
        return std::nullopt;
    const QVector<LpOption> after = lpOptionsOf(result, queue);
    if (lpOptionValue(after, name) != value || !areOthersSame(before, after, name))
        return std::nullopt;
    return result;
}

QByteArray withEndedLine(const QByteArray &text, const QByteArray &queue)
{
    // Looked at first, since nearly every file has it.
    if (text.endsWith('\n'))
        return text;
    const std::optional<QueueLine> line = lineOf(text, queue);
    return line && line->line.end == text.size() ? text + '\n' : text;
}
