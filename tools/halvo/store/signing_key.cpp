#include "store/signing_key.h"

#include <fcntl.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "platform/cryptokit/signing.h"
#include "platform/foundation/storage/file_descriptor.h"
#include "platform/foundation/storage/file_manager.h"
#include "store/durable_files.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::size_t kLongestKeyFile = std::size_t{64} << 10;
constexpr mode_t kEverybodyElse = 077;

using Memory = std::unique_ptr<BIO, decltype(&BIO_free)>;

NSError problem(const std::string& sentence) { return {"halvo", 0, sentence}; }

EVP_PKEY* keyOf(const std::shared_ptr<void>& key) { return static_cast<EVP_PKEY*>(key.get()); }

std::shared_ptr<void> owned(EVP_PKEY* key) {
  return {static_cast<void*>(key), [](void* pointer) { EVP_PKEY_free(static_cast<EVP_PKEY*>(pointer)); }};
}

const unsigned char* bytesOf(const std::string& text) { return reinterpret_cast<const unsigned char*>(text.data()); }

std::string base64(const unsigned char* bytes, std::size_t size) {
  std::string text((size + 2) / 3 * 4 + 1, '\0');
  EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes, static_cast<int>(size));
  text.pop_back();
  return text;
}

// Asks nobody for a passphrase.
int noPassphrase(char*, int, int, void*) { return -1; }

std::shared_ptr<void> privateKeyIn(const std::string& pem) {
  const Memory memory(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())), BIO_free);
  EVP_PKEY* const key = memory ? PEM_read_bio_PrivateKey(memory.get(), nullptr, noPassphrase, nullptr) : nullptr;
  if (key == nullptr) return nullptr;
  return EVP_PKEY_get_base_id(key) == EVP_PKEY_ED25519 ? owned(key) : (EVP_PKEY_free(key), nullptr);
}

}  // namespace

Result<SigningKey> SigningKey::generate() {
  EVP_PKEY* const key = EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519");
  if (key == nullptr) return problem("no key could be made");
  return SigningKey(owned(key));
}

Result<SigningKey> SigningKey::read(const std::string& path) {
  // The file that is looked at is the file that is read.
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0) return errorAt(path, errno);
  if ((status.st_mode & kEverybodyElse) != 0)
    return problem(path +
                   ": others than its owner may read this key; keep it to yourself with chmod 600, and make a "
                   "new one if they have");
  std::string pem(kLongestKeyFile, '\0');
  const ssize_t length = ::read(file.get(), pem.data(), pem.size());
  if (length < 0) return errorAt(path, errno);
  pem.resize(static_cast<std::size_t>(length));
  std::shared_ptr<void> key = privateKeyIn(pem);
  OPENSSL_cleanse(pem.data(), pem.size());
  if (!key) return problem(path + ": this is no private Ed25519 key without a passphrase, as keygen makes them");
  return SigningKey(std::move(key));
}

Result<std::string> SigningKey::write(const std::string& path) const {
  const Memory memory(BIO_new(BIO_s_mem()), BIO_free);
  char* text = nullptr;
  if (!memory || PEM_write_bio_PrivateKey(memory.get(), keyOf(key_), nullptr, nullptr, 0, nullptr, nullptr) != 1)
    return problem("the key could not be written out");
  const long length = BIO_get_mem_data(memory.get(), &text);
  const auto failed = writeDurably(path, {text, static_cast<std::size_t>(length)}, {}, true);
  OPENSSL_cleanse(text, static_cast<std::size_t>(length));
  // A file that was there is somebody's key.
  if (failed && failed->code != EEXIST) unlink(path.c_str());
  if (failed) return *failed;
  return path;
}

Result<std::string> SigningKey::publicKey() const {
  std::array<unsigned char, kPublicKeyBytes> bytes{};
  std::size_t size = bytes.size();
  if (EVP_PKEY_get_raw_public_key(keyOf(key_), bytes.data(), &size) != 1) return problem("the key has no public half");
  return base64(bytes.data(), size);
}

Result<SetSignature> SigningKey::sign(const std::string& cue, const std::string& version,
                                      const std::string& directory) const {
  SetSignature signature;
  for (const char* file : kCueFiles) {
    const auto digest = sha256OfFile(inDirectory(directory, file));
    if (!digest) return problem(inDirectory(directory, file) + ": it cannot be read");
    signature.sha256.emplace(file, *digest);
  }
  const auto text = textToSign(cue, version, signature.sha256);
  if (!text) return problem("a cue or a version of several lines cannot be signed");
  const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
  std::array<unsigned char, kSignatureBytes> bytes{};
  std::size_t size = bytes.size();
  if (!context || EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, keyOf(key_)) != 1 ||
      EVP_DigestSign(context.get(), bytes.data(), &size, bytesOf(*text), text->size()) != 1)
    return problem("the set could not be signed");
  signature.signature = base64(bytes.data(), size);
  return signature;
}

Result<std::string> publicKeyOf(const std::string& keyOrFile) {
  std::string text = keyOrFile;
  if (FileManager::fileExistsAtPath(keyOrFile)) {
    Result<std::string> content = FileManager::readAtPath(keyOrFile, kLongestKeyFile);
    if (!content) return problem(keyOrFile + ": " + content.error().localizedDescription);
    if (privateKeyIn(*content)) {
      OPENSSL_cleanse(content->data(), content->size());
      const Result<SigningKey> key = SigningKey::read(keyOrFile);
      return key ? key->publicKey() : key.error();
    }
    text = content->substr(0, content->find_first_of(" \r\n"));
  }
  if (!base64Decoded(text, kPublicKeyBytes))
    return problem(keyOrFile + ": neither a public key, as keygen prints it, nor a file that holds one");
  return text;
}

}  // namespace halvo
