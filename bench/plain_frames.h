#pragma once

#include <cstdio>
#include <string>

// Calls `use` with each frame of a file that make_frames wrote, one after the other; for the peers, which therefore
// have no JSON to decode. Gives how many there were.
template <class Use>
int forEachPlainFrame(const char* path, Use&& use) {
  std::FILE* file = std::fopen(path, "rb");
  if (file == nullptr) return 0;
  int count = 0;
  std::string frame;
  for (std::size_t size = 0; std::fscanf(file, "%zu", &size) == 1; ++count) {
    std::fgetc(file);
    frame.resize(size);
    if (std::fread(frame.data(), 1, size, file) != size) break;
    use(frame);
  }
  std::fclose(file);
  return count;
}
