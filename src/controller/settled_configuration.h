#pragma once

namespace quellaro {

// Directories, identifier and devices can be chosen until the first controller is made. Main thread.
void settleConfiguration();
bool isConfigurationSettled();

}  // namespace quellaro
