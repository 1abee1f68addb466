#include "animation/halvo_animation_controller.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>
#include <vector>

#include "animation/frame_file.h"
#include "animation/halvo_view.h"
#include "assets/halvo_file_manager.h"
#include "platform/foundation/console.h"
#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

void QLHalvoAnimationController::prepare(const std::string& cueName, Callback onSuccess, Callback onFailure) {
  const std::string path = HalvoFileManager::assetsDirectoryPath(cueName) + "/" + kAnimationFile;
  const bool exists = FileManager::fileExistsAtPath(path);
  const std::optional<NSError> error = exists ? loadFrames(path) : posixError(ENOENT);
  failureReason_.clear();
  if (error) ((failureReason_ += path) += ": ") += error->localizedDescription;
  // The answer tells only that it failed; whoever made the file wants to know why.
  if (exists && error) logLine(LogLevel::Error, failureReason_);
  const Callback& answer = error ? onFailure : onSuccess;
  if (answer) answer();
}

std::optional<NSError> QLHalvoAnimationController::loadFrames(const std::string& filePath) {
  animationElements_.clear();
  auto texts = readFrameFile(filePath);
  if (!texts) return texts.error();
  // A text without an "svg" start tag stays as a frame that shows nothing, so that numbers and times hold.
  auto documents = parseFrames(std::move(*texts));
  if (!documents) return documents.error();
  animationElements_ = std::move(*documents);
  return std::nullopt;
}

double QLHalvoAnimationController::duration(const QLHalvoSDKConfig& config) const {
  std::optional<double> last = 0.0;
  double seconds = 0;
  for (std::size_t i = 0; i < animationElements_.size(); ++i) {
    last = config.secondsOfFrame(i);
    seconds += last.value_or(0);
  }
  return last ? std::max(0.0, seconds) : std::numeric_limits<double>::infinity();
}

void QLHalvoAnimationController::play(const std::shared_ptr<QLHalvoView>& view,
                                      const std::shared_ptr<const QLHalvoSDKConfig>& config, Callback onSuccess,
                                      Callback /*onFailure*/) {
  if (!view) return;
  const std::shared_ptr<QLHalvoAnimationView>& animationView = view->animtionView();
  animationView->setSdkConfig(config);
  animationView->playFrames(animationElements_, std::move(onSuccess));
}

}  // namespace quellaro
