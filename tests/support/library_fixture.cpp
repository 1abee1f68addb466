#include "support/library_fixture.h"

#include <string_view>
#include <utility>

#include "platform/foundation/application.h"
#include "platform/foundation/console.h"
#include "platform/foundation/storage/bundle.h"
#include "platform/foundation/storage/user_defaults.h"

namespace quellaro {

LibraryFixture::LibraryFixture() {
  writeBundleFile("Info.json", R"({"CFBundleShortVersionString": "2.0.0"})");
  NSBundle::setLibraryPath(bundle().string());
  setLibraryDirectory(library().string());
  setConsoleSink([this](std::string_view text) { printed_.emplace_back(text); });
}

LibraryFixture::~LibraryFixture() {
  setConsoleSink({});
  // What is kept for later would be written when the program ends, and would bring the directory back.
  NSUserDefaults::standardUserDefaults().synchronize();
  setLibraryDirectory(std::nullopt);
}

std::vector<std::string> LibraryFixture::takePrinted() { return std::exchange(printed_, {}); }

void LibraryFixture::writeConfigs(const std::string& hapticsSupported) {
  writeBundleFile("play_config.json",
                  R"({"totalFrames": 2, "soundFileName": "audio.mp3", "soundDelayInMillis": 250,
                      "animationDelayInMillis": 120.5, "frameTime": {"Frame_1": 100, "Frame_2": 100},
                      "viewBox": "0 0 10 10", "isHapticsSupported": )" +
                      hapticsSupported + "}");
  writeBundleFile("version_config.json",
                  R"([{"sdk_versions": ["2.0.0"], "cues": {"quellaro": {"version": "1", "filepath": "q/1"}},
                       "analytics": {"enable": false, "frequency": "M", "url": ""}}])");
}

}  // namespace quellaro
