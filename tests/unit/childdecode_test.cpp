#include "base/childdecode.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstring>
#include <vector>

namespace {
const tchildlimits roomy{int64_t{256} << 20, 20};
}

TEST(ChildRun, HandsBackWhatTheChildWrote) {
  tchildanswer answer;
  const tchildend end = childrun(roomy, [](tchildoutput& out) {
    uint8_t* p = childreserve(out, 10);
    std::memcpy(p, "123456789", 10);
    // Growing keeps what was written.
    return childreserve(out, 1 << 20) != nullptr;
  }, answer);
  ASSERT_EQ(end, tchildend::done);
  ASSERT_EQ(answer.size, 1 << 20);
  EXPECT_STREQ(reinterpret_cast<const char*>(answer.data), "123456789");
}

TEST(ChildRun, CrashLimitAndHangEndInTheParent) {
  tchildanswer a, b, c, d;
  EXPECT_EQ(childrun(roomy, [](tchildoutput&) { return false; }, a), tchildend::failed);
  // A sanitizer's or a library's own handler may turn the signal into an exit code.
  const tchildend crash = childrun(roomy, [](tchildoutput&) { return raise(SIGSEGV), true; }, b);
  EXPECT_TRUE(crash == tchildend::crashed || crash == tchildend::failed);
  EXPECT_EQ(b.data, nullptr);
  // Far beyond the limit: the allocation fails or kills the child, never the caller.
  const tchildend big = childrun({int64_t{64} << 20, 20}, [](tchildoutput&) {
    std::vector<char> v(size_t{1} << 31, 1);
    return v[12345] == 1;
  }, c);
  EXPECT_NE(big, tchildend::done);
  EXPECT_EQ(childrun({int64_t{64} << 20, 0.2}, [](tchildoutput&) { return sleep(30), true; }, d), tchildend::timeout);
  EXPECT_EQ(d.data, nullptr);
}
