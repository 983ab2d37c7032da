// Reads a tab number out of a message of the local socket.
#include "tabmessage.h"

#include <QtCore/QString>
#include <QtCore/QVector>

uint tabIndexFromMessage(const QByteArray &message)
{
    const QString text = QString::fromUtf8(message.constData());
    const QVector<QStringRef> lines = text.splitRef(QLatin1Char('\n'));
    const QString marker = QStringLiteral("u");

    // Which message counts as "u" is decided by equality, but which line the number follows by containing the
    // letter: senders rely on both.
    uint tabIndex = lines.contains(QStringRef(&marker)) ? 0 : lines.first().toUInt();
    for (int i = 0; i + 1 < lines.size(); ++i) {
        if (lines.at(i).contains(marker)) {
            tabIndex = lines.at(i + 1).toUInt();
            break;
        }
    }
    return tabIndex;
}
