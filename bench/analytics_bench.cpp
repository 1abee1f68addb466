// What one recorded play costs its caller, with 1, 100 and 10,000 records stored: both files read, one replaced. Prints
// medians of wall time, beside the plain reading and replacing of a file of that size.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "analytics/analytics_data.h"
#include "analytics/analytics_manager.h"
#include "assets/halvo_utility.h"
#include "platform/foundation/application.h"
#include "platform/foundation/storage/file_manager.h"

namespace {

using namespace quellaro;

template <class Work>
double medianMilliseconds(int rounds, Work work) {
  std::vector<double> times;
  for (int i = 0; i < rounds; ++i) {
    const auto start = std::chrono::steady_clock::now();
    work();
    times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
  }
  std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
  return times[static_cast<std::size_t>(rounds / 2)];
}

std::string storedRecords(int count) {
  std::vector<MixpanelAggregatedCueEvent> events;
  for (int i = 0; i < count; ++i) {
    const auto merchant =
        QLHalvoMerchant::make("Merchant " + std::to_string(i), "US", "San Francisco", {"5411", "5812"}, std::nullopt);
    events.push_back(
        MixpanelAggregatedCueEvent::create("quellaro", "1", merchant, HalvoUtility::sdkVersion(), true, true));
  }
  return encodeAggregatedCueEvents(events);
}

}  // namespace

int main() {
  std::string directory = (std::filesystem::temp_directory_path() / "analytics-bench-XXXXXX").string();
  if (mkdtemp(directory.data()) == nullptr) return 1;
  setLibraryDirectory(directory);
  const std::string path = directory + MixpanelAnalyticsData::kCurrentFile;
  const auto manager = MixpanelAnalyticsManager::make();
  manager->merchant = QLHalvoMerchant::make("Merchant 0", "US", "San Francisco", {"5411", "5812"}, std::nullopt);
  manager->environment = QLHalvoEnvironment::primary;
  manager->config = QLHalvoAnalyticsInfo{true, "M", ""};

  std::printf("%8s %10s %12s %12s %7s\n", "records", "bytes", "play ms", "file ms", "ratio");
  for (const int count : {1, 100, 10000}) {
    const std::string bytes = storedRecords(count);
    const int rounds = count > 1000 ? 15 : 101;
    FileManager::writeAtomically(bytes, path);
    const double play = medianMilliseconds(
        rounds, [&] { manager->recordPlay("quellaro", "1", QLHalvoType::soundOnly, 800, {}, 800, false); });
    const double file = medianMilliseconds(
        rounds, [&] { FileManager::writeAtomically(FileManager::contentsAtPath(path).value_or(""), path); });
    std::printf("%8d %10zu %12.3f %12.3f %7.2f%s\n", count, bytes.size(), play, file, play / file,
                count == 100 ? "   (bound 16 ms a play)" : "");
  }
  std::filesystem::remove_all(directory);
}
