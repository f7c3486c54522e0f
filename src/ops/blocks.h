// Work cut into contiguous blocks, one thread each, the first on the calling thread. For
// passes whose blocks write only their own part, so that the result doesn't depend on
// the thread count.
#pragma once
#include <algorithm>
#include <cstdint>
#include <thread>
#include <vector>

// work(first, end) for the blocks of 0..count-1, at most `threads` of them.
template <class Work>
void inblocks(int64_t count, int64_t threads, Work work) {
  threads = std::clamp<int64_t>(threads, 1, std::max<int64_t>(count, 1));
  std::vector<std::thread> pool;
  for (int64_t t = 1; t < threads; ++t)
    pool.emplace_back([&work, count, threads, t] { work(count * t / threads, count * (t + 1) / threads); });
  work(0, count / threads);
  for (std::thread& worker : pool) worker.join();
}
