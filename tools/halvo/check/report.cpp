#include "check/report.h"

#include <algorithm>
#include <utility>

namespace halvo {

namespace {

// Nobody reads more, and each position takes a walk through its frame.
constexpr std::size_t kMostGroups = 500;

// Of what others say, such as the path to a wrong key.
constexpr std::size_t kLongestWhat = 500;

// Frames that were imported come from a file each, with a figure each: what many of them have in common is told once.
std::string keyOfImported(const Finding& finding) {
  std::string what = finding.what;
  std::erase_if(what, [](char c) { return (c >= '0' && c <= '9') || c == '.'; });
  std::string key = std::to_string(static_cast<int>(finding.id));
  for (const std::string* part : {&finding.element, &finding.elementId, &std::as_const(what)})
    key.append(1, '\0').append(*part);
  return key;
}

std::string keyOf(const Finding& finding) {
  if (finding.id >= FindingId::Approximated) return keyOfImported(finding);
  std::string key = std::to_string(static_cast<int>(finding.id));
  for (const std::string* part : {finding.series.empty() ? &finding.file : &finding.series, &finding.element,
                                  &finding.elementId, &finding.attribute})
    key.append(1, '\0').append(*part);
  return key;
}

}  // namespace

void Report::add(Finding finding, const std::function<TextPosition()>& position) {
  if (kindOf(finding.id).severity != Severity::Note) ++mistakes_;
  const std::string key = keyOf(finding);
  auto known = indexes_.find(key);
  if (known == indexes_.end()) {
    if (groups_.size() == kMostGroups) {
      ++leftOut_[static_cast<std::size_t>(kindOf(finding.id).severity)];
      return;
    }
    if (position) finding.position = position();
    finding.what = printable(finding.what, kLongestWhat);
    known = indexes_.emplace(key, groups_.size()).first;
    groups_.push_back({std::move(finding), {}, 0});
    if (groups_.back().first.frame) groups_.back().frames.push_back(*groups_.back().first.frame);
    groups_.back().count = 1;
    return;
  }
  FindingGroup& group = groups_[known->second];
  ++group.count;
  if (finding.frame && (group.frames.empty() || group.frames.back() != *finding.frame))
    group.frames.push_back(*finding.frame);
}

std::vector<const FindingGroup*> Report::groups() const {
  std::vector<const FindingGroup*> sorted;
  for (const FindingGroup& group : groups_) sorted.push_back(&group);
  std::stable_sort(sorted.begin(), sorted.end(), [](const FindingGroup* a, const FindingGroup* b) {
    return kindOf(a->first.id).severity > kindOf(b->first.id).severity;
  });
  return sorted;
}

std::size_t Report::count(Severity severity) const {
  const auto isSo = [&](const FindingGroup& group) { return kindOf(group.first.id).severity == severity; };
  return static_cast<std::size_t>(std::count_if(groups_.begin(), groups_.end(), isSo)) +
         leftOut_[static_cast<std::size_t>(severity)];
}

std::string rangesOf(const std::vector<std::size_t>& numbers) {
  std::string text;
  for (std::size_t i = 0; i < numbers.size();) {
    std::size_t last = i;
    while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
    text += (text.empty() ? "" : ", ") + std::to_string(numbers[i]);
    if (last > i) text += (last == i + 1 ? ", " : "-") + std::to_string(numbers[last]);
    i = last + 1;
  }
  return text;
}

}  // namespace halvo
