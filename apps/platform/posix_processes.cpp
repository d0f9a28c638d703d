#include "platform/posix_processes.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>
#include <vector>

namespace ormel {
namespace {

using Time = std::chrono::steady_clock;

constexpr int kPollMilliseconds = 20;
/// A line without an end is handed on in pieces of this size, so that no program can fill our memory.
constexpr std::size_t kLongestLine = 64U * 1024U;

/// A file descriptor and its end.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  int get() const { return fd_; }
  bool open() const { return fd_ >= 0; }
  void Close() {
    if (fd_ >= 0) close(fd_);
    fd_ = -1;
  }

 private:
  int fd_;
};

/// A locked file; its name goes while it is still held, so that nobody waits for one that is gone.
class HeldLock {
 public:
  HeldLock(Descriptor file, std::string path) : file_(std::move(file)), path_(std::move(path)) {}
  HeldLock(const HeldLock&) = delete;
  HeldLock& operator=(const HeldLock&) = delete;
  ~HeldLock() { unlink(path_.c_str()); }

 private:
  Descriptor file_;
  std::string path_;
};

struct Pipe {
  Descriptor read, write;
  bool Open() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return false;
    read = Descriptor(ends[0]);
    write = Descriptor(ends[1]);
    return true;
  }
};

/// Cuts the output into lines ended by LF or CR LF.
class LineCutter {
 public:
  explicit LineCutter(const std::function<void(const std::string&)>& line) : line_(line) {}
  void Feed(const char* data, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
      if (data[i] == '\n' || text_.size() >= kLongestLine) Hand();
      if (data[i] != '\n') text_ += data[i];
    }
  }
  void Finish() {
    if (!text_.empty()) Hand();
  }

 private:
  void Hand() {
    if (!text_.empty() && text_.back() == '\r') text_.pop_back();
    const std::string whole = std::exchange(text_, {});
    if (line_) line_(whole);
  }
  const std::function<void(const std::string&)>& line_;
  std::string text_;
};

/// A started program; ended for good when its watcher leaves early, by an exception too.
class Child {
 public:
  explicit Child(pid_t pid) : pid_(pid) {}
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (!reaped_) {
      Signal(SIGKILL);
      Reap(0);
    }
    // What the program has started and left behind: nobody waits for it, and it may still hold its files
    // open.
    kill(-pid_, SIGKILL);
  }
  void Signal(int number) const {
    // The group may not exist yet or any more; then the program itself is meant.
    if (kill(-pid_, number) != 0) kill(pid_, number);
  }
  /// True once the program has ended.
  bool Reap(int flags) {
    pid_t answer = -1;
    do {
      answer = waitpid(pid_, &status_, flags);
    } while (answer < 0 && errno == EINTR);
    if (answer != 0) reaped_ = true;
    return reaped_;
  }
  int status() const { return status_; }

 private:
  pid_t pid_;
  int status_ = 0;
  bool reaped_ = false;
};

/// In the new process, between fork and exec: only calls that are safe there.
[[noreturn]] void BecomeProgram(const ProcessRequest& request, char* const* arguments, int null_device,
                                int output, int failure, pid_t parent) {
  setpgid(0, 0);
  prctl(PR_SET_PDEATHSIG, SIGKILL);  // one that does not listen would write into the folder of a later run
  bool ready = getppid() == parent;
  ready = ready && (request.folder.empty() || chdir(request.folder.c_str()) == 0);
  ready = ready && dup2(null_device, STDIN_FILENO) >= 0 && dup2(output, STDOUT_FILENO) >= 0;
  if (ready) {
    signal(SIGINT, SIG_DFL);
    signal(SIGPIPE, SIG_DFL);
    execv(request.program.c_str(), arguments);
  }
  const int error = errno;
  // Nobody is left to tell when this write fails.
  [[maybe_unused]] const ssize_t written = write(failure, &error, sizeof(error));
  _exit(127);
}

std::string SystemWords(int error) {
  return std::error_code(error, std::generic_category()).message();
}

/// The reason why the exec failed, 0 when the program runs.
int ReadExecFailure(int fd) {
  int error = 0;
  ssize_t size = 0;
  do {
    size = read(fd, &error, sizeof(error));
  } while (size < 0 && errno == EINTR);
  return size == static_cast<ssize_t>(sizeof(error)) ? error : 0;
}

/// Passes on what the pipe holds; false at its end.  Waits a moment when there is nothing.
bool PumpOnce(int fd, LineCutter& lines, int wait_milliseconds) {
  pollfd watched{fd, POLLIN, 0};
  const int ready = poll(&watched, 1, wait_milliseconds);
  if (ready <= 0) return true;
  std::array<char, 16384> buffer{};
  const ssize_t size = read(fd, buffer.data(), buffer.size());
  if (size < 0) return errno == EINTR || errno == EAGAIN;
  lines.Feed(buffer.data(), static_cast<std::size_t>(size));
  return size > 0;
}

