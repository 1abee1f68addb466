#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/network/received_body.h"
#include "platform/foundation/network/url_error.h"

namespace quellaro {

// Undoes the content encoding of a response as it arrives, piece by piece: a small response that unpacks to an endless
// one ends at the body's bounds. (libcurl's own decoding hands on a truncated stream as if it were whole, and
// refuses a stream of two members.)
class ContentDecoder {
 public:
  // `encoding` as the response names it: gzip, deflate, identity, or nothing.
  explicit ContentDecoder(std::string_view encoding);
  ~ContentDecoder();

  // Appends what the bytes decode to. Gives what is wrong with them, if anything.
  std::optional<URLErrorCode> append(std::string_view bytes, ReceivedBody& decoded);
  // To be asked after the last byte: an encoded stream that has not come to its end is truncated.
  std::optional<URLErrorCode> finish() const;

 private:
  struct Inflater;
  std::optional<URLErrorCode> inflate(std::string_view bytes, ReceivedBody& decoded);

  bool isKnown_;
  std::unique_ptr<Inflater> inflater_;
};

}  // namespace quellaro
