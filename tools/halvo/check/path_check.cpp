#include "check/path_check.h"

#include <algorithm>
#include <cmath>

#include "check/commas.h"
#include "check/number_reading.h"
#include "check/standard_path.h"
#include "platform/foundation/text/numbers.h"
#include "svg/parse_observer.h"
#include "svg/path_data.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr char upper(char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; }

// Both add up the same numbers in another order at most.
// Infinities and what comes of them are told as numbers out of range.
bool isNear(double a, double b) {
  return !std::isfinite(a) || !std::isfinite(b) || std::fabs(a - b) <= 1e-9 * (1 + std::fabs(a));
}

class PathCheck final : public SVGPathObserver {
 public:
  PathCheck(const CheckedElement& element, const XMLAttribute& data, FrameFindings& findings)
      : element_(element), data_(data), findings_(findings) {}

  void didApplyCommand(std::string_view run, std::span<const double> numbers, const CGPath& outline) override {
    if (!canBeCompared_) return;
    canBeCompared_ = checkStart(run) && checkLetters(run);
    if (std::any_of(numbers.begin(), numbers.end(), isOutOfRange))
      tell(FindingId::NumberRange, run, "a coordinate beyond a million");
    if (canBeCompared_) compare(run, numbers, outline);
    verbs_ = outline.verbs().size();
    points_ = outline.points().size();
  }

  void didStop(std::string_view rest) override {
    const std::size_t unread = rest.find_first_not_of(" ,\n");
    if (unread == std::string_view::npos) return;
    rest.remove_prefix(unread);
    findings_.inValue(FindingId::PathUnread, element_, data_, rest, "\"" + printable(rest) + "\" is left unread");
  }

 private:
  void tell(FindingId id, std::string_view part, std::string_view what) {
    findings_.inValue(id, element_, data_, part, "\"" + printable(part) + "\": " + std::string(what));
  }

  bool checkStart(std::string_view run) {
    if (upper(run.back()) == 'M' || standard_.hasMoved()) return true;
    tell(FindingId::PathStart, run, "no move before it");
    return false;
  }

  // One letter, or a close and one letter, is what everybody reads.
  bool checkLetters(std::string_view run) {
    if (run.size() == 1) return true;
    if (run.size() == 2 && upper(run.front()) == 'Z') {
      standard_.apply('Z', {});
      return true;
    }
    tell(FindingId::PathLetters, run, "letters without numbers");
    return false;
  }

  void compare(std::string_view run, std::span<const double> numbers, const CGPath& outline) {
    const char command = run.back();
    const std::size_t size = groupSize(command);
    if (upper(command) == 'A') return tell(FindingId::Arc, run, "an arc");
    if (size == 0 ? !numbers.empty() : numbers.empty() || numbers.size() % size != 0)
      tell(FindingId::PathIncomplete, run, std::to_string(numbers.size()) + " numbers");
    const bool wasClosed = run.size() == 2 || wasClosed_;
    const CGPoint before = standard_.current();
    const CGPath expected = standard_.apply(command, numbers);
    if (!isDrawn(expected, run.size() == 2, outline)) {
      const FindingId reason = reasonFor(command, numbers, wasClosed);
      tell(reason, run, describe(reason, numbers, before));
    }
    wasClosed_ = upper(command) == 'Z';
    // After a close the engine's current point is known to it alone, until it draws.
    if (!wasClosed_ && !outline.points().empty()) standard_.resume(outline.points().back());
  }

  static FindingId reasonFor(char command, std::span<const double> numbers, bool wasClosed) {
    if (upper(command) == 'M' && numbers.size() > 2) return FindingId::MovePairs;
    return wasClosed ? FindingId::AfterClose : FindingId::Reflection;
  }

  static std::string describe(FindingId reason, std::span<const double> numbers, CGPoint before) {
    if (reason == FindingId::MovePairs) return std::to_string(numbers.size() / 2) + " pairs";
    if (reason == FindingId::Reflection) return "its first control point lies elsewhere";
    std::string text = "elsewhere it goes on from ";
    appendShortest(text, before.x);
    text += ',';
    appendShortest(text, before.y);
    return text;
  }

  // Whether the engine has drawn the same since the last command. `expected` begins with a move of its own.
  bool isDrawn(const CGPath& expected, bool closesFirst, const CGPath& outline) const {
    const auto verbs = outline.verbs().subspan(std::min(outline.verbs().size(), verbs_ + (closesFirst ? 1 : 0)));
    const PathPoints points = outline.points();
    const PathPoints expectedPoints = expected.points();
    if (points.size() - points_ != expectedPoints.size() - 1) return false;
    if (!std::equal(verbs.begin(), verbs.end(), expected.verbs().begin() + 1, expected.verbs().end())) return false;
    for (std::size_t i = points_; i < points.size(); ++i) {
      const CGPoint drawn = points[i];
      const CGPoint wanted = expectedPoints[i - points_ + 1];
      if (!isNear(drawn.x, wanted.x) || !isNear(drawn.y, wanted.y)) return false;
    }
    return true;
  }

  const CheckedElement& element_;
  const XMLAttribute& data_;
  FrameFindings& findings_;
  StandardPath standard_;
  // Of the outline up to the last command.
  std::size_t verbs_ = 0;
  std::size_t points_ = 0;
  bool wasClosed_ = false;
  // Until the data is such that a standard renderer gives up on it.
  bool canBeCompared_ = true;
};

}  // namespace

void checkPath(const CheckedElement& element, FrameFindings& findings) {
  for (const XMLAttribute& attribute : element.attributes) {
    if (attribute.name != "d") continue;
    PathCheck check(element, attribute, findings);
    const SVGPath read(element.name, element.attributes, check);
    if (const auto comma = misplacedComma(attribute.value))
      findings.inValue(FindingId::Comma, element, attribute, *comma, "a comma that separates no numbers");
    if (const auto point = trailingPoint(attribute.value))
      findings.inValue(FindingId::Number, element, attribute, *point, "a number that ends in its point");
  }
}

}  // namespace halvo
