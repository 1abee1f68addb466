#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "assets/halvo_file_manager.h"
#include "assets/halvo_utility.h"
#include "assets/upgrade_controller.h"
#include "platform/dispatch/manual_clock.h"
#include "platform/foundation/storage/bundle.h"
#include "support/library_fixture.h"
#include "support/scripted_server.h"

namespace quellaro {

// A store of one cue, "quellaro", and a device that has never upgraded. The wall clock stands at a million weeks.
class UpgradeFixture : public LibraryFixture {
 protected:
  static constexpr double kWeek = 604800;
  static constexpr double kNow = 1e6 * kWeek;

  UpgradeFixture() : wall_(kNow), server_([this](const auto& request, const auto& c) { serve(request.path, c); }) {
    setWallClock(&wall_);
    writeConfigs();
    setBaseAddress("\"" + server_.address() + "/store\"");
  }
  ~UpgradeFixture() override {
    driver_.settle();
    setWallClock(nullptr);
  }

  // A JSON value; empty: no such entry.
  void setBaseAddress(const std::string& json) {
    writeBundleFile("Info.json", R"({"CFBundleShortVersionString": "2.0.0")" +
                                     (json.empty() ? "" : ", \"versionConfigUrl\": " + json) + "}");
    NSBundle::setLibraryPath(bundle().string());
  }

  static std::string configOf(const std::string& version, const std::string& filepath, const char* sdk = "2.0.0",
                              const char* cue = "quellaro") {
    return std::string(R"([{"sdk_versions": [")") + sdk + R"("], "cues": {")" + cue + R"(": {"version": ")" + version +
           R"(", "filepath": ")" + filepath + R"("}}, "analytics": {"enable": false, "frequency": "M", "url": ""}}])";
  }

  // What the store answers at a path below "/store".
  void answer(const std::string& path, ScriptedServer::Script script) {
    const std::lock_guard lock(mutex_);
    answers_["/store" + path] = std::move(script);
  }
  void answer(const std::string& path, const std::string& body) {
    answer(path, [body](const auto&, const auto& connection) { connection.answer(body); });
  }
  void publish(const std::string& version, const std::string& filepath) {
    answer("/version_config.json", configOf(version, filepath));
    for (const char* name : kCueFiles) answer("/" + filepath + "/" + name, contentOf(version, name));
  }
  static std::string contentOf(const std::string& version, const std::string& name) { return name + " of " + version; }

  std::shared_ptr<QLUpgradeController> makeController(const std::string& cue = "quellaro") {
    auto controller = QLUpgradeController::make();
    controller->setPreparingHalvoCue(cue);
    return controller;
  }
  // Runs one check to its end.
  void check(QLUpgradeController& controller) {
    controller.checkForUpgrade();
    driver_.settle();
  }

  std::filesystem::path active() const { return library() / "halvo_assets_active"; }
  std::filesystem::path staging() const { return library() / "halvo_assets_temp" / "quellaro"; }
  // Name and content of every file of a directory.
  static std::map<std::string, std::string> filesOf(const std::filesystem::path& directory) {
    std::map<std::string, std::string> files;
    if (std::filesystem::is_directory(directory))
      for (const auto& entry : std::filesystem::directory_iterator(directory))
        files[entry.path().filename()] = readFile(entry.path());
    return files;
  }
  static std::map<std::string, std::string> setOf(const std::string& version) {
    std::map<std::string, std::string> files;
    for (const char* name : kCueFiles) files[name] = contentOf(version, name);
    return files;
  }
  void installActive(const std::string& version) {
    for (const auto& [name, content] : setOf(version)) writeFile(active() / "quellaro" / name, content);
    HalvoUtility::setCueVersion("quellaro", version);
  }

  ManualClock wall_;
  std::mutex mutex_;
  std::map<std::string, ScriptedServer::Script> answers_;
  ScriptedServer server_;

 private:
  void serve(const std::string& path, const ScriptedServer::Connection& connection) {
    ScriptedServer::Script script;
    {
      const std::lock_guard lock(mutex_);
      script = answers_[path];
    }
    if (script)
      script({}, connection);
    else
      connection.send("HTTP/1.1 404 Not Found\r\nContent-Length: 9\r\n\r\nnot found");
  }
};

}  // namespace quellaro
