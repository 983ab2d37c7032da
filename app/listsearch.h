// Finds entries of a long list by what a person types.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

/**
 * The positions of the \a names that hold every word of \a text, in any order; capital letters and accents do
 * not matter. Names that begin with the text come first, otherwise the order is that of the list. Every
 * position when the text is blank.
 */
QVector<int> matchingPositions(const QStringList &names, const QString &text);
