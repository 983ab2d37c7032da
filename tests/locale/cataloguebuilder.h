// Makes the bytes of a gettext catalogue, so that tests can also make wrong ones.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QMap>

enum class ByteOrder { LittleEndian, BigEndian };

/// A catalogue with \a translations and the header that says UTF-8, unless there is one for the empty
/// message.
QByteArray catalogueBytes(QMap<QByteArray, QByteArray> translations,
                          ByteOrder order = ByteOrder::LittleEndian);

/// \a number as the four bytes of a catalogue.
QByteArray numberBytes(quint32 number, ByteOrder order = ByteOrder::LittleEndian);
