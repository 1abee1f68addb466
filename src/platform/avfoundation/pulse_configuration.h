#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quellaro {

// What people have told the sound server's client library. It passes none of it on, so it is read again, by its rules.

// Empty when the variable is unset.
std::string environmentVariable(const char* name);

// The user's directory of the client library; empty when there is no home.
std::string pulseUserDirectory();

// A setting of the client configuration: of the file that PULSE_CLIENTCONFIG names, or else the user's, or else the
// machine's. Nothing when it is absent or empty.
std::optional<std::string> pulseClientSetting(std::string_view key);

}  // namespace quellaro
