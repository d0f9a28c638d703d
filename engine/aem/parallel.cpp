#include "aem/parallel.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace aem::detail {

int ThreadCount(int asked) {
  return asked > 0 ? asked : std::max(1, int(std::thread::hardware_concurrency()));
}

void RunOnThreads(int threads, std::atomic<bool>* stop, const std::function<void()>& work) {
  std::exception_ptr first;
  std::mutex guard;
  const auto guarded = [&] {
    try {
      work();
    } catch (...) {
      const std::lock_guard lock(guard);
      if (!first) first = std::current_exception();
      stop->store(true);
    }
  };
  {
    std::vector<std::jthread> team;
    try {
      for (int t = 1; t < threads; ++t) team.emplace_back(guarded);
    } catch (const std::system_error&) {
      // No thread to be had: those that run do the work.
    } catch (const std::bad_alloc&) {
    }
    guarded();
  }
  if (first) std::rethrow_exception(first);
}

}  // namespace aem::detail
