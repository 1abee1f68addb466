#include "check/standard_transform.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "check/number_reading.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::string_view kBlanks = " \t\r\n";

void skipBlanks(std::string_view& text) { text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size())); }

bool skip(std::string_view& text, char c) {
  skipBlanks(text);
  if (text.empty() || text.front() != c) return false;
  text.remove_prefix(1);
  return true;
}

bool takes(std::string_view name, std::size_t count) {
  if (name == "translate" || name == "scale") return count == 1 || count == 2;
  if (name == "rotate") return count == 1 || count == 3;
  if (name == "skewX" || name == "skewY") return count == 1;
  return name == "matrix" && count == 6;
}

bool readOperation(std::string_view& text, TransformOperation& operation) {
  const std::size_t letters =
      std::min(text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"), text.size());
  operation.name = text.substr(0, letters);
  text.remove_prefix(letters);
  if (!skip(text, '(')) return false;
  do {
    skipBlanks(text);
    const ReadNumber number = readNumber(text);
    if (!number.isPlain || isOutOfRange(number.value)) return false;
    operation.numbers.push_back(number.value);
    text = number.rest;
    skip(text, ',');
    skipBlanks(text);
  } while (!text.empty() && text.front() != ')');
  return skip(text, ')') && takes(operation.name, operation.numbers.size());
}

CATransform3D plane(double a, double b, double c, double d, double tx, double ty) {
  CATransform3D transform = CATransform3DIdentity;
  transform.m11 = a;
  transform.m12 = b;
  transform.m21 = c;
  transform.m22 = d;
  transform.m41 = tx;
  transform.m42 = ty;
  return transform;
}

// What is written first acts last: `first` works on what `then` has made of a point.
CATransform3D concatenated(const CATransform3D& then, const CATransform3D& first) {
  return plane(then.m11 * first.m11 + then.m12 * first.m21, then.m11 * first.m12 + then.m12 * first.m22,
               then.m21 * first.m11 + then.m22 * first.m21, then.m21 * first.m12 + then.m22 * first.m22,
               then.m41 * first.m11 + then.m42 * first.m21 + first.m41,
               then.m41 * first.m12 + then.m42 * first.m22 + first.m42);
}

CATransform3D matrixOf(const TransformOperation& operation) {
  const std::vector<double>& n = operation.numbers;
  const double radians = n[0] / 180 * std::numbers::pi;
  if (operation.name == "translate") return plane(1, 0, 0, 1, n[0], n.size() > 1 ? n[1] : 0);
  if (operation.name == "scale") return plane(n[0], 0, 0, n.size() > 1 ? n[1] : n[0], 0, 0);
  if (operation.name == "skewX") return plane(1, 0, std::tan(radians), 1, 0, 0);
  if (operation.name == "skewY") return plane(1, std::tan(radians), 0, 1, 0, 0);
  if (operation.name == "matrix") return plane(n[0], n[1], n[2], n[3], n[4], n[5]);
  const CATransform3D turn = plane(std::cos(radians), std::sin(radians), -std::sin(radians), std::cos(radians), 0, 0);
  if (n.size() == 1) return turn;
  return concatenated(plane(1, 0, 0, 1, -n[1], -n[2]), concatenated(turn, plane(1, 0, 0, 1, n[1], n[2])));
}

}  // namespace

std::optional<std::vector<TransformOperation>> readTransform(std::string_view text, std::string_view& problem) {
  std::vector<TransformOperation> operations;
  for (skipBlanks(text); !text.empty(); skipBlanks(text)) {
    if (!operations.empty() && skip(text, ',')) skipBlanks(text);
    problem = text;
    if (!readOperation(text, operations.emplace_back())) return std::nullopt;
  }
  return operations;
}

CATransform3D standardTransform(const std::vector<TransformOperation>& operations) {
  CATransform3D result = CATransform3DIdentity;
  for (const TransformOperation& operation : operations) result = concatenated(matrixOf(operation), result);
  return result;
}

}  // namespace halvo
