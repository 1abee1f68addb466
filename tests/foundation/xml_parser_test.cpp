#include "platform/foundation/xml/xml_parser.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <sstream>

#include "foundation/xml_oracle.h"
#include "platform/foundation/memory/limits.h"

namespace quellaro {
namespace {

using namespace std::string_view_literals;

// This parser and Expat agree on each document, and on what is heard before a mistake.
void expectAgreement(const std::string& document) {
  const Heard ours = hearOurs(document);
  const Heard expat = hearExpat(document);
  ASSERT_EQ(ours.wellFormed, expat.wellFormed) << document;
  ASSERT_EQ(ours.events, expat.events) << document;
}

TEST(XmlParser, AgreesOnWhatStandsBeforeTheRoot) {
  const char* beginnings[] = {
      "\xEF\xBB\xBF",
      " \r\n\t",
      "<?xml version=\"1.0\" encoding='UTF-8' standalone = 'yes' ?>\n",
      "<!-- x --><?pi?><?pi data ?>",
      "<!DOCTYPE a SYSTEM 'x>y'>",
      "<!DOCTYPE a PUBLIC \"p\" 's' [ %e; ]>",
      "<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a b CDATA #IMPLIED><!ENTITY e '<b>&#38;'> <!-- ]> --><?p ]> ?>]>",
      // Mistakes.
      "x",
      "&amp;",
      "<![CDATA[x]]>",
      " <?xml version='1.0'?>",
      "<?xml?>",
      "<?xml encoding='UTF-8'?>",
      "<?xml version='1.0' encoding='-'?>",
      "<?xml version='1.0' standalone='maybe'?>",
      "<?xml version='1.0'encoding='UTF-8'?>",
      "<?xml version='1.0' x='y'?>",
      "<?xml version='1.0",
      "<!DOCTYPE>",
      "<!DOCTYPE a",
      "<!DOCTYPE a [",
      "<!DOCTYPE a [<!ELEMENT a ANY]>",
      "<!DOCTYPE a [<!ELEMENT a ",
      "<!DOCTYPE a [<!ELEMENTa ANY>]>",
      "<!DOCTYPE a SYSTEM>",
      "<!DOCTYPE a PUBLIC 'p'>",
      "<!DOCTYPE a [ x ]>",
      "<!DOCTYPE a><!DOCTYPE a>",
      "<a/><!DOCTYPE a>",
      "<!doctype a>",
  };
  for (const char* beginning : beginnings) expectAgreement(std::string(beginning) + "<a/>");
}

TEST(XmlParser, AgreesOnEntitiesOfText) {
  const char* declarations[] = {
      "<!ENTITY e 'http://x/'>",
      "<!ENTITY  e\n\"it's\" >",
      "<!ENTITY e ''>",
      "<!ENTITY e '1'><!ENTITY e '2'>",
      "<!ENTITY f '2'>",
      "<!ENTITY e 'a&#65;&#xe9;&#9;\t\r\nb'>",
      "<!ELEMENT a ANY><!-- <!ENTITY e 'no'> --><!ENTITY e '>]'>",
      "<!ENTITY e '&e;'>",
  };
  for (const std::string declaration : declarations)
    for (const char* root : {"<a b='&e;' c=' x&e;&e; '/>", "<a>&e;</a>", "<a b='&e'/>", "<a b='&;'/>"})
      expectAgreement("<!DOCTYPE a [" + declaration + "]>" + root);
}

// Where this parser differs on purpose: there is one version, and whatever needs more of the document type than texts,
// or another encoding, is a mistake.
TEST(XmlParser, NothingExpandsTwiceAndTextIsUtf8) {
  const char* bomb =
      "<!DOCTYPE a [<!ENTITY b 'ha'><!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;'><!ENTITY d '&c;&c;&c;&c;&c;&c;&c;&c;'>]>"
      "<a><b/>&d;<c/></a>";
  const Heard heard = hearOurs(bomb);
  EXPECT_FALSE(heard.wellFormed);
  EXPECT_EQ(heard.events, (std::vector<std::string>{"<a", "<b", ">b"}));
  for (const char* declaration :
       {"<!ENTITY e '<b/>'>", "<!ENTITY e '&#60;'>", "<!ENTITY e '&lt;'>", "<!ENTITY e SYSTEM 'x'>",
        "<!ENTITY % e 'x'>", "%p;<!ENTITY e 'x'>", "<!ENTITY f 'x'><!ENTITY e '&f;'>", "<!ENTITY e '&#0;'>"})
    EXPECT_FALSE(hearOurs("<!DOCTYPE a [" + std::string(declaration) + "]><a b='&e;'/>").wellFormed) << declaration;

  // What references may grow to, and how many entities there may be.
  const auto isRead = [](std::size_t length, std::size_t count) {
    std::string text = "<!DOCTYPE a [<!ENTITY e '" + std::string(length, 'x') + "'>";
    for (std::size_t i = 1; i < count; ++i) text += "<!ENTITY e" + std::to_string(i) + " ''>";
    return hearOurs(text + "]><a b='&e;' c='&e;'/>").wellFormed;
  };
  EXPECT_TRUE(isRead(limits::kXmlEntityBytes / 2, limits::kXmlEntities));
  EXPECT_FALSE(isRead(limits::kXmlEntityBytes / 2 + 1, 1));
  EXPECT_FALSE(isRead(1, limits::kXmlEntities + 1));

  const Heard latin = hearOurs("<?xml version='1.0' encoding='ISO-8859-1'?><a b='\xC3\xA9'/>");
  EXPECT_TRUE(latin.wellFormed);
  EXPECT_EQ(latin.events[1], "b=\xC3\xA9");
  EXPECT_TRUE(hearOurs("<?xml version='1.0' encoding='UTF-16'?><a/>").wellFormed);
  for (const char* version : {"", "1", "2.0", "1.x"})
    EXPECT_FALSE(hearOurs("<?xml version='" + std::string(version) + "'?><a/>").wellFormed) << version;
}

std::string randomDocument(std::mt19937& random) {
  const auto pick = [&random](std::initializer_list<const char*> choices) {
    return std::string(*(choices.begin() + random() % choices.size()));
  };
  std::string text = pick({"", "", "<!-- c -->", "<!DOCTYPE a>"});
  std::vector<std::string> open;
  do {
    open.push_back(pick({"a", "b:c", "path", "g", "\xC3\xA9"}));
    text += "<" + open.back();
    for (const char* name : {" d", " e", "\nf:g"}) {
      if (random() % 2 != 0) continue;
      // One number after the other: the operands of a sum are evaluated in an order of the machine's own.
      text += name + pick({"=", " = "});
      text += pick({"''", "'1 2'", "\"M0 0L10 10Z\"", "'&#65;&lt;'", "'\t\r\n'", "\"it's \xE2\x82\xAC\""});
    }
    if (random() % 2 == 0) {
      text += pick({"/>", " />"});
      open.pop_back();
    } else {
      text += ">";
    }
    if (open.empty()) break;
    text += pick({"", "x", "\n  ", "&amp;", "<!-- - -->", "<?p x?>", "<![CDATA[<]]>", "]]", "\xF0\x9F\x98\x80"});
    while (!open.empty() && random() % 2 == 0) {
      text += "</" + open.back() + pick({">", " >"});
      open.pop_back();
    }
  } while (!open.empty());
  return text + pick({"", "\n", "<!-- c -->"});
}

TEST(XmlParser, AgreesOnGeneratedAndDamagedDocuments) {
  std::mt19937 random(7);
  std::istringstream pieces(
      "&lt &; &nbsp; &quot; &apos; &#; &#0; &#1; &#13; &#xE9; &#x20AC; &#x10FFFF; &#xD800; &#xFFFE; &#x110000; &#x41 "
      "&#99999999999999999999; &#X41; &#4A; <!- <!-- --> -- <!x> <![CDATA[ <![cdata[x]]> ]]> <? ?> <?p <?xml <!DOCTYPE "
      "</ </a> <b/> ='' /> \xC0\x80 \xE0\x81\x81 \xED\xA0\x80 \xEF\xBF\xBF \xF4\x90\x80\x80");
  std::vector<std::string> damages{std::istream_iterator<std::string>(pieces), {}};
  for (const char c : "<>/='\"&;!?-[] \n\r\tax:#1\0\x01\x80\xC3\xEF\xF0"sv) damages.emplace_back(1, c);
  int wellFormed = 0;
  for (int i = 0; i < 30000; ++i) {
    std::string text = randomDocument(random);
    for (auto n = random() % 3; n > 0; --n) {
      const std::size_t at = random() % text.size();
      const std::string& damage = damages[random() % damages.size()];
      switch (random() % 4) {
        case 0:
          text.insert(at, damage);
          break;
        case 1:
          text.replace(at, 1, damage);
          break;
        case 2:
          text.erase(at, 1 + random() % 3);
          break;
        default:
          text.resize(at + 1);
      }
    }
    ASSERT_NO_FATAL_FAILURE(expectAgreement(text));
    wellFormed += hearOurs(text).wellFormed ? 1 : 0;
  }
  EXPECT_GT(wellFormed, 10000);
}

TEST(XmlParser, ErrorsAndNamesHavePositions) {
  const std::string_view text = "<a>\n <b \xC3\xA9='1'\n  c='2' c='3'/></a>";
  struct Delegate : NSXMLParserDelegate {
    std::string_view last;
    void parserDidStartElement(std::string_view name, XMLAttributes) override { last = name; }
    void parserDidEndElement(std::string_view) override {}
  } delegate;
  Arena arena(1024);
  NSXMLParser parser(text, arena);
  parser.setDelegate(&delegate);
  ASSERT_FALSE(parser.parse());
  ASSERT_TRUE(parser.parserError());
  EXPECT_EQ(parser.parserError()->message, "an attribute is given twice");
  const XMLPosition position = parser.positionOf(parser.parserError()->offset);
  EXPECT_EQ(text.substr(position.offset, 3), "c='");
  EXPECT_EQ(position.line, 3U);
  EXPECT_EQ(position.column, 9U);
  EXPECT_EQ(parser.positionOf(delegate.last).offset, 1U);
  EXPECT_EQ(parser.positionOf(text.find('=')).column, 6U);
}

TEST(XmlParser, LimitsHold) {
  const auto message = [](const std::string& text) {
    Arena arena(1024);
    NSXMLParser parser(text, arena);
    return parser.parse() ? std::string() : std::string(parser.parserError()->message);
  };
  const auto repeat = [](std::string_view text, std::size_t times) {
    std::string repeated;
    for (; times > 0; --times) repeated += text;
    return repeated;
  };
  EXPECT_EQ(message(repeat("<g>", 1'000'000) + repeat("</g>", 1'000'000)), "");
  EXPECT_EQ(message(repeat("<g>", limits::kXmlDepth + 1)), "elements are nested too deeply");
  EXPECT_EQ(message("<g>" + repeat("<g/>", limits::kXmlElements)), "too many elements");

  const auto attributes = [](std::size_t count) {
    std::string text = "<g";
    for (std::size_t i = 0; i < count; ++i) text += " a" + std::to_string(i) + "=''";
    return text;
  };
  EXPECT_EQ(message(attributes(limits::kXmlAttributes) + "/>"), "");
  EXPECT_EQ(message(attributes(limits::kXmlAttributes) + " z=''/>"), "too many attributes");
  EXPECT_EQ(message(attributes(50) + " a7=''/>"), "an attribute is given twice");
}

}  // namespace
}  // namespace quellaro
