// Slices computed on worker threads into private buffers and handed back in slice order,
// so that what the caller builds is the same for any thread count.
#pragma once
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

// For slices first..last: compute(z, buffer) on up to `threads` threads, a batch of slices
// at a time, and commit(z, buffer) for each slice of a batch in order on this thread. With
// two threads or more, the next batch is computed while this thread commits the last one.
template <class Buffer, class Compute, class Commit>
void slicebatches(int64_t first, int64_t last, int64_t threads, Compute compute, Commit commit) {
  const int64_t workers = std::max<int64_t>(1, threads);
  const int64_t batch = workers * 4;
  std::vector<Buffer> ready(batch), next(batch);
  // Computes the batch from `start` into `into` on `count` threads, the caller's among them
  // when `join` is set; otherwise all in the background.
  auto run = [&](int64_t start, std::vector<Buffer>& into, int64_t count, bool join) {
    const int64_t slices = std::min(batch, last - start + 1);
    auto* nextslice = new std::atomic<int64_t>(0);
    auto work = [=, &into] {
      for (int64_t i; (i = nextslice->fetch_add(1)) < slices;) compute(start + i, into[i]);
    };
    std::vector<std::thread> pool;
    for (int64_t t = join ? 1 : 0; t < std::min(count, slices); ++t) pool.emplace_back(work);
    if (join) work();
    return std::make_pair(std::move(pool), nextslice);
  };
  auto wait = [](std::pair<std::vector<std::thread>, std::atomic<int64_t>*>& group) {
    for (std::thread& t : group.first) t.join();
    delete group.second;
  };
  if (first > last) return;
  auto group = run(first, ready, workers, true);
  wait(group);
  for (int64_t start = first; start <= last; start += batch) {
    const int64_t following = start + batch;
    const bool ahead = workers >= 2 && following <= last;
    auto background = ahead ? run(following, next, workers - 1, false) : decltype(group){};
    for (int64_t i = 0; i < std::min(batch, last - start + 1); ++i) commit(start + i, ready[i]);
    if (ahead) {
      wait(background);
      std::swap(ready, next);
    } else if (following <= last) {
      auto g = run(following, ready, workers, true);
      wait(g);
    }
  }
}
