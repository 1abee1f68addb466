#pragma once

#include <memory>
#include <utility>

#include "platform/foundation/error.h"

namespace quellaro {

// Where one component of a cue (sound, animation, haptics, a configuration file) stands. To copy one needs no memory,
// so that an outcome can be noted however short it is.
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
  ComponentStatus(Case value) noexcept : case_(value) {}
  static ComponentStatus withError(NSError error) {
    ComponentStatus status(Error);
    status.error_ = std::make_shared<const NSError>(std::move(error));
    return status;
  }

  bool is(Case value) const { return case_ == value; }
  // It does not stand in the way of a play.
  bool isUsable() const { return !is(Error) && !is(Not_Ready); }
  // Null unless this is Error.
  const NSError* error() const {
    // So short that it takes no memory.
    static const NSError generic{"", 0, "Unknown error"};
    return !is(Error) ? nullptr : error_ ? error_.get() : &generic;
  }

  // Two errors are equal when they say the same to a person.
  friend bool operator==(const ComponentStatus& a, const ComponentStatus& b) {
    if (a.case_ != b.case_) return false;
    return !a.is(Error) || a.error()->localizedDescription == b.error()->localizedDescription;
  }

 private:
  Case case_;
  // None for the generic one.
  std::shared_ptr<const NSError> error_;
};

}  // namespace quellaro
