#include "platform/foundation/network/content_decoder.h"

#include <zlib.h>

#include <array>

namespace quellaro {

namespace {

constexpr std::size_t kChunk = std::size_t{64} << 10;

// The window of every size, and the header that the encoding is known by.
constexpr int kGzip = MAX_WBITS + 16;
constexpr int kZlib = MAX_WBITS;
constexpr int kRaw = -MAX_WBITS;

std::string trimmedLowerCase(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  std::string result(text.substr(first, text.find_last_not_of(" \t") - first + 1));
  for (char& c : result)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return result;
}

// A zlib header (RFC 1950): the method is deflate, and the two bytes are a multiple of 31. Some servers leave it out
// and send the bare stream.
bool looksLikeZlib(std::string_view start) {
  const unsigned first = static_cast<unsigned char>(start[0]);
  const unsigned second = static_cast<unsigned char>(start[1]);
  return (first & 0x0f) == Z_DEFLATED && (first * 256 + second) % 31 == 0;
}

}  // namespace

struct ContentDecoder::Inflater {
  explicit Inflater(bool isGzip) : gzip(isGzip) {}
  ~Inflater() {
    if (isOpen) inflateEnd(&stream);
  }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  bool open(int window) {
    isOpen = inflateInit2(&stream, window) == Z_OK;
    return isOpen;
  }

  bool gzip;
  bool isOpen = false;
  bool atEnd = false;  // of the stream, or of a member of a gzip stream
  std::string start;   // of a deflate stream, until it is known which of the two kinds it is
  z_stream stream{};
};

ContentDecoder::ContentDecoder(std::string_view encoding) : isKnown_(true) {
  const std::string name = trimmedLowerCase(encoding);
  if (name == "gzip" || name == "x-gzip" || name == "deflate")
    inflater_ = std::make_unique<Inflater>(name != "deflate");
  else
    isKnown_ = name.empty() || name == "identity";
}

ContentDecoder::~ContentDecoder() = default;

std::optional<URLErrorCode> ContentDecoder::append(std::string_view bytes, ReceivedBody& decoded) {
  if (!isKnown_) return URLErrorCode::CannotDecodeContentData;
  if (inflater_ == nullptr) return decoded.append(bytes);
  if (inflater_->isOpen) return inflate(bytes, decoded);
  inflater_->start += bytes;
  if (inflater_->start.size() < 2) return std::nullopt;
  const int window = inflater_->gzip ? kGzip : looksLikeZlib(inflater_->start) ? kZlib : kRaw;
  if (!inflater_->open(window)) return URLErrorCode::CannotDecodeRawData;
  return inflate(std::string(std::move(inflater_->start)), decoded);
}

std::optional<URLErrorCode> ContentDecoder::inflate(std::string_view bytes, ReceivedBody& decoded) {
  z_stream& stream = inflater_->stream;
  // zlib does not write to its input.
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  std::array<char, kChunk> chunk;
  while (stream.avail_in > 0) {
    if (inflater_->atEnd) {
      // Only a gzip stream may go on, with another member (RFC 1952, section 2.2).
      if (!inflater_->gzip || inflateReset(&stream) != Z_OK) return URLErrorCode::CannotDecodeRawData;
      inflater_->atEnd = false;
    }
    int status = Z_OK;
    do {
      stream.next_out = reinterpret_cast<Bytef*>(chunk.data());
      stream.avail_out = static_cast<uInt>(chunk.size());
      status = ::inflate(&stream, Z_NO_FLUSH);
      if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR) return URLErrorCode::CannotDecodeRawData;
      const std::size_t count = chunk.size() - stream.avail_out;
      if (const auto problem = decoded.append({chunk.data(), count})) return problem;
    } while (stream.avail_out == 0);
    inflater_->atEnd = status == Z_STREAM_END;
  }
  return std::nullopt;
}

std::optional<URLErrorCode> ContentDecoder::finish() const {
  if (inflater_ == nullptr || inflater_->atEnd) return std::nullopt;
  // A body of no bytes at all is an empty one, whatever it is said to be encoded with.
  if (!inflater_->isOpen && inflater_->start.empty()) return std::nullopt;
  return URLErrorCode::CannotDecodeRawData;
}

}  // namespace quellaro
