// Imports SVG files and compares each frame with the drawing library's own picture of its source. One line for each
// file: mean difference, share of pixels far off (%), bytes of the source and of the frame, milliseconds, points,
// notes, name; or 'error', the reason and the name. Called by scripts/import-fidelity.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "import/art/import_frame.h"
#include "import_art/fidelity.h"
#include "picture/png_writer.h"

namespace {

void compare(const std::string& path, const char* keep) {
  std::ifstream file(path, std::ios::binary);
  const std::string source{std::istreambuf_iterator<char>(file), {}};
  const auto begin = std::chrono::steady_clock::now();
  const auto imported = halvo::importFrame(source, {});
  const double took = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
  if (const auto* error = std::get_if<halvo::ArtError>(&imported)) {
    std::printf("error\t%s\t%s\n", error->reason.c_str(), path.c_str());
    return;
  }
  const auto& frame = std::get<halvo::ArtFrame>(imported);
  const Fidelity fidelity = fidelityOf(source, frame);
  std::string notes;
  for (const halvo::ArtNote& note : frame.notes)
    notes +=
        (notes.empty() ? "" : "; ") + note.element + ": " + note.what + (note.howFar.empty() ? "" : ", " + note.howFar);
  std::printf("%.4f\t%.4f\t%zu\t%zu\t%.2f\t%zu\t%s\t%s\n", fidelity.mean, fidelity.farOff, source.size(),
              frame.document.size(), took, frame.points, notes.c_str(), path.c_str());
  if (!keep) return;
  const std::string name = std::string(keep) + path.substr(path.rfind('/'));
  std::ofstream(name, std::ios::binary) << frame.document;
  halvo::writePng(fidelity.shown, name + ".png");
  halvo::writePng(fidelity.meant, name + ".meant.png");
}

}  // namespace

int main(int argc, char** argv) {
  const char* const keep = argc > 1 ? argv[1] : nullptr;
  std::string path;
  while (std::getline(std::cin, path)) {
    compare(path, keep);
    std::fflush(stdout);
  }
  return 0;
}
