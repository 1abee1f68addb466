#pragma once

#include <optional>
#include <string>

#include "platform/foundation/error.h"

namespace quellaro {

// What a host tells the platform about itself, before it uses anything else. Main thread.

// The application's bundle identifier; absent or empty means none. An identifier that could name another directory
// (holding "/", ".." or a NUL, or being ".") is refused and nothing changes.
std::optional<NSError> setApplicationIdentifier(std::optional<std::string> identifier);
std::optional<std::string> applicationIdentifier();

// The directory that stands for the application's Library, made when it is missing; absent restores the search below.
void setLibraryDirectory(std::optional<std::string> path);

// The Library directory in the user domain, without a slash at the end: $XDG_DATA_HOME/<identifier>, where
// XDG_DATA_HOME unset, empty or relative means ~/.local/share, and where an application without an identifier shares a
// directory of this library's own. Nothing when there is no home either. The directory is made, for its owner only,
// when it is missing.
std::optional<std::string> NSSearchPathForLibraryDirectory();

// The same path, without making anything: for those who only look.
std::optional<std::string> libraryDirectoryPath();

}  // namespace quellaro
