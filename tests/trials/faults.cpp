// Loaded before a program, it makes one of the program's calls on files fail, or ends the program there.
//
//   ORMEL_FAULT_PROGRAM  name of the program that is meant; the programs that it starts are left alone
//   ORMEL_FAULT_FOLDER   only calls on files below this folder count
//   ORMEL_FAULT_CALLS    "write,sync": the kinds that count; all when it is empty
//   ORMEL_FAULT_AT       number of the call, from 1; 0 lets all pass
//   ORMEL_FAULT_HOW      "kill": the program ends before the call; "tear": after half of a write;
//                        "full": this call and all later ones that need space fail by a full disk;
//                        else the number of the error that this one call gives
//   ORMEL_FAULT_COUNT    file that gets the number of calls when the program ends by itself
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

template <class Function>
Function Next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

class Faults {
 public:
  Faults()
      : folder_(Variable("ORMEL_FAULT_FOLDER")),
        calls_(Variable("ORMEL_FAULT_CALLS")),
        how_(Variable("ORMEL_FAULT_HOW")),
        at_(std::atol(Variable("ORMEL_FAULT_AT").c_str())),
        meant_(Variable("ORMEL_FAULT_PROGRAM") == program_invocation_short_name) {}

  /// 0 to go on, else the error of the call.  `needs_space`: a full disk refuses it.
  int Step(std::string_view kind, const std::string& path, bool needs_space) {
    if (!meant_ || path.compare(0, folder_.size(), folder_) != 0) return 0;
    if (!calls_.empty() && ("," + calls_ + ",").find("," + std::string(kind) + ",") == std::string::npos)
      return 0;
    ++count_;
    if (at_ == 0 || count_ < at_) return 0;
    if (how_ == "full") return needs_space ? ENOSPC : 0;
    if (count_ > at_) return 0;
    if (how_ == "kill") End();
    if (how_ == "tear") return kTear;
    return std::atoi(how_.c_str());
  }
  [[noreturn]] static void End() {
    kill(getpid(), SIGKILL);
    for (;;) pause();
  }
  void WriteCount() const {
    const std::string file = Variable("ORMEL_FAULT_COUNT");
    if (!meant_ || file.empty()) return;
    if (std::FILE* out = std::fopen(file.c_str(), "w"); out != nullptr) {
      std::fprintf(out, "%ld\n", count_);
      std::fclose(out);
    }
  }

  static constexpr int kTear = -1;

 private:
  std::string folder_, calls_, how_;
  long at_;
  long count_ = 0;
  bool meant_;
};

Faults& TheFaults() {
  static Faults* faults = new Faults;  // outlives every destructor that still writes
  return *faults;
}

std::string PathOf(int fd) {
  std::array<char, 4096> path{};
  const std::string link = "/proc/self/fd/" + std::to_string(fd);
  const ssize_t size = readlink(link.c_str(), path.data(), path.size());
  return size > 0 ? std::string(path.data(), static_cast<std::size_t>(size)) : std::string();
}

int StepOf(std::string_view kind, int fd, bool needs_space) {
  const int before = errno;
  const int error = TheFaults().Step(kind, PathOf(fd), needs_space);
  errno = before;
  return error;
}

/// The answer of a call that was refused, or nothing to let it go on.
template <class Result, class Whole, class Half>
Result Write(int fd, std::size_t size, const Whole& whole, const Half& half) {
  const int error = StepOf("write", fd, true);
  if (error == Faults::kTear) {
    half(size / 2);
    Faults::End();
  }
  if (error == 0) return whole();
  errno = error;
  return -1;
}

template <class Whole>
int Plain(int error, const Whole& whole) {
  if (error == Faults::kTear) Faults::End();
  if (error == 0) return whole();
  errno = error;
  return -1;
}

struct CountAtEnd {
  ~CountAtEnd() { TheFaults().WriteCount(); }
};
const CountAtEnd kCountAtEnd;

}  // namespace

extern "C" {

ssize_t write(int fd, const void* data, size_t size) {
  static const auto next = Next<ssize_t (*)(int, const void*, size_t)>("write");
  return Write<ssize_t>(
      fd, size, [&] { return next(fd, data, size); }, [&](size_t part) { next(fd, data, part); });
}

ssize_t writev(int fd, const iovec* parts, int count) {
  static const auto next = Next<ssize_t (*)(int, const iovec*, int)>("writev");
  return Write<ssize_t>(
      fd, 0, [&] { return next(fd, parts, count); }, [&](size_t) {});
}

ssize_t pwrite(int fd, const void* data, size_t size, off_t at) {
  static const auto next = Next<ssize_t (*)(int, const void*, size_t, off_t)>("pwrite");
  return Write<ssize_t>(
      fd, size, [&] { return next(fd, data, size, at); }, [&](size_t part) { next(fd, data, part, at); });
}

ssize_t pwrite64(int fd, const void* data, size_t size, off64_t at) {
  static const auto next = Next<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64");
  return Write<ssize_t>(
      fd, size, [&] { return next(fd, data, size, at); }, [&](size_t part) { next(fd, data, part, at); });
}

int fsync(int fd) {
  static const auto next = Next<int (*)(int)>("fsync");
  return Plain(StepOf("sync", fd, false), [&] { return next(fd); });
}

int fdatasync(int fd) {
  static const auto next = Next<int (*)(int)>("fdatasync");
  return Plain(StepOf("sync", fd, false), [&] { return next(fd); });
}

int ftruncate(int fd, off_t size) {
  static const auto next = Next<int (*)(int, off_t)>("ftruncate");
  return Plain(StepOf("truncate", fd, false), [&] { return next(fd, size); });
}

int ftruncate64(int fd, off64_t size) {
  static const auto next = Next<int (*)(int, off64_t)>("ftruncate64");
  return Plain(StepOf("truncate", fd, false), [&] { return next(fd, size); });
}

int rename(const char* from, const char* to) {
  static const auto next = Next<int (*)(const char*, const char*)>("rename");
  return Plain(TheFaults().Step("rename", to, true), [&] { return next(from, to); });
}

int link(const char* from, const char* to) {
  static const auto next = Next<int (*)(const char*, const char*)>("link");
  return Plain(TheFaults().Step("link", to, true), [&] { return next(from, to); });
}

int unlink(const char* path) {
  static const auto next = Next<int (*)(const char*)>("unlink");
  return Plain(TheFaults().Step("unlink", path, false), [&] { return next(path); });
}

int remove(const char* path) {
  static const auto next = Next<int (*)(const char*)>("remove");
  return Plain(TheFaults().Step("unlink", path, false), [&] { return next(path); });
}

int open(const char* path, int flags, ...) {
  static const auto next = Next<int (*)(const char*, int, ...)>("open");
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  return Plain(TheFaults().Step("open", path, (flags & O_CREAT) != 0),
               [&] { return next(path, flags, mode); });
}

int open64(const char* path, int flags, ...) {
  static const auto next = Next<int (*)(const char*, int, ...)>("open64");
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  return Plain(TheFaults().Step("open", path, (flags & O_CREAT) != 0),
               [&] { return next(path, flags, mode); });
}

}  // extern "C"
