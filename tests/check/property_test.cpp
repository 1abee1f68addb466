// What the checker calls clean, the engine and a standard renderer draw alike.
#include <gtest/gtest.h>

#include <cstdlib>

#include "check/check_tool.h"
#include "check/document_generator.h"
#include "drawing_commands/read_png.h"
#include "quartzcore/pictures.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

constexpr std::size_t kDocuments = 160;
constexpr std::uint32_t kSeed = 20;
// Of 255, over the whole picture. Edges are softened differently; a shape that is missing or misplaced makes whole
// units.
constexpr double kAlike = 0.5;

TEST(CheckProperty, WhatIsCalledCleanIsDrawnAlike) {
  const char* const seed = std::getenv("QUELLARO_SEED");
  DocumentGenerator generator(seed != nullptr ? static_cast<std::uint32_t>(std::atoi(seed)) : kSeed);
  std::vector<std::string> documents;
  for (std::size_t i = 0; i < kDocuments; ++i) documents.push_back(generator.document());
  const TemporaryDirectory directory;
  const std::string animation = directory / "animation.json";
  writeFile(animation, animationOf(documents));

  std::set<std::int64_t> found;
  const auto report = JSONDocument::parse(halvo("check --json " + animation).output);
  ASSERT_TRUE(report);
  for (const JSONValue& finding : report->root().member("findings")->elements())
    for (const JSONValue& frame : finding.member("frames")->elements()) found.insert(*frame.wholeNumber());

  std::size_t clean = 0;
  std::size_t different = 0;
  for (std::size_t i = 0; i < kDocuments; ++i) {
    const std::string document = directory / "a.svg";
    writeFile(document, documents[i]);
    const std::string ours = directory / "ours.png";
    const std::string theirs = directory / "theirs.png";
    ASSERT_EQ(halvo("frame --size 120x120 --background white -o " + ours + " " + document).status, 0);
    const Ran ran = run("rsvg-convert -w 120 -h 120 -b white -o " + theirs + " " + document);
    const double difference = ran.status == 0 ? differenceOf(readPng(ours), readPng(theirs)).mean : 255;
    different += difference > kAlike ? 1 : 0;
    if (found.contains(static_cast<std::int64_t>(i) + 1)) continue;
    ++clean;
    EXPECT_LE(difference, kAlike) << documents[i] << ran.output;
  }
  // Otherwise the generator has lost its bite.
  EXPECT_GT(clean, kDocuments / 4);
  EXPECT_GT(different, kDocuments / 4);
}

}  // namespace
}  // namespace quellaro
