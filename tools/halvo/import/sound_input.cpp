#include "import/sound_input.h"

#include <sndfile.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "platform/avfoundation/mp3_decoder.h"

namespace halvo {

namespace {

using namespace quellaro;

struct CloseSound {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseSound>;

SoundFile openFile(const std::string& path, SF_INFO& information) {
  return SoundFile(sf_open(path.c_str(), SFM_READ, &information));
}

class FileSamples final : public SoundSource {
 public:
  FileSamples(SoundFile file, const SF_INFO& information)
      : file_(std::move(file)),
        format_{static_cast<unsigned>(information.samplerate), static_cast<unsigned>(information.channels)} {}

  SoundFormat format() const override { return format_; }
  Result<std::size_t> read(std::span<float> samples) override {
    const sf_count_t count = sf_read_float(file_.get(), samples.data(), static_cast<sf_count_t>(samples.size()));
    if (count < 0 || sf_error(file_.get()) != SF_ERR_NO_ERROR)
      return NSError{"libsndfile", 0, sf_strerror(file_.get())};
    return static_cast<std::size_t>(count);
  }

 private:
  SoundFile file_;
  SoundFormat format_;
};

// Why no samples can be expected of it at all.
std::optional<std::string> whyUnreadable(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return posixError(errno).localizedDescription;
  if (S_ISDIR(status.st_mode)) return posixError(EISDIR).localizedDescription;
  if (!S_ISREG(status.st_mode)) return "it is not a regular file";
  if (status.st_size == 0) return "the file is empty";
  return std::nullopt;
}

std::optional<std::string> whyUnusable(const SF_INFO& information) {
  if (information.channels > 2)
    return "it has " + std::to_string(information.channels) + " channels: export it in stereo or mono";
  // What sound cards and encoders know.
  constexpr int kLowestRate = 4000;
  constexpr int kHighestRate = 384'000;
  if (information.samplerate < kLowestRate || information.samplerate > kHighestRate)
    return "it has " + std::to_string(information.samplerate) + " samples a second: export it with 44100 or 48000";
  return std::nullopt;
}

}  // namespace

Importing<SoundInput> recogniseSound(const std::string& path) {
  if (const auto why = whyUnreadable(path)) return refusal(path, *why);
  SF_INFO information{};
  const SoundFile file = openFile(path, information);
  if (file && (information.format & SF_FORMAT_TYPEMASK) != SF_FORMAT_MPEG) {
    if (const auto why = whyUnusable(information)) return refusal(path, *why);
    return SoundInput{path, false};
  }
  // The player's own decoder has the last word about MP3.
  const auto decoder = Mp3Decoder::open(path);
  if (decoder) return SoundInput{path, true};
  if (file) return refusal(path, decoder.error().localizedDescription);
  return refusal(path, "it is no WAV, AIFF, FLAC, OGG or MP3 file");
}

Result<std::unique_ptr<SoundSource>> openSamples(const SoundInput& input) {
  if (input.isMp3) {
    auto decoder = Mp3Decoder::open(input.path);
    if (!decoder) return decoder.error();
    return std::unique_ptr<SoundSource>(std::move(*decoder));
  }
  SF_INFO information{};
  SoundFile file = openFile(input.path, information);
  if (!file) return NSError{"libsndfile", 0, sf_strerror(nullptr)};
  return std::unique_ptr<SoundSource>(std::make_unique<FileSamples>(std::move(file), information));
}

}  // namespace halvo
