#include "platform/foundation/build_information.h"

#include <curl/curl.h>
#include <sys/utsname.h>

namespace quellaro {

std::string buildInformation() {
  std::string text = "built: " QUELLARO_BUILD " with " QUELLARO_BUILT_WITH "\n";
  // Tells of the libraries below it too, as they are found on this machine.
  text += std::string("network: ") + curl_version() + "\n";
  utsname system{};
  if (uname(&system) == 0)
    text += std::string("system: ") + system.sysname + " " + system.release + " " + system.machine + "\n";
  return text;
}

}  // namespace quellaro
