#include "assets/halvo_utility.h"
#include "c_interface/c_interface.h"
#include "platform/avfoundation/audio_session.h"
#include "platform/corehaptics/haptic_engine.h"
#include "platform/foundation/application.h"
#include "platform/foundation/build_information.h"
#include "platform/foundation/storage/bundle.h"

#define QUELLARO_TEXT_OF(number) #number
#define QUELLARO_TEXT(number) QUELLARO_TEXT_OF(number)
#define QUELLARO_VERSION                      \
  QUELLARO_TEXT(QUELLARO_HALVO_VERSION_MAJOR) \
  "." QUELLARO_TEXT(QUELLARO_HALVO_VERSION_MINOR) "." QUELLARO_TEXT(QUELLARO_HALVO_VERSION_PATCH)

using namespace quellaro;

static_assert(std::string_view(QUELLARO_VERSION) == QUELLARO_PROJECT_VERSION);

namespace {

std::string buildReport() {
  return "QuellaroHalvo " QUELLARO_VERSION "\n" + buildInformation() +                                       //
         "bundle: " + NSBundle::library().bundlePath() + ", version " + HalvoUtility::sdkVersion() + "\n" +  //
         "library directory: " + libraryDirectoryPath().value_or("none") + "\n" +                            //
         "application: " + applicationIdentifier().value_or("without identifier") + "\n" +                   //
         "sound: " + AVAudioSession::sharedInstance().output()->description() + "\n" +                       //
         "haptics: " + CHHapticEngine::deviceDescription() + "\n";
}

}  // namespace

const char* quellaro_halvo_version(void) { return QUELLARO_VERSION; }

uint32_t quellaro_halvo_version_number(void) { return QUELLARO_HALVO_VERSION_NUMBER; }

const char* quellaro_halvo_build_report(void) {
  return guarded<const char*>(nullptr, [] {
    static std::string report;
    report = buildReport();
    return report.c_str();
  });
}
