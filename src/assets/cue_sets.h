#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/foundation/storage/file_lock.h"

namespace quellaro {

// The downloaded sets of the cues in the Library directory, which several processes may share. Putting another set in a
// cue's place, taking one away and claiming a staging directory are done with the lock, all at once for whoever reads
// with it. It is never held for longer than it takes to rename, remove and read small files.
class CueSets {
 public:
  // Which directory lies in a cue's place, if one does; another one never has the same.
  struct Identity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    long long modifiedSeconds = 0;
    long modifiedNanoseconds = 0;
    friend bool operator==(const Identity&, const Identity&) = default;
  };
  // A directory that a download has for itself as long as this lives, in whatever process.
  struct Staged {
    std::string directory;
    FileLock claim;
  };

  // Nothing when another process keeps it.
  static std::optional<FileLock> lock(FileLock::Kind kind);
  static std::optional<Identity> identityOf(const std::string& cueName);

  // With the lock. Staging: <Library>/halvo_assets_temp/<cue>, which exists, or one beside it while others have that.
  // What killed processes have left beside it goes. Nothing for a cue that can have no directory.
  static std::optional<Staged> stage(const std::string& cueName);
  // Puts the staged set in the place of the active one, which goes.
  static void install(const Staged& staged, const std::string& cueName);
  static void discard(const std::string& cueName);

  // Finishes what a process has left that was killed between taking the old set away and putting the new one there,
  // which takes two steps on file systems that cannot exchange two directories. Takes the lock when there is anything.
  static void mend(const std::string& cueName);
};

}  // namespace quellaro
