#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quellaro {

// The SHA-256 of some bytes, as 64 lower-case hexadecimal digits; empty when there is no memory for it. Any thread.
std::string sha256(std::string_view bytes);

// The bytes that a base64 text stands for when there are exactly `size` of them (at most 192) and the text is the one
// that they are written as: padded, without blanks, no bit set that says nothing.
std::optional<std::string> base64Decoded(std::string_view text, std::size_t size);

inline constexpr std::size_t kPublicKeyBytes = 32;
inline constexpr std::size_t kSignatureBytes = 64;
// Whether the holder of the key has signed the message (Ed25519). Any thread.
bool isValidSignature(std::string_view signature, std::string_view message, std::string_view publicKey);

}  // namespace quellaro
