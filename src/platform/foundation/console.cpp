#include "platform/foundation/console.h"

#include <cstdio>
#include <mutex>
#include <utility>

namespace quellaro {

namespace {

struct Console {
  std::mutex mutex;
  ConsoleSink sink;
};

// Where this thread's texts go instead, if anywhere.
thread_local std::vector<std::string>* kept = nullptr;

Console& console() {
  // Never destroyed: somebody may print while the process exits.
  static Console& shared = *new Console;  // NOLINT(cppcoreguidelines-owning-memory)
  return shared;
}

void writeLine(std::FILE* file, const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), file);
  std::fflush(file);
}

}  // namespace

void print(std::string_view text) {
  if (kept != nullptr) {
    kept->emplace_back(text);
    return;
  }
  std::string line(text);
  line += '\n';
  const std::lock_guard lock(console().mutex);
  if (console().sink)
    console().sink(line);
  else
    writeLine(stdout, line);
}

KeptPrints::KeptPrints() { kept = &texts_; }

KeptPrints::~KeptPrints() { kept = nullptr; }

void setConsoleSink(ConsoleSink sink) {
  const std::lock_guard lock(console().mutex);
  console().sink = std::move(sink);
}

void logToStandardError(std::string_view text) {
  std::string line("QuellaroHalvo: ");
  line += text;
  line += '\n';
  writeLine(stderr, line);
}

}  // namespace quellaro
