#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace quellaro {

// An upload that has to come before the files are touched again.
struct PendingUpload {
  // Starts it and returns at once; gives whether there will be an outcome, told at most once. Called without the lock.
  std::function<bool(std::function<void(bool success)> outcome)> start;
  // What its outcome means for the files, under the lock; may call for another upload. Never called when the first did
  // not start: whatever was to be done then is not done.
  std::function<std::optional<PendingUpload>(bool success)> finish;
};

// How a step came to its turn.
enum class LedgerTurn {
  AtOnce,
  // It waited in memory for an upload to end. That upload has stood for the attempt it would have made itself.
  AfterUpload,
};

// Reads and rewrites the analytics files, and may call for an upload.
using LedgerStep = std::function<std::optional<PendingUpload>(LedgerTurn)>;

// Who may touch the analytics files of one Library directory: one step at a time, whichever manager or thread it comes
// from, and none while an upload is under way, so that nothing is lost between a read and a rewrite and no record is
// sent by two requests at once. Steps that arrive meanwhile wait in memory, in order, without blocking anybody. Any
// thread.
class UsageLedger : public std::enable_shared_from_this<UsageLedger> {
 public:
  // The one of the present Library directory, shared by everybody in the process.
  static std::shared_ptr<UsageLedger> forLibrary();

  // Returns when the step has run and its upload, if it called for one, has been started; at once when it has to wait.
  void perform(LedgerStep step);

 private:
  void uploadEnded(const PendingUpload& upload, bool success);
  void proceed(std::optional<PendingUpload> upload, std::unique_lock<std::mutex> lock);

  std::mutex mutex_;
  bool uploading_ = false;
  std::deque<LedgerStep> waiting_;
};

}  // namespace quellaro
