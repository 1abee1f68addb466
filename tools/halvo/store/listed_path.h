#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace halvo {

// Which directory of a store an entry's "filepath" stands for, as a web server finds it: relative to the store, its
// percent signs decoded. Nothing when it can be no directory within a store, or when a device would not ask for it:
// "..", hidden names, "?" and "#", what is no valid address.
std::optional<std::string> listedDirectory(std::string_view filepath);

// The other way round: what an entry says of a directory.
std::string filepathOf(std::string_view directory);

// Where `path` really lies, links followed. Nothing when it is not there, or not within `directory`.
std::optional<std::string> realPathWithin(const std::string& directory, const std::string& path);

}  // namespace halvo
