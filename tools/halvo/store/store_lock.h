#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "platform/foundation/error.h"
#include "platform/foundation/storage/file_descriptor.h"

namespace halvo {

// Held by whoever changes a store, until its end: two publications at the same time would lose one of the two.
class StoreLock {
 public:
  // Waits for another holder at most so many seconds, and says on standard error that it waits.
  static quellaro::Result<StoreLock> take(const std::string& store, std::int64_t patienceSeconds);

 private:
  explicit StoreLock(quellaro::FileDescriptor directory) : directory_(std::move(directory)) {}
  quellaro::FileDescriptor directory_;
};

}  // namespace halvo
