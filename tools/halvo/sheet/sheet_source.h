#pragma once

#include <optional>
#include <string>
#include <vector>

#include "picture/frame_times.h"
#include "picture/moments.h"
#include "platform/corehaptics/haptic_curve.h"
#include "platform/foundation/error.h"
#include "sheet/waveform.h"

namespace halvo {

// What a contact sheet shows.
struct SheetSource {
  std::string name;
  std::vector<std::string> frames;  // the documents' texts
  std::optional<FrameTimes> times;
  std::optional<Waveform> sound;
  bool expectsHaptics = false;                   // says the configuration: only then they are read
  double soundStart = 0;                         // seconds from the start of the play
  std::optional<quellaro::HapticCurve> haptics;  // felt from the start of the play
  Moments moments;                               // once they have been looked for
  std::vector<std::string> notes;                // what could not be shown, and why

  // Seconds that the time axis needs; 0 when there is no time to show.
  double duration() const;
};

// From a cue directory, an animation.json (with what lies beside it) or an SVG document. Fails when there is no frame
// to show; anything else that is missing or unreadable becomes a note.
quellaro::Result<SheetSource> readSheetSource(const std::string& path);

// Looks at every frame.
Moments momentsOf(const SheetSource& source);

}  // namespace halvo
