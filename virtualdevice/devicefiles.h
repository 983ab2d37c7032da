// Files and folders that the printer's programs expect to find.
#pragma once

#include "overlay.h"

/// The product's folder in /etc and in /var/lib, with a slash before it.
extern const std::string productFolder;

/// The compositor's environment, and where the configuration of the print scheduler is.
void placeEtcFiles(const Overlay &etc);

/// The test pages.
void placeSharedFiles(const Overlay &usrShare);
