#pragma once

#include <optional>
#include <string>

#include "assets/set_signature.h"

namespace halvo {

// What a set of files was published as: the file set.json beside the four of the cue, for whoever keeps the store. No
// device asks for it. It is how a version is listed again, with its signature, when no entry tells of it any more.
struct SetRecord {
  std::string cue;
  std::string version;
  quellaro::SetSignature signature;  // empty when it was not signed
};

inline constexpr const char* kSetRecordFile = "set.json";

std::string encodeSetRecord(const SetRecord& record);
// Nothing when there is none that can be read.
std::optional<SetRecord> readSetRecord(const std::string& directory);

}  // namespace halvo
