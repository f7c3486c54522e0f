#include "ops/slices.h"

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

#include "shell/console.h"

namespace {

enum : uint8_t { written = 0, computed = 1, pending = 2 };

void runsequential(const tslicejob& job, int64_t count, const utf16& word) {
  progress(word, 0);
  for (int64_t z = 1; z <= count; ++z) {
    job.compute(z);
    if (z > 1) job.commit(z - 1);
    progress(word, static_cast<double>(z) / count);
  }
  job.commit(count);
  progressend();
}

// A small pool of `parallel` workers taking slices in ascending order. The script thread
// sleeps on a condition variable instead of spinning: on a small machine a spinning waiter
// takes a core from the workers.
struct tpool {
  const tslicejob& job;
  int64_t count;
  std::vector<uint8_t> states;  // slots 0 and count + 1 read as written
  std::mutex lock;
  std::condition_variable changed;
  int64_t next = 1;
  int64_t finished = 0;

  tpool(const tslicejob& j, int64_t n) : job(j), count(n), states(n + 2, written) {
    std::fill(states.begin() + 1, states.end() - 1, pending);
  }

  void work() {
    for (;;) {
      int64_t z;
      {
        std::lock_guard g(lock);
        if (next > count) return;
        z = next++;
      }
      job.compute(z);
      {
        std::lock_guard g(lock);
        states[z] = computed;
        ++finished;
      }
      changed.notify_one();
    }
  }

  // Slices no running or future job reads any more. Taken under the lock, committed
  // outside it: a commit writes only its own slice, which nobody reads now.
  std::vector<int64_t> ready() {
    std::vector<int64_t> out;
    for (int64_t z = 1; z <= count; ++z)
      if (states[z] == computed && states[z - 1] != pending && states[z + 1] != pending) {
        states[z] = written;
        out.push_back(z);
      }
    return out;
  }

  void run(int64_t parallel, const utf16& word) {
    std::vector<std::thread> workers;
    try {
      for (int64_t i = 0; i < std::min(parallel, count); ++i) workers.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
      // Fewer workers than asked; with none at all this thread does the work.
      if (workers.empty()) work();
    }
    int64_t done = 0;
    for (;;) {
      std::vector<int64_t> commits;
      int64_t seen;
      {
        std::unique_lock g(lock);
        changed.wait(g, [&] { return finished > done || finished == count; });
        seen = done = finished;
        commits = ready();
      }
      for (const int64_t z : commits) job.commit(z);
      progress(word, static_cast<double>(seen) / count);
      if (seen == count) break;
    }
    for (auto& t : workers) t.join();
    for (const int64_t z : ready()) job.commit(z);
  }
};

}  // namespace

void runslices(const tslicejob& job, int64_t count, int64_t parallel, const utf16& word) {
  if (count < 1) return;
  if (count < 2 || parallel < 2) return runsequential(job, count, word);
  println("Working threads: " + std::to_string(count));
  println("Parallel: " + std::to_string(parallel));
  progress(word, 0);
  tpool pool(job, count);
  pool.run(parallel, word);
  progressend();
}
