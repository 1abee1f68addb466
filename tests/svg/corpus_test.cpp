#include <gtest/gtest.h>

#include <filesystem>

#include "platform/foundation/console.h"
#include "platform/quartzcore/layer.h"
#include "support/temporary_directory.h"
#include "svg/document.h"
#include "svg/hex_color.h"
#include "svg/path_data.h"
#include "svg/shapes.h"
#include "svg/transform_parser.h"

namespace quellaro {
namespace {

// Every text that a fuzz driver starts from, or has once found something with, through every reader of text, and as a
// document cut off at every byte.
TEST(Corpus, NothingBreaks) {
  setConsoleSink([](std::string_view) {});
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(QUELLARO_TEST_DATA "/../../fuzz/corpus")) {
    if (!entry.is_regular_file()) continue;
    ++files;
    const std::string text = readFile(entry.path());
    const auto document = SVGDocument::parse(text);
    const auto layer = document->makeLayer();
    for (std::size_t size = 0; size < text.size(); ++size) SVGDocument::parse(text.substr(0, size))->makeLayer();
    EXPECT_EQ(layer != nullptr, document->viewbox().has_value()) << entry.path();
    const XMLAttribute attribute{"d", text};
    const SVGPath path("path", XMLAttributes({&attribute, 1}));
    EXPECT_TRUE(path.path().cgPath().empty() || path.path().cgPath().verbs()[0] == PathVerb::Move) << entry.path();
    SVGTransformParser::parseTransform(text);
    parseNumberList(text);
    EXPECT_GE(colorFromHexString(text).alpha, 0) << entry.path();
  }
  setConsoleSink({});
  EXPECT_GT(files, 5U);
}

}  // namespace
}  // namespace quellaro
