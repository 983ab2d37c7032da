// What of a preset's name a person can see, and a short form for sentences.
#pragma once

#include <QtCore/QString>

/**
 * The text as one line of what can be seen, without blanks at its ends: in place of control and format
 * characters, line ends, fillers and halves of surrogate pairs, as many as stand together, is one blank.
 * Characters that only join or vary others, as in emoji of several people and in flags, stay behind a
 * character that can be seen. Empty where nothing can be seen.
 */
QString visibleName(const QString &text);

/// The first characters of a longer text with three dots behind them. What a person takes for one character
/// stays whole.
QString shortened(const QString &text, int characters);
