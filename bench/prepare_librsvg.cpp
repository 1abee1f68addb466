// Parses the same frames with librsvg and keeps them all, as a player would.
#include <librsvg/rsvg.h>

#include <cstdio>
#include <vector>

#include "plain_frames.h"

int main(int, char** argv) {
  std::vector<RsvgHandle*> handles;
  forEachPlainFrame(argv[1], [&](const std::string& frame) {
    handles.push_back(rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(frame.data()), frame.size(), nullptr));
  });
  std::size_t parsed = 0;
  for (RsvgHandle* handle : handles) {
    if (handle == nullptr) continue;
    ++parsed;
    g_object_unref(handle);
  }
  std::printf("%zu\n", parsed);
}
