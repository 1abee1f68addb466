#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/foundation/application.h"
#include "platform/foundation/bundle.h"
#include "platform/foundation/file_manager.h"
#include "platform/foundation/notification_center.h"
#include "platform/foundation/user_defaults.h"
#include "support/main_queue_driver.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

namespace fs = std::filesystem;

TEST(FileManager, ReadsRegularFilesOnly) {
  const TemporaryDirectory directory;
  writeFile(directory / "file", std::string("a\0b", 3));
  fs::create_symlink(directory / "file", directory / "link");
  fs::create_symlink(directory / "nowhere", directory / "broken");
  ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0600), 0);
  const auto read = [&](const char* name, std::size_t bound = 100) {
    return FileManager::contentsAtPath((directory / name).string(), bound);
  };
  EXPECT_EQ(read("file"), std::string("a\0b", 3));
  EXPECT_EQ(read("link"), std::string("a\0b", 3));
  EXPECT_EQ(read("file", 3)->size(), 3u);
  EXPECT_FALSE(read("file", 2));
  for (const char* name : {"broken", "pipe", ".", "absent"}) EXPECT_FALSE(read(name)) << name;
  EXPECT_FALSE(FileManager::contentsAtPath(std::string((directory / "file").string() + '\0' + "x")));
  EXPECT_EQ(FileManager::readAtPath(directory.path().string()).error().localizedDescription, "Is a directory");
  EXPECT_TRUE(FileManager::fileExistsAtPath((directory / "pipe").string()));
  EXPECT_FALSE(FileManager::fileExistsAtPath((directory / "broken").string()));
}

TEST(FileManager, WritesAllOrNothingAndLeavesNothingBehind) {
  const TemporaryDirectory directory;
  const std::string path = (directory / "file").string();
  EXPECT_FALSE(FileManager::writeAtomically("one", path));
  EXPECT_FALSE(FileManager::writeAtomically("two", path));
  EXPECT_EQ(readFile(path), "two");
  fs::create_directory(directory / "taken");
  EXPECT_TRUE(FileManager::writeAtomically("x", (directory / "taken").string()));
  EXPECT_TRUE(FileManager::writeAtomically("x", (directory / "no" / "file").string()));
  EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), {}), 2);
}

TEST(FileManager, MovesOnlyWhereNothingIsAndRemovesLinksNotTheirTargets) {
  const TemporaryDirectory directory;
  writeFile(directory / "from" / "file", "new");
  writeFile(directory / "to" / "file", "old");
  const auto path = [&](const char* name) { return (directory / name).string(); };
  EXPECT_TRUE(FileManager::moveItemAtPath(path("from"), path("to")));
  EXPECT_EQ(readFile(directory / "from" / "file"), "new");
  EXPECT_FALSE(FileManager::moveItemAtPath(path("from"), path("free")));
  EXPECT_EQ(readFile(directory / "free" / "file"), "new");

  fs::create_symlink(directory / "to", directory / "free" / "link");
  EXPECT_FALSE(FileManager::removeItemAtPath(path("free")));
  EXPECT_EQ(readFile(directory / "to" / "file"), "old");
  EXPECT_TRUE(FileManager::removeItemAtPath(path("free")));
}

// Sets or removes an environment variable until it goes.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    put(value);
  }
  ~EnvironmentVariable() { put(old_ ? old_->c_str() : nullptr); }

 private:
  void put(const char* value) { value != nullptr ? setenv(name_, value, 1) : unsetenv(name_); }
  const char* name_;
  std::optional<std::string> old_;
};

TEST(Library, IsFoundAsTheDesktopStandardSays) {
  const TemporaryDirectory directory;
  const std::string home = (directory / "home").string();
  const std::string data = (directory / "data").string();
  struct Row {
    const char* xdg;
    const char* home;
    const char* identifier;
    std::optional<std::string> expected;
  };
  const std::vector<Row> rows = {
      {data.c_str(), home.c_str(), "shop", data + "/shop"},
      {data.c_str(), nullptr, "shop", data + "/shop"},
      {nullptr, home.c_str(), "shop", home + "/.local/share/shop"},
      {"", home.c_str(), "shop", home + "/.local/share/shop"},
      {"relative", home.c_str(), "shop", home + "/.local/share/shop"},
      {data.c_str(), home.c_str(), "", data + "/quellaro-halvo"},
      {nullptr, nullptr, "shop", std::nullopt},
      {"relative", "also", "shop", std::nullopt},
  };
  for (const Row& row : rows) {
    const EnvironmentVariable xdg("XDG_DATA_HOME", row.xdg);
    const EnvironmentVariable homeVariable("HOME", row.home);
    setApplicationIdentifier(row.identifier);
    EXPECT_EQ(NSSearchPathForLibraryDirectory(), row.expected);
    if (row.expected) {
      EXPECT_EQ(fs::status(*row.expected).permissions(), fs::perms::owner_all);
    }
  }
  setApplicationIdentifier("kept");
  for (const char* bad : {"a/b", "..", "a..b", "/", "."}) EXPECT_TRUE(setApplicationIdentifier(bad)) << bad;
  EXPECT_EQ(applicationIdentifier(), "kept");
  setApplicationIdentifier(std::nullopt);
}

