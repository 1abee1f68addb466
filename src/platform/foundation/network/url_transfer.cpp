#include "platform/foundation/network/url_transfer.h"

#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

#include "platform/dispatch/clock.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/network/url_error.h"

namespace quellaro {

namespace {

constexpr double kDefaultTimeout = 60;
constexpr double kLongestTimeout = 1e6;
constexpr long kMostRedirects = 20;
constexpr long kReceiveBuffer = 64L << 10;
constexpr const char* kProtocols = "http,https";

std::string environmentValue(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

// Two of the results of verification, as OpenSSL numbers them (X509_V_ERR_...).
constexpr long kCertificateNotYetValid = 9;
constexpr long kCertificateHasExpired = 10;

URLErrorCode codeOfCertificate(long verifyResult) {
  if (verifyResult == kCertificateHasExpired) return URLErrorCode::ServerCertificateHasBadDate;
  if (verifyResult == kCertificateNotYetValid) return URLErrorCode::ServerCertificateNotYetValid;
  return URLErrorCode::ServerCertificateUntrusted;
}

// What curl's result means where that depends on how far the transfer came.
URLErrorCode codeOf(CURLcode result, CURL* handle, bool hasAnswered) {
  // The first address is looked at in advance, so that one that is not supported is a redirect's; without a header it
  // is an answer that is no HTTP.
  if (result == CURLE_UNSUPPORTED_PROTOCOL && !hasAnswered) return URLErrorCode::BadServerResponse;
  if (result == CURLE_PEER_FAILED_VERIFICATION) {
    long verifyResult = 0;
    curl_easy_getinfo(handle, CURLINFO_SSL_VERIFYRESULT, &verifyResult);
    return codeOfCertificate(verifyResult);
  }
  return urlErrorCodeOfCurl(static_cast<int>(result));
}

}  // namespace

URLTransfer::URLTransfer(URLRequest request, MainQueue& queue, URLSessionCompletion completion)
    : request_(std::move(request)),
      queue_(&queue),
      outcome_(std::make_shared<Outcome>(Outcome{std::move(completion), {}, {}, {}})),
      activity_(queue.beginActivity()),
      certificateFile_(environmentValue("SSL_CERT_FILE")),
      certificateDirectory_(environmentValue("SSL_CERT_DIR")),
      timeout_(request_.timeoutInterval > 0 ? std::min(request_.timeoutInterval, kLongestTimeout) : kDefaultTimeout),
      lastActivity_(MonotonicClock{}.now()),
      body_(request_.responseBounds) {}

bool URLTransfer::prepare() {
  const NSURL& url = request_.url;
  if ((url.scheme() != "http" && url.scheme() != "https") || url.host().empty()) {
    failure_ = URLErrorCode::UnsupportedURL;
    return false;
  }
  handle_.reset(curl_easy_init());
  if (handle_ == nullptr || !isHTTPToken(request_.httpMethod)) {
    failure_ = URLErrorCode::Unknown;
    return false;
  }
  CURL* const handle = handle_.get();
  curl_easy_setopt(handle, CURLOPT_URL, url.absoluteString().c_str());
  curl_easy_setopt(handle, CURLOPT_PATH_AS_IS, 1L);
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, kProtocols);
  curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, kProtocols);
  curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(handle, CURLOPT_MAXREDIRS, kMostRedirects);
  curl_easy_setopt(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  // A session has no past: each request has a connection of its own, which ends with it.
  curl_easy_setopt(handle, CURLOPT_FRESH_CONNECT, 1L);
  curl_easy_setopt(handle, CURLOPT_FORBID_REUSE, 1L);
  // No signals, and no waiting for a name resolution that has been given up.
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
  // The time for connecting is shared out among the addresses of a name; noteActivity() sees to the rest.
  curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, std::max(1L, static_cast<long>(timeout_ * 1000)));
  curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, kReceiveBuffer);
  setMethod();
  setHeaderFields();
  setSecurity();
  setCallbacks();
  return true;
}

