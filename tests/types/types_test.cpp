#include <gtest/gtest.h>

#include <string>

#include "platform/foundation/json/json_decoder.h"
#include "platform/foundation/json/json_writer.h"
#include "types/component_status.h"
#include "types/halvo_status.h"
#include "types/merchant.h"

namespace quellaro {
namespace {

TEST(HalvoStatus, HasItsTwelveCodes) {
  std::string known;
  for (std::int64_t raw = -1; raw < 2000; ++raw) {
    const auto status = halvoStatusFromRawValue(raw);
    if (!status) continue;
    known += std::to_string(raw) + " " + std::string(nameOf(*status)) + ", ";
  }
  EXPECT_EQ(known,
            "800 success, 801 successWithFallback, 901 prepareFailed, 902 soundPrepareFailed, "
            "903 animationPrepareFailed, 904 alreadyPlaying, 905 playFailed, 906 soundPlayFailed, "
            "907 animationPlayFailed, 908 notPrepared, 909 hapticsPrepareFailed, 910 hapticsPlayFailed, ");
}

TEST(ComponentStatus, ComparesErrorsByWhatTheySay) {
  const auto error = [](const char* domain, const char* text) { return ComponentStatus::withError({domain, 1, text}); };
  EXPECT_EQ(error("a", "same"), error("b", "same"));
  EXPECT_NE(error("a", "one"), error("a", "other"));
  EXPECT_NE(ComponentStatus(ComponentStatus::Ready), error("a", ""));
  EXPECT_EQ(ComponentStatus(ComponentStatus::Error).error()->domain, "");
}

TEST(Merchant, NeedsANameACountryAndACategory) {
  EXPECT_FALSE(QLHalvoMerchant::make("", "US", {}, {"1"}, "id"));
  EXPECT_FALSE(QLHalvoMerchant::make("Shop", "", {}, {"1"}, "id"));
  EXPECT_FALSE(QLHalvoMerchant::make("Shop", "US", {}, {}, "id"));
  EXPECT_EQ(QLHalvoMerchant::make("Shop", "US", "", {"", "59"}, "m1")->description(), R"(m1-Shop-["", "59"])");
}

TEST(Merchant, DerivesAnIdThatIsMissing) {
  struct Row {
    const char* name;
    std::optional<std::string> given;
    const char* id;
  };
  for (const Row& row : {Row{"Corner Shop-East_2", {}, "cornershopeast2"}, Row{"My_Shop - 1", "", "myshop1"},
                         Row{"ÉTÉ\tX", {}, "été\tx"}, Row{"Shop", "Given Id-1", "Given Id-1"}})
    EXPECT_EQ(QLHalvoMerchant::make(row.name, "US", {}, {"1"}, row.given)->merchantId, row.id) << row.name;
}

TEST(Merchant, EqualsByIdCountryAndCity) {
  const auto make = [](const char* name, const char* country, std::optional<std::string> city, const char* id) {
    return QLHalvoMerchant::make(name, country, city, {name}, id);
  };
  const auto merchant = make("Shop", "US", "", "m");
  EXPECT_EQ(*merchant, *make("Other", "US", "", "m"));
  EXPECT_EQ(merchant->hash(), make("Other", "US", "", "m")->hash());
  for (const auto& other : {make("Shop", "US", "", "n"), make("Shop", "DE", "", "m"), make("Shop", "US", {}, "m"),
                            make("Shop", "US", "Town", "m"), make("Shop", "S", "", "mU")})
    EXPECT_FALSE(*merchant == *other) << other->merchantId << other->countryCode;
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
  const std::string rest = R"("merchantName":"a","countryCode":"b","merchantCategoryCodes":["c"],"merchantId":"d"})";
  EXPECT_EQ(read("{" + rest), "{" + rest);
  EXPECT_EQ(read(R"({"city":null,)" + rest), "{" + rest);
  EXPECT_EQ(read(R"({"merchantName":"a","countryCode":"b","merchantCategoryCodes":["c", 5],"merchantId":"d"})"),
            "At merchantCategoryCodes[1]: a string was expected, but this is a "
            "number");
  for (const std::string key : {"merchantName", "countryCode", "merchantCategoryCodes", "merchantId"}) {
    std::string without = "{" + rest;
    EXPECT_EQ(read(without.replace(without.find(key), key.size(), "x")), "At " + key + ": the key is missing");
  }
}

}  // namespace
}  // namespace quellaro
