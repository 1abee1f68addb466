// Imports motion files and compares every tenth frame with the picture of the library that evaluates them. One line for
// each file: frames compared, frames right, worst mean difference, worst share of pixels far off (%), where, bytes of
// the file and of all frames, milliseconds, notes, name; or 'error', the reason and the name. Called by
// scripts/motion-fidelity.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "import/motion_frames.h"
#include "import_art/fidelity.h"
#include "picture/png_writer.h"

namespace {

using namespace halvo;

constexpr std::size_t kEvery = 10;

struct Worst {
  std::size_t right = 0, count = 0;
  double mean = 0, farOff = 0, score = -1;
  std::size_t frame = 0;
};

void compare(const std::string& path, const char* keep) {
  const auto begin = std::chrono::steady_clock::now();
  const auto opened = openMotionFile(path, {}, {});
  if (const auto* error = std::get_if<ArtError>(&opened)) {
    std::printf("error\t%s\t%s\n", error->reason.c_str(), path.c_str());
    return;
  }
  const auto& motion = std::get<MotionFrames>(opened);
  std::size_t bytes = 0;
  double milliseconds = 0;
  Worst worst;
  std::string notes;
  for (const auto& [note, moment] : motion.notes)
    notes += (notes.empty() ? "" : "; ") + note.element.substr(0, note.element.find('#')) + ": " + note.what;
  std::vector<std::pair<std::size_t, ArtFrame>> compared;
  for (std::size_t i = 0; i < motion.moments.size(); ++i) {
    auto made = motion.make(i);
    if (const auto* error = std::get_if<ArtError>(&made)) {
      std::printf("error\t%s\t%s\n", error->reason.c_str(), path.c_str());
      return;
    }
    bytes += std::get<ArtFrame>(made).document.size();
    if (i % kEvery == 0) compared.emplace_back(i, std::get<ArtFrame>(std::move(made)));
  }
  milliseconds = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
  for (const auto& [moment, frame] : compared) {
    auto meant = drawMotionFrame(path, motion.moments[moment].frame, 256);
    if (!std::get_if<quellaro::Bitmap>(&meant)) continue;
    const Fidelity fidelity = fidelityTo(std::get<quellaro::Bitmap>(std::move(meant)), frame);
    ++worst.count;
    worst.right += fidelity.isRight() ? 1 : 0;
    const double score = std::max(fidelity.mean / 0.6, fidelity.farOff / 0.15);
    if (score <= worst.score) continue;
    worst = {worst.right, worst.count, fidelity.mean, fidelity.farOff, score, motion.moments[moment].frame};
    if (!keep) continue;
    const std::string name = std::string(keep) + path.substr(path.rfind('/'));
    std::ofstream(name + ".svg", std::ios::binary) << frame.document;
    writePng(fidelity.shown, name + ".png");
    writePng(fidelity.meant, name + ".meant.png");
  }
  std::printf("%zu\t%zu\t%.3f\t%.3f\t%zu\t%ju\t%zu\t%.0f\t%s\t%s\n", worst.count, worst.right, worst.mean, worst.farOff,
              worst.frame, std::filesystem::file_size(path), bytes, milliseconds, notes.c_str(), path.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  std::string path;
  while (std::getline(std::cin, path)) {
    compare(path, argc > 1 ? argv[1] : nullptr);
    std::fflush(stdout);
  }
  return 0;
}
