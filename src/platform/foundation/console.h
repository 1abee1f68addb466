#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/dispatch/function.h"

namespace quellaro {

// Receives each printed text, the line break at its end included. Any thread may print; calls never overlap. Must not
// throw.
using ConsoleSink = Function<void(std::string_view)>;

// Prints the text and one line break. Goes to standard output, as is, unless a sink has been set.
void print(std::string_view text);

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

// For what the platform itself has to say to whoever operates the machine: one line on standard error.
void logToStandardError(std::string_view text);

}  // namespace quellaro
