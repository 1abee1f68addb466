#pragma once

#include <optional>
#include <string_view>

#include "check/findings.h"

namespace halvo {

// What an element means to a standard renderer, and what is to be said about it.
struct ElementRole {
  // Whether a standard renderer draws the shapes within.
  bool drawsContent = false;
  std::optional<FindingId> finding = std::nullopt;
};

// Of any name. Within elements that are not drawn, and that have been told of, nothing more is to be said.
ElementRole roleOf(std::string_view name);

}  // namespace halvo