/// What is still in the pipe of a program that has ended; a child of it that keeps the pipe open is not
/// waited for.
void Drain(int fd, LineCutter& lines) {
  pollfd watched{fd, POLLIN, 0};
  while (poll(&watched, 1, 0) > 0)
    if (!PumpOnce(fd, lines, 0)) return;
}

/// Interrupt first, kill when the grace period is over.
class Canceller {
 public:
  Canceller(const Child& child, std::chrono::milliseconds grace) : child_(child), grace_(grace) {}
  void Step() {
    const auto now = Time::now();
    if (!asked_) {
      asked_ = true;
      deadline_ = now + grace_;
      child_.Signal(SIGINT);
    } else if (!killed_ && now >= deadline_) {
      killed_ = true;
      child_.Signal(SIGKILL);
    }
  }
  bool asked() const { return asked_; }

 private:
  const Child& child_;
  std::chrono::milliseconds grace_;
  Time::time_point deadline_;
  bool asked_ = false, killed_ = false;
};

void Watch(Child& child, Descriptor& output, LineCutter& lines, const std::function<bool()>& cancelled,
           Canceller& canceller) {
  while (!child.Reap(WNOHANG)) {
    if (output.open()) {
      if (!PumpOnce(output.get(), lines, kPollMilliseconds)) output.Close();
    } else {
      poll(nullptr, 0, kPollMilliseconds);
    }
    if (canceller.asked() || (cancelled && cancelled())) canceller.Step();
  }
  if (output.open()) Drain(output.get(), lines);
  lines.Finish();
}

}  // namespace

std::string OwnProgramFolder() {
  std::error_code error;
  const std::filesystem::path own = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error || !own.has_parent_path()) return std::filesystem::current_path(error).string();
  return own.parent_path().string();
}

PosixProcesses::PosixProcesses() : PosixProcesses(OwnProgramFolder()) {}

PosixProcesses::PosixProcesses(std::string program_folder) : program_folder_(std::move(program_folder)) {
  std::error_code error;
  current_directory_ = std::filesystem::current_path(error).string();
}

std::string PosixProcesses::Environment(const std::string& name) const {
  const char* value = std::getenv(name.c_str());
  return value == nullptr ? std::string() : std::string(value);
}

std::shared_ptr<void> PosixProcesses::Lock(const std::string& path) {
  for (;;) {
    Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (!file.open()) return Processes::Lock(path);
    if (flock(file.get(), LOCK_EX | LOCK_NB) != 0) return nullptr;
    struct stat held {};
    struct stat named {};
    const bool same = fstat(file.get(), &held) == 0 && stat(path.c_str(), &named) == 0 &&
                      held.st_ino == named.st_ino && held.st_dev == named.st_dev;
    if (!same) continue;  // the last holder has just removed the file
    return std::make_shared<HeldLock>(std::move(file), path);
  }
}

ProcessResult PosixProcesses::Run(const ProcessRequest& request,
                                  const std::function<void(const std::string&)>& line,
                                  const std::function<bool()>& cancelled) {
  ProcessResult result;
  Pipe output;
  Pipe failure;
  const Descriptor null_device(open("/dev/null", O_RDONLY | O_CLOEXEC));
  if (!output.Open() || !failure.Open() || !null_device.open()) {
    result.failure = SystemWords(errno);
    return result;
  }
  std::vector<std::string> texts{request.program};
  texts.insert(texts.end(), request.arguments.begin(), request.arguments.end());
  std::vector<char*> arguments;
  arguments.reserve(texts.size() + 1);
  for (std::string& text : texts) arguments.push_back(text.data());
  arguments.push_back(nullptr);

  const pid_t parent = getpid();
  const pid_t pid = fork();
  if (pid < 0) {
    result.failure = SystemWords(errno);
    return result;
  }
  if (pid == 0)
    BecomeProgram(request, arguments.data(), null_device.get(), output.write.get(), failure.write.get(),
                  parent);
  setpgid(pid, pid);
  output.write.Close();
  failure.write.Close();
  Child child(pid);
  if (const int error = ReadExecFailure(failure.read.get()); error != 0) {
    child.Reap(0);
    result.failure = SystemWords(error);
    return result;
  }
  result.started = true;
  LineCutter lines(line);
  Canceller canceller(child, grace);
  Watch(child, output.read, lines, cancelled, canceller);
  result.cancelled = canceller.asked();
  if (WIFEXITED(child.status())) result.exit_code = WEXITSTATUS(child.status());
  if (WIFSIGNALED(child.status())) result.signal = WTERMSIG(child.status());
  return result;
}

}  // namespace ormel
