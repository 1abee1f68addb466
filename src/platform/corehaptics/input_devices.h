#pragma once

#include <linux/input.h>

#include <string>
#include <vector>

namespace quellaro {

// The system calls that a force-feedback device is used through. What fails gives the negative errno value.
class InputDevices {
 public:
  virtual ~InputDevices() = default;
  // The names ("event3") of the input devices that have a device file, in the kernel's order.
  virtual std::vector<std::string> names() = 0;
  // The force-feedback abilities of a device as the kernel writes them into its file system: words of `long`, in
  // hexadecimal, the highest first. Everybody may read them, unlike the device.
  virtual std::string forceFeedback(const std::string& name) = 0;

  virtual int open(const std::string& path) = 0;
  // Makes an effect when its id is -1, which is then set; changes that effect otherwise, while it plays too.
  virtual int upload(int device, ff_effect& effect) = 0;
  virtual int erase(int device, int effectId) = 0;
  virtual int write(int device, const input_event& event) = 0;
  virtual void close(int device) = 0;
};

// The machine's.
class SystemInputDevices final : public InputDevices {
 public:
  std::vector<std::string> names() override;
  std::string forceFeedback(const std::string& name) override;
  int open(const std::string& path) override;
  int upload(int device, ff_effect& effect) override;
  int erase(int device, int effectId) override;
  int write(int device, const input_event& event) override;
  void close(int device) override;
};

}  // namespace quellaro
