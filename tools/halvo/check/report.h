#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "check/findings.h"
#include "platform/foundation/text/utf8.h"

namespace halvo {

using quellaro::printable;

// Both from 1, columns in characters; column 0 where only the line is known.
struct TextPosition {
  std::size_t line = 0;
  std::size_t column = 0;
};

// One thing that was found at one place.
struct Finding {
  FindingId id;
  std::string what;  // in a few words, as it stands there
  std::string file;
  // What does not apply is absent or empty.
  std::optional<std::size_t> frame;  // from 1
  std::string element;
  std::string elementId;
  std::string attribute;
  std::optional<TextPosition> position;  // within the frame, or the file when there is no frame
  std::string howFar = "";               // of what is shown approximately: by how much
  std::string series = "";               // where frames are files of their own: what they are of
};

// The same finding wherever it comes: what differs between places is told of the first.
struct FindingGroup {
  Finding first;
  std::vector<std::size_t> frames;  // ascending
  std::size_t count = 0;
};

// Gathers findings. The same kind at the same file, element and attribute is one group.
class Report {
 public:
  // The position is worked out only when it will be told.
  void add(Finding finding, const std::function<TextPosition()>& position = {});

  // The most severe first, otherwise in the order in which they came.
  std::vector<const FindingGroup*> groups() const;
  // Those that are not told included.
  std::size_t count(Severity severity) const;
  // Findings beyond the bound on what is told.
  std::size_t leftOut() const { return leftOut_[0] + leftOut_[1] + leftOut_[2]; }
  // All that was added but notes, wherever it was.
  std::size_t mistakes() const { return mistakes_; }
  // Nothing that changes the exit status.
  bool isClean() const { return count(Severity::Error) + count(Severity::Warning) == 0; }

 private:
  std::vector<FindingGroup> groups_;
  std::map<std::string, std::size_t> indexes_;
  std::array<std::size_t, 3> leftOut_{};  // by severity
  std::size_t mistakes_ = 0;
};

// "1-4, 7": ascending numbers, runs joined.
std::string rangesOf(const std::vector<std::size_t>& numbers);

}  // namespace halvo
