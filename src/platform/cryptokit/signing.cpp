#include "platform/cryptokit/signing.h"

#include <openssl/evp.h>

#include <array>
#include <memory>

namespace quellaro {

namespace {

constexpr std::size_t kMostBytes = 192;

const unsigned char* bytesOf(std::string_view text) { return reinterpret_cast<const unsigned char*>(text.data()); }

}  // namespace

std::string sha256(std::string_view bytes) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int length = 0;
  if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &length, EVP_sha256(), nullptr) != 1) return "";
  std::string text;
  for (unsigned int at = 0; at < length; ++at) {
    text += "0123456789abcdef"[digest[at] >> 4];
    text += "0123456789abcdef"[digest[at] & 15];
  }
  return text;
}

std::optional<std::string> base64Decoded(std::string_view text, std::size_t size) {
  std::array<unsigned char, kMostBytes + 1> bytes{};
  std::array<unsigned char, kMostBytes / 3 * 4 + 1> again{};
  if (size > kMostBytes || text.size() != (size + 2) / 3 * 4 ||
      EVP_DecodeBlock(bytes.data(), bytesOf(text), static_cast<int>(text.size())) < 0)
    return std::nullopt;
  EVP_EncodeBlock(again.data(), bytes.data(), static_cast<int>(size));
  if (text != reinterpret_cast<const char*>(again.data())) return std::nullopt;
  return std::string(reinterpret_cast<const char*>(bytes.data()), size);
}

bool isValidSignature(std::string_view signature, std::string_view message, std::string_view publicKey) {
  const std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY*)> key(
      EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytesOf(publicKey), publicKey.size()), EVP_PKEY_free);
  const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
  return key && context && EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1 &&
         EVP_DigestVerify(context.get(), bytesOf(signature), signature.size(), bytesOf(message), message.size()) == 1;
}

}  // namespace quellaro
