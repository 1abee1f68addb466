#include "platform/foundation/network/url_session.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/foundation/memory/limits.h"
#include "support/nginx_server.h"
#include "support/scripted_server.h"
#include "support/temporary_directory.h"
#include "url_session/fetch.h"

namespace quellaro {
namespace {

using Connection = ScriptedServer::Connection;
using Request = ScriptedServer::Request;

// MAX_WBITS + 16: gzip; MAX_WBITS: zlib; -MAX_WBITS: a bare stream.
std::string deflated(std::string_view text, int window) {
  z_stream stream{};
  deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, window, 8, Z_DEFAULT_STRATEGY);
  std::string out(text.size() / 100 + 1000, '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

const std::string kText = R"([{"sdk_versions": ["1.0.0"], "and": "so on, so on, so on, so on"}])";

TEST(URLSession, AsksPlainlyAndAnswersOnTheMainQueue) {
  const ScriptedServer server([](const Request&, const Connection& connection) { connection.answer("hello"); });
  URLRequest request = requestFor(server.address() + "/a/../b?c=d#e");
  request.addValue("application/json", "Content-Type");
  request.addValue("1", "X-One");
  request.addValue("2", "x-one");
  request.addValue("", "X-Empty");
  request.addValue("a\r\nX-Injected: 1", "X-Two");
  request.addValue("a", "X Three");
  const Answer answer = fetch(std::move(request));
  EXPECT_EQ(answer.text(), "hello");
  EXPECT_EQ(answer.response->statusCode, 200);
  const std::map<std::string, std::string> expected = {{"host", server.address().substr(7)},
                                                       {"user-agent", "QuellaroHalvo"},
                                                       {"accept", "*/*"},
                                                       {"accept-encoding", "gzip, deflate"},
                                                       {"content-type", "application/json"},
                                                       {"x-one", "1,2"},
                                                       {"x-empty", ""}};
  ASSERT_EQ(server.requests().size(), 1u);
  EXPECT_EQ(server.requests()[0].method, "GET");
  EXPECT_EQ(server.requests()[0].path, "/a/../b?c=d");
  EXPECT_EQ(server.requests()[0].headers, expected);
  EXPECT_EQ(server.requests()[0].body, "");
}

TEST(URLSession, SendsLargeBodiesWithoutAskingFirstAndFollowsRedirectsAsTheirStatusSays) {
  const std::string body = "data=" + std::string(std::size_t{3} << 20, 'x');
  for (const auto& [status, method] : {std::pair(302, "GET"), {303, "GET"}, {307, "POST"}}) {
    const ScriptedServer server([status = status](const Request& request, const Connection& connection) {
      if (request.path == "/end")
        connection.answer("end");
      else
        connection.send("HTTP/1.1 " + std::to_string(status) +
                        " Moved\r\nLocation: /end\r\nContent-Length: 5\r\n\r\nmoved");
    });
    URLRequest request = requestFor(server.address() + "/start");
    request.httpMethod = "POST";
    request.httpBody = body;
    const Answer answer = fetch(std::move(request));
    EXPECT_EQ(answer.text(), "end") << status;
    EXPECT_EQ(answer.response->url, server.address() + "/end");
    ASSERT_EQ(server.requests().size(), 2u);
    EXPECT_TRUE(server.requests()[0].body == body);
    EXPECT_EQ(server.requests()[0].headers.count("expect"), 0u);
    EXPECT_EQ(server.requests()[1].method, method) << status;
    EXPECT_TRUE(server.requests()[1].body == (method == std::string("POST") ? body : "")) << status;
  }
}

TEST(URLSession, DecodesWhatItOffersToDecode) {
  const std::string gzip = deflated(kText, MAX_WBITS + 16);
  const std::string zlib = deflated(kText, MAX_WBITS);
  std::string flipped = gzip;
  flipped[gzip.size() - 6] = static_cast<char>(flipped[gzip.size() - 6] ^ 1);  // in the checksum
  const struct {
    const char* what;
    std::string encoding;
    std::string body;
    std::string text;  // empty: an error
  } cases[] = {
      {"plain", "identity", kText, kText},
      {"two members", "GZip", gzip + gzip, kText + kText},
      {"zlib", "deflate", zlib, kText},
      {"a bare stream", "deflate", deflated(kText, -MAX_WBITS), kText},
      {"not gzip at all", "gzip", kText, ""},
      {"a wrong checksum", "gzip", flipped, ""},
      {"a truncated stream", "gzip", gzip.substr(0, gzip.size() - 9), ""},
      {"one byte", "gzip", gzip.substr(0, 1), ""},
      {"more behind the end", "deflate", zlib + zlib, ""},
      {"an encoding nobody offered", "br", kText, ""},
      {"several encodings", "gzip, gzip", deflated(gzip, MAX_WBITS + 16), ""},
  };
  for (const auto& c : cases) {
    const ScriptedServer server([&](const Request&, const Connection& connection) {
      connection.answer(c.body, "Content-Encoding: " + c.encoding + "\r\n");
    });
    const Answer answer = fetch(server.address());
    EXPECT_EQ(answer.text(), c.text.empty() ? "(no data)" : c.text) << c.what;
    EXPECT_EQ(answer.error.has_value(), c.text.empty()) << c.what;
  }
}

TEST(URLSession, ABodyIsTakenToItsBoundsInMemoryOrInAFileWithoutAName) {
  const TemporaryDirectory directory;
  const struct {
    const char* what;
    BodyBounds bounds;
    std::size_t size;
    std::optional<URLErrorCode> code;
  } cases[] = {
      {"in memory", {3 << 20, ""}, 3 << 20, {}},
      {"in a file", {3 << 20, directory.path()}, 3 << 20, {}},
      {"one byte more", {(3 << 20) - 1, directory.path()}, 3 << 20, URLErrorCode::DataLengthExceedsMaximum},
      {"so small that no file is made", {3 << 20, "/nowhere"}, 1 << 20, {}},
      {"nowhere to put it", {3 << 20, "/nowhere"}, (1 << 20) + 1, URLErrorCode::CannotWriteToFile},
  };
  for (const auto& c : cases) {
    for (const bool isPacked : {false, true}) {
      std::string body;
      while (body.size() < c.size) body += kText;
      body.resize(c.size);
      const ScriptedServer server([&](const Request&, const Connection& connection) {
        if (isPacked)
          connection.answer(deflated(body, MAX_WBITS + 16), "Content-Encoding: gzip\r\n");
        else
          connection.answer(body);
      });
      URLRequest request = requestFor(server.address());
      request.responseBounds = c.bounds;
      const Answer answer = fetch(std::move(request));
      EXPECT_EQ(answer.code(), c.code) << c.what;
      EXPECT_EQ(answer.data == body, !c.code) << c.what;
      EXPECT_TRUE(std::filesystem::is_empty(directory.path())) << c.what;
    }
  }
}

TEST(URLSession, EveryWayAnAnswerCanGoWrongIsAnErrorWithACode) {
  enum class Then { Close, Hang, SendOn };
  const std::string ok = "HTTP/1.1 200 OK\r\n";
  const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
  const std::string moved = "HTTP/1.1 302 Found\r\nLocation: ";
  const std::string bomb = deflated(std::string(limits::kResponseBytes + 1, '0'), MAX_WBITS + 16);
  const struct {
    std::string sent;
    Then then;
    std::optional<URLErrorCode> code;
    const char* text = "(no data)";
    const char* more = "x";
  } cases[] = {
      {"HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\ngone", Then::Close, {}, "gone"},
      {ok + "Content-Encoding: gzip\r\n\r\n", Then::Close, {}},
      {ok + "\r\nall", Then::Close, {}, "all"},
      {ok + "Content-Length: 6\r\n\r\nabc", Then::Close, URLErrorCode::NetworkConnectionLost},
      {ok + "Content-Le", Then::Close, URLErrorCode::NetworkConnectionLost},
      {"", Then::Close, URLErrorCode::NetworkConnectionLost},
      {"hello, who is there?\r\n\r\n", Then::Close, URLErrorCode::BadServerResponse},
      {"", Then::Hang, URLErrorCode::TimedOut},
      {ok + "Content-", Then::Hang, URLErrorCode::TimedOut},
      {ok + "Content-Length: 6\r\n\r\nabc", Then::Hang, URLErrorCode::TimedOut},
      {ok + "\r\n", Then::SendOn, URLErrorCode::DataLengthExceedsMaximum},
      {ok + "Content-Length: " + std::to_string(limits::kResponseBytes + 1) + "\r\n\r\n", Then::Hang,
       URLErrorCode::DataLengthExceedsMaximum},
      {ok + "Content-Encoding: gzip\r\n\r\n" + bomb, Then::Close, URLErrorCode::DataLengthExceedsMaximum},
      {chunked + "3\r\nall\r\n0\r\nX: y\r\nServer-Timing: z\r\n\r\n", Then::Close, {}, "all"},
      {chunked + "0\r\n", Then::SendOn, URLErrorCode::DataLengthExceedsMaximum, "(no data)", "X: y\r\n"},
      {chunked + "3;a=", Then::SendOn, URLErrorCode::DataLengthExceedsMaximum},
      {moved + "/\r\n\r\n", Then::SendOn, URLErrorCode::HTTPTooManyRedirects},
      {moved + "/\r\nContent-Length: 0\r\n\r\n", Then::Close, URLErrorCode::HTTPTooManyRedirects},
      {moved + "file:///etc/passwd\r\nContent-Length: 0\r\n\r\n", Then::Close, URLErrorCode::UnsupportedURL},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.sent.substr(0, 80));
    const ScriptedServer server([&](const Request&, const Connection& connection) {
      connection.send(c.sent);
      if (c.then == Then::Hang) connection.hang();
      std::string more;
      while (more.size() < 1 << 20) more += c.more;
      while (c.then == Then::SendOn && connection.send(more)) continue;
    });
    const Answer answer = fetch(server.address() + "/", c.code == URLErrorCode::TimedOut ? 0.2 : 10);
    EXPECT_EQ(answer.code(), c.code) << (answer.error ? answer.error->description() : "");
    EXPECT_EQ(answer.text(), c.text);
    EXPECT_LE(server.requests().size(), 21u);
  }
}

// Those that the other tests do not come by, with whatever version they run.
TEST(URLSession, CurlsNumbersMeanTheSameWhateverItsVersion) {
  const std::pair<int, URLErrorCode> cases[] = {
      {8, URLErrorCode::BadServerResponse},        {35, URLErrorCode::SecureConnectionFailed},
      {56, URLErrorCode::NetworkConnectionLost},   {60, URLErrorCode::ServerCertificateUntrusted},
      {97, URLErrorCode::CannotConnectToHost},     {100, URLErrorCode::DataLengthExceedsMaximum},
      {101, URLErrorCode::SecureConnectionFailed}, {9999, URLErrorCode::Unknown}};
  for (const auto& [result, code] : cases) EXPECT_EQ(urlErrorCodeOfCurl(result), code) << result;
}

TEST(URLSession, ASlowTransferThatIsAliveLivesOn) {
  const ScriptedServer server([](const Request&, const Connection& connection) {
    for (const char c : std::string("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc")) {
      connection.pause(0.03);
      connection.send(std::string(1, c));
    }
  });
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(fetch(server.address(), 1).text(), "abc");
  EXPECT_GT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1100));
}

