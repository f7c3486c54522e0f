// The slice worker: one slice of a volume per job, at most `parallel` jobs in flight, each
// computing into a private plane. A computed slice goes back into the volume only once both
// neighbours are computed too, so every job reads unfiltered neighbours and the result is
// the same as that of the plain sequential walk, whatever the thread count.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "script/tscript.h"
#include "script/utf16.h"

struct tslicejob {
  virtual ~tslicejob() = default;
  // On a worker: slice z (1-based) from the unchanged volume into the job's own plane.
  virtual void compute(int64_t z) = 0;
  // On the calling thread: plane z into the volume, then the plane is released.
  virtual void commit(int64_t z) = 0;
};

// round(thread.max), at least 1; read at each command since a macro may change it.
int64_t threadlimit(const tscript& s);

// Threaded when count >= 2 and parallel >= 2 (with the "Working threads: " and "Parallel: "
// lines), otherwise the sequential walk that commits z - 1 once z is computed. Progress
// shows under `word` either way.
void runslices(tslicejob& job, int64_t count, int64_t parallel, const utf16& word);

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
