// halvo check, as somebody at a terminal and a script use it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "check/check_tool.h"
#include "platform/foundation/json/json_writer.h"
#include "platform/foundation/text/utf8.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string kSvg = "<svg xmlns='http://www.w3.org/2000/svg' width='100' height='100'>";

class Check : public testing::Test {
 protected:
  std::string file(const std::string& name, const std::string& content) const {
    writeFile(directory_ / name, content);
    return directory_ / name;
  }
  std::string svg(const std::string& content) const { return file("a.svg", kSvg + content + "</svg>"); }
  std::string animation(const std::vector<std::string>& frames) const {
    JSONWriter json;
    json.beginArray();
    for (const std::string& frame : frames) json.string(frame);
    json.endArray();
    return file("animation.json", json.text());
  }

  TemporaryDirectory directory_;
};

TEST_F(Check, TheBuiltInCueIsClean) {
  const Ran ran = halvo("check " QUELLARO_BUNDLE);
  EXPECT_EQ(ran.status, 0);
  // Sanitized builds take their time, which makes a note.
  EXPECT_THAT(ran.output, testing::ContainsRegex("(^|\n).*: clean(, 1 note)? \\(90 frames, animation 2\\.75 s, sound "
                                                 "2\\.75 s, haptics 1\\.87 s\\)\n$"));
}

TEST_F(Check, AFindingIsToldOnceWithItsPlaceAndFrames) {
  const std::string fine = kSvg + "<path d='M1 1H9V9Z' fill='#f00'/></svg>";
  const std::string odd =
      kSvg + "\n  <g>\xc3\xa9<rect id='r' x='1' y='1' width='9' height='9' fill='#f00' opacity='.5'/></g></svg>";
  const Ran ran = halvo("check " + animation({fine, odd, odd, fine, odd, odd + " "}));
  EXPECT_EQ(ran.status, 1);
  EXPECT_THAT(ran.output, HasSubstr("warning: opacity=\".5\" on <rect id=\"r\"> [opacity]\n"));
  EXPECT_THAT(ran.output, HasSubstr("animation.json, frame 2, line 2, column 65 (frames 2, 3, 5, 6)\n"));
  EXPECT_THAT(ran.output, HasSubstr("player  ignores it and paints at full strength\n"));
  EXPECT_THAT(ran.output, HasSubstr("0 errors, 1 warning (6 frames)\n"));
  EXPECT_THAT(ran.output, Not(HasSubstr("\033")));
  EXPECT_THAT(halvo("check " + animation({odd, odd + "<g/>", odd})).output,
              testing::StartsWith("error: a second root element [xml]\n"));
}

// Values with references and line ends arrive otherwise than they are written; places are those of the text.
TEST_F(Check, PlacesWithinAValueAreThoseOfTheText) {
  const struct {
    const char* data;
    const char* place;
  } cases[] = {
      {"M1 1L5 5A1 1 0 0 1 4 4", "line 1, column 83"},
      {"M1 1\nL5 5\r\nA1 1 0 0 1 4 4", "line 3, column 1"},
      {"M1&#32;1&#xA;&#x00000a; A1 1 0 0 1 4 4", "line 1, column 99"},
      {"M1 1&#9;L5 5", "line 1, column 79"},
  };
  for (const auto& c : cases)
    EXPECT_THAT(halvo("check " + svg("<path d='" + std::string(c.data) + "'/>")).output, HasSubstr(c.place)) << c.data;
}

