#pragma once

#include <vector>

#include "import/art/import_frame.h"
#include "import/art/script_objects.h"

// What a context of a drawing script adds to what it draws to.
namespace halvo::art {

struct ScriptPainting {
  // From the script's units to the frame's.
  Matrix toFrame;
  std::vector<ArtNote>& notes;

  void fill(const ScriptContext& context) const;
  void stroke(const ScriptContext& context) const;
  // The source everywhere, as far as the clips allow.
  void paint(const ScriptContext& context) const;
  // The same through the alpha of another pattern.
  void mask(const ScriptContext& context, const ScriptPattern& through) const;
  void clip(ScriptContext& context) const;

 private:
  void add(const ScriptContext& context, Shape shape) const;
  void addPicture(const ScriptContext& context, double opacity) const;
  std::optional<Paint> paintOf(const ScriptContext& context) const;
  void leaveOut(std::string element, std::string what) const;
};

}  // namespace halvo::art
