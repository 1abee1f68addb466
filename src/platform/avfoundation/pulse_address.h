#pragma once

#include <optional>
#include <string>

namespace quellaro {

// Where the client library is to look for the sound server: nothing for its own search, or an explicit address. Its own
// search leaves directories and a link in the user's home when there has never been a server, so it is asked to search
// only where a server, or somebody's wish for one, has left a trace.
std::optional<std::string> pulseServerAddress();

}  // namespace quellaro
