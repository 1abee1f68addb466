#pragma once

#include <expat.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/xml/xml_parser.h"

// One document read by two parsers, each telling what it heard in the same words.
namespace quellaro {

struct Heard {
  bool wellFormed = false;
  std::vector<std::string> events;

  void start(std::string_view name) { events.push_back("<" + std::string(name)); }
  void attribute(std::string_view name, std::string_view value) {
    events.push_back(std::string(name).append("=").append(value));
  }
  void end(std::string_view name) { events.push_back(">" + std::string(name)); }
};

inline Heard hearOurs(std::string_view text) {
  struct Delegate : NSXMLParserDelegate {
    Heard heard;
    void parserDidStartElement(std::string_view name, XMLAttributes attributes) override {
      heard.start(name);
      for (const XMLAttribute& one : attributes) heard.attribute(one.name, one.value);
    }
    void parserDidEndElement(std::string_view name) override { heard.end(name); }
  } delegate;
  Arena arena(1024);
  NSXMLParser parser(text, arena);
  parser.setDelegate(&delegate);
  delegate.heard.wellFormed = parser.parse();
  return delegate.heard;
}

inline Heard hearExpat(std::string_view text) {
  Heard heard;
  XML_Parser parser = XML_ParserCreate("UTF-8");
  XML_SetUserData(parser, &heard);
  XML_SetElementHandler(
      parser,
      [](void* data, const char* name, const char** attributes) {
        static_cast<Heard*>(data)->start(name);
        for (; *attributes != nullptr; attributes += 2)
          static_cast<Heard*>(data)->attribute(attributes[0], attributes[1]);
      },
      [](void* data, const char* name) { static_cast<Heard*>(data)->end(name); });
  heard.wellFormed = XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) == XML_STATUS_OK;
  XML_ParserFree(parser);
  return heard;
}

}  // namespace quellaro
