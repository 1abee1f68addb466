#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "layer_text.h"
#include "support/temporary_directory.h"
#include "svg/document.h"

namespace quellaro {
namespace {

namespace fs = std::filesystem;

// Each golden/NAME.svg has its layer tree beside it in golden/NAME.txt. QUELLARO_RECORD=1 writes the trees anew.
TEST(Golden, LayerTrees) {
  const bool record = std::getenv("QUELLARO_RECORD") != nullptr;
  std::size_t documents = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(QUELLARO_TEST_DATA "/golden")) {
    const fs::path& path = entry.path();
    if (path.extension() != ".svg") {
      EXPECT_TRUE(fs::exists(fs::path(path).replace_extension(".svg"))) << path << " belongs to no document";
      continue;
    }
    ++documents;
    const auto layer = SVGDocument::parse(readFile(path))->makeLayer();
    const std::string text = layer == nullptr ? "none\n" : layerText(*layer);
    const fs::path expected = fs::path(path).replace_extension(".txt");
    if (record)
      writeFile(expected, text);
    else
      EXPECT_EQ(text, readFile(expected)) << path;
  }
  EXPECT_GT(documents, 0U);
}

}  // namespace
}  // namespace quellaro
