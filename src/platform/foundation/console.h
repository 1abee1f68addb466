#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/dispatch/function.h"

namespace quellaro {

// Receives each printed text, the line break at its end included. Any thread may print; calls never overlap. Must not
// throw.
using ConsoleSink = Function<void(std::string_view)>;

// How much a line matters: to whoever operates the machine (it does not work, it works in part) or as a mere record.
enum class LogLevel : std::int32_t { Error = 1, Warning = 2, Info = 3 };
// Receives each line up to the level `most`, without a line break at its end, under the same rules but that what it
// throws ends here.
struct LogSink {
  void (*receive)(std::int32_t level, const char* text, void* context) = nullptr;
  void* context = nullptr;
  LogLevel most = LogLevel::Info;
};

// Prints the text and one line break. Goes to standard output, as is, unless a sink has been set, and to the log sink
// besides.
void print(std::string_view text, LogLevel level = LogLevel::Info);

// While one lives, what its thread prints is kept in it instead.
class KeptPrints {
 public:
  KeptPrints();
  ~KeptPrints();
  KeptPrints(const KeptPrints&) = delete;
  KeptPrints& operator=(const KeptPrints&) = delete;

  std::vector<std::string> take() { return std::move(texts_); }

 private:
  std::vector<std::string> texts_;
};

// An empty sink restores standard output.
void setConsoleSink(ConsoleSink sink);

// An empty sink takes it away.
void setLogSink(const LogSink& sink);

// For what the platform itself has to say to whoever operates the machine: one line to the log sink or, while there is
// none, to standard error.
void logLine(LogLevel level, const std::string& text);
// The same for what is said elsewhere too: to the log sink alone. Gives whether there is one.
bool logToSink(LogLevel level, const std::string& text);

}  // namespace quellaro
