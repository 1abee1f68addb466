#include "types/halvo_status.h"

#include <array>
#include <string>

namespace quellaro {

namespace {

struct Row {
  QLHalvoStatus status;
  const char* name;
  const char* description;
};

constexpr std::array<Row, 12> kRows{{
    {QLHalvoStatus::success, "success", "The cue is ready, or has played"},
    {QLHalvoStatus::successWithFallback, "successWithFallback",
     "The cue has played, after its downloaded assets were discarded"},
    {QLHalvoStatus::prepareFailed, "prepareFailed", "The cue could not be prepared"},
    {QLHalvoStatus::soundPrepareFailed, "soundPrepareFailed", "The sound could not be prepared"},
    {QLHalvoStatus::animationPrepareFailed, "animationPrepareFailed", "The animation could not be prepared"},
    {QLHalvoStatus::alreadyPlaying, "alreadyPlaying", "A play is in progress"},
    {QLHalvoStatus::playFailed, "playFailed", "The cue could not be played"},
    {QLHalvoStatus::soundPlayFailed, "soundPlayFailed", "The sound could not be played"},
    {QLHalvoStatus::animationPlayFailed, "animationPlayFailed", "The animation could not be played"},
    {QLHalvoStatus::notPrepared, "notPrepared", "No cue is prepared"},
    {QLHalvoStatus::hapticsPrepareFailed, "hapticsPrepareFailed", "The haptics could not be prepared"},
    {QLHalvoStatus::hapticsPlayFailed, "hapticsPlayFailed", "The haptics could not be played"},
}};

const Row* rowOf(std::int64_t rawValue) {
  for (const Row& row : kRows)
    if (static_cast<std::int64_t>(row.status) == rawValue) return &row;
  return nullptr;
}

class Category final : public std::error_category {
 public:
  const char* name() const noexcept override { return QLHalvoStatusDomain.data(); }
  std::string message(int code) const override {
    const Row* row = rowOf(code);
    return row != nullptr ? row->description : "Unknown status " + std::to_string(code);
  }
};

}  // namespace

std::optional<QLHalvoStatus> halvoStatusFromRawValue(std::int64_t rawValue) {
  const Row* row = rowOf(rawValue);
  return row != nullptr ? std::optional(row->status) : std::nullopt;
}

std::string_view nameOf(QLHalvoStatus status) {
  const Row* row = rowOf(static_cast<std::int64_t>(status));
  return row != nullptr ? row->name : "unknown";
}

std::string_view sentenceOf(QLHalvoStatus status) {
  const Row* row = rowOf(static_cast<std::int64_t>(status));
  return row != nullptr ? row->description : "Not a status of this library";
}

NSError errorOf(QLHalvoStatus status) {
  const auto code = static_cast<std::int64_t>(status);
  return {std::string(QLHalvoStatusDomain), code, halvoStatusCategory().message(static_cast<int>(code))};
}

const std::error_category& halvoStatusCategory() {
  static const Category category;
  return category;
}

std::error_code make_error_code(QLHalvoStatus status) { return {static_cast<int>(status), halvoStatusCategory()}; }

}  // namespace quellaro
