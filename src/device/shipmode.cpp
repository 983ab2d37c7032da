// Reads a ship mode.
#include "shipmode.h"

bool isMilitaryShipMode(const QVariant &mode)
{
    constexpr int military = 2;
    return mode.toInt() == military;
}
