#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "analytics/analytics_data.h"
#include "assets/halvo_file_manager.h"
#include "assets/halvo_utility.h"
#include "platform/foundation/storage/user_defaults.h"
#include "support/child_process.h"
#include "support/library_fixture.h"
#include "support/scripted_server.h"

namespace quellaro {
namespace {

namespace fs = std::filesystem;
using Data = MixpanelAnalyticsData;

// Hosts that share one Library, all playing at once. A few rounds; a hundred when QUELLARO_SWEEP is set.
class Processes : public LibraryFixture {
 protected:
  static constexpr int kPlays = 3;

  Processes() : server_([this](const auto& request, const auto& connection) { serve(request, connection); }) {
    writeConfigs("false");
    writeBundleFile("audio.mp3", readFile(fs::path(QUELLARO_BUNDLE) / "audio.mp3").substr(0, 4000));
    writeBundleFile("animation.json", frames("0"));
    writeBundleFile("signature_forte.ahap", "{}");
    writeBundleFile("Info.json",
                    R"({"CFBundleShortVersionString": "2.0.0", "versionConfigUrl": ")" + server_.address() + "\"}");
    writeBundleFile("version_config.json", versionConfig("0"));
  }

  static int rounds() { return std::getenv("QUELLARO_SWEEP") != nullptr ? 100 : 4; }
  static std::string frames(const std::string& version) {
    const std::string frame = R"("<svg viewBox='0 0 9 9'><path d='M0 )" + version + R"(L9 9L0 9Z'/></svg>")";
    return "[" + frame + "," + frame + "]";
  }
  std::string contentOf(const std::string& version, const std::string& name) const {
    return name == "animation.json" ? frames(version) : readFile(bundle() / name);
  }
  std::string versionConfig(const std::string& version) const {
    return R"([{"sdk_versions": ["2.0.0"], "cues": {"quellaro": {"version": ")" + version + R"(", "filepath": ")" +
           version + R"("}}, "analytics": {"enable": true, "frequency": "M", "url": ")" + server_.address() + "/\"}}]";
  }
  void serve(const ScriptedServer::Request& request, const ScriptedServer::Connection& connection) {
    if (request.method == "POST") {
      const bool accepts = requests_++ % 3 != 1;
      for (std::size_t at = 0; accepts && (at = request.body.find("\"total\":", at)) != std::string::npos; ++at)
        delivered_ += std::atoi(request.body.c_str() + at + 8);
      connection.answer(accepts ? R"({"status":1})" : R"({"status":0})");
    } else if (request.path == "/version_config.json") {
      connection.answer(versionConfig("7"));
    } else {
      connection.answer(contentOf("7", fs::path(request.path).filename()));
    }
  }

  // Gives what they have printed.
  std::string playAtOnce(int processes) const {
    std::vector<ChildProcess> children;
    for (int i = 0; i < processes; ++i)
      children.emplace_back(
          std::vector<std::string>{QUELLARO_HALVO_TOOL, "play", "quellaro", "--headless", "--settle", "--times",
                                   std::to_string(kPlays), "--bundle", bundle(), "--library", library()},
          outputOf(i));
    std::string printed;
    for (int i = 0; i < processes; ++i) {
      EXPECT_EQ(children[static_cast<std::size_t>(i)].exitStatus(), 0);
      printed += readFile(outputOf(i));
    }
    return printed;
  }
  std::string outputOf(int process) const { return bundle().string() + "." + std::to_string(process); }
  static int countOf(const std::string& part, const std::string& text) {
    int count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
    return count;
  }

  // Of a year long gone.
  static void leaveRecord(const char* file, std::int64_t plays) {
    const auto merchant = QLHalvoMerchant::make("Shop", "US", std::nullopt, {"1"}, std::nullopt);
    auto record = MixpanelAggregatedCueEvent::create("quellaro", "0", merchant, "2.0.0", false, false);
    record.properties.startDate = record.properties.endDate = {1000};
    record.properties.totalCount = plays;
    EXPECT_TRUE(Data::writeEvents({record}, file));
  }
  static std::int64_t playsStored() {
    std::int64_t plays = 0;
    for (const char* file : {Data::kCurrentFile, Data::kFailedFile, Data::kNextCurrentFile})
      for (const MixpanelAggregatedCueEvent& record : Data::readEvents(file)) plays += record.properties.totalCount;
    return plays;
  }

  std::atomic<int> requests_ = 0;
  std::atomic<std::int64_t> delivered_ = 0;
  ScriptedServer server_;
};

TEST_F(Processes, EveryPlayIsCountedOnceAndOneSetIsInstalled) {
  for (int round = 0; round < rounds(); ++round) {
    SCOPED_TRACE(round);
    const int processes = round % 2 == 0 ? 2 : 4;
    fs::remove_all(library());
    delivered_ = 0;
    std::int64_t plays = processes * kPlays;
    if (round % 4 < 2) {
      leaveRecord(Data::kCurrentFile, 100);
      plays += 100;
    }
    if (round % 3 != 1) {
      leaveRecord(Data::kFailedFile, 1000);
      plays += 1000;
    }
    const std::string printed = playAtOnce(processes);
    EXPECT_EQ(countOf("play: 80", printed), processes * kPlays) << printed;
    EXPECT_EQ(delivered_ + playsStored(), plays);
    EXPECT_FALSE(fs::exists(library().string() + Data::kNextCurrentFile));

    EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "7");
    for (const char* name : kCueFiles)
      EXPECT_EQ(readFile(library() / "halvo_assets_active" / "quellaro" / name), contentOf("7", name));
    EXPECT_TRUE(fs::is_empty(library() / "halvo_assets_temp"));
    ASSERT_FALSE(HasFailure());
  }
}

}  // namespace
}  // namespace quellaro
