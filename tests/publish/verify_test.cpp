#include <gmock/gmock.h>

#include <functional>

#include "publish/store_fixture.h"
#include "support/nginx_server.h"
#include "support/scripted_server.h"

namespace quellaro {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string configOf(const std::string& cues) {
  return R"([{"sdk_versions": ["2.0.0"], "cues": {)" + cues +
         R"(}, "analytics": {"enable": false, "frequency": "M", "url": ""}}])";
}

class Verify : public StoreTest {
 protected:
  Verify() { publish("1"); }
  static Ran verify(const std::string& store, const std::string& more = "", const std::string& before = "") {
    return halvo("store verify " + store + " " + more, before);
  }
};

TEST_F(Verify, TellsWhatDevicesDoNotGetFromADirectory) {
  EXPECT_THAT(verify(store()).output, AllOf(HasSubstr("quellaro version 1 for library version 2.0.0 at quellaro/1: "),
                                            HasSubstr(", fine\n0 errors, ")));
  EXPECT_THAT(verify(store(), "--json").output, HasSubstr("\"fine\":true"));
  const auto mode = [](const fs::path& path, int bits) { fs::permissions(path, static_cast<fs::perms>(bits)); };
  const auto list = [](const std::string& content) {
    return [content](const fs::path& at) { writeFile(at / "version_config.json", content); };
  };
  const std::string entry = configOf("");
  const struct {
    const char* what;
    std::function<void(const fs::path& store)> breakIt;
    int status;
    const char* told;
  } cases[] = {
      {"a missing file", [](const auto& at) { fs::remove(at / "quellaro/1/audio.mp3"); }, 1,
       "quellaro/1/audio.mp3: it is not there"},
      {"an empty file", [](const auto& at) { writeFile(at / "quellaro/1/audio.mp3", ""); }, 1, "it is empty"},
      {"a private file", [&](const auto& at) { mode(at / "quellaro/1/audio.mp3", 0600); }, 1,
       "quellaro/1/audio.mp3: others cannot read it\n  instead: chmod 644"},
      {"a private list", [&](const auto& at) { mode(at / "version_config.json", 0640); }, 1,
       "version_config.json: others cannot read it"},
      {"a private directory", [&](const auto& at) { mode(at / "quellaro", 0711); }, 1,
       "quellaro: others cannot read it\n  instead: chmod 755"},
      {"a private store", [&](const auto& at) { mode(at, 0700); }, 1, "others cannot read it"},
      {"a file elsewhere",
       [&](const auto& at) {
         fs::remove(at / "quellaro/1/audio.mp3");
         fs::create_symlink(cue() / "audio.mp3", at / "quellaro/1/audio.mp3");
       },
       1, "a link that leads out of the store"},
      {"a directory in place of a file",
       [](const auto& at) {
         fs::remove(at / "quellaro/1/audio.mp3");
         fs::create_directory(at / "quellaro/1/audio.mp3");
       },
       1, "quellaro/1/audio.mp3: "},
      {"a frame that is none",
       [](const auto& at) { writeFile(at / "quellaro/1/animation.json", R"(["<svg width='9'"])"); }, 1,
       "quellaro/1/animation.json, frame 1"},
      {"more than a device prepares",
       [](const auto& at) { fs::resize_file(at / "quellaro/1/animation.json", 51'000'000); }, 1,
       "51000000 bytes, of 50331648"},
      {"a way out", list(configOf(R"("a": {"version": "1", "filepath": "../cue"})")), 1,
       "../cue/audio.mp3: this is no path within a store"},
      {"a query", list(configOf(R"("a": {"version": "1", "filepath": "quellaro/1?"})")), 1,
       "this is no path within a store"},
      {"a version that devices begin with", list(configOf(R"("quellaro": {"version": "0", "filepath": "quellaro/1"})")),
       1, "quellaro: version 0 is that of"},
      {"a name that nobody asks for", list(configOf(R"("Quel_laro": {"version": "1", "filepath": "quellaro/1"})")), 1,
       "instead: write quellaro\n"},
      {"a list of nothing", list("[]"), 1, "lists nothing"},
      {"a list that is none", list("<html>"), 1, "devices cannot read it"},
      {"no list", [](const auto& at) { fs::remove(at / "version_config.json"); }, 1,
       "version_config.json: it is not there"},
      {"a library version listed twice", list(entry.substr(0, entry.size() - 1) + "," + entry.substr(1)), 0,
       "2.0.0 is in more than one entry"},
  };
  for (const auto& c : cases) {
    const fs::path copy = directory_ / "copy";
    fs::remove_all(copy);
    fs::copy(store(), copy, fs::copy_options::recursive);
    c.breakIt(copy);
    const Ran outcome = verify(copy);
    EXPECT_EQ(outcome.status, c.status) << c.what;
    EXPECT_THAT(outcome.output, HasSubstr(c.told)) << c.what;
  }
  EXPECT_THAT(verify(store(), "--sdk-version 9").output, HasSubstr("no entry lists library version 9"));
  EXPECT_EQ(verify(store(), "--sdk-version 2.0.0").status, 0);
  EXPECT_EQ(verify(directory_ / "nowhere").status, 1);
}

// The store's files as a server's script answers them.
class Server : public Verify {
 protected:
  using Connection = ScriptedServer::Connection;
  using Answer = std::function<void(const std::string& path, const std::string& content, const Connection&)>;

