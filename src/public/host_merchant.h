#pragma once

#include <QuellaroHalvo/quellaro_halvo.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quellaro {

// On whose behalf a cue is played. Shared and immutable; any thread.
class QLHalvoMerchant {
  struct Release {
    void operator()(quellaro_halvo_merchant* merchant) const { quellaro_halvo_merchant_release(merchant); }
  };
  using Handle = std::unique_ptr<quellaro_halvo_merchant, Release>;

 public:
  // initWithMerchantName:countryCode:city:merchantCategoryCodes:merchantId:
  // Null when the name or the country code is empty, there is no category code or a text is not UTF-8. An id that is
  // absent or empty is derived from the name: blanks, "_" and "-" removed, then lower-cased.
  static std::shared_ptr<const QLHalvoMerchant> make(const std::string& merchantName, const std::string& countryCode,
                                                     const std::optional<std::string>& city,
                                                     const std::vector<std::string>& merchantCategoryCodes,
                                                     const std::optional<std::string>& merchantId) {
    std::vector<const char*> codes;
    for (const std::string& code : merchantCategoryCodes) codes.push_back(code.c_str());
    Handle handle(quellaro_halvo_merchant_create(merchantName.c_str(), countryCode.c_str(),
                                                 city ? city->c_str() : nullptr, codes.data(), codes.size(),
                                                 merchantId ? merchantId->c_str() : nullptr));
    if (!handle) return nullptr;
    return std::shared_ptr<const QLHalvoMerchant>(new QLHalvoMerchant(std::move(handle), merchantCategoryCodes));
  }

  // description: id-name-["code", "code"]
  std::string description() const { return quellaro_halvo_merchant_description(handle_.get()); }
  // hash: of id, country code and city; differs from process to process.
  std::uint64_t hash() const { return quellaro_halvo_merchant_hash(handle_.get()); }
  // isEqual: merchants are equal when their hashes are.
  friend bool operator==(const QLHalvoMerchant& a, const QLHalvoMerchant& b) {
    return quellaro_halvo_merchant_is_equal(a.handle_.get(), b.handle_.get());
  }
  const quellaro_halvo_merchant* handle() const { return handle_.get(); }

 private:
  Handle handle_;
  QLHalvoMerchant(Handle handle, std::vector<std::string> codes)
      : handle_(std::move(handle)), merchantCategoryCodes(std::move(codes)) {
    if (const char* const text = quellaro_halvo_merchant_city(handle_.get())) city = text;
  }

 public:
  std::string merchantName = quellaro_halvo_merchant_name(handle_.get());
  std::string countryCode = quellaro_halvo_merchant_country_code(handle_.get());
  std::optional<std::string> city;
  std::vector<std::string> merchantCategoryCodes;
  std::string merchantId = quellaro_halvo_merchant_identifier(handle_.get());
};

}  // namespace quellaro
