#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace halvo {

// Makes `count` values on all cores, and hands them to the calling thread in order. At most a few that are done wait
// for an earlier one.
template <class Value>
class OrderedWork {
 public:
  using Make = std::function<Value(std::size_t index)>;
  // Answers whether to go on.
  using Take = std::function<bool(std::size_t index, Value value)>;

  OrderedWork(std::size_t count, Make make) : count_(count), make_(std::move(make)), done_(window()) {}

  void run(const Take& take) {
    std::vector<std::jthread> threads;
    const Stop stop(*this);
    begin(threads);
    for (std::size_t i = 0; i < count_; ++i)
      if (!take(i, next())) break;
  }

 private:
  // However the calling thread leaves, the others do not wait for it, as it does for them.
  class Stop {
   public:
    explicit Stop(OrderedWork& work) : work_(work) {}
    Stop(const Stop&) = delete;
    Stop& operator=(const Stop&) = delete;
    ~Stop() {
      const std::lock_guard lock(work_.mutex_);
      work_.isStopped_ = true;
      work_.changed_.notify_all();
    }

   private:
    OrderedWork& work_;
  };

  static std::size_t cores() { return std::max(1U, std::thread::hardware_concurrency()); }
  static std::size_t window() { return 4 * cores(); }

  void begin(std::vector<std::jthread>& threads) {
    try {
      while (threads.size() < std::min(count_, cores())) threads.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
      // With fewer it takes longer.
      if (threads.empty()) throw;
    }
  }

  void work() {
    std::unique_lock lock(mutex_);
    while (true) {
      changed_.wait(lock, [this] { return isStopped_ || begun_ == count_ || begun_ < taken_ + done_.size(); });
      if (isStopped_ || begun_ == count_) return;
      const std::size_t index = begun_++;
      lock.unlock();
      Value value = make_(index);
      lock.lock();
      done_[index % done_.size()] = std::move(value);
      changed_.notify_all();
    }
  }

  Value next() {
    std::unique_lock lock(mutex_);
    std::optional<Value>& slot = done_[taken_ % done_.size()];
    changed_.wait(lock, [&] { return slot.has_value(); });
    Value value = std::move(*slot);
    slot.reset();
    ++taken_;
    changed_.notify_all();
    return value;
  }

  const std::size_t count_;
  const Make make_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t begun_ = 0;
  std::size_t taken_ = 0;
  bool isStopped_ = false;
  std::vector<std::optional<Value>> done_;  // a ring
};

}  // namespace halvo
