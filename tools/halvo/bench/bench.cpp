#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "commands.h"
#include "input.h"
#include "options.h"
#include "picture/frame_source.h"
#include "picture/frame_view.h"
#include "platform/foundation/console.h"
#include "platform/foundation/storage/file_manager.h"
#include "platform/quartzcore/compositor.h"

namespace halvo {

namespace {

using namespace quellaro;

double threadMicroseconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

// Adds up what the calls of one step take in one round, and remembers the rounds.
class Step {
 public:
  template <class Work>
  void time(Work&& work) {
    const double start = threadMicroseconds();
    work();
    round_ += threadMicroseconds() - start;
  }
  void endRound() {
    rounds_.push_back(round_);
    round_ = 0;
  }
  double median() {
    std::sort(rounds_.begin(), rounds_.end());
    const std::size_t middle = rounds_.size() / 2;
    return rounds_.size() % 2 == 1 ? rounds_[middle] : (rounds_[middle - 1] + rounds_[middle]) / 2;
  }

 private:
  double round_ = 0;
  std::vector<double> rounds_;
};

// Of this program alone: getrusage() would count what the process was before it became this program, too.
long peakKilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with("VmHWM:")) return std::strtol(line.c_str() + 6, nullptr, 10);
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// Everything between the file and the pixels, one round at a time, as a play does it.
class Benchmark {
 public:
  Benchmark(std::string source, bool isCue, Size size)
      : source_(std::move(source)),
        isCue_(isCue),
        view_(makeView(size, QLHalvoBackground::black)),
        bitmap_(size.width, size.height) {}

  std::optional<NSError> round() {
    Result<FrameSource> source = FrameSource();
    decode_.time([&] { source = isCue_ ? readCueFrames(source_) : readFrames(source_); });
    if (!source) return source.error();
    std::vector<std::shared_ptr<const SVGDocument>> documents;
    parse_.time([&] { documents = parseFrames(std::move(source->frames)); });
    layers_.time([&] {
      for (const auto& document : documents) showFrame(*view_, document);
      showFrame(*view_, nullptr);
    });
    for (const auto& document : documents) {
      showFrame(*view_, document);
      draw_.time([&] { compositor_.draw(*view_->layer(), bitmap_); });
    }
    frames_ = documents.size();
    showFrame(*view_, nullptr);
    parse_.time([&] { documents.clear(); });
    for (Step* step : {&decode_, &parse_, &layers_, &draw_}) step->endRound();
    return std::nullopt;
  }

  void print(std::uintmax_t bytes) {
    const double each = frames_ == 0 ? 0 : 1 / static_cast<double>(frames_);
    std::printf(
        "{\"frames\":%zu,\"bytes\":%ju,\"decode_us\":%.3f,\"parse_us\":%.3f,\"layers_us\":%.3f,\"draw_us\":%.3f,"
        "\"peak_rss_kb\":%ld}\n",
        frames_, bytes, decode_.median() * each, parse_.median() * each, layers_.median() * each, draw_.median() * each,
        peakKilobytes());
  }

 private:
  std::string source_;
  bool isCue_;
  std::shared_ptr<QLHalvoView> view_;
  Bitmap bitmap_;
  Compositor compositor_;
  Step decode_, parse_, layers_, draw_;
  std::size_t frames_ = 0;
};

}  // namespace

int bench(int argc, char** argv) {
  Size size;
  std::int64_t repeat = 5;
  CommandLine commandLine;
  commandLine.usage = "bench SOURCE [options]";
  commandLine.summary =
      "Measures what it costs to show a cue's frames. SOURCE is a cue directory or an animation.json. Prints one\n"
      "line of JSON: how many frames, the file's bytes, and for each frame the CPU time in microseconds of reading\n"
      "and decoding the file, parsing the text, building and destroying layers, and drawing them; medians of K\n"
      "rounds. Then the program's peak memory.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {
      {"size", "WxH", "size of the view in pixels (480x480)", setSize(size)},
      {"repeat", "K", "rounds (5)", setNumber(repeat, 1, 1000)},
  };
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;

  std::string source = parsed.positional[0];
  if (isStream(source)) return failure(source + ": every round reads it again, which a pipe does not allow");
  const bool isCue = FileManager::directoryExistsAtPath(source);
  if (isCue) source += "/animation.json";
  // Standard output is for one line.
  setConsoleSink([](std::string_view line) { std::fwrite(line.data(), 1, line.size(), stderr); });
  Benchmark benchmark(source, isCue, size);
  for (std::int64_t i = 0; i < repeat; ++i)
    if (const auto error = benchmark.round()) return failure(source + ": " + error->localizedDescription);
  std::error_code unknown;
  const std::uintmax_t bytes = std::filesystem::file_size(source, unknown);
  benchmark.print(unknown ? 0 : bytes);
  return kExitFine;
}

}  // namespace halvo
