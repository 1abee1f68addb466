#include "check/sound_container.h"

namespace halvo {

namespace {

struct Container {
  std::size_t offset;
  std::string_view mark;
  std::string_view name;
};

using namespace std::string_view_literals;

// The more exact first.
constexpr Container kContainers[] = {
    {8, "WAVE", "a WAV file"},
    {8, "AVI ", "an AVI film"},
    {0, "RIFF", "a RIFF file"},
    {8, "AIFF", "an AIFF file"},
    {8, "AIFC", "an AIFF file"},
    {0, "OggS", "an Ogg file"},
    {0, "fLaC", "a FLAC file"},
    {4, "ftypqt", "a QuickTime film"},
    {4, "ftyp", "an MP4 file (M4A)"},
    {0, "ADIF", "an AAC file"},
    {0, "\xFF\xF1"sv, "an AAC file"},
    {0, "\xFF\xF9"sv, "an AAC file"},
    {0, "\x30\x26\xB2\x75"sv, "a WMA file"},
    {0, "caff", "a CAF file"},
    {0, "#!AMR", "an AMR file"},
    {0, ".snd", "an AU file"},
    {0, "MThd", "a MIDI file"},
    {0, "\x1A\x45\xDF\xA3"sv, "a Matroska or WebM file"},
    {0, "wvpk", "a WavPack file"},
    {0, "MAC ", "a Monkey's Audio file"},
    {0, "riff", "a Wave64 file"},
    {0, "PK\x03\x04"sv, "a ZIP archive"},
    {0, "\x1F\x8B"sv, "a file compressed with gzip"},
    {0, "%PDF", "a PDF document"},
    {0, "\x89PNG"sv, "a PNG picture"},
    {0, "\xFF\xD8\xFF"sv, "a JPEG picture"},
};

// By the number of its format; decoders skip what stands before its frames.
bool isMpegInWav(std::string_view bytes) {
  constexpr std::size_t kFormat = 20;
  return bytes.size() > kFormat + 1 && bytes.substr(8).starts_with("WAVEfmt ") &&
         (bytes[kFormat] == '\x50' || bytes[kFormat] == '\x55') && bytes[kFormat + 1] == '\0';
}

}  // namespace

std::string_view containerNameOf(std::string_view bytes) {
  if (isMpegInWav(bytes)) return {};
  for (const Container& container : kContainers)
    if (bytes.size() >= container.offset && bytes.substr(container.offset).starts_with(container.mark))
      return container.name;
  return {};
}

}  // namespace halvo
