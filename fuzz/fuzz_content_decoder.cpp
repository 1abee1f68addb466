// The first byte chooses the encoding and how a body arrives in pieces; however it does, the same comes out, and never
// more than the limit.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/network/content_decoder.h"

namespace {

using namespace quellaro;

constexpr std::size_t kLimit = 1 << 20;

// Nothing for a body that is refused.
std::optional<std::string> decode(std::string_view encoding, std::string_view body, std::size_t piece) {
  ContentDecoder decoder(encoding);
  ReceivedBody decoded({kLimit, ""});
  for (; !body.empty(); body.remove_prefix(std::min(piece, body.size()))) {
    const auto problem = decoder.append(body.substr(0, piece), decoded);
    if (decoded.size() > kLimit) std::abort();
    if (problem) return std::nullopt;
  }
  if (decoder.finish()) return std::nullopt;
  return decoded.take();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  constexpr std::string_view kEncodings[] = {"gzip", "deflate", "identity", "", "x-gzip", "br"};
  const std::string_view encoding = kEncodings[*data % std::size(kEncodings)];
  const std::string_view body(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::size_t piece = 1 + *data / std::size(kEncodings);
  if (decode(encoding, body, piece) != decode(encoding, body, size)) std::abort();
  return 0;
}