TEST(URLSession, OnlyServersOnTheWebAreAsked) {
  const std::pair<std::string, URLErrorCode> cases[] = {
      {"file:///etc/passwd", URLErrorCode::UnsupportedURL},
      {"/etc/passwd", URLErrorCode::UnsupportedURL},
      {"http:///x", URLErrorCode::UnsupportedURL},
      {"http://127.0.0.1:99999/", URLErrorCode::BadURL},
      {"http://127.0.0.1:" + std::to_string(freePort()) + "/", URLErrorCode::CannotConnectToHost}};
  for (const auto& [address, code] : cases) EXPECT_EQ(fetch(address).code(), code) << address;
}

TEST(URLSession, ManyRequestsRunAtTheSameTime) {
  std::atomic<int> waiting = 0;
  const ScriptedServer server([&](const Request& request, const Connection& connection) {
    ++waiting;
    for (int i = 0; i < 2000 && waiting < 8; ++i) connection.pause(0.005);
    connection.answer(request.path);
  });
  MainQueueDriver driver;
  int right = 0;
  for (int i = 0; i < 8; ++i) {
    const std::string path = "/" + std::to_string(i);
    start(requestFor(server.address() + path),
          [&right, path](auto data, auto, auto) { right += data == path ? 1 : 0; });
  }
  driver.settle();
  EXPECT_EQ(right, 8);
}

