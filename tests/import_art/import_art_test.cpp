#include <gtest/gtest.h>

#include <string>

#include "import/art/import_frame.h"

namespace {

using halvo::ArtError;
using halvo::ArtFrame;

TEST(ImportArt, SaysWhyADocumentCannotBeRead) {
  struct Case {
    const char* document;
    std::optional<std::size_t> line;
    const char* reason;
  };
  const Case cases[] = {
      {"<svg xmlns='http://www.w3.org/2000/svg'>\n<g>\n</svg>", 3, "mismatch"},
      {"", std::nullopt, ""},
      {"no XML at all", 1, ""},
      {"<svg xmlns='http://www.w3.org/2000/svg' width='0' height='9'/>", std::nullopt, "size"},
      {"<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 9 0'/>", std::nullopt, "size"},
      {"<svg xmlns='http://www.w3.org/2000/svg'><path d='M0 0L9 9'/></svg>", std::nullopt, "size"},
  };
  for (const Case& c : cases) {
    const auto result = halvo::importFrame(c.document, {});
    const auto* error = std::get_if<ArtError>(&result);
    ASSERT_TRUE(error) << c.document;
    EXPECT_EQ(error->line, c.line) << error->reason;
    EXPECT_NE(error->reason.find(c.reason), std::string::npos) << error->reason;
    EXPECT_FALSE(error->reason.empty());
  }
}

}  // namespace
