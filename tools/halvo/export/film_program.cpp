#include "export/film_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include "platform/foundation/text/utf8.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr const char* kProgram = "ffmpeg";

NSError spawnError(int code) {
  if (code == ENOENT)
    return {"halvo", 0, "the program ffmpeg is missing, which makes the film: sudo apt-get install ffmpeg"};
  return {"halvo", 0, std::string(kProgram) + ": " + posixError(code).localizedDescription};
}

// Standard input, a silent standard output, standard error, and the file.
int spawn(pid_t& process, const std::vector<std::string>& arguments, const std::array<int, 3>& descriptors) {
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  posix_spawn_file_actions_init(&actions);
  posix_spawnattr_init(&attributes);
  posix_spawn_file_actions_adddup2(&actions, descriptors[0], STDIN_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, descriptors[1], STDERR_FILENO);
  posix_spawn_file_actions_adddup2(&actions, descriptors[2], 3);
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  std::vector<std::string> words = {kProgram};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const int code = posix_spawnp(&process, kProgram, &actions, &attributes, pointers.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return code;
}

}  // namespace

Result<FilmProgram> FilmProgram::start(const std::vector<std::string>& arguments, int output) {
  // It may end before all has been written; that is told by what the writing answers.
  std::signal(SIGPIPE, SIG_IGN);
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return posixError(errno);
  const FileDescriptor reading(ends[0]);
  FileDescriptor writing(ends[1]);
  FileDescriptor words(memfd_create("words", MFD_CLOEXEC));
  // Above those that it gets, so that none is taken away before it is handed on.
  const FileDescriptor file(fcntl(output, F_DUPFD_CLOEXEC, 10));
  if (!words || !file) return posixError(errno);
  pid_t process = -1;
  if (const int code = spawn(process, arguments, {reading.get(), words.get(), file.get()})) return spawnError(code);
  return FilmProgram(process, std::move(writing), std::move(words));
}

FilmProgram::FilmProgram(pid_t process, FileDescriptor input, FileDescriptor words)
    : process_(process), input_(std::move(input)), words_(std::move(words)) {}

FilmProgram::FilmProgram(FilmProgram&& other) noexcept
    : process_(std::exchange(other.process_, -1)), input_(std::move(other.input_)), words_(std::move(other.words_)) {}

FilmProgram::~FilmProgram() {
  if (process_ < 0) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

bool FilmProgram::feed(std::string_view bytes) { return writeAll(input_.get(), bytes); }

std::optional<NSError> FilmProgram::finish() {
  input_ = FileDescriptor();
  int status = 0;
  while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = -1;
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return std::nullopt;
  return NSError{"halvo", 0, std::string(kProgram) + " has failed: " + lastWords()};
}

std::string FilmProgram::lastWords() const {
  std::array<char, 2000> text;
  const off_t size = lseek(words_.get(), 0, SEEK_END);
  const off_t start = std::max<off_t>(0, size - static_cast<off_t>(text.size()));
  const ssize_t got = pread(words_.get(), text.data(), text.size(), start);
  std::string_view words(text.data(), static_cast<std::size_t>(std::max<ssize_t>(0, got)));
  while (words.ends_with('\n')) words.remove_suffix(1);
  words.remove_prefix(words.rfind('\n') + 1);
  return words.empty() ? "it says nothing" : printable(words, 300);
}

}  // namespace halvo
