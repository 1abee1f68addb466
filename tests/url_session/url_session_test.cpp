#include "platform/foundation/url_session.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <chrono>
#include <cstdlib>
#include <string>

#include "platform/foundation/limits.h"
#include "support/nginx_server.h"
#include "support/scripted_server.h"
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

TEST(URLSession, SendsLargeBodiesWithoutAskingFirst) {
  const ScriptedServer server([](const Request&, const Connection& connection) { connection.answer("ok"); });
  URLRequest request = requestFor(server.address());
  request.httpMethod = "POST";
  request.httpBody = "data=" + std::string(std::size_t{3} << 20, 'x');
  EXPECT_EQ(fetch(request).text(), "ok");
  EXPECT_EQ(server.requests()[0].body, *request.httpBody);
  EXPECT_EQ(server.requests()[0].headers.count("expect"), 0u);
}

TEST(URLSession, RedirectsKeepOrChangeTheMethodByTheirStatus) {
  const struct {
    const char* method;
    int status;
    const char* expected;
  } cases[] = {{"GET", 301, "GET"},  {"GET", 307, "GET"},   {"POST", 301, "GET"}, {"POST", 302, "GET"},
               {"POST", 303, "GET"}, {"POST", 307, "POST"}, {"POST", 308, "POST"}};
  for (const auto& c : cases) {
    const ScriptedServer server([&](const Request& request, const Connection& connection) {
      if (request.path == "/end")
        connection.answer("end");
      else
        connection.send("HTTP/1.1 " + std::to_string(c.status) +
                        " Moved\r\nLocation: /end\r\nContent-Length: 5\r\n\r\nmoved");
    });
    URLRequest request = requestFor(server.address() + "/start");
    request.httpMethod = c.method;
    if (request.httpMethod == "POST") request.httpBody = "body";
    const Answer answer = fetch(std::move(request));
    EXPECT_EQ(answer.text(), "end") << c.method << c.status;
    EXPECT_EQ(answer.response->url, server.address() + "/end");
    ASSERT_EQ(server.requests().size(), 2u);
    EXPECT_EQ(server.requests()[1].method, c.expected) << c.method << c.status;
    EXPECT_EQ(server.requests()[1].body, std::string(c.expected) == "POST" ? "body" : "");
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
      {"gzip", "GZip", gzip, kText},
      {"two members", "gzip", gzip + gzip, kText + kText},
      {"zlib", "deflate", zlib, kText},
      {"a bare stream", "deflate", deflated(kText, -MAX_WBITS), kText},
      {"not gzip at all", "gzip", kText, ""},
      {"a wrong checksum", "gzip", flipped, ""},
      {"a truncated stream", "gzip", gzip.substr(0, gzip.size() - 9), ""},
      {"a truncated zlib stream", "deflate", zlib.substr(0, zlib.size() - 1), ""},
      {"one byte", "gzip", gzip.substr(0, 1), ""},
      {"more behind the end", "deflate", zlib + "x", ""},
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

TEST(URLSession, EveryWayAnAnswerCanGoWrongIsAnErrorWithACode) {
  const auto code = [](URLErrorCode c) { return static_cast<std::int64_t>(c); };
  const struct {
    const char* what;
    ScriptedServer::Script script;
    std::int64_t code;  // 0: no error
    const char* text;
    double timeout = 10;
  } cases[] = {
      {"an error page is an answer",
       [](auto&, auto& c) { c.send("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\ngone"); }, 0, "gone"},
      {"an empty body is no data", [](auto&, auto& c) { c.answer(""); }, 0, "(no data)"},
      {"an empty body that is said to be packed", [](auto&, auto& c) { c.answer("", "Content-Encoding: gzip\r\n"); }, 0,
       "(no data)"},
      {"a body that ends with the connection", [](auto&, auto& c) { c.send("HTTP/1.0 200 OK\r\n\r\nall"); }, 0, "all"},
      {"more bytes than promised",
       [](auto&, auto& c) { c.send("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabcdefgh"); }, 0, "abc"},
      {"half the bytes, then closed", [](auto&, auto& c) { c.send("HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nabc"); },
       code(URLErrorCode::NetworkConnectionLost), "(no data)"},
      {"chunks that break off",
       [](auto&, auto& c) { c.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n"); },
       code(URLErrorCode::NetworkConnectionLost), "(no data)"},
      {"closed before the headers", [](auto&, auto&) {}, code(URLErrorCode::NetworkConnectionLost), "(no data)"},
      {"closed within the headers", [](auto&, auto& c) { c.send("HTTP/1.1 200 OK\r\nContent-Le"); },
       code(URLErrorCode::NetworkConnectionLost), "(no data)"},
      {"no HTTP at all", [](auto&, auto& c) { c.send("hello, who is there?\r\n\r\n"); },
       code(URLErrorCode::BadServerResponse), "(no data)"},
      {"silence before the headers", [](auto&, auto& c) { c.hang(); }, code(URLErrorCode::TimedOut), "(no data)", 0.2},
      {"silence within the headers",
       [](auto&, auto& c) {
         if (c.send("HTTP/1.1 200 OK\r\nContent-")) c.hang();
       },
       code(URLErrorCode::TimedOut), "(no data)", 0.2},
      {"silence within the body",
       [](auto&, auto& c) {
         if (c.send("HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nabc")) c.hang();
       },
       code(URLErrorCode::TimedOut), "(no data)", 0.2},
      {"endless bytes",
       [](auto&, auto& c) {
         c.send("HTTP/1.1 200 OK\r\n\r\n");
         while (c.send(std::string(1 << 20, 'x'))) continue;
       },
       code(URLErrorCode::DataLengthExceedsMaximum), "(no data)"},
      {"endless bytes of a redirect",
       [](auto&, auto& c) {
         c.send("HTTP/1.1 302 Found\r\nLocation: /\r\n\r\n");
         while (c.send(std::string(1 << 20, 'x'))) continue;
       },
       code(URLErrorCode::HTTPTooManyRedirects), "(no data)"},
      {"too much, and said so",
       [](auto&, auto& c) {
         c.send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(limits::kResponseBytes + 1) + "\r\n\r\n");
         c.hang();
       },
       code(URLErrorCode::DataLengthExceedsMaximum), "(no data)"},
      {"a redirect to itself",
       [](auto&, auto& c) { c.send("HTTP/1.1 302 Found\r\nLocation: /\r\nContent-Length: 0\r\n\r\n"); },
       code(URLErrorCode::HTTPTooManyRedirects), "(no data)"},
      {"a redirect into the file system",
       [](auto&, auto& c) {
         c.send("HTTP/1.1 302 Found\r\nLocation: file:///etc/passwd\r\nContent-Length: 0\r\n\r\n");
       },
       code(URLErrorCode::UnsupportedURL), "(no data)"},
  };
  for (const auto& c : cases) {
    const ScriptedServer server(c.script);
    const Answer answer = fetch(server.address() + "/", c.timeout);
    EXPECT_EQ(answer.code(), c.code) << c.what << ": " << (answer.error ? answer.error->description() : "");
    EXPECT_EQ(answer.text(), c.text) << c.what;
    EXPECT_LE(server.requests().size(), 21u) << c.what;
  }
}

TEST(URLSession, ASmallAnswerThatUnpacksToAnEndlessOneEndsAtTheLimit) {
  const std::string bomb = deflated(std::string(limits::kResponseBytes + 1, '0'), MAX_WBITS + 16);
  ASSERT_LT(bomb.size(), limits::kResponseBytes / 500);
  const ScriptedServer server(
      [&](const Request&, const Connection& connection) { connection.answer(bomb, "Content-Encoding: gzip\r\n"); });
  EXPECT_EQ(fetch(server.address()).code(), static_cast<std::int64_t>(URLErrorCode::DataLengthExceedsMaximum));
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
  const struct {
    std::string address;
    URLErrorCode code;
  } cases[] = {{"file:///etc/passwd", URLErrorCode::UnsupportedURL},
               {"ftp://127.0.0.1/", URLErrorCode::UnsupportedURL},
               {"/etc/passwd", URLErrorCode::UnsupportedURL},
               {"http:///x", URLErrorCode::UnsupportedURL},
               {"http://127.0.0.1:99999/", URLErrorCode::BadURL},
               {"http://127.0.0.1:" + std::to_string(freePort()) + "/", URLErrorCode::CannotConnectToHost}};
  for (const auto& c : cases) EXPECT_EQ(fetch(c.address).code(), static_cast<std::int64_t>(c.code)) << c.address;
}

TEST(URLSession, TheEnvironmentNamesTheProxy) {
  const ScriptedServer proxy([](const Request&, const Connection& connection) { connection.answer("by proxy"); });
  setenv("http_proxy", proxy.address().c_str(), 1);
  EXPECT_EQ(fetch("http://store.example/file").text(), "by proxy");
  unsetenv("http_proxy");
  ASSERT_EQ(proxy.requests().size(), 1u);
  EXPECT_EQ(proxy.requests()[0].path, "http://store.example/file");
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
    const char* what;
    const Certificate& served;
    const Certificate& trusted;
    std::int64_t code;
  } cases[] = {
      {"trusted", good, good, 0},
      {"foreign", foreign, good, static_cast<std::int64_t>(URLErrorCode::ServerCertificateUntrusted)},
      {"expired", expired, expired, static_cast<std::int64_t>(URLErrorCode::ServerCertificateHasBadDate)},
  };
  for (const auto& c : cases) {
    const NginxServer server(directory / "store", &c.served);
    setenv("SSL_CERT_FILE", c.trusted.certificate.c_str(), 1);
    const Answer answer = fetch(server.address() + "/file.json");
    EXPECT_EQ(answer.code(), c.code) << c.what << ": " << (answer.error ? answer.error->description() : "");
    EXPECT_EQ(answer.text(), c.code == 0 ? kText : "(no data)") << c.what;
  }
  unsetenv("SSL_CERT_FILE");
}

}  // namespace
}  // namespace quellaro