TEST_F(Check, MachinesGetTheSameInOneObject) {
  const Ran ran =
      halvo("check --json " + svg("<g id='a'><text>x</text></g><rect id='\xe2\x82\xac' width='9' height='9'/>"));
  const auto document = JSONDocument::parse(ran.output);
  ASSERT_TRUE(document) << ran.output;
  const JSONValue root = document->root();
  EXPECT_EQ(root.member("clean")->boolean(), false);
  EXPECT_EQ(root.member("warnings")->wholeNumber(), 2);
  EXPECT_EQ(root.member("frames")->wholeNumber(), 1);
  EXPECT_EQ(root.member("animationEnd")->type(), JSONType::Null);
  const JSONValue finding = root.member("findings")->elements()[1];
  std::string keys;
  for (const auto& [key, value] : finding.members()) keys.append(key).append("=").append(value.text()).append(" ");
  EXPECT_THAT(keys, testing::StartsWith("id=\"missing-geometry\" severity=\"warning\" file="));
  EXPECT_THAT(keys, HasSubstr("frame=null line=1 column=95 element=\"rect\" elementId=\"\xe2\x82\xac\" attribute=null "
                              "what=\"no x\" player="));
  EXPECT_THAT(keys, testing::EndsWith("count=1 frames=[] "));
}

TEST_F(Check, WhatDoesNoHarmIsCleanAndDrawnAsByOthers) {
  const char* const contents[] = {
      "<title>A <b>title</b></title><metadata xmlns:rdf='r'><rdf:RDF/></metadata><i:grid xmlns:i='i' units='mm'/>",
      "<rect x='1' y='1' width='9' height='9' fill='#f00' xmlns:i='i' i:label='a' clip-rule='evenodd' class='a' "
      "opacity='100%'/>",
      "<rect x='1' y='1' width='9' height='9' fill='none' rx='0' transform='scale(2,2)'/>",
      "<path d='M1 1L2 2' stroke='#000' stroke-width='1'/><path d='' /><line x1='1' y1='1' x2='9' y2='9'/>",
      "<defs><g id='a'/><path d='M1 1h9v9z'/></defs><circle cx='5' cy='5' r='0' fill='#f00'/>",
      "<path fill='none' stroke='#000' stroke-width='1' d='M1 1C1 2 3 4 5 5S6 7 8 9ZM 1e0-.5l.5+7zz'/>",
      "<ellipse cx='30' cy='70' rx='24' ry='12' fill='#084'/><polygon points='60,60 95,70 70,95' fill='#a03'/>",
      "<polyline points='10,90 30,20 50,80 90,10' fill='none' stroke='#123456' stroke-width='5' "
      "stroke-miterlimit='10'/>",
      "<path d='M20,20 C60,-10 90,40 70,70 S20,100 20,60 Z' fill='#446688'/>"
      "<path d='M10,80 Q30,40 50,80 T90,80 L90,95 H10 Z' fill='#22aa7780' stroke='#c0c' stroke-width='3.5' "
      "stroke-miterlimit='10'/>",
      "<g transform='translate(50 50)' fill='#f06'><g transform='rotate(30)'><rect x='-20' y='-10' width='40' "
      "height='20'/><g transform='scale(0.5)'><circle cx='30' cy='0' r='10' fill='#06f'/></g></g></g>",
  };
  for (const char* content : contents) {
    const std::string document = svg(content);
    const Checked checked = check(document);
    EXPECT_EQ(checked.status, 0) << checked.output;
    EXPECT_EQ(joined(checked.ids), "") << content;
    expectDrawnAsByOthers(document);
  }
}

