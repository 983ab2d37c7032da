// Which lines a preset's file and the order's file have.
#include "presettext.h"

#include "keyedlines.h"

namespace {

const QLatin1String presetTitle("Corvanta preset, format ");
const QLatin1String orderTitle("Corvanta preset list, format ");
constexpr int format = 1;

const QLatin1String modelKey("model");
const QLatin1String nameKey("name");
const QLatin1String descriptionKey("description");
const QLatin1String indexKey("index");
const QLatin1String currentKey("current");
const QLatin1String currentPredefinedKey("current predefined");

const QLatin1String optionsSection("options");
const QLatin1String orderSection("presets");

PresetTextKind kindOf(const QByteArray &text, const QString &title)
{
    const std::optional<QString> actual = titleOfKeyedLines(text);
    if (!actual || !actual->startsWith(title))
        return PresetTextKind::Damaged;
    const int number = actual->midRef(title.size()).toInt();
    if (number > format)
        return PresetTextKind::Newer;
    return number == format ? PresetTextKind::Readable : PresetTextKind::Damaged;
}

/// Value of \a key among the lines of the head, which are known to be whole; null when there is none.
QString valueIn(const QStringList &head, const QString &key)
{
    for (int i = 0; i + 1 < head.size(); i += 2) {
        if (head.at(i) == key)
            return head.at(i + 1).isNull() ? QStringLiteral("") : head.at(i + 1);
    }
    return {};
}

} // namespace

bool operator==(const PresetRecord &left, const PresetRecord &right)
{
    return left.modelName == right.modelName && left.displayName == right.displayName
        && left.description == right.description && left.index == right.index
        && left.options == right.options;
}

QByteArray presetText(const PresetRecord &record)
{
    QStringList head{modelKey, record.modelName, nameKey, record.displayName};
    if (!record.description.isEmpty())
        head << descriptionKey << record.description;
    head << indexKey << QString::number(record.index);
    return keyedLinesText(presetTitle + QString::number(format), optionsSection, {head, record.options});
}

PresetTextKind readPresetText(const QByteArray &text, PresetRecord *record)
{
    const PresetTextKind kind = kindOf(text, presetTitle);
    if (kind != PresetTextKind::Readable)
        return kind;
    const std::optional<KeyedLines> lines = keyedLinesIn(text, optionsSection);
    if (!lines)
        return PresetTextKind::Damaged;
    const QString model = valueIn(lines->head, modelKey);
    const QString name = valueIn(lines->head, nameKey);
    if (model.isNull() || name.isNull())
        return PresetTextKind::Damaged;
    *record = {model, name, valueIn(lines->head, descriptionKey), valueIn(lines->head, indexKey).toInt(),
               lines->body};
    return kind;
}

QByteArray presetOrderText(const PresetOrder &order)
{
    QStringList head{modelKey, order.modelName};
    if (!order.current.isEmpty())
        head << (order.currentIsPredefined ? currentPredefinedKey : currentKey) << order.current;
    QStringList body;
    for (const PresetOrder::Entry &entry : order.entries)
        body << entry.fileName << entry.displayName;
    return keyedLinesText(orderTitle + QString::number(format), orderSection, {head, body});
}

PresetTextKind readPresetOrderText(const QByteArray &text, PresetOrder *order)
{
    const PresetTextKind kind = kindOf(text, orderTitle);
    if (kind != PresetTextKind::Readable)
        return kind;
    const std::optional<KeyedLines> lines = keyedLinesIn(text, orderSection);
    if (!lines || lines->body.size() % 2 != 0)
        return PresetTextKind::Damaged;
    const QString predefined = valueIn(lines->head, currentPredefinedKey);
    order->modelName = valueIn(lines->head, modelKey);
    order->currentIsPredefined = !predefined.isEmpty();
    order->current = order->currentIsPredefined ? predefined : valueIn(lines->head, currentKey);
    order->entries.clear();
    for (int i = 0; i < lines->body.size(); i += 2)
        order->entries.append({lines->body.at(i), lines->body.at(i + 1)});
    return kind;
}
