#include "platform/foundation/xml_parser.h"

#include <gtest/gtest.h>

#include <random>

#include "foundation/xml_oracles.h"
#include "platform/foundation/limits.h"

namespace quellaro {
namespace {

using namespace std::string_view_literals;

// All three agree on each of these, and on what is heard before a mistake.
TEST(XmlParser, AgreesWithExpatAndLibxml) {
  const std::string_view documents[] = {
      "<a/>"sv,
      "<a></a>"sv,
      "<a ></a >"sv,
      "<a b='1'/>"sv,
      "<a b = '1' c=\"2\" />"sv,
      "<a><b/><c><d/></c></a>"sv,
      "\xEF\xBB\xBF<a/>"sv,
      " \r\n\t<a/> \n"sv,
      "<?xml version='1.0'?><a/>"sv,
      "<?xml version=\"1.0\" encoding='UTF-8' standalone = 'yes' ?>\n<a/>"sv,
      "<!-- x --><?pi?><?pi data ?><a/><!-- - --><?end?>"sv,
      "<a>text &lt;&amp;&#65;&#x1F600; ]] ></a>"sv,
      "<a><![CDATA[ <b> & ]] ]]]]></a>"sv,
      "<a><!-- <b> & ]]> --><?p <b> ?></a>"sv,
      "<a b='&lt;&gt;&amp;&quot;&apos;'/>"sv,
      "<a b='&#9;&#10;&#13;&#x20;&#xE9;&#x20AC;&#x10FFFF;'/>"sv,
      "<a b=' x\ty\nz\r\nw\rv '/>"sv,
      "<a b='>]]>'/>"sv,
      "<a b='\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80'/>"sv,
      "<a b='x\xC3\xA9&amp;\xE2\x82\xAC\ny'/>"sv,
      "<\xC3\xA9l\xC3\xA9ment attribut\xC3\xA9='1'/>"sv,
      "<svg:a svg:b='1' xmlns:svg='u' xmlns='v'><svg:c/></svg:a>"sv,
      "<_a.-1:b/>"sv,
      "<!DOCTYPE a><a/>"sv,
      "<!DOCTYPE a SYSTEM 'x>y'><a/>"sv,
      "<!DOCTYPE a PUBLIC \"p\" 's' [ ]><a/>"sv,
      "<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a b CDATA #IMPLIED><!ENTITY e '<b>&#38;'> <!-- ]> --><?p ]> ?>]><a/>"sv,
      // Mistakes.
      ""sv,
      " "sv,
      "x"sv,
      "<"sv,
      "<a"sv,
      "<a>"sv,
      "<a "sv,
      "<a/"sv,
      "<a b"sv,
      "<a b="sv,
      "<a b='"sv,
      "<a b='1'"sv,
      "<a b='1'/"sv,
      "<a/>x"sv,
      "x<a/>"sv,
      "<a/><b/>"sv,
      "<a></b>"sv,
      "<a><b></a></b>"sv,
      "</a>"sv,
      "<a></a></a>"sv,
      "<a b/>"sv,
      "<a b=1/>"sv,
      "<a b='1'c='2'/>"sv,
      "<a b='1' b='2'/>"sv,
      "<a b='<'/>"sv,
      "<a b='&'/>"sv,
      "<a b='&nbsp;'/>"sv,
      "<a>&nbsp;</a>"sv,
      "<a>&lt</a>"sv,
      "<a>&;</a>"sv,
      "<a>&#;</a>"sv,
      "<a>&#x;</a>"sv,
      "<a>&#0;</a>"sv,
      "<a>&#1;</a>"sv,
      "<a>&#xD800;</a>"sv,
      "<a>&#xFFFE;</a>"sv,
      "<a>&#x110000;</a>"sv,
      "<a>&#99999999999999999999;</a>"sv,
      "<a>&#x41</a>"sv,
      "<a>&#X41;</a>"sv,
      "<a>&#4A;</a>"sv,
      "&amp;<a/>"sv,
      "<a>]]></a>"sv,
      "<a><</a>"sv,
      "< a/>"sv,
      "<1/>"sv,
      "<-a/>"sv,
      "<a/ >"sv,
      "<a><b</a>"sv,
      "<a b='1'/x>"sv,
      "<a\0/>"sv,
      "<a b='\0'/>"sv,
      "<a>\0</a>"sv,
      "<a>\x01</a>"sv,
      "<a b='\x1F'/>"sv,
      "<a>\x80</a>"sv,
      "<a b='\xC0\x80'/>"sv,
      "<a>\xE0\x80\x80</a>"sv,
      "<a>\xED\xA0\x80</a>"sv,
      "<a>\xEF\xBF\xBF</a>"sv,
      "<a>\xF4\x90\x80\x80</a>"sv,
      "<a>\xC3</a>"sv,
      "<a>\xE2\x82"sv,
      "<a\xC3/>"sv,
      "<a><!-- -- --></a>"sv,
      "<a><!-- ---></a>"sv,
      "<a><!--></a>"sv,
      "<a><!-"sv,
      "<a><!-- "sv,
      "<a><!-- \x02 --></a>"sv,
      "<a><!x></a>"sv,
      "<![CDATA[x]]><a/>"sv,
      "<a><![CDATA[x]]</a>"sv,
      "<a><![cdata[x]]></a>"sv,
      "<a><?></a>"sv,
      "<a><?p"sv,
      "<a><?p x</a>"sv,
      "<a><?p+x?></a>"sv,
      " <?xml version='1.0'?><a/>"sv,
      "<a/><?xml version='1.0'?>"sv,
      "<?xml?><a/>"sv,
      "<?xml encoding='UTF-8'?><a/>"sv,
      "<?xml version='1.0' encoding='-'?><a/>"sv,
      "<?xml version='1.0' standalone='maybe'?><a/>"sv,
      "<?xml version='1.0'encoding='UTF-8'?><a/>"sv,
      "<?xml version='1.0' x='y'?><a/>"sv,
      "<?xml version='1.0'"sv,
      "<!DOCTYPE><a/>"sv,
      "<!DOCTYPE a"sv,
      "<!DOCTYPE a [<a/>"sv,
      "<!DOCTYPE a [<!ELEMENT a ANY]><a/>"sv,
      "<!DOCTYPE a SYSTEM><a/>"sv,
      "<!DOCTYPE a PUBLIC 'p'><a/>"sv,
      "<!DOCTYPE a [ x ]><a/>"sv,
      "<!DOCTYPE a><!DOCTYPE a><a/>"sv,
      "<a/><!DOCTYPE a>"sv,
      "<a><!DOCTYPE a></a>"sv,
      "<!doctype a><a/>"sv,
      "<!DOCTYPE a [<!ELEMENTa ANY>]><a/>"sv,
  };
  for (const std::string_view document : documents) {
    const Heard ours = hearOurs(document);
    const Heard expat = hearExpat(document);
    EXPECT_EQ(ours.wellFormed, expat.wellFormed) << document;
    EXPECT_EQ(ours.wellFormed, hearLibxml(document).wellFormed) << document;
    EXPECT_EQ(ours.events, expat.events) << document;
    if (ours.wellFormed) {
      EXPECT_EQ(ours.events, hearLibxml(document).events) << document;
    }
  }
}

// Where this parser differs on purpose: whatever needs the document type or another encoding is a mistake.
TEST(XmlParser, NothingExpandsAndTextIsUtf8) {
  const char* bomb =
      "<!DOCTYPE a [<!ENTITY b 'ha'><!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;'><!ENTITY d '&c;&c;&c;&c;&c;&c;&c;&c;'>]>"
      "<a><b/>&d;<c/></a>";
  const Heard heard = hearOurs(bomb);
  EXPECT_FALSE(heard.wellFormed);
  EXPECT_EQ(heard.events, (std::vector<std::string>{"<a", "<b", ">b"}));
  EXPECT_FALSE(hearOurs("<!DOCTYPE a [<!ENTITY b 'ha'>]><a c='&b;'/>").wellFormed);

  const Heard latin = hearOurs("<?xml version='1.0' encoding='ISO-8859-1'?><a b='\xC3\xA9'/>");
  EXPECT_TRUE(latin.wellFormed);
  EXPECT_EQ(latin.events[1], "b=\xC3\xA9");
  EXPECT_TRUE(hearOurs("<?xml version='1.0' encoding='UTF-16'?><a/>").wellFormed);
}

std::string randomDocument(std::mt19937& random) {
  const auto pick = [&random](std::initializer_list<const char*> choices) {
    return std::string(*(choices.begin() + random() % choices.size()));
  };
  std::string text = pick({"", "", "<?xml version=\"1.0\"?>", "<!-- c -->", "<!DOCTYPE a>"});
  std::vector<std::string> open;
  do {
    open.push_back(pick({"a", "b:c", "path", "g", "\xC3\xA9"}));
    text += "<" + open.back();
    for (const char* name : {" d", " e", "\nf:g"})
      if (random() % 2 == 0)
        text += name + pick({"=", " = "}) +
                pick({"''", "'1 2'", "\"M0 0L10 10Z\"", "'&#65;&lt;'", "'\t\r\n'", "\"it's \xE2\x82\xAC\""});
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
  constexpr std::string_view kDamage = "<>/='\"&;!?-[] \n\r\tax:#\x01\x80\xC3\xEF\xF0"sv;
  int wellFormed = 0;
  for (int i = 0; i < 30000; ++i) {
    std::string text = randomDocument(random);
    for (auto n = random() % 3; n > 0; --n) {
      const std::size_t at = random() % text.size();
      const char c = kDamage[random() % kDamage.size()];
      switch (random() % 4) {
        case 0:
          text.insert(at, 1, c);
          break;
        case 1:
          text[at] = c;
          break;
        case 2:
          text.erase(at, 1 + random() % 3);
          break;
        default:
          text.resize(at + 1);
      }
    }
    const Heard ours = hearOurs(text);
    const Heard expat = hearExpat(text);
    const Heard libxml = hearLibxml(text);
    if (ours.wellFormed) {
      ++wellFormed;
      ASSERT_TRUE(expat.wellFormed && libxml.wellFormed) << text;
      ASSERT_EQ(ours.events, expat.events) << text;
      ASSERT_EQ(ours.events, libxml.events) << text;
    } else {
      ASSERT_FALSE(expat.wellFormed && libxml.wellFormed) << text;
    }
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
