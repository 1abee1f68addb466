#include <dlfcn.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>

#include "support/scripted_server.h"
#include "url_session/fetch.h"

// Stands before the C library's: two names whose resolution hangs, or fails, without any network.
extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* name, const char* service,
                                                                  const addrinfo* hints, addrinfo** result) {
  using Resolver = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
  static const auto next = reinterpret_cast<Resolver>(dlsym(RTLD_NEXT, "getaddrinfo"));
  const std::string_view host = name != nullptr ? name : "";
  if (host == "hanging.test") sleep(3600);
  if (host == "absent.test") return EAI_NONAME;
  return next(name, service, hints, result);
}

namespace quellaro {
namespace {

TEST(URLSessionNames, AnUnknownHostIsAnErrorAndAHangingOneTimesOutAlone) {
  const ScriptedServer server([](auto&, auto& connection) { connection.answer("hello"); });
  EXPECT_EQ(fetch("http://absent.test/").code(), URLErrorCode::CannotFindHost);
  EXPECT_EQ(fetch("http://hanging.test/", 0.2).code(), URLErrorCode::TimedOut);
  EXPECT_EQ(fetch(server.address()).text(), "hello");
}

// Starts a request and exits at once, or while it is on its way; `seconds` in between.
[[noreturn]] void exitDuring(const std::string& address, double seconds) {
  start(requestFor(address, 60), [](auto, auto, auto) {});
  usleep(static_cast<useconds_t>(seconds * 1e6));
  std::exit(7);
}

TEST(URLSessionExitDeathTest, NeverWaitsForTheNetwork) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const ScriptedServer server([](auto&, auto& connection) { connection.hang(); });
  // The child runs this test again from its start, so that it asks a server of its own. It would have a minute to wait.
  for (const std::string& address : {server.address(), std::string("http://hanging.test/")})
    for (const double seconds : {0.0, 0.1}) {
      const auto start = std::chrono::steady_clock::now();
      EXPECT_EXIT(exitDuring(address, seconds), testing::ExitedWithCode(7), "") << address;
      EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << address;
    }
}

}  // namespace
}  // namespace quellaro
