#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "commands.h"
#include "controller/halvo_controller.h"
#include "options.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/json/json_decoder.h"
#include "platform/foundation/storage/file_manager.h"
#include "play/cue_folder.h"
#include "play/devices.h"
#include "play/host_options.h"
#include "play/stage.h"

namespace halvo {

namespace {

using namespace quellaro;

struct PlayOptions {
  std::string cue;  // as it was given
  std::string name;
  QLHalvoType type = QLHalvoType::animationAndSound;
  QLHalvoEnvironment environment = QLHalvoEnvironment::primary;
  std::shared_ptr<const QLHalvoMerchant> merchant;
  bool haptics = false;
  std::int64_t times = 1;
  bool settle = false;
  bool verbose = false;
  DeviceOptions devices;
  StageOptions stage;

  // A sound alone, or a prepare alone, needs no window.
  Screen screen() const {
    return devices.headless || type == QLHalvoType::soundOnly || times == 0 ? Screen::Memory : Screen::Desktop;
  }
};

std::optional<std::string> chooseType(const std::string& name, QLHalvoType& type) {
  if (name == "animationAndSound")
    type = QLHalvoType::animationAndSound;
  else if (name == "soundOnly")
    type = QLHalvoType::soundOnly;
  else if (name == "animationOnly")
    type = QLHalvoType::animationOnly;
  else
    return "animationAndSound, soundOnly or animationOnly is needed";
  return std::nullopt;
}

std::shared_ptr<const QLHalvoMerchant> sampleMerchant() {
  return QLHalvoMerchant::make("Corner Shop", "US", "San Francisco", {"5411"}, std::nullopt);
}

// The file holds a merchant's JSON form; the constructor decides, so an absent key counts as empty.
std::optional<std::string> readMerchant(const std::string& path, std::shared_ptr<const QLHalvoMerchant>& merchant) {
  auto bytes = FileManager::readAtPath(path);
  if (!bytes) return bytes.error().localizedDescription;
  const auto document = JSONDocument::parse(std::move(*bytes));
  if (!document) return document.error().localizedDescription;
  JSONDecoder decoder(document->root());
  const JSONField root = JSONField::root(decoder);
  const auto text = [&](const char* key) -> std::optional<std::string> {
    const JSONField field = root.optional(key);
    if (!field.isPresent()) return std::nullopt;
    return field.string();
  };
  const auto name = text("merchantName");
  const auto country = text("countryCode");
  const auto city = text("city");
  const JSONField codes = root.optional("merchantCategoryCodes");
  const std::vector<std::string> categoryCodes = codes.isPresent() ? codes.strings() : std::vector<std::string>();
  const auto id = text("merchantId");
  if (decoder.error()) return decoder.error()->localizedDescription;
  merchant = QLHalvoMerchant::make(name.value_or(""), country.value_or(""), city, categoryCodes, id);
  if (!merchant) return "a merchant needs a name, a country code and at least one category code";
  return std::nullopt;
}

// One prepare and the plays that follow it.
class PlaySession {
 public:
  explicit PlaySession(PlayOptions options)
      : options_(std::move(options)),
        controller_(QLHalvoController::make()),
        stage_(options_.stage, options_.screen()) {}

  int run() {
    const auto prepared = answerOf("prepare", [this](const HalvoCompletion& completion) {
      controller_->prepare(options_.type, options_.name, options_.environment, options_.merchant, options_.haptics,
                           completion);
    });
    if (prepared) explain(*prepared);
    if (const auto seconds = controller_->duration(); options_.verbose && seconds) tellDuration(*seconds);
    std::optional<QLHalvoStatus> last = prepared;
    for (std::int64_t i = 0; last && i < options_.times; ++i) {
      if (options_.settle) settle();
      last =
          answerOf("play", [this](const HalvoCompletion& completion) { controller_->play(stage_.view(), completion); });
      // That nothing was prepared has been explained.
      if (last && last != QLHalvoStatus::notPrepared) explain(*last);
      if (last && options_.type != QLHalvoType::animationOnly) tellSound();
    }
    const bool isRecorded = stage_.finish();
    if (!last)
      return failure(stage_.isClosed() ? "the window was closed before there was an answer"
                                       : "nothing is left that could bring an answer");
    if (options_.settle) settle();
    if (!isRecorded) return kExitFailure;
    return isFine(*last) ? kExitFine : kExitFailure;
  }

 private:
  static bool isFine(QLHalvoStatus code) {
    return code == QLHalvoStatus::success || code == QLHalvoStatus::successWithFallback;
  }

  void explain(QLHalvoStatus code) const {
    if (!isFine(code) && !controller_->failureReason().empty()) tell(controller_->failureReason());
  }

