// Removes a folder with everything in it and nothing outside it.
#pragma once

#include <string>
#include <vector>

/// Removes the folder at PATH. Symbolic links are removed, never followed; folders without write permission
/// are made writable first; a file system mounted inside is left alone. Returns a sentence for each thing
/// that could not be removed, and nothing if all is gone (or was never there).
std::vector<std::string> removeTree(const std::string &path);
