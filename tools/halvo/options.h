#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halvo {

// Exit statuses of every command.
inline constexpr int kExitFine = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

// One long option of a command. `apply` is called for each time it is given, with its value (empty when the option
// takes none), and answers with what is wrong with it, or nothing.
struct Option {
  std::string name;
  // As it stands in the help, such as "FILE"; empty when the option takes no value.
  std::string value;
  std::string help;
  std::function<std::optional<std::string>(const std::string&)> apply;
  // For options that are known by a single letter too.
  char letter = '\0';
};

// What a command takes. The help is made of it.
struct CommandLine {
  std::string usage;    // without the program's name: "play CUE [options]"
  std::string summary;  // what the command does and prints, for --help
  std::vector<Option> options;
  std::size_t minimumPositional = 0;
  std::size_t maximumPositional = 0;
};

struct Parsed {
  std::vector<std::string> positional;
  // Set when the command has nothing more to do: the help was printed, or the arguments were unusable and that was
  // said.
  std::optional<int> exitStatus;
};

// argv[0] is the command's name. "--help" and "-h" are always understood.
Parsed parse(const CommandLine& commandLine, int argc, char** argv);

// Ready-made `apply` functions.
std::function<std::optional<std::string>(const std::string&)> setFlag(bool& flag);
std::function<std::optional<std::string>(const std::string&)> setText(std::string& text);
std::function<std::optional<std::string>(const std::string&)> setText(std::optional<std::string>& text);
// A whole number within the bounds, both included.
std::function<std::optional<std::string>(const std::string&)> setNumber(std::int64_t& number, std::int64_t minimum,
                                                                        std::int64_t maximum);
// "WxH", each 1 to 16384.
struct Size {
  int width = 480;
  int height = 480;
};
std::function<std::optional<std::string>(const std::string&)> setSize(Size& size);

// Says on standard error that the arguments are unusable, and gives the exit status for it.
int usageError(std::string_view command, std::string_view message);
// Says on standard error what a person should know, and goes on.
void tell(std::string_view message);
// Says on standard error what went wrong, and gives the exit status for it.
[[nodiscard]] int failure(std::string_view message);

}  // namespace halvo
