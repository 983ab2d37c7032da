// Renders one event; control characters are escaped by the JSON writer, the other line ends here.
#include "analyticsline.h"

#include <QtCore/QJsonDocument>

namespace {

// JSON allows these in a string as they are, but many readers split a text there. Outside of strings JSON
// text is ASCII, so each one found stands in a string, where the escape means the same.
QByteArray withUnicodeLineEndsEscaped(QByteArray json)
{
    json.replace("\xC2\x85", "\\u0085");
    json.replace("\xE2\x80\xA8", "\\u2028");
    json.replace("\xE2\x80\xA9", "\\u2029");
    return json;
}

} // namespace

QByteArray analyticsLine(const QDateTime &time, int hitType, const QJsonObject &hit)
{
    // Put together by hand, since the JSON writer sorts members by name and a person reads the time first.
    return "{\"time\":\"" + time.toUTC().toString(Qt::ISODateWithMs).toLatin1()
        + "\",\"hitType\":" + QByteArray::number(hitType)
        + ",\"hit\":" + withUnicodeLineEndsEscaped(QJsonDocument(hit).toJson(QJsonDocument::Compact)) + "}\n";
}
