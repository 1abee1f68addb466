#pragma once

#include <string>

namespace quellaro {

// How the library was built and what it runs on: lines of text, for bug reports. Any thread.
std::string buildInformation();

}  // namespace quellaro
