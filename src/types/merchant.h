#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quellaro {

class JSONField;
class JSONWriter;

// On whose behalf a cue is played. Shared and immutable; any thread.
class QLHalvoMerchant {
 public:
  const std::string merchantName;
  const std::string countryCode;
  const std::optional<std::string> city;
  const std::vector<std::string> merchantCategoryCodes;
  const std::string merchantId;

  // initWithMerchantName:countryCode:city:merchantCategoryCodes:merchantId:
  // Null when the name or the country code is empty or there is no category code. An id that is absent or empty is
  // derived from the name: blanks, "_" and "-" removed, then lower-cased. Malformed UTF-8 becomes U+FFFD.
  static std::shared_ptr<const QLHalvoMerchant> make(const std::string& merchantName, const std::string& countryCode,
                                                     const std::optional<std::string>& city,
                                                     const std::vector<std::string>& merchantCategoryCodes,
                                                     const std::optional<std::string>& merchantId);

  // The stored form: an object with the fields' names as keys, "city" only when there is one. Reading it checks and
  // derives nothing; what is wrong is left with the field's decoder.
  static std::shared_ptr<const QLHalvoMerchant> fromJSON(const JSONField& json);
  void writeJSON(JSONWriter& writer) const;

  // description: id-name-["code", "code"]
  std::string description() const;
  // hash: of id, country code and city; differs from process to process.
  std::uint64_t hash() const;
  // isEqual: merchants are equal when their hashes are.
  friend bool operator==(const QLHalvoMerchant& a, const QLHalvoMerchant& b) { return a.hash() == b.hash(); }

 private:
  QLHalvoMerchant(std::string name, std::string country, std::optional<std::string> cityName,
                  std::vector<std::string> categoryCodes, std::string id);
};

}  // namespace quellaro
