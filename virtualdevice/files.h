// The few things that the device does with files: folders, links and texts that are made once.
#pragma once

#include <string>

/// Makes the folder at PATH for its owner only (0700). Throws Failure.
void makePrivateFolder(const std::string &path);

/// Makes the folder at PATH and those above it that are missing, readable for everybody (0755) whatever the
/// umask says. Throws Failure.
void makePublicFolders(const std::string &path);

/// Makes a symbolic link at PATH. Throws Failure.
void makeLink(const std::string &target, const std::string &path);

/// Writes CONTENT to the file at PATH, replacing what was there. Throws Failure.
void writeFile(const std::string &path, const std::string &content);

/// The same for a file that everybody may read (0644), whatever the umask says.
void writePublicFile(const std::string &path, const std::string &content);
