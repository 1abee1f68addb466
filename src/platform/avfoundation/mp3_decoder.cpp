#include "platform/avfoundation/mp3_decoder.h"

#include <fcntl.h>
#include <mpg123.h>
#include <sys/stat.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_descriptor.h"

namespace quellaro {

namespace {

// The platform's codes for a file that holds no sound and for sound that cannot be decoded.
constexpr std::string_view kErrorDomain = "AVFoundationErrorDomain";
constexpr std::int64_t kFileFormatNotRecognized = -11828;
constexpr std::int64_t kDecodeFailed = -11821;

// NO_FRANKENSTEIN: rate and channels stay what they were announced to be. Tags are of no use here, and may be large.
constexpr long kFlags = MPG123_QUIET | MPG123_GAPLESS | MPG123_FORCE_FLOAT | MPG123_SKIP_ID3V2 | MPG123_NO_FRANKENSTEIN;

struct HandleDeleter {
  void operator()(mpg123_handle* handle) const { mpg123_delete(handle); }
};
using Handle = std::unique_ptr<mpg123_handle, HandleDeleter>;

NSError withPath(NSError error, const std::string& path) {
  error.localizedDescription = "The sound " + path + " could not be opened: " + error.localizedDescription;
  return error;
}

NSError unusable(const std::string& path, const std::string& why) {
  return withPath({std::string(kErrorDomain), kFileFormatNotRecognized, why}, path);
}

Result<FileDescriptor> openRegularFile(const std::string& path) {
  // The system would take the text up to the NUL for the path.
  if (path.find('\0') != std::string::npos) return withPath(posixError(ENOENT), path);
  // Without O_NONBLOCK a FIFO would hold us here until somebody writes to it.
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0) return withPath(posixError(errno), path);
  if (S_ISDIR(status.st_mode)) return withPath(posixError(EISDIR), path);
  if (!S_ISREG(status.st_mode)) return unusable(path, "it is not a regular file");
  if (status.st_size == 0) return unusable(path, "the file is empty");
  if (static_cast<std::uintmax_t>(status.st_size) > limits::kSoundFileBytes)
    return unusable(path, "the file holds more than " + std::to_string(limits::kSoundFileBytes) + " bytes");
  return file;
}

}  // namespace

struct Mp3Decoder::Private {
  std::string path;
  FileDescriptor file;
  Handle handle;
  SoundFormat format;
  std::optional<NSError> failure;
  bool ended = false;
};

Mp3Decoder::Mp3Decoder(std::unique_ptr<Private> content) : private_(std::move(content)) {}
Mp3Decoder::~Mp3Decoder() = default;

Result<std::unique_ptr<Mp3Decoder>> Mp3Decoder::open(const std::string& path) {
  Result<FileDescriptor> file = openRegularFile(path);
  if (!file) return file.error();
  int error = MPG123_OK;
  Handle handle(mpg123_new(nullptr, &error));
  if (!handle) return unusable(path, mpg123_plain_strerror(error));
  mpg123_param(handle.get(), MPG123_ADD_FLAGS, kFlags, 0);
  mpg123_param(handle.get(), MPG123_RESYNC_LIMIT, limits::kSoundResyncBytes, 0);

  long rate = 0;
  int channels = 0;
  int encoding = 0;
  if (mpg123_open_fd(handle.get(), file->get()) != MPG123_OK ||
      mpg123_getformat(handle.get(), &rate, &channels, &encoding) != MPG123_OK)
    return unusable(path, "it holds no MPEG audio, or breaks off before any");
  if (rate <= 0 || channels < 1 || channels > 2 || encoding != MPG123_ENC_FLOAT_32)
    return unusable(path, "its MPEG audio is of no known kind");

  const SoundFormat format{static_cast<unsigned>(rate), static_cast<unsigned>(channels)};
  auto content =
      std::make_unique<Private>(Private{path, std::move(*file), std::move(handle), format, std::nullopt, false});
  // Private constructor: make_unique cannot reach it.
  return std::unique_ptr<Mp3Decoder>(new Mp3Decoder(std::move(content)));
}

SoundFormat Mp3Decoder::format() const { return private_->format; }

Result<std::size_t> Mp3Decoder::read(std::span<float> samples) {
  Private& self = *private_;
  std::size_t filled = 0;
  while (!self.failure && !self.ended && filled < samples.size()) {
    const std::span<float> room = samples.subspan(filled);
    std::size_t bytes = 0;
    const int status = mpg123_read(self.handle.get(), room.data(), room.size_bytes(), &bytes);
    filled += bytes / sizeof(float);
    if (status == MPG123_OK || status == MPG123_NEW_FORMAT) continue;
    if (status == MPG123_DONE)
      self.ended = true;
    else
      self.failure = {std::string(kErrorDomain), kDecodeFailed,
                      "The sound " + self.path + " could not be decoded: " + mpg123_strerror(self.handle.get())};
  }
  // What was decoded before the damage is heard first.
  if (self.failure && filled == 0) return *self.failure;
  return filled;
}

void Mp3Decoder::rewind() {
  private_->ended = false;
  private_->failure.reset();
  if (mpg123_seek(private_->handle.get(), 0, SEEK_SET) < 0)
    private_->failure = {std::string(kErrorDomain), kDecodeFailed,
                         "The sound " + private_->path + " could not be played again from its beginning"};
}

double Mp3Decoder::duration() const {
  const off_t frames = mpg123_length(private_->handle.get());
  return frames > 0 ? static_cast<double>(frames) / private_->format.rate : 0;
}

}  // namespace quellaro
