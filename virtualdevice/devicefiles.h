// Files and folders that the printer's programs expect to find.
#pragma once

#include "overlay.h"

/// The compositor's environment.
void placeEtcFiles(const Overlay &etc);

/// The folder of the test pages.
void placeSharedFiles(const Overlay &usrShare);
