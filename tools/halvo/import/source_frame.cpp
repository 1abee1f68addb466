#include "import/source_frame.h"

#include <exception>
#include <new>
#include <utility>

#include "import/art/source_picture.h"
#include "input.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

// A drawing program's export of a whole film is smaller.
constexpr std::size_t kSourceBytes = std::size_t{64} << 20;

// What `make` makes of the file's bytes.
template <class Made, class Make>
std::variant<Made, ArtError> ofFile(const std::string& file, Make make) {
  try {
    const Result<std::string> bytes = isStream(file) ? readInput(file) : FileManager::readAtPath(file, kSourceBytes);
    if (!bytes) return ArtError{std::nullopt, bytes.error().localizedDescription};
    if (bytes->empty()) return ArtError{std::nullopt, "the file is empty"};
    return make(*bytes);
  } catch (const std::bad_alloc&) {
    return ArtError{std::nullopt, "there is not enough memory for it"};
  } catch (const std::exception& problem) {
    return ArtError{std::nullopt, problem.what()};
  }
}

}  // namespace

bool canImportArt() { return true; }

std::variant<ArtFrame, ArtError> importFile(const std::string& file, const ArtOptions& options) {
  return ofFile<ArtFrame>(file, [&](const std::string& bytes) { return importFrame(bytes, options); });
}

std::variant<Bitmap, ArtError> drawSourceFile(const std::string& file, int side) {
  return ofFile<Bitmap>(file, [&](const std::string& bytes) { return art::drawSource(bytes, side); });
}

}  // namespace halvo
