// Writes DIR/animation.json with COUNT heavy frames, and DIR/frames.txt with the same frames for the peers: each after
// a line with its length.
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "heavy_frames.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("Usage: make_frames DIR COUNT\n", stderr);
    return 2;
  }
  const std::string directory = argv[1];
  std::vector<std::string> frames;
  for (int i = 0; i < std::atoi(argv[2]); ++i)
    frames.push_back(quellaro::bench::svgText(quellaro::bench::heavyFrame(i)));
  std::ofstream(directory + "/animation.json") << quellaro::bench::animationJson(frames);
  std::ofstream plain(directory + "/frames.txt");
  for (const std::string& frame : frames) plain << frame.size() << '\n' << frame;
}
