#pragma once

#include <string>

namespace quellaro {

// What the cue's controller asks of the remote upgrade. Main thread.
class UpgradeControlling {
 public:
  virtual ~UpgradeControlling() = default;

  // The normalised name of the cue that checkForUpgrade and discardActiveCueAssets are about.
  virtual void setPreparingHalvoCue(const std::string& cueName) = 0;
  // Runs one check; returns without waiting for the network.
  virtual void checkForUpgrade() = 0;
  // Stores the empty text as the cue's version and removes its downloaded assets, so that it is read from the bundle.
  virtual void discardActiveCueAssets() = 0;
  // The last check found a newer version and started its download.
  virtual bool didRemoteUpgradeFound() const = 0;
  // A downloaded set was activated at some time in this object's life.
  virtual bool didRemoteUpgradeSuccessful() const = 0;
};

}  // namespace quellaro
