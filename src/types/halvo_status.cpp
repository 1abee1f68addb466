#include "types/halvo_status.h"

#include <array>

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

}  // namespace quellaro
