#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "check/report.h"
#include "platform/foundation/network/url_error.h"
#include "platform/foundation/network/url_session.h"
#include "platform/foundation/uuid.h"
#include "store/store_source.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr int kFine = 200;
// A server that sends a little now and then would keep a device, and this, for ever.
constexpr int kLongestMilliseconds = 600'000;

struct Reply {
  bool hasCome = false;
  std::optional<std::string> data;
  std::optional<NSHTTPURLResponse> response;
  std::optional<NSError> error;
};

bool isSecure(const std::string& address) {
  const auto url = NSURL::fromString(address);
  return url && url->scheme() == "https";
}

// Asks with the devices' own session: redirects, certificates, proxies and encodings are treated as they treat them.
class ServerSource final : public StoreSource {
 public:
  ServerSource(std::string address, std::int64_t patienceSeconds)
      : address_(std::move(address)), patienceSeconds_(static_cast<double>(patienceSeconds)) {}

  std::vector<StoreAnswer> get(const std::vector<std::string>& paths) override {
    std::vector<Reply> replies = ask(paths);
    std::vector<StoreAnswer> answers;
    for (std::size_t i = 0; i < paths.size(); ++i) answers.push_back(judge(paths[i], std::move(replies[i])));
    return answers;
  }

  std::vector<Remark> lookAround() override {
    std::vector<Remark> remarks;
    if (!isSecure(address_))
      remarks.push_back({Severity::Note, address_,
                         "nothing is encrypted: whoever is on the way can change what devices get",
                         "serve it by https, or sign cues"});
    lookAtMissingFile(remarks);
    return remarks;
  }

 private:
  std::vector<Reply> ask(const std::vector<std::string>& paths) {
    // Kept by the completions: one that is late finds it.
    const auto replies = std::make_shared<std::vector<Reply>>(paths.size());
    if (isSilent_) {
      for (Reply& reply : *replies)
        reply = {true, std::nullopt, std::nullopt,
                 NSError{"halvo", 0, "not asked, as the server has been silent before"}};
      return std::move(*replies);
    }
    const NSURLSession session(NSURLSessionConfiguration::ephemeralSessionConfiguration(), nullptr,
                               MainQueue::shared());
    for (std::size_t i = 0; i < paths.size(); ++i) {
      const auto url = NSURL::fromString(address_ + "/" + paths[i]);
      if (!url) {
        (*replies)[i] = {true, std::nullopt, std::nullopt, NSError{"halvo", 0, "this forms no valid address"}};
        continue;
      }
      URLRequest request(*url, URLRequest::CachePolicy::ReloadIgnoringLocalCacheData, patienceSeconds_);
      request.addValue("application/json", "Content-Type");
      session
          .dataTask(std::move(request),
                    [replies, i](std::optional<std::string> data, std::optional<NSHTTPURLResponse> response,
                                 std::optional<NSError> error) {
                      (*replies)[i] = {true, std::move(data), std::move(response), std::move(error)};
                    })
          .resume();
    }
    MainQueue::shared().runUntilIdle(kLongestMilliseconds);
    for (const Reply& reply : *replies)
      isSilent_ = isSilent_ || !reply.hasCome ||
                  (reply.error && reply.error->code == static_cast<std::int64_t>(URLErrorCode::TimedOut));
    return std::move(*replies);
  }

  StoreAnswer judge(const std::string& path, Reply reply) const {
    StoreAnswer answer;
    if (!reply.hasCome) {
      answer.remarks.push_back({Severity::Error, path, "no end of an answer has come"});
      return answer;
    }
    const int status = reply.response ? reply.response->statusCode : 0;
    if (reply.error) {
      answer.remarks.push_back({Severity::Error, path, reply.error->localizedDescription});
    } else if (!reply.data || reply.data->empty()) {
      answer.remarks.push_back(
          {Severity::Error, path, "the server answers " + std::to_string(status) + ", without a body"});
    } else if (status != kFine) {
      answer.remarks.push_back({Severity::Error, path,
                                "the server answers " + std::to_string(status) + " with a body of " +
                                    std::to_string(reply.data->size()) + " bytes, which a device takes for the file"});
    } else {
      answer.data = std::move(reply.data);
    }
    if (reply.response) lookAtRedirect(path, reply.response->url, answer.remarks);
    return answer;
  }

  void lookAtRedirect(const std::string& path, const std::string& answered, std::vector<Remark>& remarks) const {
    const std::string asked = address_ + "/" + path;
    if (answered.empty() || answered == asked) return;
    if (isSecure(asked) && !isSecure(answered))
      remarks.push_back({Severity::Error, path, "redirected from https to http, to " + printable(answered, 200),
                         "devices follow it, and get what anybody on the way likes"});
    else
      remarks.push_back({Severity::Note, path, "redirected to " + printable(answered, 200)});
  }

  // What devices get that look for what an old version_config.json lists.
  void lookAtMissingFile(std::vector<Remark>& remarks) {
    const std::string path = "missing-" + UUID().uuidString() + ".json";
    const std::vector<Reply> replies = ask({path});
    const Reply& reply = replies.front();
    if (!reply.hasCome || reply.error || !reply.data || reply.data->empty()) return;
    remarks.push_back({Severity::Warning, "a file that is not there",
                       "the server answers " + std::to_string(reply.response ? reply.response->statusCode : 0) +
                           " with a body of " + std::to_string(reply.data->size()) +
                           " bytes: a device that asks for a file too early or too late stores that page as the file",
                       "let errors have no body (docs/publishing.md tells how)"});
  }

  std::string address_;
  double patienceSeconds_;
  // It has been waited for once, which is enough.
  bool isSilent_ = false;
};

}  // namespace

std::unique_ptr<StoreSource> openServerSource(const std::string& address, std::int64_t patienceSeconds) {
  return std::make_unique<ServerSource>(address, patienceSeconds);
}

}  // namespace halvo
