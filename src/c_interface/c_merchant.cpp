#include <vector>

#include "c_interface/c_interface.h"

using namespace quellaro;

quellaro_halvo_merchant* quellaro_halvo_merchant_create(const char* merchant_name, const char* country_code,
                                                        const char* city, const char* const* merchant_category_codes,
                                                        size_t merchant_category_code_count, const char* merchant_id) {
  if (merchant_name == nullptr || country_code == nullptr || merchant_category_codes == nullptr) return nullptr;
  for (const char* text : {merchant_name, country_code, city, merchant_id})
    if (!isTextOrNothing(text)) return nullptr;
  return guardedAnywhere<quellaro_halvo_merchant*>(nullptr, [&]() -> quellaro_halvo_merchant* {
    std::vector<std::string> codes;
    for (size_t i = 0; i < merchant_category_code_count; ++i) {
      const char* code = merchant_category_codes[i];
      if (code == nullptr || !isValidUTF8(code)) return nullptr;
      codes.emplace_back(code);
    }
    auto merchant =
        QLHalvoMerchant::make(merchant_name, country_code, optionalText(city), codes, optionalText(merchant_id));
    if (!merchant) return nullptr;
    auto handle = std::make_unique<quellaro_halvo_merchant>();
    handle->description = merchant->description();
    handle->merchant = std::move(merchant);
    return handle.release();
  });
}

void quellaro_halvo_merchant_release(quellaro_halvo_merchant* merchant) {
  const std::unique_ptr<quellaro_halvo_merchant> released(merchant);
}

const char* quellaro_halvo_merchant_name(const quellaro_halvo_merchant* merchant) {
  return merchant != nullptr ? merchant->merchant->merchantName.c_str() : nullptr;
}

const char* quellaro_halvo_merchant_country_code(const quellaro_halvo_merchant* merchant) {
  return merchant != nullptr ? merchant->merchant->countryCode.c_str() : nullptr;
}

const char* quellaro_halvo_merchant_city(const quellaro_halvo_merchant* merchant) {
  return merchant != nullptr && merchant->merchant->city ? merchant->merchant->city->c_str() : nullptr;
}

size_t quellaro_halvo_merchant_category_code_count(const quellaro_halvo_merchant* merchant) {
  return merchant != nullptr ? merchant->merchant->merchantCategoryCodes.size() : 0;
}

const char* quellaro_halvo_merchant_category_code(const quellaro_halvo_merchant* merchant, size_t index) {
  if (index >= quellaro_halvo_merchant_category_code_count(merchant)) return nullptr;
  return merchant->merchant->merchantCategoryCodes[index].c_str();
}

const char* quellaro_halvo_merchant_identifier(const quellaro_halvo_merchant* merchant) {
  return merchant != nullptr ? merchant->merchant->merchantId.c_str() : nullptr;
}

const char* quellaro_halvo_merchant_description(const quellaro_halvo_merchant* merchant) {
  return merchant != nullptr ? merchant->description.c_str() : nullptr;
}

uint64_t quellaro_halvo_merchant_hash(const quellaro_halvo_merchant* merchant) {
  if (merchant == nullptr) return 0;
  return guardedAnywhere<uint64_t>(0, [&] { return merchant->merchant->hash(); });
}

bool quellaro_halvo_merchant_is_equal(const quellaro_halvo_merchant* merchant, const quellaro_halvo_merchant* other) {
  if (merchant == nullptr || other == nullptr) return false;
  return guardedAnywhere(false, [&] { return *merchant->merchant == *other->merchant; });
}
