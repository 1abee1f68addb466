#include "assets/set_signature.h"

#include "assets/halvo_file_manager.h"
#include "platform/cryptokit/signing.h"
#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

namespace {

NSError problem(std::string sentence) { return {"", 0, std::move(sentence)}; }

}  // namespace

std::optional<std::string> textToSign(const std::string& cue, const std::string& version,
                                      const std::map<std::string, std::string>& sha256) {
  if ((cue + version).find('\n') != std::string::npos) return std::nullopt;
  std::string text = "QuellaroHalvo set 1\n" + cue + "\n" + version + "\n";
  for (const char* file : kCueFiles) {
    const auto digest = sha256.find(file);
    if (digest == sha256.end()) return std::nullopt;
    text += std::string(file) + " " + digest->second + "\n";
  }
  return text;
}

std::optional<std::string> sha256OfFile(const std::string& path) {
  const std::optional<std::string> bytes = FileManager::contentsAtPath(path);
  return bytes ? std::optional(sha256(*bytes)) : std::nullopt;
}

std::optional<NSError> signatureProblem(const SetSignature& signature, const std::string& publicKey,
                                        const std::string& cue, const std::string& version,
                                        const std::string& directory) {
  const std::optional<std::string> key = base64Decoded(publicKey, kPublicKeyBytes);
  if (!key) return problem("the public key is not base64 of 32 bytes");
  const std::optional<std::string> signed_ = base64Decoded(signature.signature, kSignatureBytes);
  const std::optional<std::string> text = textToSign(cue, version, signature.sha256);
  if (!signed_ || !text) return problem("the entry is not signed");
  if (!isValidSignature(*signed_, *text, *key)) return problem("the signature is not that of the key");
  for (const char* file : kCueFiles)
    if (sha256OfFile(directory + "/" + file) != signature.sha256.at(file))
      return problem(std::string(file) + " is not the one that was signed");
  return std::nullopt;
}

}  // namespace quellaro
