#pragma once

#include <functional>
#include <string>

#include "check/cue.h"
#include "check/report.h"
#include "platform/foundation/json/json_writer.h"

namespace halvo {

// "animation.json, frame 3, line 1, column 20": where the finding was met first.
std::string placeOf(const Finding& finding);

// Whether standard output is a terminal whose user likes colours.
bool wantsColor();

// For people: each finding.
std::string findingsText(const Report& report, bool withColor);

// The same, and a line that sums up.
std::string reportText(const std::string& source, const Report& report, const CueFacts& facts, bool withColor);

// For machines: one JSON object on one line. Keys are only ever added, those of a command's own by `more`.
std::string reportJson(const std::string& source, const Report& report, const CueFacts& facts,
                       const std::function<void(quellaro::JSONWriter&)>& more = {});

}  // namespace halvo
