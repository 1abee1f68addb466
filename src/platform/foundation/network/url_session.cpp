#include "platform/foundation/network/url_session.h"

#include <utility>

#include "platform/foundation/network/url_loader.h"
#include "platform/foundation/network/url_transfer.h"

namespace quellaro {

NSURLSessionDataTask::NSURLSessionDataTask(URLRequest request, MainQueue& queue, URLSessionCompletion completion)
    : request_(std::move(request)), queue_(&queue), completion_(std::move(completion)) {}

void NSURLSessionDataTask::resume() {
  if (std::exchange(resumed_, true)) return;
  URLLoader::shared().start(
      std::make_unique<URLTransfer>(std::move(request_), *queue_, std::exchange(completion_, nullptr)));
}

NSURLSession::NSURLSession(const NSURLSessionConfiguration&, std::shared_ptr<NSURLSessionDelegate> delegate,
                           MainQueue& delegateQueue)
    : delegate_(std::move(delegate)), delegateQueue_(&delegateQueue) {}

NSURLSessionDataTask NSURLSession::dataTask(URLRequest request, URLSessionCompletion completion) const {
  return {std::move(request), *delegateQueue_, std::move(completion)};
}

}  // namespace quellaro
