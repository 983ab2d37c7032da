// Reads the supplies.
#include "supplies.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace {

constexpr qint64 largestFile = 64 * 1024;
constexpr int longestText = 100;

} // namespace

void putSupplies(const QByteArray &text, PrintJobMetaData *job)
{
    const QJsonObject supplies = QJsonDocument::fromJson(text).object();
    const auto number = [&supplies](const char *key) { return supplies.value(QLatin1String(key)); };
    const auto textOf = [&supplies](const char *key) {
        return supplies.value(QLatin1String(key)).toString().left(longestText);
    };
    job->heat1 = number("heat1").toInt();
    job->heat2 = number("heat2").toInt();
    job->supplySKU = textOf("supplySKU");
    job->supplyColor = textOf("supplyColor");
    job->supplyMileage = number("supplyMileage").toDouble();
    job->ribbon1SKU = textOf("ribbon1SKU");
    job->ribbon1Color = textOf("ribbon1Color");
    job->ribbon1Mileage = number("ribbon1Mileage").toDouble();
    job->ribbon2SKU = textOf("ribbon2SKU");
    job->ribbon2Color = textOf("ribbon2Color");
    job->ribbon2Mileage = number("ribbon2Mileage").toDouble();
}

QByteArray readSupplies(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return {};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray text = file.read(largestFile + 1);
    return text.size() > largestFile ? QByteArray() : text;
}
