#include "export/film.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "export/film_program.h"
#include "export/matroska.h"
#include "export/staged_file.h"
#include "picture/frame_view.h"
#include "picture/png_writer.h"
#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/compositor.h"

namespace halvo {

namespace {

using namespace quellaro;

// A picture that is seen for no time would not be seen.
constexpr double kShortest = 0.001;

void addLastPicture(FilmSource& source, double seconds) {
  const Shot last = source.shots.back();
  if (source.end - last.start > 1.5 * seconds) source.shots.push_back({source.end - seconds, last.frame});
}

std::shared_ptr<QLHalvoView> viewFor(const FilmOrder& order) {
  if (order.ground == FilmGround::Transparent) return makeClearView(order.size);
  return makeView(order.size, order.ground == FilmGround::White ? QLHalvoBackground::white : QLHalvoBackground::black);
}

// Draws shots. One that shows what the one before it did is not drawn again.
class Camera {
 public:
  explicit Camera(const FilmOrder& order) : view_(viewFor(order)), bitmap_(order.size.width, order.size.height) {}

  const std::vector<std::uint8_t>& take(const FilmSource& source, const Shot& shot) {
    if (!pixels_.empty() && shot.frame == shown_) return pixels_;
    shown_ = shot.frame;
    std::fill(bitmap_.pixels.begin(), bitmap_.pixels.end(), 0);
    showFrame(*view_, shot.frame ? source.frames[*shot.frame] : nullptr);
    view_->display(compositor_, bitmap_);
    pixels_ = straightBytes(bitmap_, true);
    return pixels_;
  }

 private:
  std::shared_ptr<QLHalvoView> view_;
  Bitmap bitmap_;
  Compositor compositor_;
  std::optional<std::size_t> shown_;
  std::vector<std::uint8_t> pixels_;
};

// The sound as a play has it: silence up to its start, and then what the player's own decoder gives.
class SoundTrack {
 public:
  explicit SoundTrack(FilmSource& source)
      : sound_(source.sound.get()),
        format_(sound_ != nullptr ? sound_->format() : SoundFormat{1, 1}),
        silent_(static_cast<std::uint64_t>(source.soundStart * format_.rate + 0.5)) {}

  // Up to that second, and a little further. Damage ends it, as it ends a play's.
  void writeUntil(double seconds, MatroskaWriter& writer) {
    while (sound_ != nullptr && now() <= seconds && writer.isTaken()) {
      const std::size_t count = next();
      if (count == 0) sound_ = nullptr;
      if (count == 0) return;
      writer.samples(now(), std::span(samples_).first(count * format_.channels));
      written_ += count;
    }
  }
  bool isOver() const { return sound_ == nullptr; }
  double now() const { return static_cast<double>(written_) / format_.rate; }

 private:
  // Fills the buffer; tells with how many moments.
  std::size_t next() {
    const std::size_t room = samples_.size() / format_.channels;
    if (written_ < silent_) {
      samples_.fill(0);
      return static_cast<std::size_t>(std::min<std::uint64_t>(room, silent_ - written_));
    }
    const auto count = sound_->read(std::span(samples_).first(room * format_.channels));
    return count ? *count / format_.channels : 0;
  }

  Mp3Decoder* sound_;
  SoundFormat format_;
  std::uint64_t silent_;
  std::uint64_t written_ = 0;
  std::array<float, 8192> samples_{};
};

}  // namespace

std::optional<NSError> writeFilm(FilmSource& source, const FilmOrder& order,
                                 const std::function<void(std::size_t done, std::size_t total)>& progress) {
  auto file = StagedFile::begin(order.target);
  if (!file) return file.error();
  const FilmSettings settings{order.ground == FilmGround::Transparent, source.sound != nullptr, order.loops};
  auto program = FilmProgram::start(filmArguments(*order.form, settings, FilmProgram::kOutput), file->descriptor());
  if (!program) return program.error();

  const auto format = source.sound ? std::optional(source.sound->format()) : std::nullopt;
  MatroskaWriter writer(order.size.width, order.size.height, order.form->lastPicture, format,
                        [&](std::string_view bytes) { return program->feed(bytes); });
  Camera camera(order);
  SoundTrack sound(source);
  addLastPicture(source, order.form->lastPicture);
  for (std::size_t i = 0; i < source.shots.size() && writer.isTaken(); ++i) {
    const Shot& shot = source.shots[i];
    const double end = i + 1 < source.shots.size() ? source.shots[i + 1].start : source.end;
    sound.writeUntil(shot.start, writer);
    writer.picture(shot.start, std::max(kShortest, end - shot.start), camera.take(source, shot));
    progress(i + 1, source.shots.size());
  }
  while (!sound.isOver() && writer.isTaken()) sound.writeUntil(sound.now() + 1, writer);
  if (auto problem = program->finish()) return problem;
  return file->putInPlace();
}

}  // namespace halvo
