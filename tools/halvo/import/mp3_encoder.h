#pragma once

#include <string>

#include "platform/avfoundation/sound_source.h"

namespace halvo {

// The whole sound as MP3 of variable bit rate, with the tag that tells decoders what the encoder added at the beginning
// and end, so that it starts in time. The error says why a player would not take it.
quellaro::Result<std::string> encodeMp3(quellaro::SoundSource& sound);

}  // namespace halvo
