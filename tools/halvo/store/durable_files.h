#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/error.h"

namespace halvo {

// Files that are on the disk once they are said to be, so that not even a power cut leaves a store pointing at what is
// not there. Errors name the path.

// Names of what is being written begin with a dot and end like this: a web server has no reason to look at them, and
// what a killed process leaves is known for what it is.
inline constexpr std::string_view kUnfinishedEnding = ".halvo-unfinished";

// Whatever this process makes from then on can be read by everybody (0755 and 0644), whatever its umask was: who serves
// a store is rarely who fills it.
void letOthersRead();

quellaro::NSError errorAt(const std::string& path, int errnoValue);

std::string inDirectory(const std::string& directory, const std::string& name);
// The directory that a path lies in.
std::string parentOf(const std::string& path);
// The hidden name beside a path under which its content begins.
std::string unfinishedPath(const std::string& path);

// Called with the bytes that have just been written.
using OnWritten = std::function<void(std::size_t)>;

// A new file; nothing may be there. Nobody but its owner reads it when it is `isPrivate`.
std::optional<quellaro::NSError> writeDurably(const std::string& path, std::string_view bytes,
                                              const OnWritten& onWritten = {}, bool isPrivate = false);
// The file reads as before or as after, at any time.
std::optional<quellaro::NSError> replaceDurably(const std::string& path, std::string_view bytes);
void syncDirectory(const std::string& path);

}  // namespace halvo
