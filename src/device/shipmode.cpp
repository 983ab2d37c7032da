// Reads a ship mode.
#include "shipmode.h"

bool isMilitaryShipMode(const QVariant &mode)
{
    // Wider than an int, since a conversion to int cuts a number that does not fit.
    constexpr qlonglong military = 2;
    return mode.toLongLong() == military;
}
