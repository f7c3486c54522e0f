// Work that may crash, hang or take all memory (an outside library decoding a damaged file)
// runs in a child process under an address-space and a time limit. The child hands its
// answer back in shared memory; whatever becomes of the child, the program goes on.
#pragma once
#include <cstdint>
#include <functional>

struct tchildlimits {
  int64_t memory = 0;  // bytes the child may map beyond what it inherits
  double seconds = 0;  // wall-clock time before the child is killed
};

// The child's side: childreserve sizes the shared memory (again: its bytes are kept as far
// as they reach) and gives its bytes to fill; nullptr when that fails.
struct tchildoutput {
  int fd = -1;
  uint8_t* data = nullptr;
  int64_t size = 0;
};
uint8_t* childreserve(tchildoutput& out, int64_t bytes);

// The parent's side: what the child wrote, mapped read-only for the life of the record.
struct tchildanswer {
  const uint8_t* data = nullptr;
  int64_t size = 0;
  tchildanswer() = default;
  tchildanswer(const tchildanswer&) = delete;
  tchildanswer& operator=(const tchildanswer&) = delete;
  ~tchildanswer();
};

enum class tchildend { done, failed, crashed, timeout };
// done: work returned true in the child and the child ended normally. failed: work returned
// false. answer holds what the child reserved in both. crashed: a signal or a limit ended it.
// The child's standard streams go to /dev/null; it prints nothing.
tchildend childrun(const tchildlimits& limits, const std::function<bool(tchildoutput&)>& work, tchildanswer& answer);
