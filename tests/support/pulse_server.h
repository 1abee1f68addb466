#pragma once

#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/temporary_directory.h"

namespace quellaro {

// A sound server of the test's own, with one silent sink; everything it needs lives in a directory that goes with it.
// The test process finds it, and no other, through PULSE_SERVER.
class PulseServer {
 public:
  PulseServer();
  PulseServer(const PulseServer&) = delete;
  PulseServer& operator=(const PulseServer&) = delete;

  void start();
  // At once, as a crash would end it.
  void kill();
  // It keeps its connections and does nothing, until it is killed.
  void hang();

  void setMuted(bool muted) const;
  void setVolumePercent(int percent) const;
  // Adds a module to those that every server of the tests has, until it is started anew.
  void loadModule(const std::string& nameAndArguments) const;
  // Of the default sink, in seconds.
  double sinkLatency() const;
  // What the server says about streams that play.
  std::string playingStreams() const;

 private:
  std::string control(const std::string& command) const;

  TemporaryDirectory directory_;
  std::string address_;
  ChildProcess process_;
};

// Another application's stream: a constant level, which no other sound changes the mean of.
class OtherStream {
 public:
  OtherStream(const std::string& mediaRole, float level);
  OtherStream(const OtherStream&) = delete;
  OtherStream& operator=(const OtherStream&) = delete;

 private:
  TemporaryDirectory directory_;
  ChildProcess process_;
};

// Records what the server's sink plays, from the construction until samples() is asked for.
class SinkRecording {
 public:
  static constexpr unsigned kRate = 48000;

  SinkRecording();
  SinkRecording(const SinkRecording&) = delete;
  SinkRecording& operator=(const SinkRecording&) = delete;

  // One channel. Ends the recording.
  std::vector<float> samples();

 private:
  TemporaryDirectory directory_;
  ChildProcess process_;
};

}  // namespace quellaro
