#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/foundation/json_decoder.h"
#include "platform/foundation/json_writer.h"
#include "types/component_status.h"
#include "types/halvo_enums.h"
#include "types/halvo_status.h"
#include "types/merchant.h"

namespace quellaro {
namespace {

TEST(Enumerations, KnowTheirRawValuesAndNoOthers) {
  for (std::int64_t raw = -2; raw < 5; ++raw) {
    EXPECT_EQ(fromRawValue<QLHalvoType>(raw).has_value(), raw >= 0 && raw <= 2);
    EXPECT_EQ(fromRawValue<QLHalvoEnvironment>(raw).has_value(), raw == 0 || raw == 1);
    EXPECT_EQ(fromRawValue<QLHalvoBackground>(raw).has_value(), raw == 0 || raw == 1);
  }
  EXPECT_EQ(fromRawValue<QLHalvoType>(2), QLHalvoType::animationOnly);
  int known = 0;
  for (std::int64_t raw = -1; raw < 2000; ++raw) {
    const auto status = halvoStatusFromRawValue(raw);
    if (!status) continue;
    ++known;
    EXPECT_EQ(rawValueOf(*status), raw);
    EXPECT_NE(nameOf(*status), "unknown");
  }
  EXPECT_EQ(known, 12);
  for (const std::int64_t raw : {802, 900, 911}) EXPECT_FALSE(halvoStatusFromRawValue(raw));
}

TEST(HalvoStatus, IsAnErrorOfItsOwnDomain) {
  const std::error_code code = QLHalvoStatus::alreadyPlaying;
  EXPECT_STREQ(code.category().name(), "QuellaroHalvo.QLHalvoStatus");
  EXPECT_EQ(code.value(), 904);
  EXPECT_EQ(errorOf(QLHalvoStatus::notPrepared).domain, "QuellaroHalvo.QLHalvoStatus");
  EXPECT_EQ(errorOf(QLHalvoStatus::notPrepared).code, 908);
}

TEST(ComponentStatus, ComparesErrorsByWhatTheySay) {
  const auto error = [](const char* domain, const char* text) { return ComponentStatus::withError({domain, 1, text}); };
  EXPECT_EQ(error("a", "same"), error("b", "same"));
  EXPECT_NE(error("a", "one"), error("a", "other"));
  EXPECT_NE(ComponentStatus(ComponentStatus::Ready), error("a", ""));
  EXPECT_EQ(ComponentStatus(ComponentStatus::Ready), ComponentStatus(ComponentStatus::Ready));
  EXPECT_EQ(ComponentStatus(ComponentStatus::Error).error()->domain, "");
}

using Codes = std::vector<std::string>;

TEST(Merchant, NeedsANameACountryAndACategory) {
  EXPECT_FALSE(QLHalvoMerchant::make("", "US", {}, {"1"}, "id"));
  EXPECT_FALSE(QLHalvoMerchant::make("Shop", "", {}, {"1"}, "id"));
  EXPECT_FALSE(QLHalvoMerchant::make("Shop", "US", {}, {}, "id"));
  EXPECT_TRUE(QLHalvoMerchant::make("Shop", "US", "", {""}, {}));
}

TEST(Merchant, DerivesAnIdThatIsMissing) {
  struct Row {
    const char* name;
    std::optional<std::string> given;
    const char* id;
  };
  for (const Row& row : {Row{"Corner Shop-East_2", {}, "cornershopeast2"}, Row{"My_Shop - 1", "", "myshop1"},
                         Row{"ÉTÉ\tX", {}, "été\tx"}, Row{"Shop", "Given Id-1", "Given Id-1"}, Row{" _-", {}, ""}})
    EXPECT_EQ(QLHalvoMerchant::make(row.name, "US", {}, {"1"}, row.given)->merchantId, row.id) << row.name;
}

TEST(Merchant, DescribesItself) {
  EXPECT_EQ(QLHalvoMerchant::make("Shop", "US", {}, {"58", "59"}, "m1")->description(), R"(m1-Shop-["58", "59"])");
  EXPECT_EQ(QLHalvoMerchant::make("Shop", "US", {}, {""}, "m1")->description(), R"(m1-Shop-[""])");
}

TEST(Merchant, EqualsByIdCountryAndCity) {
  const auto make = [](const char* name, const char* country, std::optional<std::string> city, const char* id) {
    return QLHalvoMerchant::make(name, country, city, {name}, id);
  };
  const auto merchant = make("Shop", "US", "Town", "m");
  EXPECT_EQ(*merchant, *make("Other", "US", "Town", "m"));
  EXPECT_EQ(merchant->hash(), make("Other", "US", "Town", "m")->hash());
  EXPECT_FALSE(*merchant == *make("Shop", "US", "Town", "n"));
  EXPECT_FALSE(*merchant == *make("Shop", "DE", "Town", "m"));
  EXPECT_FALSE(*merchant == *make("Shop", "US", {}, "m"));
  EXPECT_FALSE(*make("Shop", "US", "", "m") == *make("Shop", "US", {}, "m"));
  EXPECT_FALSE(*make("Shop", "USA", {}, "m") == *make("Shop", "SA", {}, "mU"));
}

TEST(Merchant, ReadsItsStoredFormWithoutChecking) {
  const auto read = [](const std::string& text) {
    const auto document = JSONDocument::parse(text);
    JSONDecoder decoder(document->root());
    const auto merchant = QLHalvoMerchant::fromJSON(JSONField::root(decoder));
    if (decoder.error()) return decoder.error()->localizedDescription;
    JSONWriter writer;
    merchant->writeJSON(writer);
    return writer.take();
  };
  const std::string full =
      R"({"merchantName":"","countryCode":"","city":"T","merchantCategoryCodes":[],"merchantId":""})";
  EXPECT_EQ(read(full), full);
  const std::string cityless =
      R"({"merchantName":"a","countryCode":"b","merchantCategoryCodes":["c"],"merchantId":"d"})";
  EXPECT_EQ(read(cityless), cityless);
  EXPECT_EQ(
      read(R"({"city":null,"merchantId":"d","merchantName":"a","countryCode":"b","merchantCategoryCodes":["c"]})"),
      cityless);
  EXPECT_EQ(read(R"({"merchantName":"a","countryCode":"b","merchantCategoryCodes":["c", 5],"merchantId":"d"})"),
            "At merchantCategoryCodes[1]: a string was expected, but this is a number");
  EXPECT_EQ(read(R"({"merchantName":"a","countryCode":"b","merchantCategoryCodes":["c"]})"),
            "At merchantId: the key is missing");
}

}  // namespace
}  // namespace quellaro
