#pragma once

#include <cstddef>

// Every bound on what comes from outside. Each lies far above any honest cue, so that meeting one means a mistake or
// malice.
namespace quellaro::limits {

// A file that is read whole. The heaviest honest file is animation.json: 1200 frames of 34 KB are 40 MB.
inline constexpr std::size_t kFileBytes = std::size_t{256} << 20;

// What one cue's animation holds altogether: within these, preparing, checking and publishing it take less than 256 MB
// each. The heaviest honest cue has 41 MB, 88,000 elements with four attributes each, and three million points.
inline constexpr std::size_t kCueBytes = std::size_t{48} << 20;
inline constexpr std::size_t kCueElements = 140'000;
inline constexpr std::size_t kCueAttributes = 600'000;
inline constexpr std::size_t kCuePoints = std::size_t{4} << 20;

// Of one cue: an hour at 27 frames a second. A frame takes some hundreds of bytes however short its text is.
inline constexpr std::size_t kFrames = 100'000;

// Of one XML document. Nothing recurses, but each open element and each element read takes memory (some 200 bytes);
// an honest frame has thousands of elements, a few deep, with a few attributes each.
inline constexpr std::size_t kXmlElements = 2'000'000;
inline constexpr std::size_t kXmlDepth = 1'500'000;
inline constexpr std::size_t kXmlAttributes = 10'000;
// Declared in a document type; drawing programs declare ten addresses. And what all references to them grow to.
inline constexpr std::size_t kXmlEntities = 64;
inline constexpr std::size_t kXmlEntityBytes = std::size_t{64} << 10;

// The store's version_config.json, which tells its versions to any number of libraries.
inline constexpr std::size_t kVersionConfigBytes = std::size_t{1} << 20;
// The body of a response, decoded. Three times the heaviest honest animation.json.
inline constexpr std::size_t kResponseBytes = std::size_t{128} << 20;
// The lines behind a response's body; honest ones are a signature or a time. They would be kept in memory.
inline constexpr std::size_t kTrailerBytes = std::size_t{64} << 10;
// All that a request's connections carry both ways, framing too, which a server can make as long as it likes.
inline constexpr std::size_t kConnectionBytes = 2 * kResponseBytes;

// Of one outline; what follows in its text is not read. Two characters can make a point of sixteen bytes; an honest
// outline has tens of thousands.
inline constexpr std::size_t kPathPoints = std::size_t{1} << 20;

// A sound file, read while it plays. 16 MB are 17 minutes at 128 kbit/s; a cue's sound takes 50 KB.
inline constexpr std::size_t kSoundFileBytes = std::size_t{16} << 20;
// How far the decoder looks for the next frame of sound behind damage, or for the first one behind a file's beginning.
// Text of any length is refused after so many bytes.
inline constexpr long kSoundResyncBytes = 64L << 10;

// Of one haptic pattern. Sampling costs entries times length; an honest cue has tens of entries and lasts seconds.
inline constexpr std::size_t kHapticEntries = 4096;
inline constexpr double kHapticSeconds = 60;
// Parameters of one event, and control points of one curve.
inline constexpr std::size_t kHapticEventParameters = 64;
inline constexpr std::size_t kHapticControlPoints = 512;

// A file of usage records; a larger one reads as empty. A hundred thousand records, more than a device meets in years,
// are 64 MB.
inline constexpr std::size_t kUsageFileBytes = std::size_t{64} << 20;

// Plays that wait to be counted while an answer is awaited or another process keeps the files. More are not counted.
inline constexpr std::size_t kWaitingPlays = 10'000;

}  // namespace quellaro::limits
