#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>

#include "check/told.h"
#include "drawing_commands/run_tool.h"
#include "platform/foundation/json/json_reader.h"
#include "support/temporary_directory.h"

namespace quellaro {

// A directory with a folder of frames, in which cues are made.
class Importing : public testing::Test {
 protected:
  static std::string frame(const std::string& color, const std::string& more = "", const std::string& size = "100") {
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + size + "\" height=\"" + size +
           "\"><rect x=\"10\" y=\"10\" width=\"30\" height=\"30\" fill=\"" + color + "\"/>" + more + "</svg>";
  }
  std::string file(const std::string& name, const std::string& content) const {
    writeFile(directory_ / name, content);
    return name;
  }
  void writeFrames(std::size_t count) const {
    for (std::size_t i = 1; i <= count; ++i) file("frames/frame" + std::to_string(i) + ".svg", frame("#ff0000"));
  }

  // Within the directory; `before`: what the shell does first.
  Ran import(const std::string& arguments, const std::string& before = "") const {
    return run(in() + before + QUELLARO_HALVO_TOOL " import " + arguments);
  }
  Checked toldByImport(const std::string& arguments) const { return told("import --json " + arguments, in()); }
  Checked toldByCheck() const { return told("check --json cue", in()); }

  JSONDocument config() const {
    auto document = JSONDocument::parse(readFile(directory_ / "cue/play_config.json"));
    if (!document) throw std::runtime_error(document.error().localizedDescription);
    return std::move(*document);
  }
  // Everything in the directory, hidden things too.
  std::set<std::string> names() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory_.path()))
      names.insert(entry.path().filename().string());
    return names;
  }

  TemporaryDirectory directory_;

 private:
  std::string in() const { return "cd '" + directory_.path().string() + "'; "; }
};

}  // namespace quellaro
