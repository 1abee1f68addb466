#include "types/merchant.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <random>
#include <string_view>
#include <utility>

#include "platform/foundation/json/json_decoder.h"
#include "platform/foundation/json/json_writer.h"
#include "platform/foundation/text/utf8.h"

namespace quellaro {

namespace {

std::string derivedId(const std::string& merchantName) {
  std::string id;
  std::copy_if(merchantName.begin(), merchantName.end(), std::back_inserter(id),
               [](char c) { return c != ' ' && c != '_' && c != '-'; });
  return lowercased(id);
}

std::uint64_t processSeed() {
  static const std::uint64_t seed = [] {
    std::random_device device;
    return (std::uint64_t{device()} << 32) | device();
  }();
  return seed;
}

// No valid UTF-8 holds this byte, so the texts of a hash cannot run into each other.
constexpr char kTextEnd = '\xFF';

}  // namespace

QLHalvoMerchant::QLHalvoMerchant(std::string name, std::string country, std::optional<std::string> cityName,
                                 std::vector<std::string> categoryCodes, std::string id)
    : merchantName(std::move(name)),
      countryCode(std::move(country)),
      city(std::move(cityName)),
      merchantCategoryCodes(std::move(categoryCodes)),
      merchantId(std::move(id)) {}

std::shared_ptr<const QLHalvoMerchant> QLHalvoMerchant::make(const std::string& merchantName,
                                                             const std::string& countryCode,
                                                             const std::optional<std::string>& city,
                                                             const std::vector<std::string>& merchantCategoryCodes,
                                                             const std::optional<std::string>& merchantId) {
  if (merchantName.empty() || countryCode.empty() || merchantCategoryCodes.empty()) return nullptr;
  const std::string name = repairedUTF8(merchantName);
  std::optional<std::string> repairedCity;
  if (city) repairedCity = repairedUTF8(*city);
  std::vector<std::string> codes;
  codes.reserve(merchantCategoryCodes.size());
  for (const std::string& code : merchantCategoryCodes) codes.push_back(repairedUTF8(code));
  std::string id = merchantId && !merchantId->empty() ? repairedUTF8(*merchantId) : derivedId(name);
  return std::shared_ptr<const QLHalvoMerchant>(
      new QLHalvoMerchant(name, repairedUTF8(countryCode), std::move(repairedCity), std::move(codes), std::move(id)));
}

std::shared_ptr<const QLHalvoMerchant> QLHalvoMerchant::fromJSON(const JSONField& json) {
  std::string name = json.required("merchantName").string();
  std::string country = json.required("countryCode").string();
  const JSONField cityField = json.optional("city");
  std::optional<std::string> cityName;
  if (cityField.isPresent()) cityName = cityField.string();
  std::vector<std::string> codes = json.required("merchantCategoryCodes").strings();
  std::string id = json.required("merchantId").string();
  return std::shared_ptr<const QLHalvoMerchant>(
      new QLHalvoMerchant(std::move(name), std::move(country), std::move(cityName), std::move(codes), std::move(id)));
}

void QLHalvoMerchant::writeJSON(JSONWriter& writer) const {
  writer.beginObject().key("merchantName").string(merchantName).key("countryCode").string(countryCode);
  if (city) writer.key("city").string(*city);
  writer.key("merchantCategoryCodes").beginArray();
  for (const std::string& code : merchantCategoryCodes) writer.string(code);
  writer.endArray().key("merchantId").string(merchantId).endObject();
}

std::string QLHalvoMerchant::description() const {
  std::string codes;
  for (const std::string& code : merchantCategoryCodes) {
    if (&code != &merchantCategoryCodes.front()) codes += ", ";
    codes += '"' + code + '"';
  }
  return merchantId + "-" + merchantName + "-[" + codes + "]";
}

std::uint64_t QLHalvoMerchant::hash() const {
  std::string state = std::to_string(processSeed()) + kTextEnd + merchantId + kTextEnd + countryCode + kTextEnd;
  state += city ? '\1' : '\0';
  if (city) state += *city + kTextEnd;
  return std::hash<std::string_view>{}(state);
}

}  // namespace quellaro
