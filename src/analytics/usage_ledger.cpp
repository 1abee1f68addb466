#include "analytics/usage_ledger.h"

#include <map>
#include <utility>

#include "assets/halvo_file_manager.h"

namespace quellaro {

std::shared_ptr<UsageLedger> UsageLedger::forLibrary() {
  static std::mutex mutex;
  static std::map<std::string, std::weak_ptr<UsageLedger>>& ledgers =
      *new std::map<std::string, std::weak_ptr<UsageLedger>>;  // NOLINT(cppcoreguidelines-owning-memory)
  // Without a Library nothing can be stored, and the plays have at least an order.
  const std::string library = HalvoFileManager::libraryFileURL("").value_or("");
  const std::lock_guard lock(mutex);
  std::erase_if(ledgers, [](const auto& entry) { return entry.second.expired(); });
  std::shared_ptr<UsageLedger> ledger = ledgers[library].lock();
  if (!ledger) ledgers[library] = ledger = std::make_shared<UsageLedger>();
  return ledger;
}

void UsageLedger::perform(LedgerStep step) {
  std::unique_lock lock(mutex_);
  if (uploading_) {
    waiting_.push_back(std::move(step));
    return;
  }
  proceed(step(LedgerTurn::AtOnce), std::move(lock));
}

void UsageLedger::uploadEnded(const PendingUpload& upload, bool success) {
  std::unique_lock lock(mutex_);
  proceed(upload.finish(success), std::move(lock));
}

// Goes on until an upload is under way or nobody waits.
void UsageLedger::proceed(std::optional<PendingUpload> upload, std::unique_lock<std::mutex> lock) {
  while (true) {
    uploading_ = upload.has_value();
    if (upload) {
      lock.unlock();
      // Only the outcome keeps the upload, and with it the manager whose play comes after it.
      auto pending = std::make_shared<PendingUpload>(std::move(*upload));
      const bool started = pending->start(
          [ledger = shared_from_this(), pending](bool success) { ledger->uploadEnded(*pending, success); });
      if (started) return;
      lock.lock();
      uploading_ = false;
    }
    if (waiting_.empty()) return;
    const LedgerStep step = std::move(waiting_.front());
    waiting_.pop_front();
    upload = step(LedgerTurn::AfterUpload);
  }
}

}  // namespace quellaro
