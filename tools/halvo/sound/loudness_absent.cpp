#include "sound/loudness.h"

// In the place of loudness.cpp where what measures is not installed.
namespace halvo {

using namespace quellaro;

namespace {
NSError cannotMeasure() { return {"halvo", 0, "this tool was built without what measures loudness"}; }
}  // namespace

struct LoudnessMeter::State {};

bool canMeasureLoudness() { return false; }

Result<LoudnessMeter> LoudnessMeter::make(const SoundFormat& /*format*/, Mono /*mono*/) { return cannotMeasure(); }
LoudnessMeter::LoudnessMeter(std::unique_ptr<State> state) : state_(std::move(state)) {}
LoudnessMeter::LoudnessMeter(LoudnessMeter&&) noexcept = default;
LoudnessMeter& LoudnessMeter::operator=(LoudnessMeter&&) noexcept = default;
LoudnessMeter::~LoudnessMeter() = default;
void LoudnessMeter::add(std::span<const float> /*samples*/) {}
SoundLevels LoudnessMeter::levels() { return {}; }
Result<SoundLevels> measureSound(SoundSource& /*sound*/) { return cannotMeasure(); }

}  // namespace halvo
