#pragma once

#include <vector>

#include "platform/quartzcore/bitmap.h"

namespace halvo {

// Small pictures of what was shown, in rows: what is left of a play that nobody could watch.
class ContactSheet {
 public:
  // Pictures beyond the first thousand are left out.
  void add(const quellaro::Bitmap& picture);
  bool isEmpty() const { return thumbnails_.empty(); }
  quellaro::Bitmap picture() const;

 private:
  std::vector<quellaro::Bitmap> thumbnails_;
};

}  // namespace halvo
