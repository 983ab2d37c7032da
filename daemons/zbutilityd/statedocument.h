// The text of the state file: values to text and text to values, without the file.
#pragma once

#include "values.h"

#include <QtCore/QByteArray>

#include <optional>

/// One value a row of valueRules(), in that order.
using StateValues = std::vector<QVariant>;

StateValues initialState();

/**
 * The text of the state file: a JSON object with the member "format" and one member a value.
 */
QByteArray stateToText(const StateValues &values);

/**
 * Reads the text of a state file. A value that is absent has its initial value. Nothing is returned, and \a
 * complaint says why, if the text is no state file of this daemon or has a value that the daemon would not
 * have accepted.
 */
std::optional<StateValues> stateFromText(const QByteArray &text, QString *complaint);
