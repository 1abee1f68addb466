// Prepares a cue's animation as the library does: reads FILE, decodes it and parses every frame into ready outlines.
#include <cstdio>

#include "animation/frame_file.h"
#include "svg/document.h"

int main(int, char** argv) {
  auto texts = quellaro::readFrameFile(argv[1]);
  if (!texts) return 1;
  std::vector<std::shared_ptr<quellaro::SVGDocument>> documents;
  documents.reserve(texts->size());
  for (std::string& text : *texts) documents.push_back(quellaro::SVGDocument::parse(std::move(text)));
  std::printf("%zu\n", documents.size());
}
