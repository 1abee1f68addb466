#pragma once

#include <cstdint>
#include <string_view>

#include "platform/foundation/error.h"

namespace quellaro {

inline constexpr std::string_view kURLErrorDomain = "NSURLErrorDomain";

// Why a request failed, with the platform's codes.
enum class URLErrorCode : std::int64_t {
  Unknown = -1,
  BadURL = -1000,
  TimedOut = -1001,
  UnsupportedURL = -1002,
  CannotFindHost = -1003,
  CannotConnectToHost = -1004,
  NetworkConnectionLost = -1005,
  HTTPTooManyRedirects = -1007,
  BadServerResponse = -1011,
  CannotDecodeRawData = -1015,
  CannotDecodeContentData = -1016,
  DataLengthExceedsMaximum = -1103,
  SecureConnectionFailed = -1200,
  ServerCertificateHasBadDate = -1201,
  ServerCertificateUntrusted = -1202,
  ServerCertificateNotYetValid = -1204,
  CannotWriteToFile = -3003,
};

// What a result of curl's (CURLcode) means, by its number: of whichever curl is there when the program runs.
URLErrorCode urlErrorCodeOfCurl(int result);

// With the platform's sentence for the code, and in brackets what more is known.
NSError urlError(URLErrorCode code, std::string_view detail = {});

}  // namespace quellaro
