// Fuzz target: one option changed in the text of an lpoptions file. The input is the file's text; its first
// byte chooses what is done. What is checked is what a person who uses the other options relies on.
#include "fuzztarget.h"

#include "lpoptionstext.h"

#include <algorithm>

namespace {

const QByteArray queue = QByteArrayLiteral("BrackenXL");
const QByteArray name = QByteArrayLiteral("Feed");

[[noreturn]] void report(const char *rule, const QByteArray &text)
{
    reportDifference(std::string_view(rule), std::string_view(text.constData(), size_t(text.size())));
}

/// Every other option as one text.
QByteArray othersIn(const QByteArray &text)
{
    QByteArray result;
    const QVector<LpOption> options = lpOptionsOf(text, queue);
    for (const LpOption &option : options) {
        if (!isSameLpName(option.name, name))
            result += option.name + '\0' + option.value + '\0';
    }
    return result;
}

/// How many bytes both begin with and how many of the rest both end with.
int sameAtBothEnds(const QByteArray &left, const QByteArray &right)
{
    const int shorter = std::min(left.size(), right.size());
    int front = 0;
    while (front < shorter && left.at(front) == right.at(front))
        ++front;
    int back = 0;
    while (back < shorter - front && left.at(left.size() - 1 - back) == right.at(right.size() - 1 - back))
        ++back;
    return front + back;
}

void check(const QByteArray &text, const QByteArray &value)
{
    const std::optional<QByteArray> result = withLpOption(text, queue, name, value);
    if (!result)
        return;
    const QByteArray found = lpOptionValue(lpOptionsOf(*result, queue), name);
    if (found != value || found.isNull() != value.isNull())
        report("the value that was set", *result);
    if (othersIn(*result) != othersIn(text))
        report("the other options as they were", *result);
    if (withLpOption(*result, queue, name, value) != result)
        report("nothing to change the second time", *result);
    // A change is in one place; where an option is taken out, that may be several.
    if (!value.isNull() && result->size() - sameAtBothEnds(text, *result) > 64)
        report("one place that is changed", *result);
    const int newLines = lpOptionsOf(text, queue).isEmpty() ? 2 : 0;
    const int added = result->count('\n') - text.count('\n');
    if (added < 0 || added > newLines)
        report("as many lines", *result);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray text(reinterpret_cast<const char *>(data) + 1, int(size) - 1);
    switch (data[0] % 3) {
    case 0:
        check(text, QByteArrayLiteral("0"));
        break;
    case 1:
        check(text, QByteArrayLiteral("Custom.-7"));
        break;
    default:
        check(text, QByteArray());
    }
    return 0;
}
