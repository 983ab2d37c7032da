// Literals of a test as a list of Qt's texts.
#pragma once

#include <QtCore/QStringList>

#include <initializer_list>

/// Each of \a list, which is UTF-8.
inline QStringList texts(std::initializer_list<const char *> list)
{
    QStringList result;
    for (const char *const text : list)
        result.append(QString::fromUtf8(text));
    return result;
}
