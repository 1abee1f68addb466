#pragma once

namespace quellaro {

// Lets so many changes of the file system succeed on this thread; the next one is cut short, and none comes after it:
// what is on the disk then is what a process leaves that was killed there. With `kills` the process is killed indeed.
class FailingChanges {
 public:
  explicit FailingChanges(long succeeding, bool kills = false);
  FailingChanges(const FailingChanges&) = delete;
  FailingChanges& operator=(const FailingChanges&) = delete;
  // Whether one has failed.
  bool end();
  ~FailingChanges() { end(); }
};

// As on a file system that cannot exchange two directories.
void setCanExchange(bool can);

}  // namespace quellaro