TEST_F(Check, NothingElseIsToldOfWhatIsOdd) {
  const std::pair<const char*, const char*> cases[] = {
      {"<style> </style><style/><defs><linearGradient id='a'/><clipPath id='b'><rect x='1' y='1' width='9' "
       "height='9'/></clipPath><filter id='c'/></defs><g fill='#f00'/>",
       ""},
      {"<radialGradient id='a'/><g id='b'/><rect x='1' y='1' width='9' height='9' fill='url(#a)'/>", "gradient"},
      {"<g id='a'/><rect x='1' y='1' width='9' height='9' fill='url(#a)'/>", "paint-server"},
      {"<path d='M1 1H9V9Z' fill='none' stroke='#f00' stroke-width='1' stroke-linecap='round' fill-opacity='.5'/>", ""},
      {"<path d='M1 1H9V9ZM2 2H3' fill='none' stroke='#f00' stroke-width='1' stroke-linecap='round'/>", "stroke-ends"},
      {"<path d='M1 1H9V9H1Z' fill='#f00' fill-rule='evenodd' stroke-dasharray='3' stroke-linejoin='round'/>", ""},
      {"<path d='M1 5C1 1 9 1 9 5Q5 9 1 5Z' fill='#f00' fill-rule='evenodd'/>", ""},
      {"<path d='M0 5L9 2L1 1L8 9L6 0Z' fill='#f00' fill-rule='evenodd'/>", "fill-rule"},
      {"<path d='M0 5C20 0 -11 0 9 5Z' fill='#f00' fill-rule='evenodd'/>", "fill-rule"},
      {"<g stroke-linecap='round'/>", "stroke-ends"},
      {"<path d='M1 1H9V9Z' style='fill:#f00'/>", "style"},
      {"<path fill='#123456' d='M1e400 1L2 2'/>", "number-range"},
      {"<path fill='#123456' d='M0 0L10 10L0 5.'/>", "number"},
      {"<g fill='#f00'><a fill='#f00'><rect x='1' y='1' width='9' height='9'/></a></g>", "element"},
  };
  for (const auto& [content, ids] : cases) EXPECT_EQ(joined(check(svg(content)).ids), ids) << content;
}

TEST_F(Check, SourcesOfEveryKindGetAnAnswer) {
  const struct {
    std::string arguments;
    int status;
    const char* output;
  } cases[] = {
      {"", 2, "something is missing"},
      {"--colour x", 2, "unknown option"},
      {"--help", 0, "docs/authoring.md"},
      {"/nowhere", 1, "error: No such file or directory [unreadable]"},
      {"/dev/null", 1, "no JSON found [json]"},
      {directory_.path().string(), 1, " errors"},
      {file("null.json", "null"), 1, "this is null [no-frames]"},
      {"- < " + file("null.json", "null"), 1, "this is null [no-frames]"},
      {std::filesystem::path(file("cue/animation.json", "<svg width='9' height='9'/>")).parent_path().string(), 1,
       "[json]"},
      {file("mixed.json", R"(["<svg/>", 2])"), 1, "Frame_2 is no text, but a number"},
      {file("binary.SVG", std::string("\0\xff\xfe<svg", 7)), 1, "[xml]"},
      {file("escape.svg", "<svg xmlns='a' width='100' height='100' style='&#x9b;31m&#10;x'/>"), 1, "style=\"?31m?x\""},
      {file("bomb.svg", "<!DOCTYPE svg [<!ENTITY b 'aaaa'><!ENTITY a '&b;&b;'>]>" + kSvg + "<g id='&a;'/></svg>"), 1,
       "'&' that begins none"},
  };
  for (const auto& c : cases) {
    const Ran ran = halvo("check " + c.arguments);
    EXPECT_EQ(ran.status, c.status) << c.arguments;
    EXPECT_THAT(ran.output, HasSubstr(c.output)) << c.arguments;
  }
}

TEST_F(Check, AllThatIsWrongWithAConfigurationIsToldAtOnce) {
  file("cue/play_config.json",
       R"({"totalframes": 3, "soundFileName": 3, "frameTime": {"Frame_1": "a"}, "viewBox": ""})");
  const Ran ran = halvo("check " + (directory_ / "cue").string());
  for (const char* what :
       {"At totalFrames: the key is missing (a whole number: how many frames there are) [config]", "At soundFileName: ",
        "At soundDelayInMillis: ", "At animationDelayInMillis: ", "At frameTime.Frame_1: a number was expected",
        "\"totalframes\" is not known; totalFrames is, with other capitals [config-key]"})
    EXPECT_THAT(ran.output, HasSubstr(what));
  EXPECT_THAT(ran.output, Not(HasSubstr("At viewBox")));
}