void URLTransfer::setMethod() {
  CURL* const handle = handle_.get();
  const std::string& method = request_.httpMethod;
  if (request_.httpBody || method == "POST") {
    const std::string_view body = request_.httpBody ? std::string_view(*request_.httpBody) : std::string_view("");
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, body.data());
    curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    if (method != "POST") curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, method.c_str());
  } else if (method == "HEAD") {
    curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
  } else if (method != "GET") {
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, method.c_str());
  }
}

void URLTransfer::addHeaderLine(const std::string& line) {
  // An empty list gives a new one, which is the list from then on.
  curl_slist* const list = curl_slist_append(headerLines_.get(), line.c_str());
  if (list != nullptr && headerLines_ == nullptr) headerLines_.reset(list);
}

void URLTransfer::setHeaderFields() {
  addHeaderLine("User-Agent: QuellaroHalvo");
  addHeaderLine("Accept-Encoding: gzip, deflate");
  // Without it a large body would wait for the server's leave.
  addHeaderLine("Expect:");
  // A semicolon stands for a field whose value is empty.
  for (const auto& [name, value] : request_.headerFields()) {
    std::string line = name;
    line += value.empty() ? ";" : ": ";
    addHeaderLine(line += value);
  }
  curl_easy_setopt(handle_.get(), CURLOPT_HTTPHEADER, headerLines_.get());
  curl_easy_setopt(handle_.get(), CURLOPT_HTTP_CONTENT_DECODING, 0L);
}

void URLTransfer::setSecurity() {
  CURL* const handle = handle_.get();
  curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, 1L);
  curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, 2L);
  if (!certificateFile_.empty()) curl_easy_setopt(handle, CURLOPT_CAINFO, certificateFile_.c_str());
  if (!certificateDirectory_.empty()) curl_easy_setopt(handle, CURLOPT_CAPATH, certificateDirectory_.c_str());
}

void URLTransfer::setCallbacks() {
  CURL* const handle = handle_.get();
  curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, detail_.data());

  curl_write_callback write = [](char* bytes, std::size_t, std::size_t count, void* self) {
    return static_cast<URLTransfer*>(self)->receive({bytes, count});
  };
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, write);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);

  curl_write_callback header = [](char* bytes, std::size_t, std::size_t count, void* self) {
    return static_cast<URLTransfer*>(self)->receiveHeaderLine({bytes, count});
  };
  curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, header);
  curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);

  // Also counts what never comes to receive(): the body of a redirect.
  curl_easy_setopt(handle, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limits::kResponseBytes));
  curl_xferinfo_callback progress = [](void* self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t) {
    if (received <= static_cast<curl_off_t>(limits::kResponseBytes)) return 0;
    static_cast<URLTransfer*>(self)->failure_ = URLErrorCode::DataLengthExceedsMaximum;
    return 1;
  };
  curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, progress);
  curl_easy_setopt(handle, CURLOPT_XFERINFODATA, this);
  curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);

  curl_opensocket_callback open = [](void* self, curlsocktype, curl_sockaddr* address) -> curl_socket_t {
    return static_cast<URLTransfer*>(self)->openSocket(*address);
  };
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETFUNCTION, open);
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETDATA, this);
  curl_closesocket_callback closeSocket = [](void* self, curl_socket_t descriptor) {
    std::erase(static_cast<URLTransfer*>(self)->sockets_, descriptor);
    return close(descriptor);
  };
  curl_easy_setopt(handle, CURLOPT_CLOSESOCKETFUNCTION, closeSocket);
  curl_easy_setopt(handle, CURLOPT_CLOSESOCKETDATA, this);
}

// Each line of a head ends here, the empty one behind it too, and so does what may follow a body in chunks. Another
// head, of the answer behind an interim one or a redirect, begins with the protocol, which cannot be a field's name.
std::size_t URLTransfer::receiveHeaderLine(std::string_view line) {
  if (head_ == Head::Complete && !line.starts_with("HTTP/")) {
    trailerBytes_ += line.size();
    if (trailerBytes_ <= limits::kTrailerBytes) return line.size();
    failure_ = URLErrorCode::DataLengthExceedsMaximum;
    return 0;
  }
  head_ = line == "\r\n" || line == "\n" ? Head::Complete : Head::Begun;
  return line.size();
}

