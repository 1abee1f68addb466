#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/avfoundation/audio_output.h"

namespace quellaro {

inline constexpr std::string_view AVAudioSessionCategoryAmbient = "AVAudioSessionCategoryAmbient";
inline constexpr std::string_view AVAudioSessionModeDefault = "AVAudioSessionModeDefault";
enum class AVAudioSessionCategoryOptions : unsigned { None = 0, MixWithOthers = 1, DuckOthers = 2 };

// How the process's sound gets along with that of others. A Linux sound server has no sessions: it lowers other sounds
// by the role that each stream of ours carries. So the category and activation are kept here for whoever asks, and have
// no effect of their own. Any thread, except where told otherwise.
class AVAudioSession {
 public:
  static AVAudioSession& sharedInstance();

  AVAudioSession();

  // Gives why not, if so; only the ambient category with the default mode is offered.
  std::optional<NSError> setCategory(std::string_view category, std::string_view mode,
                                     AVAudioSessionCategoryOptions options);
  std::optional<NSError> setActive(bool active);

  std::string category() const;
  AVAudioSessionCategoryOptions categoryOptions() const;
  bool isActive() const;

  // 0.0 to 1.0; 0.0 while muted and where there is no sound server. May wait for the server, for seconds at the worst.
  // Not on a thread that plays.
  float outputVolume() const;

  // What mixers show a sound as that starts from now on, beside the program's name. Main thread.
  static constexpr const char* kDefaultSoundName = "Sound";
  void setSoundName(const char* name) { soundName_ = name; }
  const std::string& soundName() const { return soundName_; }

  // Where all sounds of the process go that start from now on. Null restores the default: the sound server and, while
  // none can be reached, an output that only takes the sound's time.
  void setOutput(std::shared_ptr<AudioOutput> output);
  std::shared_ptr<AudioOutput> output() const;

 private:
  mutable std::mutex mutex_;
  std::string category_;
  AVAudioSessionCategoryOptions options_ = AVAudioSessionCategoryOptions::None;
  bool active_ = false;
  std::string soundName_ = kDefaultSoundName;
  std::shared_ptr<AudioOutput> output_;
};

}  // namespace quellaro
