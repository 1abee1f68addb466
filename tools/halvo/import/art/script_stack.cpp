// The words of a drawing script that move what is on its stack.
#include <algorithm>
#include <cmath>

#include "import/art/script_interpreter.h"

namespace halvo::art {

bool ScriptReader::dropTop() {
  if (stack_.empty()) return false;
  stack_.pop_back();
  return true;
}

bool ScriptReader::duplicate() {
  if (stack_.empty()) return false;
  ScriptValue copy = stack_.back();
  stack_.push_back(std::move(copy));
  return true;
}

bool ScriptReader::exchange() {
  if (stack_.size() < 2) return false;
  std::swap(stack_.back(), stack_[stack_.size() - 2]);
  return true;
}

bool ScriptReader::index() {
  double depth = 0;
  if (!pop(depth) || !(depth >= 0 && depth < static_cast<double>(stack_.size()))) return false;
  ScriptValue copy = stack_[stack_.size() - 1 - static_cast<std::size_t>(depth)];
  stack_.push_back(std::move(copy));
  return true;
}

bool ScriptReader::roll() {
  double numbers[2];
  if (!pop(numbers)) return false;
  const double count = numbers[0];
  if (!(count >= 1 && count <= static_cast<double>(stack_.size())) || std::fabs(numbers[1]) > count) return false;
  const auto begin = stack_.end() - static_cast<std::ptrdiff_t>(count);
  const auto by = static_cast<std::ptrdiff_t>(numbers[1]);
  std::rotate(begin, by >= 0 ? stack_.end() - by : begin - by, stack_.end());
  return true;
}

bool ScriptReader::define() {
  if (stack_.size() < 2) return false;
  ScriptValue value = std::move(stack_.back());
  stack_.pop_back();
  ScriptName name;
  if (!pop(name)) return false;
  names_.insert_or_assign(name.text, std::move(value));
  return true;
}

bool ScriptReader::undefine() {
  ScriptName name;
  if (!pop(name)) return false;
  names_.erase(name.text);
  return true;
}

}  // namespace halvo::art