  static void tellDuration(double seconds) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "the cue takes %.3f s", seconds);
    tell(std::isinf(seconds) ? "the cue never ends: its last frame has no time" : text.data());
  }

  // Where there is no server the library has said so.
  void tellSound() const {
    const QLHalvoSound sound = controller_->lastSound();
    if (sound == QLHalvoSound::muted) tell("nobody could hear the sound: the output is muted, or its volume is 0");
    if (sound == QLHalvoSound::brokenOff) tell("the sound broke off: the sound server went away");
    if (sound == QLHalvoSound::heard && options_.verbose) tell("the sound was heard");
  }

  // Starts an operation and runs the main queue until it answers; nothing when no answer can come any more, or nobody
  // is there to see it.
  template <class Start>
  std::optional<QLHalvoStatus> answerOf(const char* operation, Start start) {
    const auto answer = std::make_shared<std::optional<QLHalvoStatus>>();
    stage_.setState(options_.cue + ", " + operation);
    start([answer, operation](QLHalvoStatus code) {
      *answer = code;
      std::printf("%s: %d %s\n", operation, static_cast<int>(code), std::string(nameOf(code)).c_str());
      std::fflush(stdout);
    });
    while (!*answer && !stage_.isClosed() && !MainQueue::shared().isIdle()) stage_.turn();
    return *answer;
  }

  void settle() {
    while (!stage_.isClosed() && MainQueue::shared().hasQueuedWorkOrActivities()) stage_.turn();
  }

  PlayOptions options_;
  std::shared_ptr<QLHalvoController> controller_;
  Stage stage_;
};

}  // namespace

int play(int argc, char** argv) {
  PlayOptions options;
  options.merchant = sampleMerchant();

  CommandLine commandLine;
  commandLine.usage = "play CUE [options]";
  commandLine.summary =
      "Prepares CUE once and plays it: a cue by its name, or the directory of one by a path, as in ./cue, by itself "
      "and\n"
      "without bundle and Library. Prints the library's own lines, and one line for each answer:\n"
      "'prepare: CODE NAME' and 'play: CODE NAME'. Exit status: 0 when the last code is 800 or 801, 1 when it is\n"
      "another, 2 for unusable arguments.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {
      {"type", "TYPE", "animationAndSound, soundOnly or animationOnly (animationAndSound)",
       [&](const std::string& value) { return chooseType(value, options.type); }},
      {"environment", "NAME", "primary or secondary (primary)",
       [&](const std::string& value) { return chooseEnvironment(value, options.environment); }},
      {"merchant", "FILE", "merchant record in its JSON form (a sample merchant)",
       [&](const std::string& value) { return readMerchant(value, options.merchant); }},
      {"haptics", "", "ask for haptics", setFlag(options.haptics)},
      {"times", "N", "plays, one after the other; 0 only prepares (1)", setNumber(options.times, 0, 1000000)},
      {"settle", "", "before each play and before the end, wait for requests and queued work", setFlag(options.settle)},
      {"verbose", "", "tell how long the cue takes, and that the sound was heard", setFlag(options.verbose)},
      {"headless", "", "use simulated devices: nothing of the machine", setFlag(options.devices.headless)},
      {"volume", "V", "with --headless: output volume, 0.0 to 1.0 (1.0)",
       [&](const std::string& value) { return chooseVolume(value, options.devices); }},
      {"no-actuator", "", "with --headless: a device without a haptic actuator", setFlag(options.devices.noActuator)},
  };
  addHostOptions(commandLine);
  bool isHostGiven = false;
  for (Option& option : commandLine.options)
    if (option.name == "bundle" || option.name == "library")
      option.apply = [&isHostGiven, apply = option.apply](const std::string& value) {
        isHostGiven = true;
        return apply(value);
      };
  for (Option& option : options.stage.options()) commandLine.options.push_back(std::move(option));
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  if (!options.devices.headless && (options.devices.noActuator || options.devices.volume))
    return usageError("play", "--no-actuator and --volume are for simulated devices: give --headless too");
  options.cue = options.name = parsed.positional[0];
  const bool isFolder = options.cue.find('/') != std::string::npos;
  if (isFolder && isHostGiven)
    return usageError("play", "a directory is played by itself: --bundle and --library are for a cue's name");
  std::unique_ptr<CueFolder> folder;
  if (isFolder) {
    auto opened = CueFolder::open(options.cue);
    if (!opened) return failure(options.cue + ": " + opened.error().localizedDescription);
    folder = std::move(*opened);
    options.name = CueFolder::kCueName;
  } else if (FileManager::directoryExistsAtPath(options.cue)) {
    tell("this plays a cue by its name; 'halvo play ./" + options.cue + "' plays the directory that lies here");
  }
  useDevices(options.devices);
  return PlaySession(std::move(options)).run();
}

}  // namespace halvo
