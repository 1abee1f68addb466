#pragma once

#include <optional>
#include <string>

namespace quellaro {

// What is to be shown to the sound server as its cookie: nothing for the client library's own search, or a file. Its
// own search makes a cookie in the user's home where it finds none, so it is asked to search only where there is one. A
// server on the same machine knows the user without it. (PULSE_COOKIE goes before everything: a file that it names and
// that is missing is made by the client library.)
std::optional<std::string> pulseCookieFile();

}  // namespace quellaro
