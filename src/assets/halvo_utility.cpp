#include "assets/halvo_utility.h"

#include <optional>

#include "platform/foundation/storage/bundle.h"
#include "platform/foundation/storage/user_defaults.h"

namespace quellaro {

namespace {

constexpr const char* kLastUpgradeTimeKey = "LAST_UPGRADE_TIME";

std::string cueVersionKey(const std::string& cueName) { return cueName + "_" + "CUE_VERSION"; }

}  // namespace

std::string HalvoUtility::sdkVersion() {
  const std::optional<JSONValue> entry = NSBundle::library().objectForInfoDictionaryKey("CFBundleShortVersionString");
  if (!entry) return "0";
  return std::string(entry->string().value_or("0"));
}

double HalvoUtility::lastUpgradeTime() {
  return NSUserDefaults::standardUserDefaults().doubleForKey(kLastUpgradeTimeKey).value_or(0.0);
}

void HalvoUtility::setLastUpgradeTime(double secondsSince1970) {
  NSUserDefaults::standardUserDefaults().setDouble(kLastUpgradeTimeKey, secondsSince1970);
  NSUserDefaults::standardUserDefaults().synchronize();
}

std::string HalvoUtility::cueVersion(const std::string& cueName) {
  return NSUserDefaults::standardUserDefaults().stringForKey(cueVersionKey(cueName)).value_or("0");
}

void HalvoUtility::setCueVersion(const std::string& cueName, const std::string& version) {
  NSUserDefaults::standardUserDefaults().setString(cueVersionKey(cueName), version);
  NSUserDefaults::standardUserDefaults().synchronize();
}

}  // namespace quellaro
