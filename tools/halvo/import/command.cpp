#include <charconv>
#include <cmath>

#include "commands.h"
#include "import/import_options.h"
#include "options.h"
#include "platform/foundation/text/numbers.h"

namespace halvo {

namespace {

using Apply = std::function<std::optional<std::string>(const std::string&)>;

constexpr double kMostFramesPerSecond = 1000;
constexpr double kLongestFrame = 60'000;
constexpr double kLongestDelay = 60'000;
constexpr double kQuietest = -70;
// A unit of a larger frame is finer than any screen.
constexpr int kLargestSide = 16384;
constexpr int kMostDecimals = 6;
constexpr int kMostBands = 1024;

std::optional<double> readDecimal(const std::string& text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(number)) return std::nullopt;
  return number;
}

// A decimal number within the bounds, both included, which `set` takes.
Apply decimal(double least, double most, const std::function<void(double)>& set) {
  return [=](const std::string& text) -> std::optional<std::string> {
    const std::optional<double> number = readDecimal(text);
    if (!number || *number < least || *number > most) {
      std::string problem = "a number from ";
      quellaro::appendShortest(problem, least);
      problem += " to ";
      quellaro::appendShortest(problem, most);
      return problem + " is needed";
    }
    set(*number);
    return std::nullopt;
  };
}

Apply whole(int least, int most, const std::function<void(int)>& set) {
  return [=](const std::string& text) -> std::optional<std::string> {
    std::int64_t number = 0;
    if (auto problem = setNumber(number, least, most)(text)) return problem;
    set(static_cast<int>(number));
    return std::nullopt;
  };
}

Apply someText(std::string& text, const char* problem = "a frame or a marker is needed") {
  return [&text, problem](const std::string& given) -> std::optional<std::string> {
    if (given.empty()) return problem;
    text = given;
    return std::nullopt;
  };
}

Apply fileName(std::string& name) { return someText(name, "a file is needed"); }

// What of the options was given, where one excludes or needs another.
struct Given {
  bool fps = false;
  bool frameTime = false;
  bool soundDelay = false;
};

std::vector<Option> optionsOf(ImportOptions& options, Given& given) {
  ArtOptions& art = options.art;
  const auto setRate = [&](double rate) {
    options.frameMilliseconds = 1000 / rate;
    options.isRateGiven = true;
    given.fps = true;
  };
  const auto setTime = [&](double milliseconds) {
    options.frameMilliseconds = milliseconds;
    options.isRateGiven = true;
    given.frameTime = true;
  };
  const auto setSoundDelay = [&](double milliseconds) {
    options.soundDelay = milliseconds;
    given.soundDelay = true;
  };
  return {
      {"output", "CUE_DIR", "the cue's directory to write", setText(options.target), 'o'},
      {"fps", "N", "frames in a second (60; of a motion file its own)", decimal(0.1, kMostFramesPerSecond, setRate)},
      {"frame-time", "MS", "how long each frame is shown, instead of --fps", decimal(1, kLongestFrame, setTime)},
      {"from", "FRAME", "of a motion file: the first frame, or a marker's name (its first)", someText(options.from)},
      {"to", "FRAME", "of a motion file: the frame before which it ends, or a marker's name (its last)",
       someText(options.to)},
      {"size", "S", "side of the square frame in units (480)",
       whole(1, kLargestSide, [&](int side) { art.side = side; })},
      {"sound", "FILE", "WAV, AIFF, FLAC, OGG or MP3; MP3 is taken as it is (silence)", fileName(options.sound)},
      {"loudness", "LUFS", "bring the sound to this loudness, with true peaks below -1 dB (as it is)",
       decimal(kQuietest, 0, [&](double loudness) { options.loudness = loudness; })},
      {"haptics", "FILE", "a haptic pattern (no haptics)", fileName(options.haptics)},
      {"taps", "", "a first haptic pattern: a tap where something in the sound begins (no haptics)",
       setFlag(options.taps)},
      {"sound-delay", "MS", "from the start of a play to the sound (0)", decimal(0, kLongestDelay, setSoundDelay)},
      {"animation-delay", "MS", "from the start of a play to the first frame (0)",
       decimal(0, kLongestDelay, [&](double milliseconds) { options.animationDelay = milliseconds; })},
      {"precision", "D", "decimals of coordinates (as many as are seen at 1080 pixels)",
       whole(0, kMostDecimals, [&](int decimals) { art.precision = decimals; })},
      {"gradient-steps", "N", "most bands of a gradient (chosen by colour distance)",
       whole(1, kMostBands, [&](int bands) { art.gradientSteps = bands; })},
      {"replace", "", "write over CUE_DIR when it is a cue's directory or empty", setFlag(options.replace)},
      {"strict", "", "write nothing when something would be approximated or left out", setFlag(options.strict)},
      {"json", "", "print the report as one JSON object, for machines", setFlag(options.json)},
  };
}

}  // namespace

int import(int argc, char** argv) {
  ImportOptions options;
  Given given;
  CommandLine commandLine;
  commandLine.usage = "import SOURCE... -o CUE_DIR [options]";
  commandLine.summary =
      "Makes a cue of SVG files and a sound: each file becomes a frame that the player draws alike, fitted into the\n"
      "square frame and centred. SOURCE is a folder, whose .svg and .svgz files are taken in natural order (frame2\n"
      "before frame10), or a file; or it is one motion file, a JSON object of layers, which becomes as many frames as\n"
      "it shows. All four files of the cue are written, or nothing at all. Tells everything that "
      "had\n"
      "to be approximated or left out, and what the frames cost. docs/authoring.md tells what becomes of what.\n"
      "Exit status: 0 written, 1 not, 2 unusable arguments.";
  commandLine.minimumPositional = 1;
  commandLine.maximumPositional = static_cast<std::size_t>(argc);
  commandLine.options = optionsOf(options, given);
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  if (options.target.empty()) return usageError("import", "-o CUE_DIR is missing");
  if (given.fps && given.frameTime) return usageError("import", "--fps and --frame-time exclude each other");
  if (options.sound.empty() && (options.loudness || given.soundDelay || options.taps))
    return usageError("import", "--loudness, --sound-delay and --taps are about a sound: give --sound too");
  if (options.taps && !options.haptics.empty()) return usageError("import", "--taps and --haptics exclude each other");
  options.sources = parsed.positional;
  return importCue(options);
}

}  // namespace halvo