TEST_F(Check, TapsAreComparedWithSoundAndPicture) {
  const std::string blank = kSvg + "</svg>";
  const std::string full = kSvg + "<rect x='0' y='0' width='100' height='100' fill='#f00'/></svg>";
  animation({blank, full});
  const std::string cue = directory_.path().string();
  file("audio.mp3", readFile(QUELLARO_TEST_DATA "/sounds/late.mp3"));
  file("play_config.json", R"({"totalFrames": 2, "soundFileName": "audio.mp3", "soundDelayInMillis": 100, "viewBox": "",
      "animationDelayInMillis": 10, "frameTime": {"Frame_1": 300, "Frame_2": 200}, "isHapticsSupported": true})");
  file("signature_forte.ahap", R"({"Pattern": [{"Event": {"Time": 0.4, "EventType": "HapticTransient"}}]})");
  // The sound's own silence, and that of its encoder, come on top of its delay.
  const Ran ran = halvo("check " + cue);
  EXPECT_THAT(ran.output,
              testing::ContainsRegex("\ntap at 0\\.40 s, sound 1?[0-9]+ ms earlier, picture 90 ms earlier\n"));
  EXPECT_THAT(ran.output, testing::ContainsRegex("note: a tap is felt at 0\\.40 s, a sound begins at 0\\.(29|30|31)"));
  EXPECT_THAT(ran.output, Not(HasSubstr("note: the picture")));
}

