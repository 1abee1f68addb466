#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <optional>

#include "analytics/analytics_data.h"
#include "analytics/analytics_managing.h"
#include "analytics/cue_play.h"
#include "platform/foundation/storage/file_lock.h"

namespace quellaro {

// A play that is to be counted.
struct WaitingPlay {
  std::shared_ptr<const MixpanelAnalyticsData> store;
  CuePlay play;
  // Whose merchant counts is asked when the play is counted.
  std::shared_ptr<const AnalyticsManaging> manager;
  // The attempt to deliver failed records that comes before every play has been made, or another process makes it.
  bool hasSeenResend = false;
};

// Counts the plays of one Library directory, one at a time, whichever manager or thread they come from. A play waits
// for that attempt and for nothing else that takes long. One that cannot be counted, because memory has run out or
// another process keeps the files, waits for the next one. Lives as long as the process. Any thread.
class UsageRecorder {
 public:
  // The one of the present Library directory, shared by everybody in the process.
  static UsageRecorder& forLibrary();

  // Returns when the play has been counted, or what it waits for is under way. May throw bad_alloc, and then nothing
  // has happened.
  void record(WaitingPlay play);

 private:
  // A request is under way for the failed records, or for those of a period that is over. What is sent is then claimed.
  enum class State { Idle, Resending, Sending };
  struct Upload {
    std::shared_ptr<const MixpanelAnalyticsData> store;
    MixpanelAnalyticsData::Events records;
  };

  void proceed() noexcept;
  std::optional<Upload> countUntilUpload();
  std::optional<Upload> claimFor(State kind, const std::shared_ptr<const MixpanelAnalyticsData>& store);
  void send(const Upload& upload);
  void finishUpload();

  std::mutex mutex_;
  State state_ = State::Idle;
  std::optional<FileLock> claim_;
  // The state ends when this is on disk.
  std::optional<bool> outcome_;
  // A list: a play that has been counted is taken off without a copy.
  std::list<WaitingPlay> waiting_;
};

}  // namespace quellaro
