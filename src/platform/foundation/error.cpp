#include "platform/foundation/error.h"

#include <system_error>

namespace quellaro {

std::string NSError::description() const {
  return "Error Domain=" + domain + " Code=" + std::to_string(code) + " \"" + localizedDescription + "\"";
}

NSError posixError(int errnoValue) {
  return {"NSPOSIXErrorDomain", errnoValue, std::generic_category().message(errnoValue)};
}

}  // namespace quellaro
