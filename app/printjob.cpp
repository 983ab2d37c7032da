// Reads what lpoptions(1) and ipptool(1) print.
#include "printjob.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

QMap<QString, QString> optionsByTool(const QString &output)
{
    static const QRegularExpression pair(QStringLiteral("([^\\s=]+)=(?:'((?:[^'\\\\]|\\\\.)*)'|(\\S*))"));
    QMap<QString, QString> options;
    for (auto found = pair.globalMatch(output); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        options.insert(match.captured(1), match.captured(2) + match.captured(3));
    }
    return options;
}

QMap<QString, QString> attributesByTool(const QString &output)
{
    static const QRegularExpression attribute(QStringLiteral("^\\s+(\\S+) \\([^)]*\\) = (.*)$"));
    QMap<QString, QString> attributes;
    for (const QString &line : output.split(QLatin1Char('\n'))) {
        const QRegularExpressionMatch match = attribute.match(line);
        if (match.hasMatch())
            attributes.insert(match.captured(1), match.captured(2).trimmed());
    }
    return attributes;
}

QByteArray jobRequest(int job)
{
    return "{\n"
           "    OPERATION Get-Job-Attributes\n"
           "    GROUP operation-attributes-tag\n"
           "    ATTR charset attributes-charset utf-8\n"
           "    ATTR language attributes-natural-language en\n"
           "    ATTR uri printer-uri $uri\n"
           "    ATTR integer job-id "
        + QByteArray::number(job)
        + "\n"
          "    ATTR name requesting-user-name $user\n"
          "    ATTR keyword requested-attributes all\n"
          "    STATUS successful-ok\n"
          "}\n";
}

int jobOfDocument(const QString &fileName)
{
    static const QRegularExpression document(QStringLiteral("^job-(\\d+)\\.prn$"));
    return document.match(fileName).captured(1).toInt();
}
