#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/foundation/storage/file_descriptor.h"

namespace halvo {

// Notices when a source is saved: a file, the files of a cue's directory or of a folder of drawings, however a program
// writes them: in place, by renaming, or by putting a new directory in the place of the old.
class FileWatcher {
 public:
  // `onChange` is called on a thread of the watcher's, some milliseconds after the last of several changes. Null when
  // the system watches nothing more, which `problem` tells.
  static std::unique_ptr<FileWatcher> watch(const std::string& path, std::function<void()> onChange,
                                            std::string& problem);
  ~FileWatcher();
  FileWatcher(const FileWatcher&) = delete;
  FileWatcher& operator=(const FileWatcher&) = delete;

 private:
  // A directory, and the one name in it that matters; empty for all that a source may consist of.
  struct Place {
    std::string directory;
    std::string name;
    int descriptor = -1;
  };

  FileWatcher(const std::string& path, std::function<void()> onChange);
  bool start();
  void addWatches();
  void run();
  // Waits for changes, and tells whether one mattered; nothing when it is to stop.
  enum class Noticed { Nothing, Change, Stop };
  Noticed wait(int milliseconds);
  bool readChanges();
  bool matters(int descriptor, const std::string& name) const;

  std::function<void()> onChange_;
  std::vector<Place> places_;
  quellaro::FileDescriptor changes_;
  quellaro::FileDescriptor stop_;
  std::thread thread_;
};

}  // namespace halvo
