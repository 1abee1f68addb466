#include <gmock/gmock.h>
#include <sys/stat.h>

#include <chrono>
#include <vector>

#include "platform/foundation/json/json_reader.h"
#include "publish/store_fixture.h"
#include "support/child_process.h"

namespace quellaro {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class Store : public StoreTest {
 protected:
  // Versions of different content, the last one listed.
  void publishAll(const std::vector<std::string>& versions, const std::string& more = "--sdk-version 2.0.0") {
    for (const std::string& version : versions) {
      writeCue(version);
      ASSERT_EQ(publish(version, more).status, 0) << version;
    }
  }
  void makeOld(const fs::path& path, int days) const {
    const auto time = fs::file_time_type::clock::now() - std::chrono::hours(24 * days);
    if (fs::is_directory(path))
      for (const auto& entry : fs::recursive_directory_iterator(path)) fs::last_write_time(entry, time);
    fs::last_write_time(path, time);
  }
  std::size_t setCount() const {
    const auto isDirectory = [](const auto& entry) { return entry.is_directory(); };
    const fs::directory_iterator sets(store() / "quellaro");
    return static_cast<std::size_t>(std::count_if(begin(sets), end(sets), isDirectory));
  }
};

TEST_F(Store, WhatIsNoStoreIsRefusedByAllCommands) {
  publishAll({"1"});
  const struct {
    const char* path;
    const char* content;  // of version_config.json; null: there is none
    const char* reason;
  } stores[] = {
      {"nowhere", nullptr, "o such "},
      {"cue", nullptr, "version_config.json"},
      {"broken", "[{\"cues\": 1}]", "version_config.json: At [0].sdk_versions"},
      {"torn", "[{\"sdk_versions\": [", "JSON"},
  };
  for (const auto& c : stores) {
    const std::string path = directory_ / c.path;
    if (c.content != nullptr) writeFile(path + "/version_config.json", c.content);
    for (const std::string& command :
         {"list " + path, "diff " + path + " " + store().string(), "diff " + store().string() + " " + path,
          "rollback " + path + " --cue quellaro --to 1", "prune " + path, "prune " + path + " --dry-run"}) {
      const Ran outcome = halvo("store " + command);
      EXPECT_EQ(outcome.status, 1) << command;
      EXPECT_THAT(outcome.output, HasSubstr(c.reason)) << command;
    }
  }
  for (const char* arguments : {"", "bogus", "list", "list a b", "rollback a --to 1", "rollback a --cue b --to 0",
                                "prune a --older-than 0", "verify a --timeout 0", "keygen"})
    EXPECT_EQ(halvo("store " + std::string(arguments)).status, 2) << arguments;
  for (const char* command : {"", "list", "verify", "diff", "rollback", "prune", "keygen"})
    EXPECT_THAT(halvo("store " + std::string(command) + " --help").output,
                HasSubstr("Usage: halvo store " + std::string(command)));
}

TEST_F(Store, ListTellsWhatIsListedAndWhatIsUnused) {
  publishAll({"1", "2"});
  writeFile(store() / "quellaro/3/audio.mp3", "12345");
  writeFile(store() / "notes/readme", "no cue");
  writeFile(store() / ".git/audio.mp3", "hidden");
  makeOld(store() / "quellaro/1", 12);
  EXPECT_THAT(storeCommand("list").output,
              AllOf(HasSubstr("For library version 2.0.0:\n  quellaro version 2 at quellaro/2\n"),
                    HasSubstr("quellaro/1: quellaro version 1, "), HasSubstr("unused for 12 days"),
                    HasSubstr("quellaro/2: quellaro version 2, "), HasSubstr(" KB, listed\n"),
                    HasSubstr("incomplete, without play_config.json, animation.json, signature_forte.ahap; unused")));
  const auto json = JSONDocument::parse(storeCommand("list", "--json").output);
  ASSERT_TRUE(json);
  const auto sets = json->root().member("sets")->elements();
  ASSERT_EQ(sets.size(), 3u);
  EXPECT_EQ(sets[2].member("bytes")->wholeNumber(), 5);
  const std::int64_t unused = *sets[0].member("bytes")->wholeNumber() + 5;
  EXPECT_EQ(json->root().member("unusedBytes")->wholeNumber(), unused);
  EXPECT_EQ(json->root().member("bytes")->wholeNumber(), unused + *sets[1].member("bytes")->wholeNumber());
}

TEST_F(Store, AVersionIsListedAgainUnderItsOwnPath) {
  publishAll({"1", "2/b", "3"});
  const std::string before = config();
  EXPECT_EQ(storeCommand("rollback", "--cue quellaro --to 1 --dry-run").output,
            "would list version 1 of quellaro for library version 2.0.0 at quellaro/1\n");
  EXPECT_EQ(config(), before);
  const struct {
    const char* to;
    const char* expected;
  } versions[] = {{"1", "1 quellaro/1"}, {"2/b", "2/b quellaro/2_b"}, {"quellaro/3", "3 quellaro/3"}};
  for (const auto& c : versions) {
    EXPECT_EQ(storeCommand("rollback", "--cue Quel-laro --to " + std::string(c.to)).status, 0);
    EXPECT_EQ(listed("2.0.0"), c.expected);
  }
  EXPECT_THAT(storeCommand("rollback", "--cue quellaro --to 3 --json").output, HasSubstr("\"changed\":false"));
  EXPECT_EQ(setCount(), 3u);

  writeFile(store() / "quellaro/broken/audio.mp3", "no sound");
  for (const char* name : {"play_config.json", "animation.json", "signature_forte.ahap"})
    fs::copy(cue() / name, store() / "quellaro/broken" / name);
  fs::remove(store() / "quellaro/2_b/audio.mp3");
  publishAll({"4"}, "--sdk-version 3.0.0");
  const struct {
    const char* arguments;
    const char* reason;
  } refused[] = {
      {"--cue quellaro --to 1", "3 for 2.0.0; 4 for 3.0.0): say with --sdk-version"},
      {"--cue quellaro --to 9 --sdk-version 2.0.0", "version 9 of quellaro is not there"},
      {"--cue quellaro --to 2/b --sdk-version 2.0.0", "not whole"},
      {"--cue quellaro --to broken --sdk-version 2.0.0", "broken/audio.mp3: "},
      {"--cue other --to 1", "no entry lists other"},
      {"--cue other --to 1 --sdk-version 2.0.0", "is not there"},
  };
  const std::string after = config();
  for (const auto& c : refused) {
    const Ran outcome = storeCommand("rollback", c.arguments);
    EXPECT_EQ(outcome.status, 1) << c.arguments;
    EXPECT_THAT(outcome.output, HasSubstr(c.reason));
  }
  // A disk that is full.
  const Ran full = storeCommand("rollback", "--cue quellaro --to 1 --sdk-version 2.0.0", "trap '' XFSZ; ulimit -f 0; ");
  EXPECT_EQ(full.status, 1);
  EXPECT_THAT(full.output, HasSubstr("File too large"));
  EXPECT_EQ(config(), after);
  EXPECT_THAT(storeCommand("list").output, Not(HasSubstr("unfinished")));
}

TEST_F(Store, OnlyWhatNobodyNeedsIsPruned) {
  publishAll({"listed", "old", "new", "noted", "linked", "shared", "last"});
  publishAll({"%20 x"}, "--sdk-version 3.0.0");
  const fs::path sets = store() / "quellaro";
  const fs::path outside = directory_ / "outside";
  writeFile(sets / "noted/notes.txt", "somebody's");
  writeFile(sets / "parts/audio.mp3", "incomplete");
  writeFile(sets / ".7.123.halvo-unfinished/audio.mp3", "of a killed publisher");
  fs::copy(sets / "old", outside);
  fs::create_directory_symlink(outside, sets / "out");
  fs::create_directory_symlink("quellaro/linked", store() / "current");
  fs::remove(sets / "last/audio.mp3");
  fs::create_symlink("../shared/audio.mp3", sets / "last/audio.mp3");
  fs::rename(sets / "_20_x", sets / "% x");
  writeFile(store() / "version_config.json", R"([
      {"sdk_versions": ["2.0.0"], "cues": {"quellaro": {"version": "listed", "filepath": "quellaro//listed"},
       "b": {"version": "x", "filepath": "current"}, "c": {"version": "last", "filepath": "quellaro/last"}},
       "analytics": {"enable": false, "frequency": "M", "url": ""}},
      {"sdk_versions": ["2.0.0"], "cues": {"d": {"version": "y", "filepath": "quellaro/%25%20x"},
       "e": {"version": "z", "filepath": "../outside"}}, "analytics": {"enable": false, "frequency": "M", "url": ""}}])");
  for (const auto& entry : fs::directory_iterator(sets))
    if (!entry.is_symlink() && entry.path().filename() != "new") makeOld(entry.path(), 8);

