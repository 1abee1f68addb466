#include <gmock/gmock.h>

#include <string>

#include "publish/store_fixture.h"

namespace quellaro {
namespace {

using testing::HasSubstr;

class Signing : public StoreTest {
 protected:
  Signing() : key_(directory_ / "key.pem") { publicKey_ = halvo("store keygen " + key_).output; }

  Ran publishSigned(const std::string& version) const { return publish(version, "--sdk-version 2.0.0 --sign " + key_); }
  Ran verify(const std::string& key) const { return storeCommand("verify", "--key '" + key + "'"); }

  std::string key_;
  std::string publicKey_;
};

TEST_F(Signing, TheKeyIsOneThatOthersCanRead) {
  EXPECT_EQ(publicKey_, run("openssl pkey -in " + key_ + " -pubout -outform DER | tail -c 32 | base64").output);
  const std::string before = readFile(key_);
  EXPECT_EQ(halvo("store keygen " + key_).status, 1);
  EXPECT_EQ(readFile(key_), before);
  EXPECT_EQ(halvo("store keygen " + (directory_ / "no/where").string()).status, 1);
  EXPECT_EQ(halvo("store keygen " + (directory_ / "full").string(), "trap '' XFSZ; ulimit -f 0; ").status, 1);
  EXPECT_FALSE(fs::exists(directory_ / "full"));
}

TEST_F(Signing, WhatIsSignedIsVerifiedByThatKeyAlone) {
  ASSERT_EQ(publishSigned("1").status, 0);
  writeCue("2");
  ASSERT_EQ(publishSigned("2").status, 0);
  writeFile(directory_ / "public", publicKey_);
  const std::string plainKey = publicKey_.substr(0, publicKey_.find('\n'));
  for (const std::string& key : {plainKey, (directory_ / "public").string(), key_})
    EXPECT_EQ(verify(key).status, 0) << key;
  EXPECT_THAT(verify(halvo("store keygen " + (directory_ / "other").string()).output.substr(0, 44)).output,
              HasSubstr("the signature is not that of the key"));
  // The signature that a version was published with comes back with it.
  ASSERT_EQ(storeCommand("rollback", "--cue quellaro --to 1").status, 0);
  EXPECT_EQ(verify(plainKey).status, 0);

  for (const char* name : kCueFiles) {
    const fs::path file = store() / "quellaro/1" / name;
    const std::string before = readFile(file);
    writeFile(file, before + "\n");
    EXPECT_EQ(verify(plainKey).status, 1) << name;
    EXPECT_THAT(storeCommand("verify").output, HasSubstr("it is not the file that was signed")) << name;
    writeFile(file, before);
  }
  const std::string before = config();
  for (const char* key : {"\"quellar", "\"version\":\"", "\"audio.mp3\":\"", "\"signature\":\""}) {
    std::string changed = before;
    char& character = changed[changed.find(key) + std::string(key).size()];
    character = character == 'A' ? 'B' : 'A';
    writeFile(store() / "version_config.json", changed);
    EXPECT_EQ(verify(plainKey).status, 1) << key;
  }
  writeFile(store() / "version_config.json", before);
}

TEST_F(Signing, AnUnsignedVersionAfterASignedOneIsTold) {
  ASSERT_EQ(publish("0.9").status, 0);
  writeCue("2");
  ASSERT_EQ(publishSigned("1").status, 0);
  EXPECT_THAT(storeCommand("rollback", "--cue quellaro --to 0.9").output, HasSubstr("this version is not signed"));
  EXPECT_THAT(verify(key_).output, HasSubstr("the entry is not signed"));
  ASSERT_EQ(storeCommand("rollback", "--cue quellaro --to 1").status, 0);
  EXPECT_EQ(storeCommand("rollback", "--cue quellaro --to 0.9").status, 0);
  EXPECT_EQ(storeCommand("rollback", "--cue quellaro --to 0.9 --sign " + key_).status, 0);
  EXPECT_EQ(verify(key_).status, 0);
  writeCue("3");
  EXPECT_THAT(publish("3").output, HasSubstr("this version is not signed"));
  EXPECT_EQ(publishSigned("3").status, 0);
  EXPECT_EQ(verify(key_).status, 0);
}

TEST_F(Signing, KeysThatAreNoneOrNotKeptAreRefused) {
  const std::string open = directory_ / "open.pem";
  fs::copy(key_, open);
  fs::permissions(open, static_cast<fs::perms>(0640));
  run("cd " + directory_.path().string() +
      " && umask 077 && openssl genpkey -algorithm RSA -out rsa.pem 2>/dev/null && openssl pkey -aes256 -passout "
      "pass:x -in key.pem -out secret.pem && echo key > text.pem && openssl pkey -in key.pem -pubout -out half.pem");
  const struct {
    const char* file;
    const char* reason;
  } cases[] = {
      {"open.pem", "chmod 600"},
      {"rsa.pem", "no private Ed25519 key"},
      {"secret.pem", "no private Ed25519 key"},
      {"text.pem", "no private Ed25519 key"},
      {"half.pem", "no private Ed25519 key"},
      {"none.pem", "No such file"},
      {".", "others than its owner"},
  };
  fs::permissions(directory_.path(), static_cast<fs::perms>(0755));
  for (const auto& c : cases) {
    const Ran outcome = publish("1", "--sign " + (directory_ / c.file).string());
    EXPECT_EQ(outcome.status, 1) << c.file;
    EXPECT_THAT(outcome.output, HasSubstr(c.reason)) << c.file;
    EXPECT_FALSE(fs::exists(store())) << c.file;
  }
  ASSERT_EQ(publishSigned("1").status, 0);
  for (const std::string& key :
       {open, (directory_ / "rsa.pem").string(), std::string("QUJD"), (directory_ / "none").string()})
    EXPECT_THAT(verify(key).output, testing::StartsWith("halvo: ")) << key;
}

}  // namespace
}  // namespace quellaro
