#pragma once

namespace quellaro {

// Posted on the default notification centre, without an object, each time a sound has finished playing. Main thread.
inline constexpr const char* QLAudioSessionDeactivated = "QLAudioSessionDeactivated";

}  // namespace quellaro
