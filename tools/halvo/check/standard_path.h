#pragma once

#include <span>
#include <vector>

#include "platform/coregraphics/path.h"

namespace halvo {

// Follows path data as a standard renderer does.
class StandardPath {
 public:
  // The segments that one command makes of full groups of numbers. Arcs are not drawn here.
  quellaro::CGPath apply(char command, std::span<const double> numbers);

  // Goes on from where the engine is, so that one difference is told once.
  void resume(quellaro::CGPoint engineEnd) { current_ = engineEnd; }

  quellaro::CGPoint current() const { return current_; }
  bool hasMoved() const { return hasMoved_; }

 private:
  void applyGroup(char command, const double* n, quellaro::CGPath& drawn);

  quellaro::CGPoint current_;
  quellaro::CGPoint start_;
  quellaro::CGPoint control_;  // of the last curve
  char previous_ = '\0';       // upper case
  bool hasMoved_ = false;
};

// How many numbers a command takes; 0 for a close.
std::size_t groupSize(char command);

}  // namespace halvo