TEST(URLSession, ServersAreVerified) {
  const TemporaryDirectory directory;
  writeFile(directory / "store/file.json", kText);
  const Certificate good = makeCertificate(directory / "good", "20200101000000Z", "20991231000000Z");
  const Certificate foreign = makeCertificate(directory / "foreign", "20200101000000Z", "20991231000000Z");
  const Certificate expired = makeCertificate(directory / "expired", "20200101000000Z", "20210101000000Z");
  const struct {
    const Certificate& served;
    const Certificate& trusted;
    std::optional<URLErrorCode> code;
  } cases[] = {
      {good, good, {}},
      {foreign, good, URLErrorCode::ServerCertificateUntrusted},
      {expired, expired, URLErrorCode::ServerCertificateHasBadDate},
  };
  for (const auto& c : cases) {
    const NginxServer server(directory / "store", &c.served);
    setenv("SSL_CERT_FILE", c.trusted.certificate.c_str(), 1);
    const Answer answer = fetch(server.address() + "/file.json");
    EXPECT_EQ(answer.code(), c.code) << (answer.error ? answer.error->description() : "");
    EXPECT_EQ(answer.text(), c.code ? "(no data)" : kText);
  }
  unsetenv("SSL_CERT_FILE");
}

}  // namespace
}  // namespace quellaro
