// Fuzz target: the XKB lines of the compositor's environment file, against a search by hand without regular
// expressions. The input is a layout, a variant and the file's text, with a NUL byte after each of the first
// two.
#include "fuzztarget.h"

#include "waylandenvironment.h"

#include <algorithm>
#include <string>

namespace {

/// Takes the bytes up to the next NUL byte off \a data.
QString nextText(const uint8_t *&data, const uint8_t *end)
{
    const uint8_t *const textEnd = std::find(data, end, 0);
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<int>(textEnd - data));
    data = textEnd == end ? end : textEnd + 1;
    return text;
}

std::u16string withLine(const std::u16string &content, const std::u16string &key, const std::u16string &value)
{
    const std::u16string line = key + u'=' + value + u'\n';
    if (content.find(key) == std::u16string::npos)
        return content + line;

    std::u16string result;
    size_t position = 0;
    while (position < content.size()) {
        if (content.compare(position, key.size() + 1, key + u'=') == 0) {
            const size_t valueStart = position + key.size() + 1;
            const size_t limit = std::min(content.find(u'<', valueStart), content.size());
            const std::u16string reach = content.substr(valueStart, limit - valueStart);
            const size_t lastLineEnd = reach.rfind(u'\n');
            if (lastLineEnd != std::u16string::npos) {
                result += line;
                position = valueStart + lastLineEnd + 1;
                continue;
            }
        }
        result += content[position++];
    }
    return result;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const uint8_t *const end = data + size;
    const QString layout = nextText(data, end);
    const QString variant = nextText(data, end);
    const QString content = nextText(data, end);

    const std::u16string expected =
        withLine(withLine(content.toStdU16String(), u"XKB_DEFAULT_LAYOUT", layout.toStdU16String()),
                 u"XKB_DEFAULT_VARIANT", variant.toStdU16String());
    const std::u16string actual = withKeyboardLayout(content, layout, variant).toStdU16String();
    if (actual != expected)
        reportDifference(expected, actual);
    return 0;
}
