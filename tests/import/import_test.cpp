// halvo import: from files to a cue.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "animation/frame_file.h"
#include "assets/halvo_file_manager.h"
#include "import/import_fixture.h"

namespace quellaro {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

TEST_F(Importing, AFolderBecomesACueInNaturalOrderThatPlays) {
  const std::pair<const char*, const char*> frames[] = {{"f10.svg", "#1020fa"},       {"F2.svg", "#10fa20"},
                                                        {"f1.SVG", "#fa1020"},        {"f010a.svg", "#fafaf1"},
                                                        {".f3.svg", "not looked at"}, {"notes.txt", "not looked at"}};
  for (const auto& [name, color] : frames) file(std::string("frames/") + name, frame(color));
  const Ran ran = import("frames -o cue --fps 25 --size 200 --animation-delay 40 -o cue/");
  EXPECT_EQ(ran.status, 0) << ran.output;
  EXPECT_THAT(ran.output, AllOf(HasSubstr("written to cue/: clean, 1 note (4 frames, animation 0.20 s, sound 0.20 s)"),
                                HasSubstr(" elements (frame 1), ")));

  const auto texts = readFrameFile(directory_ / "cue/animation.json");
  ASSERT_TRUE(texts);
  EXPECT_THAT(texts->texts, ElementsAre(AllOf(HasSubstr("fa1020"), HasSubstr("width=\"200\"")), HasSubstr("10fa20"),
                                        HasSubstr("1020fa"), HasSubstr("fafaf1")));
  EXPECT_EQ(std::string(config().root().member("frameTime")->text()),
            R"({"Frame_1":40,"Frame_2":40,"Frame_3":40,"Frame_4":40})");
  EXPECT_EQ(config().root().member("animationDelayInMillis")->number(), 40);
  EXPECT_EQ(config().root().member("isHapticsSupported")->boolean(), false);
  struct stat status {};
  ASSERT_EQ(stat((directory_ / "cue").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0755U);

  const Checked checked = toldByCheck();
  EXPECT_EQ(checked.status, 0) << checked.output;
  EXPECT_THAT(checked.ids, ElementsAre("sound-silent"));
  const Ran played = run(QUELLARO_HALVO_TOOL " play --headless " + (directory_ / "cue").string());
  EXPECT_THAT(played.output, HasSubstr("play: 800 success"));
}

TEST_F(Importing, FilesAreTakenInTheOrderInWhichTheyAreNamed) {
  std::string names;
  std::vector<std::string> colors;
  for (int i = 0; i < 200; ++i) {
    colors.push_back("#a" + std::to_string(12000 + i));
    names += file("f" + std::to_string((i * 7) % 200) + ".svg", frame(colors.back())) + " ";
  }
  ASSERT_EQ(import(names + "-o cue --replace").status, 0);
  const auto texts = readFrameFile(directory_ / "cue/animation.json");
  ASSERT_TRUE(texts && texts->texts.size() == colors.size());
  for (std::size_t i = 0; i < colors.size(); ++i) EXPECT_THAT(texts->texts[i], HasSubstr(colors[i]));
}

// The same as the checker's, and what an import alone can tell.
TEST_F(Importing, MachinesGetTheReportInTheFormOfTheCheckers) {
  writeFrames(1);
  file("frames/frame2.svg", frame("#10fa20", R"x(<filter id="soft"><feGaussianBlur stdDeviation="3"/></filter>
      <circle cx="50" cy="50" r="20" fill="#112233" filter="url(#soft)"/>)x",
                                  "50"));
  const Checked told = toldByImport("frames -o cue");
  EXPECT_EQ(told.status, 0) << told.output;
  EXPECT_THAT(told.ids, ElementsAre("fitted", "left-out", "sound-silent"));
  const auto document = JSONDocument::parse(told.output);
  ASSERT_TRUE(document);
  const JSONValue root = document->root();
  EXPECT_EQ(root.member("written")->boolean(), true);
  EXPECT_EQ(root.member("frames")->wholeNumber(), 2);
  const JSONValue finding = root.member("findings")->elements()[0];
  EXPECT_EQ(finding.member("file")->string(), "frames/frame2.svg");
  EXPECT_EQ(finding.member("frame")->wholeNumber(), 2);
  EXPECT_THAT(std::string(*finding.member("what")->string()), HasSubstr("left out"));
  const JSONValue source = root.member("sources")->elements()[1];
  EXPECT_EQ(source.member("file")->string(), "frames/frame2.svg");
  EXPECT_EQ(source.member("width")->number(), 50);
  const auto texts = readFrameFile(directory_ / "cue/animation.json");
  EXPECT_EQ(source.member("bytes")->wholeNumber(), static_cast<std::int64_t>(texts->texts[1].size()));
  EXPECT_GE(source.member("elements")->wholeNumber(), 1);
  EXPECT_GT(source.member("points")->wholeNumber(), 3);

  const Checked strict = toldByImport("frames -o strict --strict");
  EXPECT_EQ(strict.status, 1);
  EXPECT_THAT(strict.output, HasSubstr("\"written\":false"));
  EXPECT_THAT(strict.ids, AllOf(Contains("left-out"), Contains("refused")));
  EXPECT_EQ(toldByImport("frames/frame1.svg -o strict --strict").status, 0);
}

TEST_F(Importing, OneThingInManyFramesIsToldOnce) {
  for (int i = 1; i <= 9; ++i)
    file("frames/" + std::to_string(i) + ".svg", frame("#ff0000", "<image width='9' height='9' href='a.png'/>"));
  EXPECT_THAT(import("frames -o cue").output, HasSubstr("frames/1.svg, frame 1 (frames 1-9)\n"));
}

TEST_F(Importing, WhatCannotBeImportedIsNamedAndNothingIsWritten) {
  writeFrames(2);
  fs::create_directory(directory_ / "empty");
  fs::create_directory(directory_ / "pipe");
  mkfifo((directory_ / "pipe/1.svg").c_str(), 0600);
  file("twice/a.svg", frame("#ff0000"));
  file("twice/a.svgz", frame("#ff0000"));
  file("broken/1.svg", frame("#ff0000"));
  file("broken/2.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'>\n\n<g></svg>");
  file("nothing.svg", "");
  file("pattern.ahap", R"({"Pattern": [{"Event": {"EventType": "HapticTransient"}}]})");
  const struct {
    const char* arguments;
    int status;
    const char* output;
  } cases[] = {
      {"", 2, "something is missing"},
      {"frames", 2, "-o CUE_DIR is missing"},
      {"frames -o cue --fps 0", 2, "a number from 0.1 to 1000"},
      {"frames -o cue --fps 1e999", 2, "a number from"},
      {"frames -o cue --fps 30fps", 2, "a number from"},
      {"frames -o cue --fps 30 --frame-time 40", 2, "exclude each other"},
      {"frames -o cue --size 0", 2, "a whole number"},
      {"frames -o cue --precision -1", 2, "a whole number"},
      {"frames -o cue --loudness -14", 2, "give --sound too"},
      {"nowhere -o cue", 1, "nowhere, frame 1: No such file or directory"},
      {"empty -o cue", 1, "empty: there is no .svg or .svgz file in this folder"},
      {"pipe -o cue", 1, "pipe/1.svg: this is no regular file"},
      {"twice -o cue", 1, "twice: a.svg and a.svgz are two sources of one name"},
      {"broken -o cue", 1, "broken/2.svg, frame 2, line 3"},
      {"nothing.svg -o cue", 1, "nothing.svg, frame 1: the file is empty"},
      {"pattern.ahap -o cue", 1, "pattern.ahap, frame 1"},
      {"frames -o cue --frame-time 60000 --animation-delay 60000 frames frames frames frames frames", 1, "at most 600"},
      {"frames -o cue --haptics nowhere", 1, "nowhere: No such file or directory"},
      {"frames -o cue --haptics pattern.ahap", 1, "pattern.ahap: "},
      {"frames -o nowhere/cue", 1, "there is no directory nowhere"},
      {"frames -o empty/..", 1, "this is no name"},
  };
  const std::set<std::string> before = names();
  for (const auto& c : cases) {
    const Ran ran = import(c.arguments);
    EXPECT_EQ(ran.status, c.status) << c.arguments;
    EXPECT_THAT(ran.output, HasSubstr(c.output)) << c.arguments;
    EXPECT_EQ(names(), before) << c.arguments;
  }
}

// What is at the target stays as it is, unless it is a cue that may be replaced.
TEST_F(Importing, OnlyACueIsReplacedAndOnlyWhenAsked) {
  writeFrames(2);
  ASSERT_EQ(import("frames/frame1.svg -o cue").status, 0);
  const std::string old = readFile(directory_ / "cue/play_config.json");
  file("a_file", "mine");
  file("pictures/animation.json", "[]");
  file("notes/play_config.json", "{}");
  file("notes/animation.json", "[]");
  file("notes/notes.txt", "mine");
  fs::create_directory_symlink("cue", directory_ / "link");
  fs::create_directory(directory_ / "empty");
  const struct {
    const char* arguments;
    const char* output;
  } cases[] = {
      {"cue", "it is there already; --replace"},
      {"cue/", "it is there already; --replace"},
      {"empty", "it is there already"},
      {"a_file --replace", "it is no directory"},
      {"a_file", "something of this name"},
      {"link --replace", "it is no directory"},
      {"pictures --replace", "it has no play_config.json"},
      {"notes --replace", "notes.txt in it is no file of a cue"},
      {"frames --replace", "is no file of a cue"},
      {"cue --replace --sound a_file", "it is no WAV"},
  };
  const std::set<std::string> before = names();
  for (const auto& c : cases) {
    const Ran ran = import("frames -o " + std::string(c.arguments));
    EXPECT_EQ(ran.status, 1) << c.arguments;
    EXPECT_THAT(ran.output, HasSubstr(c.output)) << c.arguments;
    EXPECT_EQ(names(), before) << c.arguments;
  }
  // A disk that is full in the middle of a file, as the system tells of it.
  const Ran full =
      import("frames -o cue --replace --sound " QUELLARO_BUNDLE "/audio.mp3", "trap '' XFSZ; ulimit -f 8; ");
  EXPECT_EQ(full.status, 1);
  EXPECT_THAT(full.output, HasSubstr("File too large"));
  EXPECT_EQ(names(), before);
  EXPECT_EQ(readFile(directory_ / "cue/play_config.json"), old);
  EXPECT_EQ(readFile(directory_ / "notes/notes.txt"), "mine");

  EXPECT_EQ(import("frames -o cue --replace").status, 0);
  EXPECT_NE(readFile(directory_ / "cue/play_config.json"), old);
  EXPECT_EQ(import("frames -o empty --replace").status, 0);
  EXPECT_EQ(names(), before);
}

// An import that was killed leaves a directory, which the next one beside it removes; not one that is being written to.
TEST_F(Importing, WhatAKilledOneLeftGoesWithTheNext) {
  writeFrames(2);
  file(".halvo-import-Killed/animation.json", "[");
  file(".halvo-import-Others/notes.txt", "mine");
  file(".halvo-import-/animation.json", "mine");
  file(".halvo-import-Living/animation.json", "[");
  const int living = open((directory_ / ".halvo-import-Living").c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(flock(living, LOCK_EX), 0);
  std::set<std::string> expected = names();
  expected.erase(".halvo-import-Killed");
  expected.insert("cue");
  ASSERT_EQ(import("frames -o cue").status, 0);
  close(living);
  EXPECT_EQ(names(), expected);
}

TEST_F(Importing, HapticsGoWithTheCue) {
  writeFrames(60);
  const std::string pattern = readFile(QUELLARO_BUNDLE "/signature_forte.ahap");
  ASSERT_EQ(import("frames --fps 30 -o cue --haptics " QUELLARO_BUNDLE "/signature_forte.ahap").status, 0);
  EXPECT_EQ(readFile(directory_ / "cue/signature_forte.ahap"), pattern);
  EXPECT_EQ(config().root().member("isHapticsSupported")->boolean(), true);
  EXPECT_EQ(toldByCheck().status, 0);
  // A pattern that is not felt is no part of the cue, and told.
  file("empty.ahap", R"({"Pattern": []})");
  EXPECT_THAT(toldByImport("frames -o cue --replace --haptics empty.ahap").ids,
              ElementsAre("haptics-empty", "sound-silent"));
  EXPECT_EQ(config().root().member("isHapticsSupported")->boolean(), false);
}

TEST_F(Importing, WhereItsPartsAreMissingItTellsWhatBringsThem) {
  const Ran ran = run(QUELLARO_TOOL_WITHOUT_IMPORT " import frames -o cue");
  EXPECT_EQ(ran.status, 1);
  const std::size_t start = ran.output.find("  /");
  ASSERT_NE(start, std::string::npos) << ran.output;
  const std::string script = ran.output.substr(start + 2, ran.output.find(' ', start + 2) - start - 2);
  EXPECT_EQ(access(script.c_str(), X_OK), 0) << script;
  EXPECT_EQ(run(QUELLARO_TOOL_WITHOUT_IMPORT " import --help").status, 0);
}

}  // namespace
}  // namespace quellaro
