#pragma once

#include <openssl/evp.h>

#include <memory>
#include <string>

namespace quellaro {

// An operator's pair of keys, made of one number, and what is signed with it.
class SigningKey {
 public:
  explicit SigningKey(unsigned char seed) {
    const std::string bytes(32, static_cast<char>(seed));
    key_.reset(EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr, bytesOf(bytes), bytes.size()));
  }
  std::string publicKey() const {
    std::string bytes(32, '\0');
    std::size_t size = bytes.size();
    EVP_PKEY_get_raw_public_key(key_.get(), reinterpret_cast<unsigned char*>(bytes.data()), &size);
    return base64(bytes);
  }
  std::string sign(const std::string& text) const {
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    std::string signature(64, '\0');
    std::size_t size = signature.size();
    EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key_.get());
    EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()), &size, bytesOf(text),
                   text.size());
    return base64(signature);
  }

 private:
  static const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
  }
  static std::string base64(const std::string& bytes) {
    std::string text(bytes.size() * 2, '\0');
    const int size =
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytesOf(bytes), static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(size));
    return text;
  }

  std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY*)> key_{nullptr, EVP_PKEY_free};
};

}  // namespace quellaro
