#pragma once

#include <memory>
#include <string>

#include "assets/set_signature.h"
#include "platform/foundation/error.h"

namespace halvo {

// The key that an operator signs sets with (Ed25519), and what devices know of it.
class SigningKey {
 public:
  static quellaro::Result<SigningKey> generate();
  // A private key in PEM form without a passphrase. Refused when anybody but its owner may read it.
  static quellaro::Result<SigningKey> read(const std::string& path);

  // Into a new file that only its owner can read.
  quellaro::Result<std::string> write(const std::string& path) const;
  // As Info.json of the devices' library names it: base64.
  quellaro::Result<std::string> publicKey() const;
  // Of the files in a directory, as this version of the cue.
  quellaro::Result<quellaro::SetSignature> sign(const std::string& cue, const std::string& version,
                                                const std::string& directory) const;

 private:
  // The cryptography library's own, which only the source file knows.
  explicit SigningKey(std::shared_ptr<void> key) : key_(std::move(key)) {}
  std::shared_ptr<void> key_;
};

// What is given as a public key: the key itself, or a file that holds it or the private one.
quellaro::Result<std::string> publicKeyOf(const std::string& keyOrFile);

}  // namespace halvo
