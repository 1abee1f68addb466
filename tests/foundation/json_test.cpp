#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "platform/foundation/json/json_decoder.h"
#include "platform/foundation/json/json_reader.h"
#include "platform/foundation/json/json_writer.h"
#include "platform/foundation/text/utf8.h"

namespace quellaro {
namespace {

TEST(JSONReader, RefusesWhatIsNoJSON) {
  for (const std::string& text : {std::string(), std::string("[1,]"), std::string("\"\xFF\""), std::string("1e400"),
                                  std::string("18446744073709551616"), std::string(2000, '['), std::string("[1]\0", 4),
                                  std::string("\xEF\xBB\xBF")}) {
    const auto document = JSONDocument::parse(text);
    ASSERT_FALSE(document) << text;
    EXPECT_TRUE(document.error().localizedDescription.starts_with("The data is not valid JSON")) << text;
  }
}

TEST(JSONReader, KeepsTypesApart) {
  struct Row {
    const char* text;
    std::optional<std::int64_t> whole;
    std::optional<double> number;
    std::optional<bool> boolean;
    std::optional<std::string_view> string;
  };
  const std::vector<Row> rows = {
      {"3", 3, 3.0, {}, {}},
      {"3.0", 3, 3.0, {}, {}},
      {"3.5", {}, 3.5, {}, {}},
      {"-9223372036854775808", std::numeric_limits<std::int64_t>::min(), -9223372036854775808.0, {}, {}},
      {"18446744073709551615", {}, 18446744073709551615.0, {}, {}},
      {"9.3e18", {}, 9.3e18, {}, {}},
      {"true", {}, {}, true, {}},
      {"null", {}, {}, {}, {}},
      {"\xEF\xBB\xBF\"a\\u00e9\\n\"", {}, {}, {}, "aé\n"},
  };
  for (const Row& row : rows) {
    const auto document = JSONDocument::parse(row.text);
    ASSERT_TRUE(document) << row.text;
    const JSONValue value = document->root();
    EXPECT_EQ(value.wholeNumber(), row.whole) << row.text;
    EXPECT_EQ(value.number(), row.number) << row.text;
    EXPECT_EQ(value.boolean(), row.boolean) << row.text;
    EXPECT_EQ(value.string(), row.string) << row.text;
    EXPECT_TRUE(value.elements().empty() && value.members().empty());
  }
}

TEST(JSONReader, OfEqualKeysTheFirstCounts) {
  const auto document = JSONDocument::parse(R"({"a": 1, "b": [true, {}], "a": 2})");
  ASSERT_TRUE(document);
  EXPECT_EQ(document->root().member("a")->wholeNumber(), 1);
  EXPECT_EQ(document->root().members().size(), 3u);
  EXPECT_FALSE(document->root().member("c"));
  EXPECT_EQ(document->root().text(), R"({"a":1,"b":[true,{}],"a":2})");
  constexpr std::string_view kEveryKind = R"(["\t\"é",-1,18446744073709551615,-0.0,2.0,1.5e-2,false,null,[]])";
  EXPECT_EQ(JSONDocument::parse(std::string(kEveryKind))->root().text(),
            R"(["\t\"é",-1,18446744073709551615,-0.0,2.0,0.015,false,null,[]])");
}

TEST(JSONDecoder, NamesTheKeyPathOfTheFirstThingThatIsWrong) {
  const auto describe = [](const std::string& text) {
    const auto document = JSONDocument::parse(text);
    JSONDecoder decoder(document->root());
    for (const JSONField& entry : JSONField::root(decoder).elements()) {
      entry.required("name").string();
      for (const auto& [key, value] : entry.required("times").members()) value.number();
      entry.required("count").wholeNumber();
    }
    return decoder.error() ? decoder.error()->localizedDescription : "";
  };
  const std::vector<std::pair<std::string, std::string>> rows = {
      {R"({})", "At the top level: an array was expected, but this is an object"},
      {R"(null)", "At the top level: an array was expected, but this is null"},
      {R"([3])", "At [0]: an object was expected, but this is a number"},
      {R"([{}])", "At [0].name: the key is missing"},
      {R"([{"name": null}])", "At [0].name: a value is required, but this is null"},
      {R"([{"name": "a", "times": {"x": 1, "y": "2"}, "count": 1}])",
       "At [0].times.y: a number was expected, but this is a string"},
      {R"([{"name": "a", "times": {}, "count": 2.5}])",
       "At [0].count: a whole number of at most 64 bits was expected, but this is 2.5"},
      {R"([{"name": "a", "times": {}, "count": 3.0}, {"name": true}])",
       "At [1].name: a string was expected, but this is a boolean"},
  };
  for (const auto& [text, error] : rows) EXPECT_EQ(describe(text), error) << text;
}

TEST(JSONWriter, WritesWhatReadsBack) {
  const std::string nasty("quote\" back\\ tab\t\x01 \x7F é 🎵 \xFF\xC3", 31);
  JSONWriter writer;
  writer.beginObject().key("a").beginArray().integer(-5).number(0.1).number(1e22).boolean(false).null();
  writer.number(std::numeric_limits<double>::infinity()).endArray().key("b").beginObject().endObject();
  writer.key(nasty).string(nasty).endObject();
  const auto document = JSONDocument::parse(writer.text());
  ASSERT_TRUE(document) << writer.text();
  const JSONValue root = document->root();
  EXPECT_EQ(root.member("a")->text(), "[-5,0.1,1e+22,false,null,null]");
  EXPECT_EQ(root.member(repairedUTF8(nasty))->string(), repairedUTF8(nasty));
}

TEST(UTF8, RepairsExactlyWhatIsMalformed) {
  const std::string bad = "\xEF\xBF\xBD";
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"plain é 🎵 \xF4\x8F\xBF\xBF", "plain é 🎵 \xF4\x8F\xBF\xBF"},
      {"\x80", bad},
      {"a\xC3", "a" + bad},
      {"\xC0\xAF", bad + bad},
      {"\xE2\x28\xA1", bad + "(" + bad},
      {"\xE0\x80\x80", bad + bad + bad},
      {"\xED\xA0\x80", bad + bad + bad},
      {"\xF0\x9F\x8E", bad},
      {"\xF0\x80\x80", bad + bad + bad},
      {"\xF4\x90\x80\x80", bad + bad + bad + bad},
      {"\xF5", bad},
  };
  for (const auto& [text, repaired] : rows) {
    EXPECT_EQ(repairedUTF8(text), repaired);
    EXPECT_EQ(isValidUTF8(text), text == repaired);
  }
  EXPECT_EQ(lowercased("ABC İ xyz ÄÉ ΣΩ ДЖ ｱＡ 𐐀 12 \xFF"), "abc i\u0307 xyz äé σω дж ｱａ 𐐨 12 \xFF");
}

}  // namespace
}  // namespace quellaro
