#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/foundation/error.h"

namespace quellaro {

// What an entry of "version_config.json" says besides the version, for devices that install only what their operator
// has signed:
//   "sha256": {"play_config.json": "<64 lower-case hexadecimal digits>", ...}, for each of the four files
//   "signature": "<base64 of 64 bytes>", an Ed25519 signature of textToSign()
// Devices that know nothing of these keys skip them.
struct SetSignature {
  std::map<std::string, std::string> sha256;
  std::string signature;
  friend bool operator==(const SetSignature&, const SetSignature&) = default;
};

// "QuellaroHalvo set 1", the cue, the version, and "<name> <digest>" of each file in the order of kCueFiles, every line
// ended with a line feed. Nothing when a file has no digest, or when a cue or version of several lines would make two
// sets one text.
std::optional<std::string> textToSign(const std::string& cue, const std::string& version,
                                      const std::map<std::string, std::string>& sha256);

// As `"sha256"` names it; nothing for a file that cannot be read.
std::optional<std::string> sha256OfFile(const std::string& path);

// Why the files in a directory are not what the holder of the key (base64 of 32 bytes) has signed as this version of
// the cue; nothing when they are.
std::optional<NSError> signatureProblem(const SetSignature& signature, const std::string& publicKey,
                                        const std::string& cue, const std::string& version,
                                        const std::string& directory);

}  // namespace quellaro
