#include "store/store_source.h"

#include <cerrno>

#include "platform/foundation/network/url.h"
#include "platform/foundation/storage/file_manager.h"
#include "store/durable_files.h"

namespace halvo {

using namespace quellaro;

bool isAddress(const std::string& storeOrAddress) { return storeOrAddress.find("://") != std::string::npos; }

Result<std::unique_ptr<StoreSource>> openStoreSource(const std::string& storeOrAddress, std::int64_t patienceSeconds) {
  if (!isAddress(storeOrAddress)) {
    if (!FileManager::directoryExistsAtPath(storeOrAddress)) return errorAt(storeOrAddress, ENOENT);
    return openDirectorySource(storeOrAddress);
  }
  const auto url = NSURL::fromString(storeOrAddress);
  if (!url || (url->scheme() != "http" && url->scheme() != "https"))
    return NSError{"halvo", 0, storeOrAddress + ": devices ask addresses of http and https only"};
  if (storeOrAddress.find_first_of("?#") != std::string::npos)
    return NSError{"halvo", 0, storeOrAddress + ": the names of files come after it, so it can have no '?' or '#'"};
  return openServerSource(storeOrAddress, patienceSeconds);
}

}  // namespace halvo
