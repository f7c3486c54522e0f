// Slices computed on worker threads into private buffers and handed back in slice order,
// so that what the caller builds is the same for any thread count.
#pragma once
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

// For slices first..last: compute(z, buffer) on up to `threads` workers, a batch of slices
// at a time, then commit(z, buffer) for each slice of the batch in order on this thread.
template <class Buffer, class Compute, class Commit>
void slicebatches(int64_t first, int64_t last, int64_t threads, Compute compute, Commit commit) {
  const int64_t workers = std::max<int64_t>(1, threads);
  const int64_t batch = workers * 4;
  std::vector<Buffer> buffers(batch);
  for (int64_t start = first; start <= last; start += batch) {
    const int64_t count = std::min(batch, last - start + 1);
    std::atomic<int64_t> nextslice{0};
    auto work = [&] {
      for (int64_t i; (i = nextslice.fetch_add(1)) < count;) compute(start + i, buffers[i]);
    };
    if (workers < 2 || count < 2) {
      work();
    } else {
      std::vector<std::thread> pool;
      for (int64_t t = 1; t < std::min(workers, count); ++t) pool.emplace_back(work);
      work();
      for (std::thread& t : pool) t.join();
    }
    for (int64_t i = 0; i < count; ++i) commit(start + i, buffers[i]);
  }
}
