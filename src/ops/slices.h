// The slice worker: one slice of a volume per job, at most `parallel` jobs in flight, each
// computing into a private plane. A computed slice goes back into the volume only once both
// neighbours are computed too, so every job reads unfiltered neighbours and the result is
// the same as that of the plain sequential walk, whatever the thread count.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "script/utf16.h"

// What a job does with slice z (1-based): `compute` runs on a worker and reads the
// unchanged volume into the job's own plane; `commit` runs on the calling thread and puts
// the plane into the volume, then releases it.
struct tslicejob {
  std::function<void(int64_t)> compute;
  std::function<void(int64_t)> commit;
};

// Threaded when count >= 2 and parallel >= 2 (with the "Working threads: " and "Parallel: "
// lines), otherwise the sequential walk that commits z - 1 once z is computed. Progress
// shows under `word` either way.
void runslices(const tslicejob& job, int64_t count, int64_t parallel, const utf16& word);

// Any record with compute(z) and commit(z).
template <class J>
void runslices(J& job, int64_t count, int64_t parallel, const utf16& word) {
  runslices(tslicejob{[&job](int64_t z) { job.compute(z); }, [&job](int64_t z) { job.commit(z); }}, count, parallel, word);
}

// The private planes of a job: one slot per slice, allocated on compute, freed on commit.
template <class T>
struct tsliceplanes {
  std::vector<std::unique_ptr<T[]>> planes;
  int64_t area = 0;

  tsliceplanes(int64_t count, int64_t planearea) : planes(count + 1), area(planearea) {}
  T* open(int64_t z) {
    planes[z] = std::make_unique_for_overwrite<T[]>(area);
    return planes[z].get();
  }
  T* get(int64_t z) const { return planes[z].get(); }
  void close(int64_t z) { planes[z].reset(); }
};