  const auto count = [&] { return std::distance(fs::recursive_directory_iterator(store()), {}); };
  const auto all = count();
  EXPECT_THAT(storeCommand("prune", "--dry-run").output, HasSubstr("would remove quellaro/old\n"));
  EXPECT_THAT(storeCommand("prune", "--older-than 9").output, Not(HasSubstr("removed")));
  EXPECT_EQ(count(), all);
  const Ran pruned = storeCommand("prune", "--json");
  EXPECT_THAT(pruned.output,
              AllOf(HasSubstr(R"("removed":["quellaro/old","quellaro/parts","quellaro/.7.123.halvo-unfinished"])"),
                    HasSubstr("noted: it holds more than a cue")));
  EXPECT_EQ(pruned.status, 1);  // as something stays
  for (const char* kept : {"listed", "new", "noted/audio.mp3", "linked", "shared", "last", "% x", "out/audio.mp3"})
    EXPECT_TRUE(fs::exists(sets / kept)) << kept;
  EXPECT_EQ(std::distance(fs::directory_iterator(outside), {}), 5);

  // What has been listed until just now, however old it is.
  EXPECT_EQ(storeCommand("rollback", "--cue quellaro --to new --sdk-version 2.0.0").status, 0);
  EXPECT_THAT(storeCommand("prune").output, Not(HasSubstr("removed")));
  writeFile(store() / "version_config.json", "[]");
  EXPECT_THAT(storeCommand("prune").output, HasSubstr("it lists nothing at all"));
}

