#pragma once

#include <string>

#include "platform/foundation/storage/file_lock.h"

namespace quellaro {

// What the cue's controller asks of the remote upgrade. Main thread.
class UpgradeControlling {
 public:
  virtual ~UpgradeControlling() = default;

  // The normalised name of the cue that checkForUpgrade and discardActiveCueAssets are about.
  virtual void setPreparingHalvoCue(const std::string& cueName) = 0;
  // Runs one check; returns without waiting for the network.
  virtual void checkForUpgrade() = 0;
  // To be held while the files of a cue are read, one after the other: meanwhile no process replaces them. It does not
  // keep a process waiting that is to answer; read without it, if need be.
  virtual FileLock beginReading(const std::string& /*cueName*/) { return {}; }
  // Stores the empty text as the cue's version and removes its downloaded assets, so that it is read from the bundle.
  // Not when another process has installed others since they were last read.
  virtual void discardActiveCueAssets() = 0;
  // The last check found a newer version and started its download.
  virtual bool didRemoteUpgradeFound() const = 0;
  // A downloaded set was activated at some time in this object's life.
  virtual bool didRemoteUpgradeSuccessful() const = 0;
};

}  // namespace quellaro
