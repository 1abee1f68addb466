#include "import/motion/worker.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "import/motion/renderer.h"
#include "import/motion/wire.h"
#include "platform/foundation/storage/file_descriptor.h"

namespace halvo::motion {

namespace {

using quellaro::FileDescriptor;
using quellaro::writeAll;

// Of the process. Honest files take a tenth at most.
constexpr rlim_t kMostMemory = rlim_t{1} << 30;  // on top of what the tool had
constexpr rlim_t kMostSeconds = 40;              // of processor time
constexpr int kMostSilence = 30'000;             // milliseconds for one frame

constexpr int kUnreadable = 3;
constexpr int kNoMemory = 4;

ArtError error(std::string reason) { return {std::nullopt, std::move(reason)}; }

rlim_t memoryInUse() {
  const FileDescriptor file(open("/proc/self/statm", O_RDONLY | O_CLOEXEC));
  char text[64] = {};
  if (!file || read(file.get(), text, sizeof text - 1) <= 0) return 0;
  return static_cast<rlim_t>(std::strtoull(text, nullptr, 10)) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

void limit(__rlimit_resource what, rlim_t most) {
  const rlimit both{most, most};
  setrlimit(what, &both);
}

// Nothing of the tool's files, windows and sounds is within reach, nor what it prints.
void confine(int output) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGPIPE, SIGTERM, SIGINT})
    std::signal(signal, SIG_DFL);
  const int nothing = open("/dev/null", O_RDWR);
  for (int standard = 0; standard < 3; ++standard) dup2(nothing, standard);
  dup2(output, 3);
  close_range(4, ~0U, 0);
  limit(RLIMIT_CORE, 0);
  limit(RLIMIT_FSIZE, 0);
  limit(RLIMIT_CPU, kMostSeconds);
  if (const rlim_t used = memoryInUse(); used > 0) limit(RLIMIT_AS, used + kMostMemory);
}

// The child's whole life.
[[noreturn]] void renderAll(const std::string& text, const std::vector<std::size_t>& frames, const RenderFrame& render,
                            int output) {
  try {
    confine(output);
    const Renderer renderer(text);
    for (const std::size_t frame : frames) {
      const std::string bytes = render(renderer, frame);
      if (bytes.empty()) _exit(kUnreadable);
      const auto size = static_cast<std::uint32_t>(bytes.size());
      if (!writeAll(3, {reinterpret_cast<const char*>(&size), sizeof size}) || !writeAll(3, bytes)) _exit(1);
    }
    _exit(0);
  } catch (const std::bad_alloc&) {
    _exit(kNoMemory);
  } catch (...) {
    _exit(kUnreadable);
  }
}

enum class Got { All, End, Silence };

Got readAll(int file, char* bytes, std::size_t count) {
  while (count > 0) {
    pollfd ready{file, POLLIN, 0};
    const int found = poll(&ready, 1, kMostSilence);
    if (found < 0 && errno == EINTR) continue;
    if (found == 0) return Got::Silence;
    const ssize_t got = read(file, bytes, std::min(count, std::size_t{1} << 20));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return Got::End;
    bytes += got;
    count -= static_cast<std::size_t>(got);
  }
  return Got::All;
}

Got readFrame(int file, std::string& bytes) {
  std::uint32_t size = 0;
  if (const Got got = readAll(file, reinterpret_cast<char*>(&size), sizeof size); got != Got::All) return got;
  if (size == 0 || size > 2 * kMostFrameBytes) return Got::End;
  bytes.resize(size);
  return readAll(file, bytes.data(), size);
}

int waitFor(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
  return status;
}

ArtError whatEnded(int status, std::size_t frame, Got got) {
  const std::string where = " (at frame " + std::to_string(frame) + " of the file)";
  const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  if (got == Got::Silence || signal == SIGXCPU || signal == SIGKILL)
    return error("evaluating it takes too long" + where);
  if (WIFEXITED(status) && WEXITSTATUS(status) == kNoMemory)
    return error("evaluating it takes too much memory" + where);
  if (WIFEXITED(status) && WEXITSTATUS(status) == kUnreadable)
    return error("what evaluates motion files does not take it for one");
  return error("what evaluates motion files broke down over it" + where);
}

}  // namespace

std::optional<ArtError> renderApart(const std::string& text, const std::vector<std::size_t>& frames,
                                    const RenderFrame& render, const TakeFrame& take) {
  if (!canEvaluate())
    return error("this build of the tool reads no motion files; scripts/dependencies import brings what it takes");
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return error(std::strerror(errno));
  const FileDescriptor input(ends[0]);
  FileDescriptor output(ends[1]);
  const pid_t child = fork();
  if (child < 0) return error(std::strerror(errno));
  if (child == 0) renderAll(text, frames, render, output.get());
  output = FileDescriptor();
  std::size_t taken = 0;
  Got got = Got::All;
  bool isWanted = true;
  try {
    while (taken < frames.size() && isWanted) {
      std::string bytes;
      got = readFrame(input.get(), bytes);
      if (got != Got::All) break;
      isWanted = take(std::move(bytes));
      ++taken;
    }
  } catch (...) {
    kill(child, SIGKILL);
    waitFor(child);
    throw;
  }
  const bool isDone = got == Got::All;
  if (isDone || got == Got::Silence) kill(child, SIGKILL);
  const int status = waitFor(child);
  if (isDone) return std::nullopt;
  return whatEnded(status, frames[taken], got);
}

}  // namespace halvo::motion
