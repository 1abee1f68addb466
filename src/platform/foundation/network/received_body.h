#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/memory/limits.h"
#include "platform/foundation/network/url_error.h"
#include "platform/foundation/storage/file_descriptor.h"

namespace quellaro {

// What is taken of a response's body.
struct BodyBounds {
  // Decoded.
  std::size_t bytes = limits::kResponseBytes;
  // Where a large body waits until it is complete; without one it waits in memory.
  std::string directory;
};

// A body as it arrives: in memory while it is small, and beyond that in a file without a name, so that what a server
// sends without end, or packed, takes no memory.
class ReceivedBody {
 public:
  explicit ReceivedBody(BodyBounds bounds) : bounds_(std::move(bounds)) {}

  // Gives what is wrong: it is too large, or the disk is full.
  std::optional<URLErrorCode> append(std::string_view bytes);
  // The whole of it, for once; nothing when what was written cannot be read again.
  std::optional<std::string> take();
  std::size_t size() const { return size_; }

 private:
  bool moveToFile();

  BodyBounds bounds_;
  std::size_t size_ = 0;
  std::string memory_;
  FileDescriptor file_;
};

}  // namespace quellaro
