#include "platform/foundation/network/url_error.h"

#include <string>

namespace quellaro {

namespace {

std::string_view sentence(URLErrorCode code) {
  switch (code) {
    case URLErrorCode::Unknown:
      return "An unknown error occurred.";
    case URLErrorCode::BadURL:
      return "The URL is not valid.";
    case URLErrorCode::TimedOut:
      return "The request timed out.";
    case URLErrorCode::UnsupportedURL:
      return "The URL is not supported.";
    case URLErrorCode::CannotFindHost:
      return "A server with the specified hostname could not be found.";
    case URLErrorCode::CannotConnectToHost:
      return "Could not connect to the server.";
    case URLErrorCode::NetworkConnectionLost:
      return "The network connection was lost.";
    case URLErrorCode::HTTPTooManyRedirects:
      return "There were too many HTTP redirects.";
    case URLErrorCode::BadServerResponse:
      return "There was a bad response from the server.";
    case URLErrorCode::CannotDecodeRawData:
      return "The response could not be decoded.";
    case URLErrorCode::CannotDecodeContentData:
      return "The response has an unknown content encoding.";
    case URLErrorCode::DataLengthExceedsMaximum:
      return "The resource exceeds the maximum size.";
    case URLErrorCode::SecureConnectionFailed:
      return "A secure connection to the server could not be made.";
    case URLErrorCode::ServerCertificateHasBadDate:
      return "The certificate of this server has expired.";
    case URLErrorCode::ServerCertificateUntrusted:
      return "The certificate of this server is not trusted.";
    case URLErrorCode::ServerCertificateNotYetValid:
      return "The certificate of this server is not yet valid.";
  }
  return "An unknown error occurred.";
}

}  // namespace

NSError urlError(URLErrorCode code, std::string_view detail) {
  NSError error{std::string(kURLErrorDomain), static_cast<std::int64_t>(code), std::string(sentence(code))};
  if (!detail.empty()) {
    error.localizedDescription += " (";
    error.localizedDescription += detail;
    error.localizedDescription += ')';
  }
  return error;
}

}  // namespace quellaro
