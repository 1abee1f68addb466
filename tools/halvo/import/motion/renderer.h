#pragma once

#include <cstddef>
#include <string>

// The library that evaluates motion files. It trusts what it reads: nothing here is called but in a process of its own.
namespace halvo::motion {

// Without its library the tool reads no motion files.
bool canEvaluate();

// A motion file's text as cleanedMotion() gives it.
class Renderer {
 public:
  explicit Renderer(const std::string& text);

  // What is drawn, in the file's own units, as wire.h says it; frames from 0. Empty: the library does not read the
  // file.
  std::string tree(std::size_t frame, std::size_t width, std::size_t height) const;
  // The library's own picture, a square of so many pixels, rows of premultiplied ARGB; empty likewise.
  std::string picture(std::size_t frame, std::size_t side) const;

 private:
  [[maybe_unused]] const std::string& text_;
};

}  // namespace halvo::motion