curl_socket_t URLTransfer::openSocket(const curl_sockaddr& address) try {
  sockets_.reserve(sockets_.size() + 1);
  const int descriptor = socket(address.family, address.socktype | SOCK_CLOEXEC, address.protocol);
  if (descriptor < 0) return CURL_SOCKET_BAD;
  sockets_.push_back(descriptor);
  ++socketsSeen_;
  return descriptor;
} catch (const std::bad_alloc&) {
  return CURL_SOCKET_BAD;
}

std::size_t URLTransfer::receive(std::string_view bytes) try {
  if (!decoder_) {
    curl_header* encoding = nullptr;
    const bool isEncoded =
        curl_easy_header(handle_.get(), "Content-Encoding", 0, CURLH_HEADER, -1, &encoding) == CURLHE_OK;
    // Several encodings on top of each other were never offered.
    const bool isOne = !isEncoded || encoding->amount == 1;
    decoder_.emplace(!isOne ? "several" : isEncoded ? encoding->value : "");
  }
  failure_ = decoder_->append(bytes, body_);
  return failure_ ? 0 : bytes.size();
} catch (const std::bad_alloc&) {
  failure_ = URLErrorCode::Unknown;
  return 0;
}

URLTransfer::LineState URLTransfer::lineState() const {
  LineState state{socketsSeen_, sockets_.size(), 0};
  for (const curl_socket_t descriptor : sockets_) {
    tcp_info info{};
    socklen_t size = sizeof info;
    if (getsockopt(descriptor, IPPROTO_TCP, TCP_INFO, &info, &size) == 0)
      state.bytes += info.tcpi_bytes_received + info.tcpi_bytes_acked;
  }
  return state;
}

void URLTransfer::noteActivity(double now) {
  const LineState state = lineState();
  if (state == lastLineState_) return;
  lastLineState_ = state;
  lastActivity_ = now;
}

std::optional<NSHTTPURLResponse> URLTransfer::response() const {
  long statusCode = 0;
  char* address = nullptr;
  if (handle_ == nullptr) return std::nullopt;
  curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &statusCode);
  curl_easy_getinfo(handle_.get(), CURLINFO_EFFECTIVE_URL, &address);
  if (statusCode == 0) return std::nullopt;
  return NSHTTPURLResponse{address != nullptr ? address : request_.url.absoluteString(), static_cast<int>(statusCode)};
}

void URLTransfer::finish(CURLcode result) {
  if (decoder_ && result == CURLE_OK) failure_ = decoder_->finish();
  // A head that breaks off would otherwise pass for an answer without a body.
  if (result == CURLE_OK && head_ != Head::Complete) failure_ = URLErrorCode::NetworkConnectionLost;
  if (failure_) return fail(*failure_);
  if (result != CURLE_OK)
    return fail(codeOf(result, handle_.get(), head_ != Head::None),
                detail_[0] != '\0' ? detail_.data() : curl_easy_strerror(result));
  if (body_.size() > 0) {
    outcome_->data = body_.take();
    if (!outcome_->data) return fail(URLErrorCode::CannotWriteToFile);
  }
  outcome_->response = response();
  complete();
}

void URLTransfer::fail(URLErrorCode code, std::string_view detail) {
  const std::string reason =
      detail.empty() ? request_.url.absoluteString() : request_.url.absoluteString() + ": " + std::string(detail);
  outcome_->response = response();
  outcome_->error = urlError(failure_.value_or(code), reason);
  complete();
}

void URLTransfer::complete() {
  queue_->async([outcome = outcome_] {
    if (outcome->completion)
      outcome->completion(std::move(outcome->data), std::move(outcome->response), std::move(outcome->error));
  });
  // After the completion is queued: in between nobody may find the queue idle.
  activity_.reset();
}

}  // namespace quellaro
