#include "support/pulse_server.h"

#include <signal.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <thread>

namespace quellaro {

PulseServer::PulseServer() {
  const std::string home = directory_.path().string();
  address_ = home + "/socket";
  // For the server and for its clients; the latter would leave a cookie in the home of whoever runs the tests.
  setenv("HOME", home.c_str(), 1);
  setenv("XDG_RUNTIME_DIR", home.c_str(), 1);
  setenv("PULSE_COOKIE", (home + "/cookie").c_str(), 1);
  setenv("PULSE_SERVER", ("unix:" + address_).c_str(), 1);
  start();
}

void PulseServer::start() {
  std::filesystem::remove(address_);
  process_ =
      ChildProcess({"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "--realtime=no",
                    "--high-priority=no", "-L", "module-null-sink sink_name=silence rate=48000 channels=2", "-L",
                    "module-native-protocol-unix auth-anonymous=1 socket=" + address_},
                   directory_ / "server");
  waitUntil("the sound server does not come up", [this] { return !control("info 2>/dev/null").empty(); });
}

void PulseServer::kill() { process_.end(SIGKILL); }

void PulseServer::hang() { process_.signal(SIGSTOP); }

std::string PulseServer::control(const std::string& command) const {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(("pactl " + command).c_str(), "r"), pclose);
  std::string output;
  std::array<char, 4096> buffer{};
  while (const std::size_t got = fread(buffer.data(), 1, buffer.size(), pipe.get())) output.append(buffer.data(), got);
  return output;
}

void PulseServer::setMuted(bool muted) const { control(std::string("set-sink-mute silence ") + (muted ? "1" : "0")); }

void PulseServer::setVolumePercent(int percent) const {
  control("set-sink-volume silence " + std::to_string(percent) + "%");
}

void PulseServer::loadModule(const std::string& nameAndArguments) const {
  if (control("load-module " + nameAndArguments).empty()) throw std::runtime_error("no " + nameAndArguments);
}

double PulseServer::sinkLatency() const {
  const std::string sinks = control("list sinks");
  const std::size_t found = sinks.find("configured ");
  return found == std::string::npos ? 0 : std::atof(sinks.c_str() + found + 11) / 1e6;
}

std::string PulseServer::playingStreams() const { return control("list sink-inputs"); }

OtherStream::OtherStream(const std::string& mediaRole, float level) {
  // Half a minute, more than any test takes.
  const std::vector<float> samples(30 * SinkRecording::kRate, level);
  const std::filesystem::path file = directory_ / "samples";
  writeFile(file, {reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(float)});
  process_ = ChildProcess({"pacat", "--raw", "--format=float32le", "--rate=" + std::to_string(SinkRecording::kRate),
                           "--channels=1", "--latency-msec=20", "--property=media.role=" + mediaRole, file},
                          directory_ / "output");
}

SinkRecording::SinkRecording() {
  const std::string file = directory_ / "samples";
  process_ = ChildProcess({"parec", "--raw", "--format=float32le", "--rate=" + std::to_string(kRate), "--channels=1",
                           "--latency-msec=20", "-d", "silence.monitor"},
                          file);
  waitUntil("nothing is recorded", [&] { return std::filesystem::file_size(file) > 0; });
}

std::vector<float> SinkRecording::samples() {
  // What has been heard may still be on its way to the recorder.
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  process_.end(SIGTERM);
  const std::string bytes = readFile(directory_ / "samples");
  std::vector<float> samples(bytes.size() / sizeof(float));
  std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
  return samples;
}

}  // namespace quellaro
