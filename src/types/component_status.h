#pragma once

#include <optional>
#include <utility>

#include "platform/foundation/error.h"

namespace quellaro {

// Where one component of a cue (sound, animation, haptics, a configuration file) stands.
class ComponentStatus {
 public:
  enum Case {
    Error,         // failed; error() tells why
    Not_Required,  // takes no part in this cue
    Not_Ready,     // required and not prepared yet
    Ready,         // prepared and not yet played
    Played,
  };

  // Error carries a generic error then: an empty domain and code 0.
  ComponentStatus(Case value) : case_(value) {
    if (value == Error) error_ = NSError{"", 0, "The operation could not be completed"};
  }
  static ComponentStatus withError(NSError error) {
    ComponentStatus status(Error);
    status.error_ = std::move(error);
    return status;
  }

  bool is(Case value) const { return case_ == value; }
  // It does not stand in the way of a play.
  bool isUsable() const { return !is(Error) && !is(Not_Ready); }
  // Only there when this is Error.
  const std::optional<NSError>& error() const { return error_; }

  // Two errors are equal when they say the same to a person.
  friend bool operator==(const ComponentStatus& a, const ComponentStatus& b) {
    if (a.case_ != b.case_) return false;
    return !a.is(Error) || a.error_->localizedDescription == b.error_->localizedDescription;
  }

 private:
  Case case_;
  std::optional<NSError> error_;
};

}  // namespace quellaro
