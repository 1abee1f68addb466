#pragma once

#include <string_view>

namespace quellaro {

// The keys of a stored record's properties.
struct MixpanelAggregatedCueEventKeys {
  using Key = std::string_view;
  static constexpr Key epStartDate = "startDate";
  static constexpr Key epEndDate = "endDate";
  static constexpr Key epSdkVersion = "sdkVersion";
  static constexpr Key epMerchant = "merchant";
  static constexpr Key epCueName = "cueName";
  static constexpr Key epCueVersion = "cueVersion";
  static constexpr Key epTotalCount = "total";
  static constexpr Key epSuccessCount = "success";
  static constexpr Key epFailureCount = "failure";
  static constexpr Key epAnimationAndSoundCount = "animationAndSound";
  static constexpr Key epAnimationAndSoundFailureCount = "animationAndSoundFailure";
  static constexpr Key epAnimationOnlyCount = "animationOnly";
  static constexpr Key epAnimationFailureCount = "animationFailure";
  static constexpr Key epSoundOnlyCount = "soundOnly";
  static constexpr Key epSoundFailureCount = "soundFailure";
  static constexpr Key epUnknownFailureCount = "unknownFailure";
  static constexpr Key epMutedPlayCount = "mutedPlay";
  static constexpr Key epHapticsPlayCount = "hapticsPlay";
  static constexpr Key ephapticsEnabled = "hapticsEnabled";
  static constexpr Key ephapticsSupported = "hapticsSupported";
};

// The keys of an uploaded event's properties.
struct MixpanelNetworkAggregatedCueEventKeys {
  using Key = std::string_view;
  static constexpr Key token = "token";
  static constexpr Key time = "time";
  static constexpr Key distintID = "distinct_id";
  static constexpr Key insertID = "$insert_id";
  static constexpr Key startTime = "startTime";
  static constexpr Key endTime = "endTime";
  static constexpr Key sdkVersion = "sdkVersion";
  static constexpr Key applicationID = "applicationId";
  static constexpr Key channel = "channel";
  static constexpr Key merchantName = "merchantName";
  static constexpr Key merchantID = "merchantId";
  static constexpr Key merchantCategories = "mcc";
  static constexpr Key countryCode = "country";
  static constexpr Key cities = "city";
  static constexpr Key cueName = "cueName";
  static constexpr Key cueVersion = "cueVersion";
  static constexpr Key totalCount = "total";
  static constexpr Key successCount = "success";
  static constexpr Key failureCount = "failure";
  static constexpr Key animationAndSoundCount = "animationAndSound";
  static constexpr Key animationAndSoundFailureCount = "animationAndSoundFailure";
  static constexpr Key animationOnlyCount = "animationOnly";
  static constexpr Key animationFailureCount = "animationFailure";
  static constexpr Key soundOnlyCount = "soundOnly";
  static constexpr Key soundFailureCount = "soundFailure";
  static constexpr Key unknownFailureCount = "unknownFailure";
  static constexpr Key mutedPlayCount = "mutedPlay";
  static constexpr Key hapticsPlayCount = "hapticsPlay";
  static constexpr Key hapticsSupported = "hapticsSupported";
  static constexpr Key hapticsEnabled = "hapticsEnabled";
};

}  // namespace quellaro
