#include "controller/settled_configuration.h"

namespace quellaro {

namespace {

bool isSettled = false;

}  // namespace

void settleConfiguration() { isSettled = true; }

bool isConfigurationSettled() { return isSettled; }

}  // namespace quellaro
