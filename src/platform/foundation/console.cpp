#include "platform/foundation/console.h"

#include <cstdio>
#include <mutex>
#include <utility>

#include "platform/dispatch/guard.h"

namespace quellaro {

namespace {

struct Console {
  std::mutex mutex;
  ConsoleSink sink;
  LogSink logSink;
};

// Of one thread.
struct Printing {
  // Where its texts go instead, if anywhere.
  std::vector<std::string>* kept = nullptr;
  // A sink runs on it. If that fails, or calls the library after all, what is said then goes to the standard streams:
  // nobody waits for himself.
  bool isInSink = false;
};
thread_local Printing printing;

Console& console() {
  // Never destroyed: somebody may print while the process exits.
  static Console& shared = *new Console;  // NOLINT(cppcoreguidelines-owning-memory)
  return shared;
}

void writeLine(std::FILE* file, const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), file);
  std::fflush(file);
}

// Under the lock.
void tellLogSink(const LogSink& sink, LogLevel level, const std::string& text) {
  if (sink.receive == nullptr || level > sink.most) return;
  attempt([&] { sink.receive(static_cast<std::int32_t>(level), text.c_str(), sink.context); });
}

}  // namespace

void print(std::string_view text, LogLevel level) {
  Printing& thread = printing;
  if (thread.kept != nullptr) {
    thread.kept->emplace_back(text);
    return;
  }
  std::string line(text);
  line += '\n';
  if (thread.isInSink) return writeLine(stdout, line);
  Console& shared = console();
  const std::lock_guard lock(shared.mutex);
  thread.isInSink = true;
  if (shared.sink)
    shared.sink(line);
  else
    writeLine(stdout, line);
  line.pop_back();
  tellLogSink(shared.logSink, level, line);
  thread.isInSink = false;
}

KeptPrints::KeptPrints() { printing.kept = &texts_; }

KeptPrints::~KeptPrints() { printing.kept = nullptr; }

void setConsoleSink(ConsoleSink sink) {
  const std::lock_guard lock(console().mutex);
  console().sink = std::move(sink);
}

void setLogSink(const LogSink& sink) {
  const std::lock_guard lock(console().mutex);
  console().logSink = sink;
}

bool logToSink(LogLevel level, const std::string& text) {
  Printing& thread = printing;
  if (thread.isInSink) return false;
  Console& shared = console();
  const std::lock_guard lock(shared.mutex);
  thread.isInSink = true;
  tellLogSink(shared.logSink, level, text);
  thread.isInSink = false;
  return shared.logSink.receive != nullptr;
}

void logLine(LogLevel level, const std::string& text) {
  if (!logToSink(level, text)) std::fprintf(stderr, "QuellaroHalvo: %s\n", text.c_str());
}

}  // namespace quellaro
