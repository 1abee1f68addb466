#include "assets/set_signature.h"

#include <gtest/gtest.h>

#include <string>

#include "assets/halvo_file_manager.h"
#include "platform/cryptokit/signing.h"
#include "support/library_fixture.h"
#include "support/signing_key.h"

namespace quellaro {
namespace {

// RFC 8032, 7.1, tests 1 and 2, and FIPS 180-2, B.1: what others have worked out.
TEST(Signing, AgreesWithPublishedVectors) {
  EXPECT_EQ(sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  const std::string rows[][3] = {
      {"11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=", "",
       "5VZDAMNgrHKQhuLMgG6CioSHfx645dl02HPgZSJJAVVfuIIVkKM7rMYeOXAc+bRr0lv18FlbviRlUUFDjnoQCw=="},
      {"PUAXw+hDiVqStwqnTRt+vJyYLM8uxJaMwM1V8Sr0Zgw=", "\x72",
       "kqAJqfDUyrhyDoILX2QlQKKye1QWUD+Ps3YiI+vbadoIWsHkPhWZbkWPNhPQ8R2MOHsurrQwKu6wDSkWErsMAA=="},
  };
  for (const auto& [key, message, signature] : rows) {
    const auto keyBytes = base64Decoded(key, kPublicKeyBytes);
    const auto signatureBytes = base64Decoded(signature, kSignatureBytes);
    ASSERT_TRUE(keyBytes && signatureBytes);
    EXPECT_TRUE(isValidSignature(*signatureBytes, message, *keyBytes));
    EXPECT_FALSE(isValidSignature(*signatureBytes, message + "x", *keyBytes));
  }
}

class SignedSet : public LibraryFixture {
 protected:
  SignedSet() {
    for (const char* file : kCueFiles) {
      writeFile(library() / file, std::string("content of ") + file);
      set_.sha256[file] = *sha256OfFile((library() / file).string());
    }
    set_.signature = key_.sign(*textToSign("quellaro", "7", set_.sha256));
  }
  std::string problem(const SetSignature& set, const std::string& key, const std::string& cue = "quellaro",
                      const std::string& version = "7") const {
    const auto found = signatureProblem(set, key, cue, version, library().string());
    return found ? found->localizedDescription : "";
  }

  const SigningKey key_{1};
  SetSignature set_;
};

TEST_F(SignedSet, IsWhatItsHolderSignedAndNothingElse) {
  EXPECT_EQ(
      *textToSign("q", "7", {{kPlayConfigFile, "a"}, {kSoundFile, "b"}, {kAnimationFile, "c"}, {kHapticsFile, "d"}}),
      "QuellaroHalvo set 1\nq\n7\nplay_config.json a\naudio.mp3 b\nanimation.json c\nsignature_forte.ahap d\n");
  EXPECT_EQ(problem(set_, key_.publicKey()), "");
  EXPECT_EQ(problem(set_, SigningKey(2).publicKey()), "the signature is not that of the key");
  EXPECT_EQ(problem(set_, key_.publicKey(), "other"), "the signature is not that of the key");
  EXPECT_EQ(problem(set_, key_.publicKey(), "quellaro", "6"), "the signature is not that of the key");
  EXPECT_EQ(problem({}, key_.publicKey()), "the entry is not signed");
  // Which of the two lines would be the version?
  EXPECT_FALSE(textToSign("q", "7\n8", set_.sha256));
}

TEST_F(SignedSet, EveryByteCounts) {
  const auto changed = [](std::string text, std::size_t at) {
    text[at] = static_cast<char>(text[at] ^ 1);
    return text;
  };
  const std::string key = key_.publicKey();
  for (std::size_t at = 0; at < key.size(); ++at) EXPECT_NE(problem(set_, changed(key, at)), "") << at;
  for (std::size_t at = 0; at < set_.signature.size(); ++at)
    EXPECT_NE(problem({set_.sha256, changed(set_.signature, at)}, key), "") << at;
  for (const char* file : kCueFiles) {
    for (std::size_t at = 0; at < 64; ++at) {
      SetSignature other = set_;
      other.sha256[file] = changed(other.sha256[file], at);
      EXPECT_EQ(problem(other, key), "the signature is not that of the key");
    }
    const std::string content = readFile(library() / file);
    for (std::size_t at = 0; at < content.size(); ++at) {
      writeFile(library() / file, changed(content, at));
      EXPECT_EQ(problem(set_, key), std::string(file) + " is not the one that was signed");
    }
    writeFile(library() / file, content);
  }
  EXPECT_EQ(problem(set_, key), "");
}

}  // namespace
}  // namespace quellaro
