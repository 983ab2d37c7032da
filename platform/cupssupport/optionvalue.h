// The value of an option as text: written in one form, read in every form that makes sense.
#pragma once

#include "printeroptions.h"

/// Whether \a text says yes: "true", "yes", "on", "enabled" or "1", in any case.
bool switchIn(const QByteArray &text);
/**
 * The number at the beginning of \a text, with or without "Custom." before it, as in "Custom.-12", "12" and
 * "1.5mm"; 0 when there is none or it is not finite. Never by the locale.
 */
double numberIn(const QByteArray &text);
/// The same, without what is after the point; the nearest int when it is none.
int wholeNumberIn(const QByteArray &text);

/**
 * \a value as \a form has it, which is what the printer's PPD understands; null for a code of 0. The
 * shortest text that reads back as the same number.
 */
QByteArray textOf(ValueForm form, double value);
