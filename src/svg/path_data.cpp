#include "svg/path_data.h"

#include <algorithm>
#include <array>
#include <string>

#include "platform/foundation/console.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/text/scanner.h"
#include "svg/parse_observer.h"

namespace quellaro {

namespace {

constexpr NSCharacterSet kCommands{"MLACQSTHVZmlacqsthvz"};
constexpr NSCharacterSet kSeparators{" ,\n"};

// Honest data has a point for about every fourteen characters.
constexpr std::size_t kCharactersPerPoint = 12;
constexpr std::size_t kReservedPoints = 8192;

constexpr CGPoint kOrigin{};

constexpr bool isRelative(char command) { return command >= 'a'; }

CGPoint operator+(CGPoint a, CGPoint b) { return {a.x + b.x, a.y + b.y}; }

CGPoint reflected(CGPoint point, CGPoint about) { return {2 * about.x - point.x, 2 * about.y - point.y}; }

struct ScannedNumbers {
  NSScanner& scanner;
  bool fill(std::span<double> group) { return scanner.scanDoubles(group) == group.size(); }
};

// The player's way: nobody is told.
struct NoListener {
  ScannedNumbers numbers(NSScanner& scanner) { return {scanner}; }
  void didApplyCommand(std::string_view /*run*/, const CGPath& /*outline*/) {}
  void didStop(std::string_view /*rest*/) {}
};

struct RecordedNumbers {
  ScannedNumbers scanned;
  std::vector<double>& record;
  bool fill(std::span<double> group) {
    const std::size_t count = scanned.scanner.scanDoubles(group);
    record.insert(record.end(), group.begin(), group.begin() + static_cast<std::ptrdiff_t>(count));
    return count == group.size();
  }
};

struct Listener {
  SVGPathObserver& observer;
  std::vector<double> record;
  RecordedNumbers numbers(NSScanner& scanner) {
    record.clear();
    return {{scanner}, record};
  }
  void didApplyCommand(std::string_view run, const CGPath& outline) { observer.didApplyCommand(run, record, outline); }
  void didStop(std::string_view rest) { observer.didStop(rest); }
};

struct ListedNumbers {
  std::span<const double> numbers;
  bool fill(std::span<double> group) {
    const std::size_t count = std::min(group.size(), numbers.size());
    std::copy_n(numbers.begin(), count, group.begin());
    numbers = numbers.subspan(count);
    return count == group.size();
  }
};

template <class Numbers>
void discard(Numbers& numbers) {
  double number = 0;
  while (numbers.fill({&number, 1})) {
  }
}

}  // namespace

SVGPath::SVGPath(std::string_view name, XMLAttributes attributes) : SVGElement(name, attributes) {
  SVGPath::buildPath(attr());
}

SVGPath::SVGPath(std::string_view name, XMLAttributes attributes, SVGPathObserver& observer)
    : SVGElement(name, attributes) {
  readData(attr(), Listener{observer, {}});
}

void SVGPath::buildPath(XMLAttributes attributes) { readData(attributes, NoListener{}); }

template <class AnyListener>
void SVGPath::readData(XMLAttributes attributes, AnyListener listener) {
  const std::optional<std::string_view> data = attributes.find("d");
  if (!data || data->empty()) return;
  path_.reserve(std::min(data->size() / kCharactersPerPoint + 1, kReservedPoints));
  NSScanner scanner(*data, kSeparators);
  while (const std::optional<std::string_view> run = scanner.scanCharacters(kCommands)) {
    std::string_view command = *run;
    // A close and the next command, as in "Zm". Whatever the first letter is, it closes.
    if (command.size() == 2) {
      close();
      command.remove_prefix(1);
    }
    apply(command, listener.numbers(scanner));
    listener.didApplyCommand(*run, path_.cgPath());
  }
  listener.didStop(scanner.rest());
}

void SVGPath::applyCommand(std::string_view command, std::span<const double> numbers) {
  apply(command, ListedNumbers{numbers});
}

template <class Numbers>
void SVGPath::apply(std::string_view command, Numbers numbers) {
  const char letter = command.size() == 1 ? command.front() : '\0';
  const auto point = [this, relative = isRelative(letter)](double x, double y) {
    return relative ? end_ + CGPoint{x, y} : CGPoint{x, y};
  };
  switch (letter) {
    case 'M':
    case 'm':
      eachGroup<2>(numbers, [&](const auto& n) { move(point(n[0], n[1])); });
      break;
    case 'L':
    case 'l':
      eachGroup<2>(numbers, [&](const auto& n) { line(point(n[0], n[1])); });
      break;
    case 'H':
      eachGroup<1>(numbers, [&](const auto& n) { line({n[0], end_.y}); });
      break;
    case 'h':
      eachGroup<1>(numbers, [&](const auto& n) { line({end_.x + n[0], end_.y}); });
      break;
    case 'V':
      eachGroup<1>(numbers, [&](const auto& n) { line({end_.x, n[0]}); });
      break;
    case 'v':
      eachGroup<1>(numbers, [&](const auto& n) { line({end_.x, end_.y + n[0]}); });
      break;
    case 'C':
    case 'c':
      eachGroup<6>(numbers, [&](const auto& n) { cubic(point(n[0], n[1]), point(n[2], n[3]), point(n[4], n[5])); });
      break;
    case 'S':
    case 's':
      eachGroup<4>(numbers, [&](const auto& n) {
        const CGPoint control2 = point(n[0], n[1]);
        cubic(c_pre_ == kOrigin ? control2 : reflected(c_pre_, end_), control2, point(n[2], n[3]));
      });
      break;
    case 'Q':
    case 'q':
      eachGroup<4>(numbers, [&](const auto& n) { quadratic(point(n[0], n[1]), point(n[2], n[3])); });
      break;
    case 'T':
    case 't':
      eachGroup<2>(numbers, [&](const auto& n) {
        const CGPoint to = point(n[0], n[1]);
        quadratic(q_pre_ == kOrigin ? to : reflected(q_pre_, end_), to);
      });
      break;
    case 'A':
    case 'a':
      discard(numbers);
      break;
    case 'Z':
    case 'z':
      discard(numbers);
      close();
      break;
    default:
      discard(numbers);
      print(std::string("Don't have any solutions for cmd ").append(command).append("."));
  }
}

template <std::size_t size, class Numbers, class Draw>
void SVGPath::eachGroup(Numbers& numbers, Draw draw) {
  std::array<double, size> group{};
  while (path_.pointCount() < limits::kPathPoints && numbers.fill(group)) draw(group);
}

void SVGPath::move(CGPoint to) {
  path_.moveToPoint(to);
  end_ = to;
}

void SVGPath::line(CGPoint to) {
  path_.addLineToPoint(to);
  end_ = to;
}

void SVGPath::cubic(CGPoint control1, CGPoint control2, CGPoint to) {
  path_.addCurveToPoint(to, control1, control2);
  end_ = to;
  c_pre_ = control2;
}

void SVGPath::quadratic(CGPoint control, CGPoint to) {
  path_.addQuadCurveToPoint(to, control);
  end_ = to;
  q_pre_ = control;
}

void SVGPath::close() {
  path_.closePath();
  clickable_ = true;
}

}  // namespace quellaro
