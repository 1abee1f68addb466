#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

#include "assets/halvo_file_manager.h"
#include "assets/version_config.h"
#include "support/temporary_directory.h"

namespace quellaro {

namespace fs = std::filesystem;

struct Outcome {
  int status = -1;
  std::string output;  // standard output and standard error
};

// `before`: what the shell does first.
inline Outcome run(const std::string& arguments, const std::string& before = "") {
  Outcome outcome;
  std::FILE* pipe = popen((before + QUELLARO_HALVO_TOOL " " + arguments + " 2>&1").c_str(), "r");
  std::array<char, 4096> buffer;
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
    outcome.output.append(buffer.data(), count);
  outcome.status = WEXITSTATUS(pclose(pipe));
  return outcome;
}

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
  Outcome publish(const std::string& version, const std::string& more = "--sdk-version 2.0.0",
                  const std::string& before = "") const {
    return run("publish " + cue().string() + " --store " + store().string() + " --cue Quel_laro --version '" + version +
                   "' " + more,
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
  Outcome storeCommand(const std::string& command, const std::string& more = "", const std::string& before = "") const {
    return run("store " + command + " " + store().string() + " " + more, before);
  }
  std::string config() const { return readFile(store() / "version_config.json"); }
  fs::path cue() const { return directory_ / "cue"; }
  fs::path store() const { return directory_ / "store"; }

  TemporaryDirectory directory_;
};

}  // namespace quellaro
