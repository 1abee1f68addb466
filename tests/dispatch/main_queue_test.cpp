#include "platform/dispatch/main_queue.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <limits>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "platform/dispatch/group.h"
#include "platform/dispatch/manual_clock.h"
#include "platform/dispatch/serial_queue.h"
#include "support/main_queue_driver.h"

namespace quellaro {
namespace {

bool isReadable(int descriptor) {
  pollfd poller{descriptor, POLLIN, 0};
  return poll(&poller, 1, 0) == 1;
}

TEST(MainQueue, ADrainRunsInOrderWhatWasQueuedBeforeItAndTheDescriptorTellsOfMore) {
  MainQueue queue;
  std::string order;
  queue.setIdleHandler([&] { order += '.'; });
  EXPECT_FALSE(isReadable(queue.fileDescriptor()));
  queue.async([&] {
    order += 'a';
    queue.async([&] { order += 'c'; });
  });
  queue.async([&] { order += 'b'; });
  EXPECT_TRUE(isReadable(queue.fileDescriptor()));
  EXPECT_EQ(order, "");
  EXPECT_TRUE(queue.drain());
  EXPECT_EQ(order, "ab");
  EXPECT_TRUE(isReadable(queue.fileDescriptor()));
  EXPECT_TRUE(queue.drain());
  EXPECT_EQ(order, "abc.") << "idle after the last work only";
  EXPECT_FALSE(isReadable(queue.fileDescriptor()));
  EXPECT_FALSE(queue.drain());
}

TEST(MainQueue, WorkBehindAPieceThatThrowsRunsInTheNextDrain) {
  MainQueue queue;
  std::string order;
  queue.async([&] {
    queue.async([&] { order += 'c'; });
    throw std::bad_alloc();
  });
  queue.async([&] { order += 'b'; });
  EXPECT_THROW(queue.drain(), std::bad_alloc);
  EXPECT_TRUE(isReadable(queue.fileDescriptor()));
  EXPECT_TRUE(queue.drain());
  EXPECT_EQ(order, "bc");
}

TEST(MainQueue, TimersFireByDeadlineAndThenInTheOrderOfScheduling) {
  MainQueue queue;
  ManualClock clock(100);
  queue.setClock(&clock);
  std::string order;
  queue.asyncAfter(2, [&] { order += 'c'; });
  queue.asyncAfter(1, [&] { order += 'a'; });
  queue.asyncAfter(1, [&] { order += 'b'; });
  EXPECT_EQ(queue.nextDeadline(), 101);
  for (const double none : {-5.0, std::numeric_limits<double>::quiet_NaN()})
    queue.asyncAfter(none, [&] { order += '0'; });
  queue.drain();
  EXPECT_EQ(order, "00");
  clock.set(102);
  queue.drain();
  EXPECT_EQ(order, "00abc");
  EXPECT_TRUE(queue.isIdle());
}

TEST(MainQueue, AnnouncedWorkKeepsTheQueueFromBeingIdle) {
  MainQueue queue;
  PendingActivity activity = queue.beginActivity();
  EXPECT_FALSE(queue.isIdle());
  std::thread other([&queue, held = std::move(activity)]() mutable {
    queue.async([] {});
    held.reset();
  });
  queue.runUntilIdle(-1);
  other.join();
  EXPECT_TRUE(queue.isIdle());
  activity = queue.beginActivity();
  EXPECT_FALSE(queue.runUntilIdle(1)) << "the limit";
}

TEST(DispatchGroup, NotifiesOnceEmptyAndNeverInsideTheCall) {
  MainQueue queue;
  int notified = 0;
  DispatchGroup group;
  group.leave();  // of nothing
  group.notify(queue, [&] { ++notified; });
  EXPECT_EQ(notified, 0);
  queue.drain();
  EXPECT_EQ(notified, 1);

  group.enter();
  group.enter();
  group.notify(queue, [&] { ++notified; });
  group.leave();
  queue.drain();
  EXPECT_EQ(notified, 1);
  group.leave();
  queue.drain();
  EXPECT_EQ(notified, 2);
}

TEST(DispatchGroup, DroppedWhileEnteredItFreesItsNotificationsUnrun) {
  MainQueue queue;
  auto held = std::make_shared<int>(0);
  {
    DispatchGroup group;
    group.enter();
    group.notify(queue, [held] { ++*held; });
  }
  queue.drain();
  EXPECT_EQ(*held, 0);
  EXPECT_EQ(held.use_count(), 1);
}

TEST(SerialQueue, KeepsTheOrderOfAsynchronousAndSynchronousWork) {
  SerialQueue queue("a label longer than a thread's name", QualityOfService::Background);
  EXPECT_EQ(queue.label(), "a label longer than a thread's name");
  std::vector<int> order;
  std::vector<int> expected;
  for (int i = 0; i < 100; ++i) {
    expected.push_back(i);
    queue.async([&order, i] { order.push_back(i); });
  }
  queue.sync([&order] { order.push_back(100); });
  expected.push_back(100);
  EXPECT_EQ(order, expected);
}

TEST(SerialQueue, GoesOnAfterWorkThatThrows) {
  SerialQueue queue("test", QualityOfService::Default);
  int ran = 0;
  EXPECT_THROW(queue.sync([] { throw std::bad_alloc(); }), std::bad_alloc);
  queue.async([] { throw std::bad_alloc(); });
  queue.async([&] { ++ran; });
  queue.sync([&] { ++ran; });
  EXPECT_EQ(ran, 2);
}

TEST(SerialQueue, WorkOutlivesTheQueueAndIsAnnouncedToTheMainQueue) {
  MainQueueDriver driver;
  std::atomic<bool> ran = false;
  {
    SerialQueue("gone", QualityOfService::Default).async([&] { ran = true; });
  }
  driver.settle();
  EXPECT_TRUE(ran);
}

}  // namespace
}  // namespace quellaro
