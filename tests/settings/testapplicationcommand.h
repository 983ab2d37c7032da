// How the test and its other application write commands and replies.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDataStream>
#include <QtCore/QIODevice>
#include <QtCore/QVariantList>

inline QByteArray commandLine(const QVariantList &command)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << command;
    return bytes.toBase64() + '\n';
}

inline QVariantList commandOf(const QByteArray &line)
{
    QDataStream stream(QByteArray::fromBase64(line));
    QVariantList command;
    stream >> command;
    return command;
}
