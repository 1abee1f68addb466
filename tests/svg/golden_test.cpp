// The layer trees that 'halvo layers' prints.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "drawing_commands/run_tool.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

namespace fs = std::filesystem;

std::string withALineForEachLayer(std::string json) {
  for (const char* start : {"{\"path", "{\"bounds"})
    for (std::size_t at = json.find(start, 1); at != std::string::npos; at = json.find(start, at + 2))
      json.insert(at, 1, '\n');
  return json;
}

// Each golden/NAME.svg has its layer tree beside it in golden/NAME.json. QUELLARO_RECORD=1 writes the trees anew.
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
    const std::string text = withALineForEachLayer(halvo("layers " + path.string()).output);
    const fs::path expected = fs::path(path).replace_extension(".json");
    if (record)
      writeFile(expected, text);
    else
      EXPECT_EQ(text, readFile(expected)) << path;
  }
  EXPECT_GT(documents, 0U);
}

TEST(Layers, StandardOutputHoldsTheTreesAlone) {
  const Ran ran = run("(printf '<svg width=\"1e999\"><path d=\"M0 0LLL1 1\"/></svg>' | " QUELLARO_HALVO_TOOL
                      " layers - /nowhere - 2> /dev/null)");
  EXPECT_EQ(ran.status, 1);
  EXPECT_EQ(ran.output,
            R"({"bounds":[0,0,"inf",100],"sublayers":[{"path":[["M",0,0]],"strokeColor":null,"lineWidth":0,)"
            R"("fillColor":null,"transform":null,"sublayers":[]}]})"
            "\nnull\n");
}

}  // namespace
}  // namespace quellaro