  Ran verifyServed(const Answer& answer, const std::string& more = "--timeout 1") {
    const ScriptedServer server([&](const ScriptedServer::Request& request, const Connection& connection) {
      const fs::path file = store() / request.path.substr(1);
      answer(request.path, fs::is_regular_file(file) ? readFile(file) : "", connection);
    });
    return verify(server.address(), more);
  }
  static void refuse(const Connection& to, const std::string& status, const std::string& body) {
    to.send("HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
  }
};

TEST_F(Server, TellsWhatDevicesDoNotGet) {
  const auto honest = [](const std::string&, const std::string& content, const Connection& to) {
    content.empty() ? refuse(to, "404 Not Found", "") : static_cast<void>(to.answer(content));
  };
  // Another answer to what is asked for the sound.
  const auto sound = [&](const Answer& answer) -> Answer {
    return [&honest, answer](const auto& path, const auto& content, const auto& to) {
      path.ends_with("audio.mp3") ? answer(path, content, to) : honest(path, content, to);
    };
  };
  const auto silent = [](const auto&, const auto&, const auto& to) { to.hang(); };
  const struct {
    const char* what;
    Answer answer;
    int status;
    const char* told;
  } cases[] = {
      {"an honest one", honest, 0, ", fine\n"},
      {"pages for what is missing",
       [&](const auto& path, const auto& content, const auto& to) {
         content.empty() ? refuse(to, "404 Not Found", "sorry") : honest(path, content, to);
       },
       0, "warning: a file that is not there: the server answers 404 with a body of 5 bytes"},
      {"everything is there",
       [](const auto&, const auto& content, const auto& to) { to.answer(content.empty() ? "home" : content); }, 0,
       "the server answers 200 with a body of 4 bytes"},
      {"an error page for a file",
       sound([](const auto&, const auto&, const auto& to) { refuse(to, "503 Busy", "later"); }), 1,
       "quellaro/1/audio.mp3: the server answers 503 with a body of 5 bytes, which a device takes for the file"},
      {"an error without a page", sound([](const auto&, const auto&, const auto& to) { refuse(to, "503 Busy", ""); }),
       1, "quellaro/1/audio.mp3: the server answers 503, without a body"},
      {"an encoding that breaks off",
       sound([](const auto&, const auto&, const auto& to) { to.answer("\x1f\x8b\b", "Content-Encoding: gzip\r\n"); }),
       1, "error: quellaro/1/audio.mp3: "},
      {"an encoding that devices do not know",
       sound([](const auto&, const auto& content, const auto& to) { to.answer(content, "Content-Encoding: br\r\n"); }),
       1, "error: quellaro/1/audio.mp3: "},
      {"a redirect",
       [&](const auto& path, const auto& content, const auto& to) {
         if (path.ends_with("audio.mp3"))
           to.send("HTTP/1.1 302 Found\r\nLocation: /elsewhere\r\nContent-Length: 0\r\n\r\n");
         else
           honest(path, path == "/elsewhere" ? readFile(cue() / "audio.mp3") : content, to);
       },
       0, "note: quellaro/1/audio.mp3: redirected to http://127.0.0.1:"},
      {"no answer to a file", sound(silent), 1, "error: quellaro/1/audio.mp3: "},
      {"no answer at all", silent, 1, "error: version_config.json: "},
  };
  for (const auto& c : cases) {
    const Ran outcome = verifyServed(c.answer);
    EXPECT_EQ(outcome.status, c.status) << c.what << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr(c.told)) << c.what;
  }
  // Who is silent once is not asked again, for each of many cues.
  std::string cues;
  for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h"})
    cues += (cues.empty() ? "\"" : ", \"") + std::string(name) + R"(": {"version": "1", "filepath": ")" + name + "\"}";
  writeFile(store() / "version_config.json", configOf(cues));
  const auto start = std::chrono::steady_clock::now();
  const Ran unasked = verifyServed([&](const auto& path, const auto& content, const auto& to) {
    path == "/version_config.json" ? static_cast<void>(to.answer(content)) : to.hang();
  });
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(6));
  EXPECT_THAT(unasked.output, HasSubstr("h/audio.mp3: not asked, as the server has been silent before"));
}

TEST_F(Server, IsTrustedAndReadAsByDevices) {
  const Certificate certificate = makeCertificate(directory_ / "ca", "20200101000000Z", "21000101000000Z");
  const NginxServer secure(store(), &certificate);
  EXPECT_THAT(verify(secure.address()).output, AllOf(HasSubstr("error: version_config.json: "), HasSubstr("1 errors")));
  const Ran trusted = verify(secure.address(), "", "SSL_CERT_FILE=" + certificate.certificate.string() + " ");
  EXPECT_EQ(trusted.status, 0) << trusted.output;
  EXPECT_THAT(trusted.output, AllOf(HasSubstr(", fine\n"), HasSubstr("answers 404 with a body"),
                                    Not(HasSubstr("nothing is encrypted"))));
  const NginxServer open(store());
  EXPECT_THAT(verify(open.address()).output, HasSubstr("note: " + open.address() + ": nothing is encrypted"));
  // A secure server that sends devices to an open one, with the answers lying in files.
  const std::string port = std::to_string(freePort());
  for (const char* name : {"version_config.json", "quellaro/1/play_config.json", "quellaro/1/audio.mp3",
                           "quellaro/1/animation.json", "quellaro/1/signature_forte.ahap"})
    writeFile(directory_ / "sent" / name,
              "HTTP/1.1 302 Found\r\nLocation: " + open.address() + "/" + name + "\r\n\r\n");
  const ChildProcess sender(
      {"sh", "-c",
       "cd " + (directory_ / "sent").string() +
           " && exec openssl s_server -HTTP -accept "
           "127.0.0.1:" +
           port + " -cert " + certificate.certificate.string() + " -key " + certificate.key.string()},
      directory_ / "sender");
  waitUntil("the server starts", [&] { return readFile(directory_ / "sender").find("ACCEPT") != std::string::npos; });
  EXPECT_THAT(verify("https://127.0.0.1:" + port, "", "SSL_CERT_FILE=" + certificate.certificate.string() + " ").output,
              HasSubstr("error: quellaro/1/audio.mp3: redirected from https to http"));
  EXPECT_EQ(halvo("store diff " + store().string() + " " + open.address()).status, 0);
  for (const char* address : {"ftp://127.0.0.1/", "http://", "http://127.0.0.1/?a=", "http://a b/"})
    EXPECT_EQ(verify("'" + std::string(address) + "'").status, 1) << address;
}

}  // namespace
}  // namespace quellaro
