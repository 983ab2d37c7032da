// Rewrites the XKB lines of the compositor's environment file.
#include "waylandenvironment.h"

#include <QtCore/QRegularExpression>

namespace {

QString withLine(const QString &content, const QString &key, const QString &value)
{
    const QString line = key + QLatin1Char('=') + value + QLatin1Char('\n');
    if (!content.contains(key))
        return content + line;

    // The expression reaches from the key to the last line end before a "<"; what else reads and writes the
    // device's file counts on that. Spliced by hand, since QString::replace() would expand "\1" in a layout
    // name.
    const QRegularExpression expression(key + QStringLiteral("=([^<]*)\n"));
    QString result;
    int position = 0;
    QRegularExpressionMatchIterator matches = expression.globalMatch(content);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        result += content.midRef(position, match.capturedStart() - position) + line;
        position = match.capturedEnd();
    }
    return result + content.midRef(position);
}

} // namespace

QString withKeyboardLayout(const QString &content, const QString &layout, const QString &variant)
{
    return withLine(withLine(content, QStringLiteral("XKB_DEFAULT_LAYOUT"), layout),
                    QStringLiteral("XKB_DEFAULT_VARIANT"), variant);
}
