// Prepares a cue's animation as the library does: reads FILE, decodes it and parses every frame into ready outlines.
#include <cstdio>

#include "animation/frame_file.h"

int main(int, char** argv) {
  std::vector<std::shared_ptr<const quellaro::SVGDocument>> documents;
  {
    auto texts = quellaro::readFrameFile(argv[1]);
    if (!texts) return 1;
    auto parsed = quellaro::parseFrames(std::move(*texts));
    if (!parsed) return 1;
    documents = std::move(*parsed);
  }
  std::printf("%zu\n", documents.size());
}
