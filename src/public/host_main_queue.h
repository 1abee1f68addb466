#pragma once

#include <QuellaroHalvo/host_types.h>
#include <QuellaroHalvo/quellaro_halvo.h>
#include <poll.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace quellaro {

// The queue on which everything that the host sees happens. A host without a loop calls run(). A host with one watches
// fileDescriptor(), wakes after secondsUntilNextDeadline() and then calls drain(). A host that does neither sees
// nothing happen.
class MainQueue {
 public:
  static MainQueue& shared() {
    static MainQueue queue;
    return queue;
  }
  MainQueue(const MainQueue&) = delete;
  MainQueue& operator=(const MainQueue&) = delete;

  // Becomes readable when there is work; drain() makes it quiet again.
  int fileDescriptor() const { return quellaro_halvo_loop_descriptor(); }
  // 0 when a timer is due already; nothing when there is none.
  std::optional<double> secondsUntilNextDeadline() const {
    const double seconds = quellaro_halvo_loop_seconds_until_next_deadline();
    return seconds < 0 ? std::nullopt : std::optional<double>(seconds);
  }
  // Runs what is due now, and not what that work queues in turn. Gives whether anything ran.
  bool drain() { return quellaro_halvo_loop_drain(); }
  // Sleeps until there is something to drain.
  void wait() {
    pollfd work = {fileDescriptor(), POLLIN, 0};
    poll(&work, 1, quellaro_halvo_loop_milliseconds_until_next_deadline());
  }
  // Waits for and runs work until stop().
  quellaro_halvo_result run() { return quellaro_halvo_loop_run(); }
  // The same, but returns as well when nothing is left to do, or after so many milliseconds; negative sets no limit.
  // For a host that exits after the answer, before it does: the exit waits for no report of its plays.
  quellaro_halvo_result runUntilIdle(int milliseconds) { return quellaro_halvo_loop_run_until_idle(milliseconds); }
  // Ends either after the work that is running. Any thread.
  void stop() { quellaro_halvo_loop_stop(); }

 private:
  MainQueue() = default;
};

// Calls the handler on the main queue each time a sound has finished playing, for as long as it lives.
class AudioSessionObservation {
 public:
  explicit AudioSessionObservation(std::function<void()> handler)
      : handler_(std::make_unique<std::function<void()>>(std::move(handler))),
        token_(quellaro_halvo_observe_audio_session_deactivated(
            [](const char*, void* context) { (*static_cast<std::function<void()>*>(context))(); }, handler_.get())) {}
  ~AudioSessionObservation() { quellaro_halvo_stop_observing_audio_session_deactivated(token_); }
  AudioSessionObservation(const AudioSessionObservation&) = delete;
  AudioSessionObservation& operator=(const AudioSessionObservation&) = delete;

 private:
  std::unique_ptr<std::function<void()>> handler_;
  std::uint64_t token_;
};

// Receives what the library prints, on standard output otherwise: one text at a time, its line break included. Comes on
// whatever thread prints, and must neither throw nor call the library. An empty sink restores standard output.
inline quellaro_halvo_result setConsoleSink(std::function<void(std::string_view)> sink) {
  static std::function<void(std::string_view)> current;
  const quellaro_halvo_result result = quellaro_halvo_set_console_sink(nullptr, nullptr);
  if (result != quellaro_halvo_result_ok) return result;
  current = std::move(sink);
  if (!current) return result;
  return quellaro_halvo_set_console_sink(
      [](const char* text, void* context) { (*static_cast<decltype(current)*>(context))(text); }, &current);
}

// Receives, up to the level `most`, what the library would otherwise say on standard error, why a prepare has failed,
// and a copy of what it prints, without the line break at its end. The rules are those of the console sink. An empty
// sink restores standard error.
inline quellaro_halvo_result setLogSink(std::function<void(QLHalvoLogLevel, std::string_view)> sink,
                                        QLHalvoLogLevel most = QLHalvoLogLevel::info) {
  static std::function<void(QLHalvoLogLevel, std::string_view)> current;
  const auto level = static_cast<quellaro_halvo_log_level>(most);
  const quellaro_halvo_result result = quellaro_halvo_set_log_sink(nullptr, level, nullptr);
  if (result != quellaro_halvo_result_ok) return result;
  current = std::move(sink);
  if (!current) return result;
  return quellaro_halvo_set_log_sink(
      [](quellaro_halvo_log_level line, const char* text, void* context) {
        (*static_cast<decltype(current)*>(context))(static_cast<QLHalvoLogLevel>(line), text);
      },
      level, &current);
}

}  // namespace quellaro