// Whatever a file is called, a decoder finds something in it that resembles frames.
TEST_F(Check, OnlyMpegAudioIsASound) {
  const std::string mpeg = readFile(QUELLARO_TEST_DATA "/sounds/fine.mp3");
  std::string noise;
  std::uint32_t state = 1;
  for (int i = 0; i < 60'000; ++i) noise += static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  // Of small amplitude, so that every second byte begins a frame.
  std::string samples;
  for (const char c : noise) samples.append({c, c < 0 ? '\xff' : '\0'});
  // What resembles a frame of a free rate returns with every wave.
  std::string tone;
  for (int i = 0; i < 600; ++i) tone += std::string("\xFF\xFB\x04\0", 4) + std::string(92, '\1');
  const std::string tag = std::string("ID3\4\0\0\0\0\x4e\x10", 10) + std::string(10'000, '\0');
  const struct {
    std::string content;
    const char* what;  // null: it is one
  } cases[] = {
      {"RIFF\x24\x08\1\1WAVEfmt " + samples, "it is a WAV file, and"},
      {std::string("FORM\0\1\2\3AIFF", 12) + samples, "it is an AIFF file, and"},
      {std::string("\0\0\0\x20", 4) + "ftypM4A " + noise, "it is an MP4 file (M4A), and"},
      {std::string("FORM\0\1\2\3AIFF", 12) + tone, "it is an AIFF file, and"},
      {std::string("RIFF\x24\x08\1\1WAVEfmt \x1E\0\0\0\x55\0", 22) + std::string(28, '\0') + "data\1\1\1\1" + mpeg,
       nullptr},
      {"OggS" + noise, "it is an Ogg file, and"},
      {"fLaC" + noise, "it is a FLAC file, and"},
      {tag + "fLaC" + noise, "it is a FLAC file, and"},
      {samples, "it is no MPEG audio"},
      {noise, "it is no MPEG audio"},
      {mpeg.substr(0, 3), "it is no MPEG audio"},
      {noise.substr(0, 2 * mpeg.size()) + mpeg, "only 33 % of it is MPEG audio"},
      {tag + mpeg + "TAG" + std::string(125, ' '), nullptr},
      {noise.substr(0, mpeg.size() / 2) + mpeg, nullptr},
  };
  for (const auto& c : cases) {
    file("cue/audio.mp3", c.content);
    const Ran ran = halvo("check " + (directory_ / "cue").string());
    SCOPED_TRACE(printable(c.content.substr(0, 12)));
    if (c.what != nullptr)
      EXPECT_THAT(ran.output, HasSubstr("error: " + std::string(c.what)));
    else
      EXPECT_THAT(ran.output, testing::AllOf(HasSubstr("sound: 0."), Not(HasSubstr("[sound]"))));
  }
}

TEST_F(Check, ManyFilesAndFoldersAreChecked) {
  const std::string odd = kSvg + "<path d='M1 1H9V9Z' fill='red'/></svg>";
  file("frames/frame10.svg", odd);
  file("frames/frame9.svg", odd);
  file("frames/frame1.svg", "\x1f\x8b\b");
  file("frames/notes.txt", "red");
  const std::string folder = directory_ / "frames";
  const Ran ran = halvo("check " + folder);
  EXPECT_EQ(ran.status, 1);
  EXPECT_THAT(ran.output, HasSubstr("frames/frame1.svg\n"));
  EXPECT_THAT(ran.output, HasSubstr("compressed with gzip"));
  EXPECT_THAT(ran.output, HasSubstr("frames/frame9.svg, frame 2, line 1, column 86 (frames 2, 3)\n"));
  EXPECT_THAT(ran.output, HasSubstr(folder + ": 1 error, 1 warning (3 frames)\n"));
  const std::string fine = svg("<path d='M1 1H9V9Z' fill='#f00'/>");
  const std::string name = directory_ / "utf16.svg";
  writeFile(name, std::string("\xff\xfe<\0s\0", 6));
  const Ran many = halvo("check --json " + fine + " " + name + " " + fine);
  EXPECT_EQ(many.status, 1);
  EXPECT_EQ(std::count(many.output.begin(), many.output.end(), '\n'), 3);
  EXPECT_THAT(many.output, HasSubstr("\"what\":\"it is UTF-16\""));
  EXPECT_EQ(halvo("check " + fine + " " + fine).status, 0);
}

TEST_F(Check, BudgetsAreBySizeElementsAndPoints) {
  std::string elements;
  for (int i = 0; i <= 500; ++i) elements += "<g/>";
  std::string points = "<path fill='#000' d='M1 1H5V5";
  for (int i = 0; i <= 10'000; ++i) points += "v0";
  EXPECT_EQ(joined(check(svg(elements)).ids), "budget-elements");
  EXPECT_EQ(joined(check(svg(points + "'/>")).ids), "budget-points");
  const auto painted = [](int times, const std::string& shape) {
    std::string shapes;
    for (int i = 0; i < times; ++i) shapes += shape;
    return shapes;
  };
  // Whole frames, also where they reach beyond it or turn; smaller ones; and what is drawn outside of it.
  EXPECT_EQ(joined(check(svg(painted(31, "<rect x='-900' y='-9' width='5e3' height='5e3' fill='#0f0'/>"))).ids),
            "budget-painting");
  EXPECT_EQ(joined(check(svg(painted(31, "<path transform='rotate(90)' d='M0-9000H9000V9000H0z' fill='#0f0'/>"))).ids),
            "budget-painting");
  EXPECT_EQ(joined(check(svg("<g>" + painted(60, "<path d='M0 0H100V40H0z' fill='#0f0'/>") + "</g>")).ids), "");
  EXPECT_EQ(joined(check(svg(painted(90, "<path d='M0 50H100' fill='none' stroke='#0f0' stroke-width='9'/>"))).ids),
            "");
  EXPECT_EQ(joined(check(svg(painted(1100, "<path d='M0 50H100' fill='none' stroke='#0f0' stroke-width='100'/>"))).ids),
            "budget-bytes budget-elements budget-standstill");
  EXPECT_EQ(joined(check(svg("<!--" + std::string(70'000, 'x') + "-->")).ids), "budget-bytes");
}

// Every element of a hostile frame is a finding of its own, at the end of a long line.
TEST_F(Check, AFrameFullOfFindingsTakesNoTimeToSpeakOf) {
  std::string content;
  for (int i = 0; i < 100'000; ++i) content += "<text id='" + std::to_string(i) + "'/>";
  const Ran ran = halvo("check " + svg(content));
  EXPECT_LT(ran.output.size(), 100'000U);
  // Slow builds have a note about the time besides.
  EXPECT_THAT(ran.output.substr(ran.output.size() - 200),
              testing::ContainsRegex("9950[12] further findings left out\n\n.*: 0 errors, 100001 warnings"));
  std::string deep;
  for (int i = 0; i < 300'000; ++i) deep += "<g>";
  EXPECT_EQ(check(svg(deep)).ids.count("budget-cue"), 1U);
}

}  // namespace
}  // namespace quellaro
