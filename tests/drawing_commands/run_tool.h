#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

namespace quellaro {

struct Ran {
  int status = -1;
  std::string output;  // both streams
};

// Runs a command line in the shell.
inline Ran run(const std::string& commandLine) {
  Ran ran;
  std::FILE* pipe = popen((commandLine + " 2>&1").c_str(), "r");
  std::array<char, 4096> buffer;
  while (const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), pipe))
    ran.output.append(buffer.data(), got);
  const int status = pclose(pipe);
  ran.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return ran;
}

// `before`: what the shell does first.
inline Ran halvo(const std::string& arguments, const std::string& before = "") {
  return run(before + QUELLARO_HALVO_TOOL " " + arguments);
}

}  // namespace quellaro
