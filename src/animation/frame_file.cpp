#include "animation/frame_file.h"

#include <cerrno>
#include <new>
#include <optional>
#include <span>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/foundation/console.h"
#include "platform/foundation/json/json_reader.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_manager.h"
#include "svg/parse_budget.h"

namespace quellaro {

Result<FrameTexts> readFrameFile(const std::string& path) {
  try {
    auto bytes = FileManager::readAtPath(path, limits::kCueBytes);
    if (!bytes) return bytes.error();
    return decodeFrames(std::move(*bytes));
  } catch (const std::bad_alloc&) {
    return posixError(ENOMEM);
  }
}

Result<FrameTexts> decodeFrames(std::string bytes) {
  if (bytes.size() > limits::kCueBytes) return posixError(EFBIG);
  auto document = JSONDocument::parse(std::move(bytes));
  if (!document) return document.error();
  auto strings = std::move(*document).takeStrings();
  if (!strings) return FrameTexts();
  if (strings->strings.size() > limits::kFrames)
    return NSError{"NSCocoaErrorDomain", 0, "More than " + std::to_string(limits::kFrames) + " frames"};
  return FrameTexts{std::move(strings->storage), std::move(strings->strings), std::move(strings->spent)};
}

namespace {

// Below this a second thread gains less than it takes to begin one.
constexpr std::size_t kBytesForTwoThreads = 1'000'000;

using Documents = std::vector<std::shared_ptr<const SVGDocument>>;

// Some frames in a row, made on one thread in memory of their own, no further than the budget lasts.
struct Stretch {
  std::span<const std::string_view> texts;
  std::shared_ptr<Arena> arena;
  Documents documents = {};
  std::vector<std::string> printed = {};
  bool hadNoMemory = false;
};

void parse(Stretch& stretch, const std::shared_ptr<const void>& storage, SVGBudget& budget) {
  stretch.documents.reserve(stretch.texts.size());
  for (const std::string_view text : stretch.texts) {
    budget.takeElement(0);
    stretch.documents.push_back(SVGDocument::parse(text, storage, stretch.arena, nullptr, &budget));
    if (budget.exceeded() != nullptr) return;
  }
  stretch.arena->giveBackUnused();
}

// With what is printed kept, and nothing thrown.
void parseApart(Stretch& stretch, const std::shared_ptr<const void>& storage, SVGBudget& budget) noexcept {
  try {
    KeptPrints prints;
    parse(stretch, storage, budget);
    stretch.printed = prints.take();
  } catch (const std::bad_alloc&) {
    stretch.hadNoMemory = true;
  }
}

// How many frames hold the first half of the text.
std::size_t firstHalf(std::span<const std::string_view> texts, std::size_t bytes) {
  std::size_t count = 0;
  for (std::size_t before = 0; before < bytes / 2; ++count) before += texts[count].size();
  return count;
}

// Two halves at once; what they print comes in the order of the frames all the same. Nothing where there is no second
// thread, or where the budget does not last: only one after the other tells how far it does.
std::optional<Documents> parseOnTwoThreads(const FrameTexts& frames, std::size_t bytes,
                                           const std::shared_ptr<std::string>& spent) try {
  const std::span<const std::string_view> texts(frames.texts);
  const std::size_t count = firstHalf(texts, bytes);
  const std::span<char> memory(*spent);
  const std::size_t middle = memory.size() / 2;
  Stretch halves[] = {{texts.first(count), std::make_shared<Arena>(spent, memory.first(middle))},
                      {texts.subspan(count), std::make_shared<Arena>(spent, memory.subspan(middle))}};
  SVGBudget budget;
  std::thread other([&] { parseApart(halves[1], frames.storage, budget); });
  parseApart(halves[0], frames.storage, budget);
  other.join();
  if (halves[0].hadNoMemory || halves[1].hadNoMemory) throw std::bad_alloc();
  if (budget.exceeded() != nullptr) return std::nullopt;
  for (const Stretch& half : halves)
    for (const std::string& text : half.printed) print(text);
  Documents documents = std::move(halves[0].documents);
  documents.insert(documents.end(), halves[1].documents.begin(), halves[1].documents.end());
  return documents;
} catch (const std::system_error&) {
  return std::nullopt;
}

}  // namespace

Result<Documents> parseFrames(FrameTexts frames) {
  try {
    const auto spent = std::make_shared<std::string>(std::move(frames.spent));
    std::size_t bytes = 0;
    for (const std::string_view text : frames.texts) bytes += text.size();
    if (bytes > kBytesForTwoThreads && std::thread::hardware_concurrency() > 1)
      if (auto documents = parseOnTwoThreads(frames, bytes, spent)) return std::move(*documents);
    SVGBudget budget;
    Stretch all{frames.texts, std::make_shared<Arena>(spent, std::span<char>(*spent))};
    parse(all, frames.storage, budget);
    if (budget.exceeded() == nullptr) return std::move(all.documents);
    return NSError{"NSCocoaErrorDomain", 0,
                   "Up to Frame_" + std::to_string(all.documents.size()) + " there are more " + budget.exceeded() +
                       " than a cue may have"};
  } catch (const std::bad_alloc&) {
    return posixError(ENOMEM);
  }
}

}  // namespace quellaro
