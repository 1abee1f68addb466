#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/foundation/application.h"
#include "platform/foundation/notification_center.h"
#include "platform/foundation/storage/bundle.h"
#include "platform/foundation/storage/file_manager.h"
#include "platform/foundation/storage/user_defaults.h"
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
  EXPECT_EQ(FileManager::contentsAtPath(directory / "link", 3), std::string("a\0b", 3));
  EXPECT_FALSE(FileManager::contentsAtPath(directory / "file", 2));
  EXPECT_FALSE(FileManager::contentsAtPath((directory / "file").string() + '\0' + "x"));
  for (const char* name : {"broken", "pipe", "absent"})
    EXPECT_FALSE(FileManager::contentsAtPath(directory / name)) << name;
  EXPECT_EQ(FileManager::readAtPath(directory.path()).error().localizedDescription, "Is a directory");
  EXPECT_TRUE(FileManager::fileExistsAtPath(directory / "pipe"));
  EXPECT_FALSE(FileManager::fileExistsAtPath(directory / "broken"));
}

TEST(FileManager, WritesAllOrNothingAndLeavesNothingBehind) {
  const TemporaryDirectory directory;
  const fs::path path = directory / "file";
  EXPECT_FALSE(FileManager::writeAtomically("one", path));
  std::ifstream reader(path);
  EXPECT_FALSE(FileManager::writeAtomically("two", path));
  EXPECT_EQ(readFile(path), "two");
  EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), "one") << "whoever reads it reads one whole file";

  // A disk that is full in the middle of a file.
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit full{4, limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &full);
  EXPECT_TRUE(FileManager::writeAtomically("three", path));
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(readFile(path), "two");

  fs::create_directory(directory / "taken");
  EXPECT_TRUE(FileManager::writeAtomically("x", directory / "taken"));
  EXPECT_TRUE(FileManager::writeAtomically("x", directory / "no" / "file"));
  EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), {}), 2);
}

TEST(FileManager, MovesOnlyWhereNothingIsAndRemovesLinksNotTheirTargets) {
  const TemporaryDirectory directory;
  writeFile(directory / "from" / "file", "new");
  writeFile(directory / "to" / "file", "old");
  EXPECT_TRUE(FileManager::moveItemAtPath(directory / "from", directory / "to"));
  EXPECT_EQ(readFile(directory / "from" / "file"), "new");
  EXPECT_FALSE(FileManager::moveItemAtPath(directory / "from", directory / "free"));
  EXPECT_EQ(readFile(directory / "free" / "file"), "new");

  fs::create_symlink(directory / "to", directory / "free" / "link");
  EXPECT_FALSE(FileManager::removeItemAtPath(directory / "free"));
  EXPECT_EQ(readFile(directory / "to" / "file"), "old");
  EXPECT_TRUE(FileManager::removeItemAtPath(directory / "free"));
}

// For the rest of the program: whoever looks for a Library here says where.
void setVariable(const char* name, const char* value) { value != nullptr ? setenv(name, value, 1) : unsetenv(name); }

TEST(Library, IsFoundAsTheDesktopStandardSays) {
  const TemporaryDirectory directory;
  const std::string home = directory / "home";
  const std::string data = directory / "data";
  struct Row {
    const char* xdg;
    const char* home;
    const char* identifier;
    std::optional<std::string> expected;
  };
  for (const Row& row :
       {Row{data.c_str(), home.c_str(), "shop", data + "/shop"},
        Row{nullptr, home.c_str(), "shop", home + "/.local/share/shop"},
        Row{"relative", home.c_str(), "shop", home + "/.local/share/shop"},
        Row{data.c_str(), home.c_str(), "", data + "/quellaro-halvo"}, Row{nullptr, nullptr, "shop", std::nullopt}}) {
    setVariable("XDG_DATA_HOME", row.xdg);
    setVariable("HOME", row.home);
    setApplicationIdentifier(row.identifier);
    EXPECT_EQ(NSSearchPathForLibraryDirectory(), row.expected);
    if (row.expected) {
      EXPECT_EQ(fs::status(*row.expected).permissions(), fs::perms::owner_all);
    }
  }
  setApplicationIdentifier("kept");
  for (const char* bad : {"a/b", "a..b", "."}) EXPECT_TRUE(setApplicationIdentifier(bad)) << bad;
  EXPECT_EQ(applicationIdentifier(), "kept");
  setApplicationIdentifier(std::nullopt);
}

