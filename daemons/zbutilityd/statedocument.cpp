// JSON text of the state.
#include "statedocument.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <limits>

namespace {

const QLatin1String formatName("format");
const QLatin1String formatValue("zbutilityd state 1");

template <typename Integer> QVariant integerFrom(const QJsonValue &json)
{
    const double number = json.toDouble(std::numeric_limits<double>::quiet_NaN());
    const bool isInRange =
        number >= std::numeric_limits<Integer>::min() && number <= std::numeric_limits<Integer>::max();
    if (!isInRange || static_cast<Integer>(number) != number)
        return {};
    return static_cast<Integer>(number);
}

/// The value that \a json holds, as \a type; an invalid one if it holds another type.
QVariant valueFrom(const QJsonValue &json, int type)
{
    switch (type) {
    case QMetaType::Int:
        return integerFrom<int>(json);
    case QMetaType::UInt:
        return integerFrom<uint>(json);
    case QMetaType::Bool:
        return json.isBool() ? QVariant(json.toBool()) : QVariant();
    default:
        return json.isString() ? QVariant(json.toString()) : QVariant();
    }
}

} // namespace

StateValues initialState()
{
    StateValues values;
    for (const ValueRule &rule : valueRules())
        values.push_back(rule.initial);
    return values;
}

QByteArray stateToText(const StateValues &values)
{
    QJsonObject object{{formatName, formatValue}};
    for (size_t index = 0; index < values.size(); ++index)
        object.insert(valueRules().at(index).name, QJsonValue::fromVariant(values.at(index)));
    return QJsonDocument(object).toJson();
}

std::optional<StateValues> stateFromText(const QByteArray &text, QString *complaint)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        *complaint = QStringLiteral("no JSON: %1 at byte %2").arg(error.errorString()).arg(error.offset);
        return {};
    }
    const QJsonObject object = document.object();
    if (object.value(formatName).toString() != formatValue) {
        *complaint = QStringLiteral("not written by this daemon");
        return {};
    }

    StateValues values = initialState();
    for (size_t index = 0; index < values.size(); ++index) {
        const ValueRule &rule = valueRules().at(index);
        if (!object.contains(rule.name))
            continue;
        const QVariant value = valueFrom(object.value(rule.name), rule.initial.userType());
        const QString wrong = value.isValid() ? rule.complaint(value) : QStringLiteral("wrong type");
        if (!wrong.isEmpty()) {
            *complaint = rule.name + QStringLiteral(": ") + wrong;
            return {};
        }
        values.at(index) = value;
    }
    return values;
}
