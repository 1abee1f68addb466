#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "check/findings.h"
#include "platform/foundation/error.h"

namespace halvo {

// Something that is worth telling of a store.
struct Remark {
  Severity severity;
  std::string place;  // as it is in the store: "quellaro/7/audio.mp3"
  std::string what;
  std::string instead = "";  // what to do about it
};

// What a device that asks a store for a file is left with.
struct StoreAnswer {
  std::optional<std::string> data;
  std::vector<Remark> remarks;  // among them an error that says why there is no data
};

// A store as it can be asked: a directory, or a server at an address.
class StoreSource {
 public:
  virtual ~StoreSource() = default;

  // The files of these paths below the store, all at the same time.
  virtual std::vector<StoreAnswer> get(const std::vector<std::string>& paths) = 0;
  // What is noteworthy about the store as a whole.
  virtual std::vector<Remark> lookAround() = 0;
};

bool isAddress(const std::string& storeOrAddress);

// Nothing is asked yet. `patienceSeconds`: how long a server may be silent. Fails for what is neither a directory nor a
// valid address.
quellaro::Result<std::unique_ptr<StoreSource>> openStoreSource(const std::string& storeOrAddress,
                                                               std::int64_t patienceSeconds);

std::unique_ptr<StoreSource> openDirectorySource(const std::string& store);
std::unique_ptr<StoreSource> openServerSource(const std::string& address, std::int64_t patienceSeconds);

}  // namespace halvo
