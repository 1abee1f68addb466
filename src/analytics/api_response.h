#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "platform/foundation/error.h"

namespace quellaro {

// What the ingestion endpoint answers.
struct MixpanelAPIResponse {
  static constexpr std::int64_t kAccepted = 1;

  std::int64_t status = 0;
  std::optional<std::string> errorMessage;

  static Result<MixpanelAPIResponse> decode(std::string json);
  // "error" only when there is one.
  std::string encode() const;
};

// The endpoint's own words for why it refused.
struct MixpanelAPIError {
  std::string message;
  friend bool operator==(const MixpanelAPIError&, const MixpanelAPIError&) = default;
};

// Either nothing was answered (the transport's error) or the endpoint complained.
using UploadError = std::variant<NSError, MixpanelAPIError>;

}  // namespace quellaro
