#include "import/import_options.h"
#include "import/motion_frames.h"
#include "import/source_frame.h"
#include "input.h"
#include "options.h"

namespace halvo {

int importCue(const ImportOptions&) {
  return failure("this build of the tool cannot import. What brings it, and imports:  " QUELLARO_SOURCE
                 "/scripts/import SOURCE... -o CUE_DIR");
}

bool canImportArt() { return false; }

std::variant<ArtFrame, ArtError> importFile(const std::string& file, const ArtOptions&) {
  auto text = readInput(file);
  if (!text) return ArtError{std::nullopt, text.error().localizedDescription};
  ArtFrame frame;
  frame.document = std::move(*text);
  return frame;
}

std::variant<quellaro::Bitmap, ArtError> drawSourceFile(const std::string&, int) {
  return ArtError{std::nullopt, "this build of the tool cannot import"};
}

bool isMotionFile(const std::string&) { return false; }

std::variant<MotionFrames, ArtError> openMotionFile(const std::string&, const motion::Selection&, const ArtOptions&) {
  return ArtError{std::nullopt, "this build of the tool cannot import"};
}

std::variant<quellaro::Bitmap, ArtError> drawMotionFrame(const std::string&, std::size_t, int) {
  return ArtError{std::nullopt, "this build of the tool cannot import"};
}

}  // namespace halvo