TEST(Bundle, AnInformationDictionaryThatCannotBeReadIsEmpty) {
  const TemporaryDirectory directory;
  for (const char* text : {"[1]", "{\"a\": "}) {
    writeFile(directory / "Info.json", text);
    EXPECT_FALSE(NSBundle(directory.path()).objectForInfoDictionaryKey("a")) << text;
  }
  writeFile(directory / "Info.json", R"({"a": "x"})");
  EXPECT_EQ(NSBundle(directory / "").objectForInfoDictionaryKey("a")->string(), "x");
}

TEST(NotificationCenter, ObserversMayLeaveWhileTheyAreCalled) {
  NSNotificationCenter center;
  int calls = 0;
  NSNotificationCenter::Token token = 0;
  token = center.addObserver("ended", [&](const std::string&) {
    ++calls;
    center.removeObserver(token);
  });
  for (const char* name : {"other", "ended", "ended"}) center.post(name);
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
  writeFile(file_, R"({"ours": "old"})");
  EXPECT_EQ(defaults_.stringForKey("ours"), "old");
  defaults_.setString("ours", "new");
  writeFile(file_, R"({"theirs": {"deep": [1, 18446744073709551615]}, "ours": "old", "later": true})");
  EXPECT_TRUE(defaults_.synchronize());
  EXPECT_EQ(readFile(file_), R"({"later":true,"ours":"new","theirs":{"deep":[1,18446744073709551615]}})");
}

TEST_F(UserDefaults, SetABrokenFileAside) {
  writeFile(file_, "{broken");
  EXPECT_FALSE(defaults_.stringForKey("a"));
  defaults_.setString("a", "b");
  EXPECT_TRUE(defaults_.synchronize());
  EXPECT_EQ(readFile(file_), R"({"a":"b"})");
  EXPECT_EQ(readFile(file_.string() + ".unreadable"), "{broken");
}

TEST_F(UserDefaults, FollowNoLinkElsewhere) {
  const fs::path elsewhere = directory_.path() / "elsewhere";
  fs::create_directories(file_.parent_path());
  fs::create_symlink(elsewhere, file_.string() + ".lock");
  defaults_.setString("a", "b");
  defaults_.synchronize();
  EXPECT_FALSE(fs::exists(elsewhere));
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
  ASSERT_EQ(waitpid(child, nullptr, 0), child);
  for (int i = 0; i < kKeys; ++i)
    for (const char* prefix : {"child", "parent"}) EXPECT_TRUE(defaults_.stringForKey(prefix + std::to_string(i)));
}

TEST_F(UserDefaults, WhatCannotBeWrittenStaysPending) {
  writeFile(directory_.path() / "Preferences", "in the way");
  defaults_.setString("a", "b");
  EXPECT_FALSE(defaults_.synchronize());
  EXPECT_EQ(defaults_.stringForKey("a"), "b");
  fs::remove(directory_.path() / "Preferences");
  EXPECT_TRUE(defaults_.synchronize());

  setLibraryDirectory(std::nullopt);
  setVariable("XDG_DATA_HOME", nullptr);
  setVariable("HOME", nullptr);
  defaults_.setString("a", "c");
  EXPECT_EQ(defaults_.stringForKey("a"), "c");
  EXPECT_FALSE(defaults_.synchronize());
}

}  // namespace
}  // namespace quellaro
