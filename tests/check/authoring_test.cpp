// Every example of the page for authors is what it says it is.
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <vector>

#include "animation/frame_file.h"
#include "check/check_tool.h"
#include "check/findings.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

struct Example {
  std::vector<std::string> before;
  std::vector<std::string> after;
};

// By the heading they stand under.
std::map<std::string, Example> examples() {
  std::map<std::string, Example> read;
  std::istringstream page(readFile(QUELLARO_AUTHORING_PAGE));
  std::string id;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("#### ")) read[id = line.substr(5)];
    if (line.starts_with("before: ")) read[id].before.push_back(line.substr(8));
    if (line.starts_with("after:  ")) read[id].after.push_back(line.substr(8));
  }
  return read;
}

// A cue of two frames that an example changes.
class ExampleCue {
 public:
  explicit ExampleCue(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) apply(line);
    std::string json;
    for (const auto& [key, value] : config_) json += (json.empty() ? "{\"" : ", \"") + key + "\": " + value;
    writeFile(directory_ / "play_config.json", json + "}");
    writeFile(directory_ / "audio.mp3", sound_);
    if (!animation_.empty()) writeFile(directory_ / "animation.json", animation_);
    if (!haptics_.empty()) writeFile(directory_ / "signature_forte.ahap", haptics_);
  }

  Checked check() const { return quellaro::check(document_.empty() ? directory_.path().string() : document_); }
  // What an import of its document, or of the documents in its animation.json, tells; but for the silence.
  Checked import() const {
    std::string sources = document_;
    if (const auto frames = decodeFrames(animation_); frames && sources.empty())
      for (std::size_t i = 0; i < frames->texts.size(); ++i) {
        const std::string source = directory_ / (std::to_string(i) + ".svg");
        writeFile(source, frames->texts[i]);
        sources += source + " ";
      }
    Checked imported = told("import " + sources + " -o " + (directory_ / "cue").string() + " --json");
    imported.ids.erase("sound-silent");
    return imported;
  }
  // Empty for a whole cue.
  const std::string& document() const { return document_; }

 private:
  void apply(const std::string& line) {
    const std::string file = line.substr(0, line.find(' '));
    const std::string content = line.substr(line.find(' ') + 1);
    if (file == "play_config.json")
      change(content);
    else if (file == "animation.json")
      animation_ = content == "is missing" ? "" : content;
    else if (file == "signature_forte.ahap")
      haptics_ = content;
    else if (file == "audio.mp3")
      sound_ = soundThat(content);
    else
      writeFile(document_ = directory_ / "frame.svg", file == "frame" ? inBytes(content) : kStart + line + "</svg>");
  }
  // The page itself is UTF-8, so a byte that is not is written as in C.
  static std::string inBytes(std::string content) {
    if (const std::size_t at = content.find("\\xe9"); at != std::string::npos) content.replace(at, 4, "\xe9");
    return content;
  }
  void change(const std::string& json) {
    const auto document = JSONDocument::parse(json);
    ASSERT_TRUE(document) << json;
    for (const auto& [key, value] : document->root().members()) config_[std::string(key)] = value.text();
  }
  static std::string soundThat(const std::string& content) {
    const std::map<std::string, const char*> names = {
        {"is a sound", "fine"},        {"is silent", "silent"}, {"is too loud", "too_loud"},
        {"has high peaks", "peaks"},   {"is loud", "loud"},     {"is quiet", "quiet"},
        {"is inaudible", "inaudible"}, {"is late", "late"},     {"is muffled", "muffled"}};
    const auto name = names.find(content);
    return name == names.end() ? content : readFile(QUELLARO_TEST_DATA "/sounds/" + std::string(name->second) + ".mp3");
  }

  static inline const std::string kStart = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100\" height=\"100\">";
  TemporaryDirectory directory_;
  std::string document_;
  std::map<std::string, std::string> config_ = {{"totalFrames", "2"},
                                                {"soundFileName", "\"audio.mp3\""},
                                                {"soundDelayInMillis", "50"},
                                                {"animationDelayInMillis", "0"},
                                                {"frameTime", R"({"Frame_1": 100, "Frame_2": 100})"},
                                                {"viewBox", "\"0 0 9 9\""}};
  std::string animation_ =
      R"(["<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'><path d='M1 1H8V8Z' fill='#f00'/></svg>",
          "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'><path d='M1 1H8V8Z' fill='#f00'/></svg>"])";
  std::string sound_ = soundThat("is a sound");
  std::string haptics_;
};

TEST(AuthoringPage, ShowsEveryFindingWithAnExampleThatGivesIt) {
  std::map<std::string, Example> page = examples();
  for (const halvo::FindingKind& kind : halvo::findingKinds()) {
    const std::string id(kind.name);
    ASSERT_EQ(page.count(id), 1U) << id << " is not on the page";
    const Example example = page[id];
    page.erase(id);
    // Budgets would fill the page.
    if (id.starts_with("budget-")) continue;
    ASSERT_FALSE(example.before.empty() || example.after.empty()) << id;
    const bool isImported = kind.id >= halvo::FindingId::Approximated;
    const ExampleCue start(example.before);
    const Checked before = isImported ? start.import() : start.check();
    EXPECT_EQ(joined(before.ids), id) << example.before[0];
    const bool isFine = isImported ? kind.id != halvo::FindingId::Refused : kind.severity == halvo::Severity::Note;
    EXPECT_EQ(before.status, isFine ? 0 : 1) << id;
    const ExampleCue cue(example.after);
    const Checked after = isImported ? cue.import() : cue.check();
    EXPECT_EQ(joined(after.ids), "") << id << ": " << example.after[0];
    EXPECT_EQ(after.status, 0) << id;
    if (!cue.document().empty()) expectDrawnAsByOthers(cue.document());
  }
  for (const auto& [id, example] : page) ADD_FAILURE() << id << " is no finding";
}

}  // namespace
}  // namespace quellaro
