// The list of keyboard layouts as the user sees it: translated, told apart, in alphabetical order.
#include "keyboardlayouts.h"

#include <QtCore/QHash>

#include <unicode/ucol.h>

#include <algorithm>
#include <memory>
#include <tuple>

namespace {

constexpr int roomForSortKey = 256;

// A name and the four texts of the table.
constexpr int textsOfLayout = 5;

struct CloseCollator
{
    void operator()(UCollator *collator) const { ucol_close(collator); }
};
using Collator = std::unique_ptr<UCollator, CloseCollator>;

struct NamedEntry
{
    KeyboardEntry entry;
    QString name;
    QByteArray sortKey;
};

Collator openCollator(const QString &locale)
{
    UErrorCode status = U_ZERO_ERROR;
    Collator collator(ucol_open(locale.toLatin1().constData(), &status));
    return U_SUCCESS(status) ? std::move(collator) : Collator();
}

// Without a collator, which only an ICU without data lacks, the order is that of the code points.
QByteArray sortKey(const Collator &collator, const QString &name)
{
    if (!collator)
        return name.toUtf8();
    const auto *text = reinterpret_cast<const UChar *>(name.utf16());
    QByteArray key(roomForSortKey, Qt::Uninitialized);
    int size = ucol_getSortKey(collator.get(), text, name.size(), reinterpret_cast<uint8_t *>(key.data()),
                               key.size());
    if (size > key.size()) {
        key.resize(size);
        size =
            ucol_getSortKey(collator.get(), text, name.size(), reinterpret_cast<uint8_t *>(key.data()), size);
    }
    key.resize(size);
    return key;
}

QString xkbName(const KeyboardEntry &entry)
{
    const QString layout = QString::fromUtf8(entry.layout);
    return entry.variant.isEmpty()
        ? layout
        : layout + QLatin1Char('(') + QString::fromUtf8(entry.variant) + QLatin1Char(')');
}

// Catalogues are made from the registry's XML as it stands there, with its entities.
QByteArray asInXml(QByteArray text)
{
    return text.replace('&', "&amp;").replace('<', "&lt;").replace('>', "&gt;");
}

QString fromXml(QString text)
{
    return text.replace(QLatin1String("&lt;"), QLatin1String("<"))
        .replace(QLatin1String("&gt;"), QLatin1String(">"))
        .replace(QLatin1String("&amp;"), QLatin1String("&"));
}

QString shownName(const KeyboardEntry &entry, const MessageCatalogue &catalogue)
{
    QString translation = fromXml(catalogue.translation(asInXml(entry.description))).trimmed();
    if (!translation.isEmpty())
        return translation;
    return entry.description.isEmpty() ? xkbName(entry) : QString::fromUtf8(entry.description);
}

void tellEqualNamesApart(QVector<NamedEntry> &entries)
{
    QHash<QString, int> uses;
    uses.reserve(entries.size());
    for (const NamedEntry &entry : qAsConst(entries))
        ++uses[entry.name];
    for (NamedEntry &entry : entries) {
        if (uses.value(entry.name) > 1)
            entry.name += QStringLiteral(" [%1]").arg(xkbName(entry.entry));
    }
}

bool comesBefore(const NamedEntry &left, const NamedEntry &right)
{
    return std::tie(left.sortKey, left.entry.layout, left.entry.variant)
        < std::tie(right.sortKey, right.entry.layout, right.entry.variant);
}

int layoutCount(const QByteArray &packed)
{
    return packed.count('\0') / textsOfLayout;
}

// Takes the text at the position and moves the position behind it.
QString nextText(const QByteArray &packed, int &position)
{
    const int start = position;
    const int end = packed.indexOf('\0', start);
    position = end + 1;
    return QString::fromUtf8(packed.constData() + start, end - start);
}

} // namespace

QByteArray packedLayouts(const QVector<KeyboardEntry> &entries, const MessageCatalogue &catalogue,
                         const QString &locale)
{
    QVector<NamedEntry> named;
    named.reserve(entries.size());
    for (const KeyboardEntry &entry : entries)
        named.append({entry, shownName(entry, catalogue), {}});
    tellEqualNamesApart(named);

    const Collator collator = openCollator(locale);
    for (NamedEntry &entry : named)
        entry.sortKey = sortKey(collator, entry.name);
    std::sort(named.begin(), named.end(), comesBefore);

    QByteArray names;
    QByteArray table;
    for (const NamedEntry &row : qAsConst(named)) {
        names += row.name.toUtf8() + '\0';
        const KeyboardEntry &entry = row.entry;
        table +=
            entry.language + '\0' + entry.layout + '\0' + entry.variant + '\0' + entry.description + '\0';
    }
    return names + table;
}

QStringList layoutNames(const QByteArray &packed)
{
    const int count = layoutCount(packed);
    QStringList names;
    names.reserve(count);
    for (int position = 0; names.size() < count;)
        names.append(nextText(packed, position));
    return names;
}

QMap<int, ZBLocaleLanguages::ZBKeyboardInfo> layoutTable(const QByteArray &packed)
{
    const int count = layoutCount(packed);
    int position = 0;
    for (int name = 0; name < count; ++name)
        position = packed.indexOf('\0', position) + 1;

    QMap<int, ZBLocaleLanguages::ZBKeyboardInfo> table;
    for (int key = 0; key < count; ++key) {
        ZBLocaleLanguages::ZBKeyboardInfo info;
        for (QString *text : {&info.language, &info.layout, &info.variant, &info.description})
            *text = nextText(packed, position);
        table.insert(table.cend(), key, info);
    }
    return table;
}
