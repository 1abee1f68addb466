#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "assets/halvo_file_manager.h"
#include "assets/version_config.h"
#include "drawing_commands/run_tool.h"
#include "support/temporary_directory.h"

namespace quellaro {

namespace fs = std::filesystem;

// A cue and a store that it is published in.
class StoreTest : public testing::Test {
 protected:
  StoreTest() { writeCue("one"); }

  // The built-in cue, of one frame; `mark` tells cues apart.
  void writeCue(const std::string& mark) const {
    for (const std::string name : kCueFiles) {
      std::string content = readFile(QUELLARO_BUNDLE "/" + name);
      if (name == "play_config.json") content.insert(content.find('{') + 1, "\"mark\": \"" + mark + "\",");
      if (name == "animation.json")
        content =
            R"(["<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'><rect x='0' y='0' width='9' height='9' fill='#ff0000'/></svg>"])";
      writeFile(cue() / name, content);
    }
  }
  Ran publish(const std::string& version, const std::string& more = "--sdk-version 2.0.0",
              const std::string& before = "") const {
    return halvo("publish " + cue().string() + " --store " + store().string() + " --cue Quel_laro --version '" +
                     version + "' " + more,
                 before);
  }
  // "version filepath" of the cue for a library version; empty when it is not listed.
  std::string listed(const std::string& sdkVersion, const std::string& name = "quellaro") const {
    const auto entries = decodeVersionConfigs(readFile(store() / "version_config.json"));
    EXPECT_TRUE(entries);
    const auto entry = selectForSdkVersion(*entries, sdkVersion);
    if (!entry || entry->cues->count(name) == 0) return "";
    return *entry->cues->at(name).version + " " + *entry->cues->at(name).filepath;
  }
  // `halvo store`: the command, the store, and what more there is to say.
  Ran storeCommand(const std::string& command, const std::string& more = "", const std::string& before = "") const {
    return halvo("store " + command + " " + store().string() + " " + more, before);
  }
  std::string config() const { return readFile(store() / "version_config.json"); }
  fs::path cue() const { return directory_ / "cue"; }
  fs::path store() const { return directory_ / "store"; }

  TemporaryDirectory directory_;
};

}  // namespace quellaro
