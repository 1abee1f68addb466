// The layer trees that 'halvo layers' prints, and some of the pictures that 'halvo frame' draws of them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "drawing_commands/read_png.h"
#include "drawing_commands/run_tool.h"
#include "quartzcore/pictures.h"
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

// Where another compiler rounds otherwise.
constexpr Tolerance kRounding{0.01, 2};

// Each golden/NAME.svg has its layer tree beside it in golden/NAME.json, and some have their picture in
// golden/NAME.png. QUELLARO_RECORD=1 writes anew what is there.
TEST(Golden, LayerTreesAndPictures) {
  const bool record = std::getenv("QUELLARO_RECORD") != nullptr;
  const TemporaryDirectory directory;
  const std::string drawn = directory / "drawn.png";
  std::size_t pictures = 0;
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

    const fs::path picture = fs::path(path).replace_extension(".png");
    if (!fs::exists(picture)) continue;
    ++pictures;
    ASSERT_EQ(halvo("frame --size 100x100 --background white -o " + drawn + " " + path.string()).status, 0);
    if (record)
      writeFile(picture, readFile(drawn));
    else
      expectSamePicture(path.stem(), readPng(picture), readPng(drawn), kRounding);
  }
  EXPECT_GT(documents, 0U);
  EXPECT_GT(pictures, 0U);
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
