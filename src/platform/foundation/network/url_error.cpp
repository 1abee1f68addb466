#include "platform/foundation/network/url_error.h"

#include <curl/curl.h>

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
    case URLErrorCode::CannotWriteToFile:
      return "The response could not be written to a file.";
  }
  return "An unknown error occurred.";
}

// Results that curls newer than the oldest header we build with have; a library may be newer than its header.
constexpr int kCurlTooLarge = 100;     // since 8.6: more or longer header fields than it takes
constexpr int kCurlECHRequired = 101;  // since 8.8: the connection could not be encrypted as far as it had to be

}  // namespace

URLErrorCode urlErrorCodeOfCurl(int result) {
  switch (result) {
    case CURLE_UNSUPPORTED_PROTOCOL:
      return URLErrorCode::UnsupportedURL;
    case CURLE_URL_MALFORMAT:
      return URLErrorCode::BadURL;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return URLErrorCode::CannotFindHost;
    case CURLE_COULDNT_CONNECT:
    case CURLE_PROXY:
      return URLErrorCode::CannotConnectToHost;
    case CURLE_OPERATION_TIMEDOUT:
      return URLErrorCode::TimedOut;
    case CURLE_TOO_MANY_REDIRECTS:
      return URLErrorCode::HTTPTooManyRedirects;
    case CURLE_FILESIZE_EXCEEDED:
    case kCurlTooLarge:
      return URLErrorCode::DataLengthExceedsMaximum;
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
      return URLErrorCode::NetworkConnectionLost;
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_HTTP2:
    case CURLE_BAD_CONTENT_ENCODING:
      return URLErrorCode::BadServerResponse;
    case CURLE_PEER_FAILED_VERIFICATION:
      return URLErrorCode::ServerCertificateUntrusted;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
    case kCurlECHRequired:
      return URLErrorCode::SecureConnectionFailed;
    default:
      return URLErrorCode::Unknown;
  }
}

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
