#include "check/standard_path.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr char upper(char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; }

CGPoint reflected(CGPoint point, CGPoint about) { return {2 * about.x - point.x, 2 * about.y - point.y}; }

}  // namespace

std::size_t groupSize(char command) {
  switch (upper(command)) {
    case 'H':
    case 'V':
      return 1;
    case 'M':
    case 'L':
    case 'T':
      return 2;
    case 'S':
    case 'Q':
      return 4;
    case 'C':
      return 6;
    case 'A':
      return 7;
    default:
      return 0;
  }
}

CGPath StandardPath::apply(char command, std::span<const double> numbers) {
  CGPath drawn;
  // A path takes no segment before a move: the current point stands for it.
  drawn.moveTo(current_);
  if (upper(command) == 'Z') {
    drawn.close();
    current_ = start_;
    previous_ = 'Z';
    return drawn;
  }
  const std::size_t size = groupSize(command);
  for (; numbers.size() >= size; numbers = numbers.subspan(size)) {
    applyGroup(command, numbers.data(), drawn);
    // Further pairs after a move are lines.
    if (command == 'M') command = 'L';
    if (command == 'm') command = 'l';
  }
  return drawn;
}

void StandardPath::applyGroup(char command, const double* n, CGPath& drawn) {
  const char letter = upper(command);
  const CGPoint base = command >= 'a' ? current_ : CGPoint{};
  const auto point = [&](int i) { return CGPoint{base.x + n[i], base.y + n[i + 1]}; };
  CGPoint end = current_;
  switch (letter) {
    case 'M':
      end = start_ = point(0);
      drawn.moveTo(end);
      hasMoved_ = true;
      break;
    case 'L':
      drawn.lineTo(end = point(0));
      break;
    case 'H':
      drawn.lineTo(end = {base.x + n[0], current_.y});
      break;
    case 'V':
      drawn.lineTo(end = {current_.x, base.y + n[0]});
      break;
    case 'C':
      control_ = point(2);
      drawn.cubicTo(point(0), control_, end = point(4));
      break;
    case 'S': {
      const CGPoint first = previous_ == 'C' || previous_ == 'S' ? reflected(control_, current_) : current_;
      control_ = point(0);
      drawn.cubicTo(first, control_, end = point(2));
      break;
    }
    case 'Q':
      control_ = point(0);
      drawn.quadTo(control_, end = point(2));
      break;
    case 'T':
      control_ = previous_ == 'Q' || previous_ == 'T' ? reflected(control_, current_) : current_;
      drawn.quadTo(control_, end = point(0));
      break;
    case 'A':
      end = point(5);
      break;
    default:
      break;
  }
  current_ = end;
  previous_ = letter;
}

}  // namespace halvo
