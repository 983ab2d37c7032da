// Collects what the code under test logs.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>
#include <QtCore/QtGlobal>

/**
 * While it lives, every message of qDebug() and its kin in this process, of any thread, goes here and nowhere
 * else. At most one lives at a time.
 */
class MessageLog
{
public:
    struct Message
    {
        QtMsgType type;
        QString category;
        QString text; ///< as logged, without the prefix of a message pattern
    };

    MessageLog();
    ~MessageLog();

    QVector<Message> messages() const;
    /// The texts of messages() alone.
    QStringList texts() const;
    void clear();

private:
    Q_DISABLE_COPY(MessageLog)
    QtMessageHandler m_previous;
};
