// Work shared among threads.  Whatever one of them throws reaches the caller.
#pragma once

#include <atomic>
#include <functional>

namespace aem::detail {

/// Threads that `asked` stands for: 0 and below is as many as the machine has.
int ThreadCount(int asked);

/// Runs `work` on the calling thread and on up to threads - 1 others, and returns when all have ended; with
/// fewer where the machine gives no more.  After the first exception `stop` is true, which `work` has to look
/// at between its steps, and that exception is thrown again here.
void RunOnThreads(int threads, std::atomic<bool>* stop, const std::function<void()>& work);

}  // namespace aem::detail
