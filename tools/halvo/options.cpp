#include "options.h"

#include <getopt.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <utility>

#include "platform/foundation/text/utf8.h"

namespace halvo {

namespace {

// getopt's own characters '?' and ':' stay free.
constexpr int kFirstOptionValue = 1000;
constexpr int kHelpValue = kFirstOptionValue - 1;
constexpr int kLargestSide = 16384;

void printHelp(const CommandLine& commandLine) {
  std::printf("Usage: halvo %s\n\n%s\n\nOptions:\n", commandLine.usage.c_str(), commandLine.summary.c_str());
  std::vector<std::pair<std::string, std::string>> rows;
  for (const Option& option : commandLine.options)
    rows.emplace_back((option.letter == '\0' ? "" : std::string{'-', option.letter, ',', ' '}) + "--" + option.name +
                          (option.value.empty() ? "" : " " + option.value),
                      option.help);
  rows.emplace_back("-h, --help", "print this and stop");
  std::size_t width = 0;
  for (const auto& row : rows) width = std::max(width, row.first.size());
  for (const auto& [left, right] : rows)
    std::printf("  %-*s  %s\n", static_cast<int>(width), left.c_str(), right.c_str());
}

template <class Number>
bool parseWhole(std::string_view text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc{} && end == text.data() + text.size();
}

}  // namespace

Parsed parse(const CommandLine& commandLine, int argc, char** argv) {
  const std::string name = argv[0];
  std::vector<option> longOptions;
  for (std::size_t i = 0; i < commandLine.options.size(); ++i) {
    const Option& known = commandLine.options[i];
    longOptions.push_back({known.name.c_str(), known.value.empty() ? no_argument : required_argument, nullptr,
                           kFirstOptionValue + static_cast<int>(i)});
  }
  std::string letters = ":h";
  for (const Option& known : commandLine.options)
    if (known.letter != '\0') letters += std::string(1, known.letter) + (known.value.empty() ? "" : ":");
  longOptions.push_back({"help", no_argument, nullptr, kHelpValue});
  longOptions.push_back({});

  Parsed parsed;
  optind = 0;
  opterr = 0;
  while (true) {
    int value = getopt_long(argc, argv, letters.c_str(), longOptions.data(), nullptr);
    if (value == -1) break;
    if (value == kHelpValue || value == 'h') {
      printHelp(commandLine);
      parsed.exitStatus = kExitFine;
      return parsed;
    }
    for (std::size_t i = 0; i < commandLine.options.size(); ++i)
      if (value == commandLine.options[i].letter && value != 0) value = kFirstOptionValue + static_cast<int>(i);
    if (value < kFirstOptionValue) {
      const char* given = argv[std::max(1, optind - 1)];
      parsed.exitStatus =
          usageError(name, std::string(value == ':' ? "a value is missing after " : "unknown option ") + given);
      return parsed;
    }
    const Option& known = commandLine.options[static_cast<std::size_t>(value - kFirstOptionValue)];
    const std::string argument = optarg != nullptr ? optarg : "";
    if (const auto problem = known.apply(argument)) {
      parsed.exitStatus = usageError(name, "--" + known.name + " " + argument + ": " + *problem);
      return parsed;
    }
  }
  parsed.positional.assign(argv + optind, argv + argc);
  if (parsed.positional.size() < commandLine.minimumPositional)
    parsed.exitStatus = usageError(name, "something is missing: halvo " + commandLine.usage);
  else if (parsed.positional.size() > commandLine.maximumPositional)
    parsed.exitStatus = usageError(name, "too much: " + parsed.positional[commandLine.maximumPositional]);
  return parsed;
}

std::function<std::optional<std::string>(const std::string&)> setFlag(bool& flag) {
  return [&flag](const std::string&) {
    flag = true;
    return std::optional<std::string>();
  };
}

std::function<std::optional<std::string>(const std::string&)> setText(std::string& text) {
  return [&text](const std::string& value) {
    text = value;
    return std::optional<std::string>();
  };
}

std::function<std::optional<std::string>(const std::string&)> setText(std::optional<std::string>& text) {
  return [&text](const std::string& value) {
    text = value;
    return std::optional<std::string>();
  };
}

std::function<std::optional<std::string>(const std::string&)> setNumber(std::int64_t& number, std::int64_t minimum,
                                                                        std::int64_t maximum) {
  return [&number, minimum, maximum](const std::string& value) -> std::optional<std::string> {
    std::int64_t read = 0;
    if (parseWhole(value, read) && read >= minimum && read <= maximum) {
      number = read;
      return std::nullopt;
    }
    return "a whole number from " + std::to_string(minimum) + " to " + std::to_string(maximum) + " is needed";
  };
}

std::function<std::optional<std::string>(const std::string&)> setSize(Size& size) {
  return [&size](const std::string& value) -> std::optional<std::string> {
    const std::size_t cross = value.find('x');
    Size read{0, 0};
    const bool ok = cross != std::string::npos && parseWhole(std::string_view(value).substr(0, cross), read.width) &&
                    parseWhole(std::string_view(value).substr(cross + 1), read.height);
    if (!ok || std::min(read.width, read.height) < 1 || std::max(read.width, read.height) > kLargestSide)
      return "WIDTHxHEIGHT is needed, each from 1 to " + std::to_string(kLargestSide);
    size = read;
    return std::nullopt;
  };
}

namespace {

// Names of files and what stands in them are told without what would act on a terminal.
std::string shown(std::string_view message) { return quellaro::printable(message, 10'000); }

}  // namespace

int usageError(std::string_view command, std::string_view message) {
  const std::string name(command);
  std::fprintf(stderr, "halvo %s: %s\nTry 'halvo %s --help'.\n", name.c_str(), shown(message).c_str(), name.c_str());
  return kExitUsage;
}

void tell(std::string_view message) { std::fprintf(stderr, "halvo: %s\n", shown(message).c_str()); }

int failure(std::string_view message) {
  tell(message);
  return kExitFailure;
}

}  // namespace halvo