TEST(Bundle, AnInformationDictionaryThatCannotBeReadIsEmpty) {
  const TemporaryDirectory directory;
  for (const char* text : {"", "[", "[1]", "{\"a\": "}) {
    writeFile(directory / "Info.json", text);
    EXPECT_FALSE(NSBundle(directory.path().string()).objectForInfoDictionaryKey("a")) << text;
  }
  writeFile(directory / "Info.json", R"({"a": "x"})");
  EXPECT_EQ(NSBundle(directory.path().string() + "/").objectForInfoDictionaryKey("a")->string(), "x");
}

TEST(NotificationCenter, ObserversMayLeaveWhileTheyAreCalled) {
  NSNotificationCenter center;
  int calls = 0;
  NSNotificationCenter::Token token = 0;
  token = center.addObserver("ended", [&](const std::string&) {
    ++calls;
    center.removeObserver(token);
  });
  center.post("other");
  center.post("ended");
  center.post("ended");
  EXPECT_EQ(calls, 1);
}

class UserDefaults : public testing::Test {
 protected:
  UserDefaults() { setLibraryDirectory(directory_.path().string()); }
  ~UserDefaults() override { setLibraryDirectory(std::nullopt); }

  NSUserDefaults& defaults_ = NSUserDefaults::standardUserDefaults();
  MainQueueDriver driver_;
  TemporaryDirectory directory_;
  fs::path file_ = directory_.path() / "Preferences" / "defaults.json";
};

TEST_F(UserDefaults, AreSeenAtOnceAndWrittenAtTheNextIdleTurn) {
  defaults_.setString("name", "a \"b\"");
  defaults_.setDouble("time", 0.1);
  EXPECT_EQ(defaults_.stringForKey("name"), "a \"b\"");
  EXPECT_EQ(defaults_.doubleForKey("time"), 0.1);
  EXPECT_FALSE(defaults_.doubleForKey("name"));
  EXPECT_FALSE(defaults_.stringForKey("time"));
  EXPECT_FALSE(fs::exists(file_));
  MainQueue::shared().async([] {});
  driver_.settle();
  EXPECT_EQ(readFile(file_), R"({"name":"a \"b\"","time":0.1})");
}

TEST_F(UserDefaults, KeepWhatOthersWriteAndWhatTheyDoNotUnderstand) {
  writeFile(file_, R"({"theirs": {"deep": [1, 18446744073709551615]}, "ours": "old"})");
  EXPECT_EQ(defaults_.stringForKey("ours"), "old");
  defaults_.setString("ours", "new");
  writeFile(file_, R"({"theirs": {"deep": [1, 18446744073709551615]}, "ours": "old", "later": true})");
  EXPECT_TRUE(defaults_.synchronize());
  EXPECT_EQ(readFile(file_), R"({"later":true,"ours":"new","theirs":{"deep":[1,18446744073709551615]}})");
  EXPECT_FALSE(defaults_.doubleForKey("later")) << "a boolean is no number";
}

TEST_F(UserDefaults, SetABrokenFileAside) {
  writeFile(file_, "{broken");
  EXPECT_FALSE(defaults_.stringForKey("a"));
  defaults_.setString("a", "b");
  EXPECT_TRUE(defaults_.synchronize());
  EXPECT_EQ(readFile(file_), R"({"a":"b"})");
  EXPECT_EQ(readFile(file_.string() + ".unreadable"), "{broken");
}

TEST_F(UserDefaults, TwoProcessesLoseNothing) {
  constexpr int kKeys = 40;
  const auto write = [&](const std::string& prefix) {
    for (int i = 0; i < kKeys; ++i) {
      defaults_.setString(prefix + std::to_string(i), "x");
      defaults_.synchronize();
    }
  };
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    write("child");
    _exit(0);
  }
  write("parent");
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  for (int i = 0; i < kKeys; ++i) {
    EXPECT_TRUE(defaults_.stringForKey("child" + std::to_string(i)));
    EXPECT_TRUE(defaults_.stringForKey("parent" + std::to_string(i)));
  }
}

TEST_F(UserDefaults, AFileThatCannotBeWrittenStaysPending) {
  writeFile(directory_.path() / "Preferences", "in the way");
  defaults_.setString("a", "b");
  EXPECT_FALSE(defaults_.synchronize());
  EXPECT_EQ(defaults_.stringForKey("a"), "b");
  fs::remove(directory_.path() / "Preferences");
  EXPECT_TRUE(defaults_.synchronize());
}

TEST_F(UserDefaults, WithoutALibraryTheyLastAsLongAsTheProcess) {
  setLibraryDirectory(std::nullopt);
  const EnvironmentVariable xdg("XDG_DATA_HOME", nullptr);
  const EnvironmentVariable home("HOME", nullptr);
  defaults_.setString("a", "b");
  EXPECT_EQ(defaults_.stringForKey("a"), "b");
  EXPECT_FALSE(defaults_.synchronize());
}

}  // namespace
}  // namespace quellaro
