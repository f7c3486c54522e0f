#include "base/childdecode.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "shell/console.h"

namespace {

int64_t pagesize() { return sysconf(_SC_PAGESIZE); }

// The address space the process holds now: the child's limit comes on top of it.
int64_t mappedsize() {
  long pages = 0;
  if (FILE* f = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(f, "%ld", &pages) != 1) pages = 0;
    std::fclose(f);
  }
  return static_cast<int64_t>(pages) * pagesize();
}

double now() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

[[noreturn]] void childmain(const tchildlimits& limits, const std::function<bool(tchildoutput&)>& work, int fd, int alive) {
  const int null = open("/dev/null", O_RDWR);
  for (int stream = 0; stream < 3 && null >= 0; ++stream) dup2(null, stream);
  // A fault just ends the child: the crash handlers it inherits (a sanitizer's, a fuzzer's)
  // would report the library's fault as ours. Nor may a crash spend seconds on a core file.
  for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) signal(fault, SIG_DFL);
  const rlimit nocore{0, 0};
  setrlimit(RLIMIT_CORE, &nocore);
  const rlim_t space = static_cast<rlim_t>(mappedsize() + limits.memory);
  const rlimit as{space, space};
  setrlimit(RLIMIT_AS, &as);
  const rlim_t cpu = static_cast<rlim_t>(limits.seconds) + 1;
  const rlimit cpulimit{cpu, cpu + 1};
  setrlimit(RLIMIT_CPU, &cpulimit);
  tchildoutput out;
  out.fd = fd;
  bool ok = false;
  try {
    ok = work(out);
  } catch (...) {
    ok = false;
  }
  // The size of the answer is the child's last word: without it there is none.
  const int64_t size = out.data ? out.size : 0;
  if (write(alive, &size, sizeof size) != static_cast<ssize_t>(sizeof size)) ok = false;
  _exit(ok ? 0 : 1);
}

// The shared memory is kept from one run to the next up to this size: its pages are then
// there already and the child need not have them cleared again.
constexpr int64_t keptshared = int64_t{64} << 20;
int sharedfile = -1;
int64_t sharedsize = 0;

}  // namespace

uint8_t* childreserve(tchildoutput& out, int64_t bytes) {
  if (out.data) munmap(out.data, static_cast<size_t>(out.size));
  out.data = nullptr;
  out.size = 0;
  struct stat st{};
  if (bytes < 1 || fstat(out.fd, &st) != 0 || (st.st_size < bytes && ftruncate(out.fd, bytes) != 0)) return nullptr;
  void* p = mmap(nullptr, static_cast<size_t>(bytes), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, out.fd, 0);
  if (p == MAP_FAILED) return nullptr;
  out.data = static_cast<uint8_t*>(p);
  out.size = bytes;
  return out.data;
}

tchildanswer::~tchildanswer() {
  if (data) munmap(const_cast<uint8_t*>(data), static_cast<size_t>(size));
  if (sharedfile >= 0 && sharedsize > keptshared) {
    if (ftruncate(sharedfile, 0) == 0) sharedsize = 0;
  }
}

tchildend childrun(const tchildlimits& limits, const std::function<bool(tchildoutput&)>& work, tchildanswer& answer) {
  if (sharedfile < 0) sharedfile = memfd_create("voxmill-child", MFD_CLOEXEC);
  if (sharedfile < 0) return tchildend::failed;
  // The end of the child is seen as the end of this pipe; programs the child starts do not
  // hold it, as it closes on exec.
  int alive[2];
  if (pipe2(alive, O_CLOEXEC) != 0) return tchildend::failed;
  // Text still buffered would otherwise be written twice should the child flush it.
  flushconsole();
  const pid_t pid = fork();
  if (pid == 0) {
    close(alive[0]);
    setpgid(0, 0);
    childmain(limits, work, sharedfile, alive[1]);
  }
  close(alive[1]);
  if (pid < 0) {
    close(alive[0]);
    return tchildend::failed;
  }
  const double deadline = now() + limits.seconds;
  bool timedout = false;
  int64_t size = 0, got = 0;
  for (;;) {
    const double left = deadline - now();
    if (left <= 0) {
      timedout = true;
      break;
    }
    pollfd p{alive[0], POLLIN, 0};
    const int n = poll(&p, 1, static_cast<int>(left * 1000) + 1);
    if (n > 0) {
      const ssize_t r = read(alive[0], reinterpret_cast<char*>(&size) + got, sizeof size - static_cast<size_t>(got));
      if (r <= 0) break;
      got += r;
    } else if (n < 0 && errno != EINTR) {
      break;
    }
  }
  close(alive[0]);
  if (timedout) {
    kill(-pid, SIGKILL);
    kill(pid, SIGKILL);
  }
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  const tchildend end = timedout ? tchildend::timeout
                        : WIFEXITED(status) ? (WEXITSTATUS(status) == 0 ? tchildend::done : tchildend::failed)
                                            : tchildend::crashed;
  struct stat st{};
  if (fstat(sharedfile, &st) != 0) st.st_size = 0;
  const bool answered =
      (end == tchildend::done || end == tchildend::failed) && got == sizeof size && size > 0 && size <= st.st_size;
  if (answered) {
    void* p = mmap(nullptr, static_cast<size_t>(size), PROT_READ, MAP_SHARED | MAP_POPULATE, sharedfile, 0);
    if (p != MAP_FAILED) {
      answer.data = static_cast<const uint8_t*>(p);
      answer.size = size;
    }
  }
  // A large answer gives its memory back once it is read (see ~tchildanswer).
  sharedsize = st.st_size;
  return end;
}
