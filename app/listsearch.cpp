// Finds entries of a long list by what a person types.
#include "listsearch.h"

#include <algorithm>

namespace {

/// What is compared: "Französisch (Schweiz)" and "franzosisch (schweiz)" are the same.
QString folded(const QString &text)
{
    QString result;
    for (const QChar character : text.normalized(QString::NormalizationForm_KD)) {
        if (character.category() != QChar::Mark_NonSpacing)
            result += character;
    }
    return result.toCaseFolded();
}

} // namespace

QVector<int> matchingPositions(const QStringList &names, const QString &text)
{
    const QString sought = folded(text.simplified());
    const QStringList words = sought.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QVector<int> first;
    QVector<int> others;
    for (int position = 0; position < names.size(); ++position) {
        const QString name = folded(names.at(position));
        const auto isIn = [&name](const QString &word) { return name.contains(word); };
        if (std::all_of(words.begin(), words.end(), isIn))
            (name.startsWith(sought) ? first : others) += position;
    }
    return first + others;
}
