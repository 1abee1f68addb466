#pragma once

#include <optional>
#include <string>

#include "options.h"
#include "types/halvo_enums.h"

namespace halvo {

// What several commands let the user say about the host that they stand for.

// Takes dev.quellaro.halvo as the host's identifier, and adds --bundle, --library and --app-id, which take effect as
// they are read.
void addHostOptions(CommandLine& commandLine);

// An `apply` function's body: "primary" or "secondary".
std::optional<std::string> chooseEnvironment(const std::string& name, quellaro::QLHalvoEnvironment& environment);

}  // namespace halvo
