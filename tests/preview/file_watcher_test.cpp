// That a save is noticed, however it is made.
#include "preview/file_watcher.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

#include "support/child_process.h"
#include "support/temporary_directory.h"

namespace halvo {
namespace {

namespace fs = std::filesystem;
using quellaro::writeFile;

TEST(FileWatcher, NoticesWhatTheSourceConsistsOf) {
  const quellaro::TemporaryDirectory directory;
  const fs::path cue = directory / "cue";
  const fs::path link = directory / "link.svg";
  const auto replaceDirectory = [&] {
    writeFile(directory / "new/animation.json", "[]");
    fs::rename(cue, directory / "old");
    fs::rename(directory / "new", cue);
    fs::remove_all(directory / "old");
  };
  const struct {
    const char* what;
    fs::path source;
    std::function<void()> change;
    bool isNoticed;
  } rows[] = {
      {"written in place", cue, [&] { writeFile(cue / "animation.json", "[1]"); }, true},
      {"renamed", cue,
       [&] {
         writeFile(cue / ".animation.json.tmp", "[2]");
         fs::rename(cue / ".animation.json.tmp", cue / "animation.json");
       },
       true},
      {"an editor's own files", cue, [&] { writeFile(cue / "animation.json~", "[2]"); }, false},
      {"another drawing", cue / "a.svg", [&] { writeFile(cue / "b.svg", "<svg/>"); }, false},
      {"the drawing", cue / "a.svg", [&] { writeFile(cue / "a.svg", "<svg/>"); }, true},
      {"beside an animation.json", cue / "animation.json", [&] { writeFile(cue / "play_config.json", "{}"); }, true},
      {"where a link leads", link, [&] { writeFile(cue / "a.svg", "<svg />"); }, true},
      {"removed", cue / "", [&] { fs::remove(cue / "play_config.json"); }, true},
      {"another directory in its place", cue, replaceDirectory, true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    writeFile(cue / "animation.json", "[]");
    writeFile(cue / "play_config.json", "[]");
    writeFile(cue / "a.svg", "<svg></svg>");
    if (!fs::is_symlink(link)) fs::create_symlink(cue / "a.svg", link);
    std::atomic<int> changes = 0;
    std::string problem;
    const auto watcher = FileWatcher::watch(
        row.source, [&] { ++changes; }, problem);
    ASSERT_TRUE(watcher) << problem;
    row.change();
    if (!row.isNoticed) {
      std::this_thread::sleep_for(std::chrono::milliseconds(150));
      EXPECT_EQ(changes, 0);
      continue;
    }
    quellaro::waitUntil(
        row.what, [&] { return changes > 0; }, 5);
    // And what comes after that.
    const int before = changes;
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    if (fs::is_directory(row.source)) writeFile(cue / "animation.json", "[3]");
    if (fs::is_directory(row.source))
      quellaro::waitUntil(
          row.what, [&] { return changes > before; }, 5);
  }
}

}  // namespace
}  // namespace halvo
