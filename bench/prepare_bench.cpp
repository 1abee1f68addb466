// Runs the three prepare_* programs turn by turn on the frames in DIR and compares what the whole processes cost: the
// least CPU time of several runs, and the peak memory. Each runs a few times in a row, because on a virtual machine
// that hands free memory back to its host, memory that nobody used for a second costs several times as much to use
// again. Small itself, because what a process had in memory before it became another program counts in its peak.
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <string>

extern char** environ;

namespace {

constexpr int kRounds = 4;
constexpr int kRunsInARow = 3;

struct Cost {
  double milliseconds = 1e18;
  long peakKilobytes = 0;
};

double milliseconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

bool runOnce(const std::string& program, const std::string& file, Cost& cost) {
  char* const arguments[] = {const_cast<char*>(program.c_str()), const_cast<char*>(file.c_str()), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", 1, 0);
  pid_t child = 0;
  const int error = posix_spawn(&child, program.c_str(), &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  rusage usage{};
  if (error != 0 || wait4(child, &status, 0, &usage) != child || status != 0) return false;
  cost.milliseconds = std::min(cost.milliseconds, milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime));
  cost.peakKilobytes = std::max(cost.peakKilobytes, usage.ru_maxrss);
  return true;
}

bool run(const std::string& program, const std::string& file, Cost& cost) {
  for (int i = 0; i < kRunsInARow; ++i)
    if (!runOnce(program, file, cost)) return false;
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("Usage: prepare_bench DIR (with what make_frames wrote)\n", stderr);
    return 2;
  }
  const std::string programs = std::string(argv[0]).substr(0, std::string(argv[0]).rfind('/') + 1);
  const std::string directory = argv[1];
  Cost ours;
  Cost librsvg;
  Cost expat;
  for (int i = 0; i < kRounds; ++i) {
    if (!run(programs + "prepare_ours", directory + "/animation.json", ours) ||
        !run(programs + "prepare_librsvg", directory + "/frames.txt", librsvg) ||
        !run(programs + "prepare_expat", directory + "/frames.txt", expat)) {
      std::fputs("prepare_bench: a program failed\n", stderr);
      return 1;
    }
  }
  std::printf("prepare  %.0f ms CPU  librsvg %.0f  ratio %.3f (target 0.20)  Expat %.0f  ratio %.3f (target 1.00)\n",
              ours.milliseconds, librsvg.milliseconds, ours.milliseconds / librsvg.milliseconds, expat.milliseconds,
              ours.milliseconds / expat.milliseconds);
  std::printf("peak     %ld MB  librsvg %ld  ratio %.3f (target 0.50)\n", ours.peakKilobytes / 1024,
              librsvg.peakKilobytes / 1024,
              static_cast<double>(ours.peakKilobytes) / static_cast<double>(librsvg.peakKilobytes));
}