TEST_F(Store, APublisherWaitsForAnother) {
  publishAll({"1"});
  const auto holder = [&](const char* seconds) {
    fs::remove(directory_ / "held");
    ChildProcess process({"flock", store(), "sh", "-c", "echo; exec sleep " + std::string(seconds)},
                         directory_ / "held");
    waitUntil("the store is held", [&] { return readFile(directory_ / "held") == "\n"; });
    return process;
  };
  {
    const ChildProcess first = holder("1");
    writeCue("2");
    const Ran waited = publish("2");
    EXPECT_EQ(waited.status, 0);
    EXPECT_THAT(waited.output, HasSubstr("somebody else is changing this store; waiting at most 60 seconds\n"));
  }
  const ChildProcess stubborn = holder("600");
  for (const Ran& outcome : {publish("3", "--wait 0"), storeCommand("prune", "--wait 0"),
                             storeCommand("rollback", "--cue quellaro --to 1 --wait 0")}) {
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("somebody else is changing this store, for more than 0 seconds"));
  }
  EXPECT_EQ(listed("2.0.0"), "2 quellaro/2");
}

TEST_F(Store, PublishersAtTheSameTimeLoseNothing) {
  std::vector<ChildProcess> publishers;
  for (const char* name : {"a", "b", "c", "d", "e"})
    publishers.emplace_back(std::vector<std::string>{QUELLARO_HALVO_TOOL, "publish", cue(), "--store", store(), "--cue",
                                                     name, "--version", "1", "--sdk-version", "2.0.0"},
                            directory_ / name);
  for (ChildProcess& publisher : publishers) EXPECT_EQ(publisher.exitStatus(), 0);
  for (const std::string name : {"a", "b", "c", "d", "e"}) EXPECT_EQ(listed("2.0.0", name), "1 " + name + "/1");
}

