#include "analytics/usage_recorder.h"

#include <map>
#include <new>
#include <string>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "platform/foundation/memory/limits.h"

namespace quellaro {

using Data = MixpanelAnalyticsData;

UsageRecorder& UsageRecorder::forLibrary() {
  static std::mutex mutex;
  static auto& recorders = *new std::map<std::string, UsageRecorder>;  // NOLINT(cppcoreguidelines-owning-memory)
  // Without a Library nothing can be stored, and the plays have at least an order.
  const std::string library = HalvoFileManager::libraryFileURL("").value_or("");
  const std::lock_guard lock(mutex);
  return recorders[library];
}

void UsageRecorder::record(WaitingPlay play) {
  {
    const std::lock_guard lock(mutex_);
    if (waiting_.size() >= limits::kWaitingPlays) return;
    waiting_.push_back(std::move(play));
  }
  proceed();
}

// What is left undone for want of memory is done again: once now, and then with the next play.
void UsageRecorder::proceed() noexcept {
  for (int attempt = 0; attempt < 2; ++attempt) {
    try {
      while (const std::optional<Upload> upload = countUntilUpload()) send(*upload);
      return;
    } catch (const std::bad_alloc&) {
      continue;
    }
  }
}

// Gives an upload that is to be sent before this goes on.
std::optional<UsageRecorder::Upload> UsageRecorder::countUntilUpload() {
  const std::lock_guard lock(mutex_);
  if (state_ == State::Resending && !outcome_) return std::nullopt;
  const std::optional<FileLock> files = Data::lockFiles();
  if (!files) return std::nullopt;
  if (outcome_) finishUpload();
  while (!waiting_.empty()) {
    WaitingPlay& next = waiting_.front();
    if (!next.hasSeenResend && !Data::readEvents(Data::kFailedFile).empty()) {
      // It waits for an attempt that cannot be made.
      if (!next.store->canSend()) {
        waiting_.pop_front();
        continue;
      }
      if (state_ != State::Idle) return std::nullopt;
      if (std::optional<Upload> upload = claimFor(State::Resending, next.store)) return upload;
      next.hasSeenResend = true;
    }
    const bool isCounted = next.manager->merchant && !next.play.cueName.empty() && !next.play.cueVersion.empty();
    const bool isClosed = isCounted && next.store->recordPlay(next.manager->merchant, next.play);
    // Before anything else can fail: it is counted once.
    std::list<WaitingPlay> counted;
    counted.splice(counted.begin(), waiting_, waiting_.begin());
    if (!isClosed || state_ != State::Idle || !next.store->canSend()) continue;
    if (std::optional<Upload> upload = claimFor(State::Sending, next.store)) return upload;
  }
  return std::nullopt;
}

// Nothing when another process is at it, or there is nothing to send.
std::optional<UsageRecorder::Upload> UsageRecorder::claimFor(State kind, const std::shared_ptr<const Data>& store) {
  std::optional<FileLock> claim = Data::claimUpload();
  if (!claim) return std::nullopt;
  std::optional<Upload> upload(
      {store, Data::readEvents(kind == State::Resending ? Data::kFailedFile : Data::kCurrentFile)});
  if (upload->records.empty()) {
    if (kind == State::Sending) Data::uploadEnded(true);
    return std::nullopt;
  }
  claim_ = std::move(claim);
  state_ = kind;
  return upload;
}

void UsageRecorder::send(const Upload& upload) {
  const auto answer = [this](bool success) {
    {
      const std::lock_guard lock(mutex_);
      outcome_ = success;
    }
    proceed();
  };
  try {
    if (!upload.store->sendEvents(upload.records, [answer](bool success, const auto&) { answer(success); }))
      answer(false);
  } catch (const std::bad_alloc&) {
    const std::lock_guard lock(mutex_);
    state_ = State::Idle;
    claim_.reset();
    throw;
  }
}

void UsageRecorder::finishUpload() {
  if (state_ == State::Sending) Data::uploadEnded(*outcome_);
  if (state_ == State::Resending) Data::resendEnded(*outcome_);
  // The attempt of those too that came meanwhile.
  if (state_ == State::Resending)
    for (WaitingPlay& waiting : waiting_) waiting.hasSeenResend = true;
  state_ = State::Idle;
  claim_.reset();
  outcome_.reset();
}

}  // namespace quellaro
