// The meta-objects of the enumeration holders; the classes have nothing else.
#include "zbsettingsqmlenums.h"

#include "moc_zbsettingsqmlenums.cpp"
