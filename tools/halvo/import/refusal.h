#pragma once

#include <string>
#include <utility>
#include <variant>

#include "check/report.h"

namespace halvo {

// Why nothing is imported: a finding, told like all others.
using Refusal = Finding;

// What a step of importing gives, or why there is nothing.
template <class Value>
using Importing = std::variant<Value, Refusal>;

inline Finding importFinding(FindingId id, std::string file, std::string what, std::string howFar = "") {
  return {id, std::move(what), std::move(file), std::nullopt, "", "", "", std::nullopt, std::move(howFar)};
}

inline Refusal refusal(std::string file, std::string why) {
  return importFinding(FindingId::Refused, std::move(file), std::move(why));
}

}  // namespace halvo
