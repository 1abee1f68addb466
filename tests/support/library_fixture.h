#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/main_queue_driver.h"
#include "support/temporary_directory.h"

namespace quellaro {

// A library bundle and an application's Library directory of the test's own, the main queue on a clock it sets, and the
// console lines printed meanwhile. The bundle starts with Info.json (version "2.0.0") and nothing else.
class LibraryFixture : public testing::Test {
 protected:
  LibraryFixture();
  ~LibraryFixture() override;

  // What was printed since the last call.
  std::vector<std::string> takePrinted();
  void writeBundleFile(const std::string& name, const std::string& content) { writeFile(bundle() / name, content); }
  // A play configuration and a version configuration (listing "quellaro") that decode.
  void writeConfigs(const std::string& hapticsSupported = "false");

  std::filesystem::path bundle() const { return directory_.path() / "bundle"; }
  std::filesystem::path library() const { return directory_.path() / "library"; }

  MainQueueDriver driver_;

 private:
  TemporaryDirectory directory_;
  std::vector<std::string> printed_;
};

}  // namespace quellaro