TEST_F(Store, EverybodyCanReadWhatIsPublishedAndNobodyElseTheKey) {
  ASSERT_EQ(halvo("store keygen " + (directory_ / "key").string(), "umask 0; ").status, 0);
  ASSERT_EQ(publish("1", "--sdk-version 2.0.0", "umask 077; ").status, 0);
  writeCue("2");
  ASSERT_EQ(publish("2", "--sdk-version 2.0.0", "umask 0; ").status, 0);
  ASSERT_EQ(storeCommand("rollback", "--cue quellaro --to 1", "umask 077; ").status, 0);
  const auto modeOf = [](const fs::path& path) { return static_cast<int>(fs::status(path).permissions()); };
  EXPECT_EQ(modeOf(directory_ / "key"), 0600);
  EXPECT_EQ(modeOf(store()), 0755);
  for (const auto& entry : fs::recursive_directory_iterator(store()))
    EXPECT_EQ(modeOf(entry), entry.is_directory() ? 0755 : 0644) << entry.path();
}

TEST_F(Store, AKilledPublisherLeavesNothingInTheWay) {
  publishAll({"1"});
  const std::string before = config();
  writeCue("2");
  // The signal comes in the middle of a file.
  EXPECT_NE(publish("2", "--sdk-version 2.0.0", "ulimit -c 0; ulimit -f 40; ").status, 0);
  EXPECT_EQ(config(), before);
  EXPECT_FALSE(fs::exists(store() / "quellaro/2"));
  EXPECT_THAT(storeCommand("list").output, HasSubstr("left by a process that was ended"));
  EXPECT_EQ(publish("2").status, 0);
  EXPECT_EQ(listed("2.0.0"), "2 quellaro/2");
}

TEST_F(Store, NothingIsWrittenOutsideOfIt) {
  publishAll({"1"});
  fs::create_directories(directory_ / "outside");
  for (const std::string target : {"outside", "nowhere"}) {
    fs::create_directory_symlink(directory_ / target, store() / ("to" + target));
    const Ran outcome =
        halvo("publish " + cue().string() + " --store " + store().string() + " --cue to" + target + " --version 1");
    EXPECT_EQ(outcome.status, 1) << target;
    EXPECT_THAT(outcome.output, HasSubstr("leads out of the store"));
  }
  EXPECT_TRUE(fs::is_empty(directory_ / "outside"));

  // Of a list that lies elsewhere, and may just not be there at the moment, nothing would be left.
  for (const char* target : {"list.json", "nowhere/list.json"}) {
    fs::rename(store() / "version_config.json", directory_ / "list.json");
    fs::create_symlink(directory_ / target, store() / "version_config.json");
    EXPECT_THAT(halvo("publish " + cue().string() + " --store " + store().string() + " --cue other --version 1").output,
                HasSubstr("this is a symbolic link"));
    EXPECT_FALSE(fs::exists(store() / "other"));
    fs::remove(store() / "version_config.json");
    fs::rename(directory_ / "list.json", store() / "version_config.json");
  }
  EXPECT_EQ(listed("2.0.0"), "1 quellaro/1");
}

TEST_F(Store, DiffTellsWhatDevicesGetDifferently) {
  publishAll({"1"}, "--sdk-version 2.0.0 --sdk-version 3.0.0");
  const fs::path other = directory_ / "other";
  const auto diff = [&](const std::string& more = "") { return storeCommand("diff", other.string() + more); };
  fs::copy(store(), other, fs::copy_options::recursive);
  EXPECT_EQ(diff().status, 0);
  EXPECT_EQ(diff().output, "");
  writeFile(other / "quellaro/1/audio.mp3", "other");
  publishAll({"2"}, "--sdk-version 3.0.0");
  publishAll({"1"}, "--sdk-version 4.0.0");
  std::string text = readFile(other / "version_config.json");
  text.replace(text.find("\"enable\":false"), 14, "\"enable\":true");
  writeFile(other / "version_config.json", text);
  const Ran outcome = diff();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(
      outcome.output,
      AllOf(HasSubstr("2.0.0: analytics: off | M "), HasSubstr("2.0.0 quellaro: content: quellaro/1/audio.mp3 ("),
            HasSubstr("| quellaro/1/audio.mp3 (5 bytes)\n"), HasSubstr("3.0.0 quellaro: version: 2 | 1\n"),
            HasSubstr("4.0.0: analytics: off | not served\n4.0.0 quellaro: version: 1 | not listed\n")));
  EXPECT_THAT(diff(" --json").output, HasSubstr(R"({"same":false,"differences":[{"sdkVersion":"2.0.0","cue":"",)"));
}

}  // namespace
}  // namespace quellaro
